#pragma once

#include "kroui/controls/ImageSlot.h"
#include "kroui/controls/UI_Button.h"

namespace kroui::controls {

// A button with a picture. Its ground shows while it is pointed at, pressed, on or focused, unless told always or
// never.
class UI_PictureButton : public UI_Button {
public:
    void SetImageSupplier(ImageSupplier supplier);
    void SetImageName(std::string_view name);
    const krocore::string8& ImageName() const { return fImage.Name(); }
    void SetDisplayBorderAlways(bool on);
    bool DisplayBorderAlways() const { return fBorderAlways; }
    // Stronger than "always". The focus is shown all the same.
    void SetDisplayBorderNever(bool on);
    bool DisplayBorderNever() const { return fBorderNever; }

    Size UI_GetNaturalSize() const override;
    void UI_Draw(limner::Limner* context) override;
    void UI_NodeChanged(NodeChange change) override;
    const ui::PropertyTable& UI_GetPropertyTable() const override;
    static const ui::PropertyTable& PropertiesOfPictureButton();

protected:
    ~UI_PictureButton() override = default;

private:
    bool ShowsGround(const Face& face) const;

    ImageSlot fImage;
    bool fBorderAlways = false;
    bool fBorderNever = false;
};

} // namespace kroui::controls
