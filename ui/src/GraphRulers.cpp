#include "GraphRulers.h"

#include "kroui/utility/LinearRuler.h"
#include "kroui/utility/LogRuler.h"

namespace qocui::ui {

namespace {

constexpr double kStepFactor = 20; // pixels between labels
constexpr double kDecade = 10;
constexpr float kFontSize = 9;

} // namespace

boost::intrusive_ptr<kroui::utility::RulerBase> MakeLinearRuler(bool vertical, double minimum, double maximum) {
    const boost::intrusive_ptr<kroui::utility::LinearRuler> ruler(new kroui::utility::LinearRuler);
    ruler->SetVertical(vertical);
    ruler->SetValueRange(minimum, maximum);
    ruler->SetTextNearTickStart(false);
    ruler->HideTruncatedStrings(true);
    ruler->SetStepFactor(kStepFactor);
    ruler->SetFontSize(kFontSize);
    return ruler;
}

boost::intrusive_ptr<kroui::utility::RulerBase> MakeLogRuler(bool vertical, double minimum, double maximum) {
    const boost::intrusive_ptr<kroui::utility::LogRuler> ruler(new kroui::utility::LogRuler);
    ruler->SetVertical(vertical);
    ruler->SetValueRange(minimum, maximum);
    ruler->SetTextNearTickStart(false);
    ruler->SetStepFactor(kStepFactor);
    ruler->SetLogStep(kDecade);
    ruler->SetLogSeed(1);
    ruler->SetFontSize(kFontSize);
    return ruler;
}

} // namespace qocui::ui
