#pragma once

#include "DrawingCaches.h"
#include "kroui/limner/CairoSupplier.h"

namespace kroui::limner {

struct CairoSupplier::Caches : DrawingCaches {};

} // namespace kroui::limner
