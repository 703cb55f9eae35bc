#pragma once

#include "kroui/controls/UI_ControlView.h"

namespace kroui::controls {

// A line between groups of controls: along the longer side of its rectangle unless told otherwise, in the middle of the
// other one.
class UI_Divider : public UI_ControlView {
public:
    enum class Orientation : unsigned char { kByShape, kHorizontal, kVertical };
    void SetOrientation(Orientation orientation);

    // Short along the line: what arranges it stretches it.
    Size UI_GetNaturalSize() const override;
    void UI_Draw(limner::Limner* context) override;
    const ui::PropertyTable& UI_GetPropertyTable() const override;
    static const ui::PropertyTable& PropertiesOfDivider();

protected:
    ~UI_Divider() override = default;

private:
    bool IsHorizontal(const Rect& area) const;

    Orientation fOrientation = Orientation::kByShape;
};

} // namespace kroui::controls
