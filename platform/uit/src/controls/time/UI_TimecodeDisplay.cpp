#include "uit/controls/UI_TimecodeDisplay.h"

#include "kroui/controls/HotTextLook.h"
#include "kroui/controls/TextMeasure.h"

#include <algorithm>

namespace uit::controls {

using kroui::Size;
using kroui::controls::HotTextLook;
using kroui::controls::TextWidth;

namespace {

constexpr double kSecondsOfADay = 24.0 * 60 * 60 - 1;

} // namespace

void UI_TimecodeDisplay::SetValue(double seconds) {
    const krocore::string16 before = ShownText();
    fValue = seconds;
    if (ShownText() != before) UI_Invalidate();
}

void UI_TimecodeDisplay::SetTimecodeFormat(const TimecodeSettings& settings) {
    if (settings == fFormat.Settings()) return;
    fFormat = TimecodeFormat(settings);
    UI_Invalidate();
}

Size UI_TimecodeDisplay::UI_GetNaturalSize() const {
    const float width = std::max(TextWidth(*this, fFormat.Format(kSecondsOfADay)), TextWidth(*this, ShownText()));
    return {width + 2 * HotTextLook::kPadding, kroui::controls::kRowHeight};
}

float UI_TimecodeDisplay::UI_GetBaseline() const {
    return kroui::controls::CentredBaseline(*this, kroui::controls::kRowHeight);
}

void UI_TimecodeDisplay::UI_Draw(kroui::limner::Limner* context) {
    const int color = IsEnabled() ? kroui::ui::kColorText : kroui::ui::kColorDisabledText;
    context->DrawText(ShownText(), {}, GetColor(color), UI_GetLocalRect().Inset(HotTextLook::kPadding, 0),
                      {kroui::limner::TextAlignment::kRight, kroui::limner::TextTruncation::kStart, false});
}

kroui::ui::AccessibleInfo UI_TimecodeDisplay::UI_GetAccessibleInfo() const {
    kroui::ui::AccessibleInfo info = UI_ControlView::UI_GetAccessibleInfo();
    info.role = kroui::ui::Role::kText;
    info.value = ShownText();
    return info;
}

} // namespace uit::controls
