#include "uit/controls/UI_EditNumber_Horizontal.h"

#include "kroui/ui/AdapterRegistry.h"

namespace uit::controls {

namespace {

const kroui::ui::AdapterRegistrar<UI_EditNumber_Horizontal> sRegistrar("uit::controls::UI_EditNumber_Horizontal");

} // namespace

const kroui::ui::PropertyTable& UI_EditNumber_Horizontal::UI_GetPropertyTable() const {
    return PropertiesOfEditNumberHorizontal();
}

const kroui::ui::PropertyTable& UI_EditNumber_Horizontal::PropertiesOfEditNumberHorizontal() {
    static const kroui::ui::PropertyTable sTable{
        "uit::controls::UI_EditNumber_Horizontal", {}, &PropertiesOfEditNumber()};
    return sTable;
}

} // namespace uit::controls
