#pragma once

#include "kroui/controls/UI_ControlView.h"

namespace kroui::controls {

// A line around a group of controls, which are its children.
class UI_OutlineBox : public UI_ControlView {
public:
    // View units, 0...100.
    void SetCornerRadius(float radius);
    float CornerRadius() const { return fCornerRadius; }

    void UI_Draw(limner::Limner* context) override;
    ui::AccessibleInfo UI_GetAccessibleInfo() const override;
    const ui::PropertyTable& UI_GetPropertyTable() const override;
    static const ui::PropertyTable& PropertiesOfOutlineBox();

protected:
    ~UI_OutlineBox() override = default;

private:
    float fCornerRadius = 4;
};

} // namespace kroui::controls
