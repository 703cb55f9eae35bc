#include "WidgetTable.h"

#include "widgets/BoxAdapter.h"
#include "widgets/ButtonAdapter.h"
#include "widgets/CheckboxAdapter.h"
#include "widgets/DisplayAdapter.h"
#include "widgets/GroupAdapter.h"
#include "widgets/OptionalAdapter.h"
#include "widgets/PanelAdapter.h"
#include "widgets/PopupAdapter.h"
#include "widgets/RadioButtonAdapter.h"
#include "widgets/RevealAdapter.h"
#include "widgets/SeparatorAdapter.h"
#include "widgets/StaticTextAdapter.h"
#include "widgets/TabGroupAdapter.h"
#include "widgets/ToggleButtonAdapter.h"

#include <algorithm>

namespace krotarnlio {

using uit::lio::WidgetAdapter;
using uit::lio::WidgetClass;
using uit::lio::WidgetContext;

namespace {

constexpr int kPanelMargin = 16; // around a whole layout

template <Placement placement, int margin = 0>
WidgetClass Box(std::string_view name) {
    return {name, {}, [](const WidgetContext&) -> std::unique_ptr<WidgetAdapter> {
                return std::make_unique<BoxAdapter>(placement, static_cast<float>(margin));
            }};
}

template <class Adapter>
WidgetClass Class(std::string_view name) {
    return {name, Adapter::Rows(), [](const WidgetContext& context) -> std::unique_ptr<WidgetAdapter> {
                return std::make_unique<Adapter>(context);
            }};
}

} // namespace

const WidgetClass* FindWidgetClass(std::string_view name) {
    static const WidgetClass kClasses[] = {
        Box<Placement::kColumn, kPanelMargin>("subview"),
        Box<Placement::kColumn>("column"),
        Box<Placement::kRow>("row"),
        Class<ButtonAdapter>("button"),
        Class<CheckboxAdapter>("checkbox"),
        Class<DisplayNumberAdapter>("display_number"),
        Class<DisplayTextAdapter>("display_text"),
        Class<GroupAdapter>("group"),
        Class<OptionalAdapter>("optional"),
        Class<PanelAdapter>("panel"),
        Class<PopupAdapter>("popup"),
        Class<RadioButtonAdapter>("radio_button"),
        Class<RevealAdapter>("reveal"),
        Class<SeparatorAdapter>("separator"),
        Class<StaticTextAdapter>("static_text"),
        Class<TabGroupAdapter>("tab_group"),
        Class<ToggleButtonAdapter>("toggle_button"),
    };
    const auto* const found = std::ranges::find(kClasses, name, &WidgetClass::name);
    return found != std::end(kClasses) ? found : nullptr;
}

} // namespace krotarnlio
