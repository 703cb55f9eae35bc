#include "kroui/controls/ImageSlot.h"

#include <utility>

namespace kroui::controls {

namespace {

constexpr float kFaintOpacity = 0.4F;

} // namespace

void ImageSlot::SetSupplier(ImageSupplier supplier) {
    fSupplier = std::move(supplier);
    Forget();
}

bool ImageSlot::SetName(std::string_view name) {
    if (name == std::string_view(fName)) return false;
    fName = name;
    Forget();
    return true;
}

void ImageSlot::Forget() {
    fImage.reset();
    fScale = 0;
}

void ImageSlot::Find(bool enabled, float scale) const {
    if (scale == fScale && enabled == fEnabled) return;
    fScale = scale;
    fEnabled = enabled;
    fFaint = false;
    fImage.reset();
    if (!fSupplier || fName.empty()) return;
    fImage = fSupplier(fName, enabled, scale);
    if (fImage || enabled) return;
    fImage = fSupplier(fName, true, scale);
    fFaint = true;
}

Size ImageSlot::PictureSize(bool enabled, float scale) const {
    Find(enabled, scale);
    return fImage ? fImage->ViewSize() : Size{};
}

void ImageSlot::Draw(limner::Limner& context, const Rect& rect, bool enabled) const {
    Find(enabled, context.ScaleFactor());
    if (fImage && !rect.IsEmpty()) context.DrawImage(*fImage, rect, fFaint ? kFaintOpacity : 1);
}

} // namespace kroui::controls
