#pragma once

#include "FontRasters.h"
#include "StampCache.h"
#include "TextCache.h"
#include "TextShaper.h"

namespace kroui::limner {

// What is computed once and drawn many times, shared by all contexts of a supplier.
struct DrawingCaches {
    FontRasters rasters;
    std::unique_ptr<TextShaper> shaper = MakeSystemTextShaper(rasters);
    TextCache texts{*shaper};
    StampCache stamps;
};

} // namespace kroui::limner
