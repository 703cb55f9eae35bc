#pragma once

#include "uit/lio/WidgetAdapter.h"

#include <string_view>

namespace krotarnlio {

// The class of a widget that the engine brings itself ("column", "checkbox", ...), or null.
const uit::lio::WidgetClass* FindWidgetClass(std::string_view name);

} // namespace krotarnlio
