#pragma once

#include "krocore/String.h"
#include "kroui/limner/Limner.h"

#include <boost/function.hpp>

#include <string_view>

namespace kroui::controls {

// Finds a picture by name, for a control that is enabled or not, at a scale (pixels a view unit). Null if there is no
// such picture.
using ImageSupplier = boost::function<limner::ImagePtr(const krocore::string8& name, bool enabled, float scale)>;

// The picture of a control: a name, who finds the picture, and the one found last. The supplier is asked when the
// picture is first drawn, and again only when name, state or scale are others. A member of the control that shows it.
class ImageSlot {
public:
    void SetSupplier(ImageSupplier supplier);
    // Whether the name is another now.
    bool SetName(std::string_view name);
    const krocore::string8& Name() const { return fName; }
    // Makes the next drawing ask the supplier again.
    void Forget();

    // The size of the picture in view units; nothing if there is none.
    Size PictureSize(bool enabled, float scale) const;
    // Scales the picture into the rectangle. A disabled control whose supplier knows no picture for that state shows
    // the enabled one faintly.
    void Draw(limner::Limner& context, const Rect& rect, bool enabled) const;

private:
    void Find(bool enabled, float scale) const;

    ImageSupplier fSupplier;
    krocore::string8 fName;
    mutable limner::ImagePtr fImage;
    mutable float fScale = 0; // 0: not asked yet
    mutable bool fEnabled = true;
    mutable bool fFaint = false;
};

} // namespace kroui::controls
