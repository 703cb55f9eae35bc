#include "kroui/ui/Theme.h"

#include <algorithm>

namespace kroui::ui {

namespace {

constexpr limner::Color kUnknown{1, 0, 1, 1};

// Graphs (125 apart, which frames them) keep their dark ground and bright curve in both themes.
struct Row {
    int index;
    std::string_view role;
    std::uint32_t dark;  // 0xAARRGGBB
    std::uint32_t light; // 0xAARRGGBB
};

// Every role, ascending by index.
constexpr Row kRows[] = {
    {kColorWindow, "window", 0xFF1E1F22, 0xFFE4E6EA},
    {kColorPanel, "panel", 0xFF2A2B2F, 0xFFF6F7F9},
    {kColorRaised, "raised", 0xFF36383D, 0xFFFFFFFF},
    {kColorRaisedHover, "raised, hovered", 0xFF3F4147, 0xFFEBEEF3},
    {kColorLine, "line", 0xFF44464C, 0xFFC3C7CF},
    {kColorText, "text", 0xFFD7D9DE, 0xFF23262B},
    {kColorDimText, "dim text", 0xFF9CA0A8, 0xFF5C626C},
    {kColorDisabledText, "disabled text", 0xFF6C7078, 0xFF9BA1AB},
    {kColorAccent, "accent", 0xFF4DA3FF, 0xFF0B66C3},
    {kColorAccentText, "text on accent", 0xFF0E1116, 0xFFFFFFFF},
    {kColorTrack, "track", 0xFF1F2023, 0xFFD3D7DE},
    {kColorKnob, "knob", 0xFF3A3C42, 0xFFFFFFFF},
    {kColorKnobLine, "knob line", 0xFF9EA2AA, 0xFF6F7682},
    {kColorField, "field", 0xFF1B1C1F, 0xFFFFFFFF},
    {kColorCurve, "curve", 0xFFFFC94D, 0xFFFFC94D},
    {kColorWarning, "warning", 0xFFFF6B57, 0xFFC42B17},
    {kColorMeter, "meter", 0xFF5FD38D, 0xFF15803D},
    {kColorSelection, "selection", 0x664DA3FF, 0x400B66C3},
    {kColorShadow, "shadow", 0x66000000, 0x33000000},
    {kColorMenu, "menu", 0xFF303237, 0xFFFFFFFF},
    {kColorRulerTick, "ruler tick", 0xFF8A8E96, 0xFF767C87},
    {kColorRulerBackground, "ruler background", 0xFF2A2B2F, 0xFFF6F7F9},
    {kColorPathBackground, "path background", 0xFF000000, 0xFF000000},
    {kColorMeterBackground, "meter background", 0xFF2A2B2F, 0xFFF6F7F9},
    {kColorGridLine, "grid line", 0xFF4A4C52, 0xFF4A4C52},
    {kColorFrame, "frame", 0xFF5A5D64, 0xFF9BA1AB},
};

constexpr limner::Color FromARGB(std::uint32_t argb) {
    return limner::Color::FromRGB(argb & 0xFFFFFF).WithAlpha(static_cast<float>(argb >> 24) / 255);
}

} // namespace

Theme::Theme(std::string_view name, bool isDark) : fName(name) {
    std::fill(std::begin(fColors), std::end(fColors), kUnknown);
    for (const Row& row : kRows)
        fColors[row.index] = FromARGB(isDark ? row.dark : row.light);
}

const Theme& Theme::Dark() {
    static const Theme sTheme("dark", true);
    return sTheme;
}

const Theme& Theme::Light() {
    static const Theme sTheme("light", false);
    return sTheme;
}

limner::Color Theme::GetColor(int index) const {
    return index >= 0 && index < kIndexCount ? fColors[index] : kUnknown;
}

} // namespace kroui::ui
