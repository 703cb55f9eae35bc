#pragma once

#include "kroui/ui/UI_Node.h"

#include <string_view>

namespace kroui::controls {

// For controls that tell how much room they need. Widths are estimates while the node knows no drawing supplier.

// The height of a row of a panel: buttons, pop-ups, numbers.
inline constexpr float kRowHeight = 24;

// The width of a text in whole view units, and of so many digits.
float TextWidth(const ui::UI_Node& node, std::u16string_view text, const limner::Font& font = {});
float DigitsWidth(const ui::UI_Node& node, std::uint32_t count, const limner::Font& font = {});
// The baseline, from the top, of a line that stands in the middle of so much height.
float CentredBaseline(const ui::UI_Node& node, float height, const limner::Font& font = {});

} // namespace kroui::controls
