#pragma once

#include "kroui/controls/ImageSlot.h"
#include "kroui/controls/UI_ControlView.h"

namespace kroui::controls {

// A picture, in the middle of its rectangle, at its own size or as much smaller as it takes to fit.
class UI_StaticImage : public UI_ControlView {
public:
    void SetImageSupplier(ImageSupplier supplier);
    void SetImageName(std::string_view name);
    const krocore::string8& ImageName() const { return fImage.Name(); }

    void UI_Draw(limner::Limner* context) override;
    void UI_NodeChanged(NodeChange change) override;
    ui::AccessibleInfo UI_GetAccessibleInfo() const override;
    const ui::PropertyTable& UI_GetPropertyTable() const override;
    static const ui::PropertyTable& PropertiesOfStaticImage();

protected:
    ~UI_StaticImage() override = default;

private:
    ImageSlot fImage;
};

} // namespace kroui::controls
