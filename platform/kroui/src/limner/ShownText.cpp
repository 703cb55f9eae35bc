#include "ShownText.h"

namespace kroui::limner {

namespace {

char16_t Shown(char16_t unit, bool keepLineEnds) {
    constexpr char16_t kReplacement = 0xFFFD;
    if (IsHighSurrogate(unit) || IsLowSurrogate(unit)) return kReplacement;
    if (unit == u'\n' && keepLineEnds) return unit;
    const bool isControl = unit < 0x20 || (unit >= 0x7F && unit < 0xA0) || unit == 0x2028 || unit == 0x2029;
    return isControl ? u' ' : unit;
}

} // namespace

bool IsHighSurrogate(char16_t unit) {
    return (unit & 0xFC00) == 0xD800;
}

bool IsLowSurrogate(char16_t unit) {
    return (unit & 0xFC00) == 0xDC00;
}

std::u16string ShownText(std::u16string_view text, bool keepLineEnds) {
    std::u16string shown(text);
    for (std::size_t i = 0; i < shown.size(); ++i) {
        if (IsHighSurrogate(shown[i]) && i + 1 < shown.size() && IsLowSurrogate(shown[i + 1]))
            ++i;
        else
            shown[i] = Shown(shown[i], keepLineEnds);
    }
    return shown;
}

} // namespace kroui::limner
