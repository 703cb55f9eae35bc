#include "CompExpListAdapter.h"
#include "CurveEditorAdapter.h"
#include "EditNumberAdapter.h"
#include "PictureToggleAdapter.h"
#include "TimecodeDisplayAdapter.h"
#include "TimecodeEditAdapter.h"

#include <algorithm>

namespace uit::lio {

namespace {

const WidgetClass* FindWidgetClass(std::string_view widget) {
    static constexpr const WidgetClass* kClasses[] = {
        &CompExpListAdapter::kClass,   &CurveEditorAdapter::kClass,     &EditNumberAdapter::kClass,
        &PictureToggleAdapter::kClass, &TimecodeDisplayAdapter::kClass, &TimecodeEditAdapter::kClass,
    };
    const auto found =
        std::ranges::find_if(kClasses, [&](const WidgetClass* candidate) { return candidate->name == widget; });
    return found != std::end(kClasses) ? *found : nullptr;
}

} // namespace

AdapterFactoryProc GetAdapterFactoryProc() {
    return &FindWidgetClass;
}

} // namespace uit::lio
