#pragma once

#include "kroui/limner/Limner.h"
#include "kroui/ui/Theme.h"

#include <boost/function.hpp>

namespace uit {

// A picture of what changes seldom (grids, rulers), so that painting it again is one copy. Made anew when its size, the
// scale factor or the theme is another than last time, or when its owner says that the content has changed. Owned by
// the view that draws through it; user-interface thread.
class CacheSurface {
public:
    // The content has changed: the next Draw makes the picture anew.
    void Invalidate() { fImage.reset(); }

    // Draws the picture into `rect` of `context`; `draw` paints it, in coordinates whose origin is the rectangle's left
    // top. Without a supplier, or with a size that no picture can have, `draw` paints straight into the context.
    void Draw(kroui::limner::Limner& context, const kroui::Rect& rect, const kroui::limner::SupplierInterface* supplier,
              const kroui::ui::Theme& theme, const boost::function<void(kroui::limner::Limner&)>& draw);

private:
    kroui::limner::ImagePtr fImage;
    kroui::Size fSize;
    float fScale = 0;
    const kroui::ui::Theme* fTheme = nullptr;
};

} // namespace uit
