#pragma once

#include <string>
#include <string_view>

namespace kroui::limner {

bool IsHighSurrogate(char16_t unit);
bool IsLowSurrogate(char16_t unit);

// What is shown of a text, unit for unit: control characters are spaces, except for line ends where they are kept;
// halves of a surrogate pair that stand alone are U+FFFD.
std::u16string ShownText(std::u16string_view text, bool keepLineEnds);

} // namespace kroui::limner
