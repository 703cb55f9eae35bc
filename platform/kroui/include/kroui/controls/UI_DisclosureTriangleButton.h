#pragma once

#include "kroui/controls/UI_PictureTextButton.h"

namespace kroui::controls {

// A triangle with a text that opens and closes a part of a panel: points right while closed, down while open. Its
// value, which is its down state, is 1 while open.
class UI_DisclosureTriangleButton : public UI_PictureTextButton {
public:
    UI_DisclosureTriangleButton();

    void UI_Draw(limner::Limner* context) override;
    ui::AccessibleInfo UI_GetAccessibleInfo() const override;
    bool UI_DoAccessibleAction(const ui::AccessibleRequest& request) override;
    const ui::PropertyTable& UI_GetPropertyTable() const override;
    static const ui::PropertyTable& PropertiesOfDisclosureTriangleButton();

protected:
    ~UI_DisclosureTriangleButton() override = default;

    bool IsToggle() const override { return true; }
    Size PictureSize(float scale) const override;
    void DrawPicture(limner::Limner& context, const Rect& rect) const override;
};

} // namespace kroui::controls
