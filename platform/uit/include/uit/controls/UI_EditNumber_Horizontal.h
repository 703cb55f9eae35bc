#pragma once

#include "uit/controls/UI_EditNumber.h"

namespace uit::controls {

// An edit number whose parts always stand in a row.
class UI_EditNumber_Horizontal : public UI_EditNumber {
public:
    const kroui::ui::PropertyTable& UI_GetPropertyTable() const override;
    static const kroui::ui::PropertyTable& PropertiesOfEditNumberHorizontal();

protected:
    ~UI_EditNumber_Horizontal() override = default;

    bool IsVertical() const override { return false; }
};

} // namespace uit::controls
