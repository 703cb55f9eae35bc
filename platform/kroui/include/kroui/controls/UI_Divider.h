#pragma once

#include "kroui/controls/UI_ControlView.h"

namespace kroui::controls {

// A line between groups of controls: along the longer side of its rectangle, in the middle of the shorter one.
class UI_Divider : public UI_ControlView {
public:
    void UI_Draw(limner::Limner* context) override;
    const ui::PropertyTable& UI_GetPropertyTable() const override;
    static const ui::PropertyTable& PropertiesOfDivider();

protected:
    ~UI_Divider() override = default;
};

} // namespace kroui::controls
