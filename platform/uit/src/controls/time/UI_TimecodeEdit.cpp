#include "uit/controls/UI_TimecodeEdit.h"

#include "kroui/controls/TextMeasure.h"

#include <algorithm>

namespace uit::controls {

namespace {

constexpr double kSecondsOfADay = 24.0 * 60 * 60;
constexpr double kFineSteps = 10;

} // namespace

UI_TimecodeEdit::UI_TimecodeEdit() {
    SetMinMaxValue(0, kSecondsOfADay, 0);
}

void UI_TimecodeEdit::SetTimecodeFormat(const TimecodeSettings& settings) {
    if (settings == fFormat.Settings()) return;
    fFormat = TimecodeFormat(settings);
    UI_Invalidate();
}

float UI_TimecodeEdit::NaturalTextWidth() const {
    // One unit below the upper bound has no more digits, and often more that differ from 0.
    float widest = 0;
    for (const double seconds : {GetMinValue(), GetMaxValue(), GetMaxValue() - fFormat.Resolution()})
        widest = std::max(widest, kroui::controls::TextWidth(*this, fFormat.Format(seconds), GetFont()));
    return widest;
}

double UI_TimecodeEdit::GestureCommandIncrement() const {
    return std::max(fFormat.Resolution(), fFormat.Increment() / kFineSteps);
}

} // namespace uit::controls
