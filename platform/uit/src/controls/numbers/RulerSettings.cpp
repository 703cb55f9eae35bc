#include "uit/controls/RulerSettings.h"

#include "kroui/utility/DecibelRuler.h"
#include "kroui/utility/LinearRuler.h"
#include "kroui/utility/LogRuler.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace uit::controls {

using kroui::utility::RulerBase;

namespace {

constexpr float kRulerFontSize = 9;

} // namespace

bool RulerSettings::IsFinite() const {
    const auto isFinite = [](double number) { return std::isfinite(number); };
    return std::ranges::all_of(std::array{stepFactor, logSeed, logStep, value1, value2}, isFinite);
}

boost::intrusive_ptr<RulerBase> RulerSettings::MakeRuler() const {
    boost::intrusive_ptr<RulerBase> ruler;
    switch (type) {
    case kLogarithmic: ruler.reset(new kroui::utility::LogRuler); break;
    case kDecibels:
    case kFader: ruler.reset(new kroui::utility::DecibelRuler); break;
    default: ruler.reset(new kroui::utility::LinearRuler); break;
    }
    if (type == kFader) ruler->SetStyle(RulerBase::kFader);
    ruler->SetFontSize(kRulerFontSize);
    ruler->SetValueRange(value1, value2);
    Configure(*ruler);
    return ruler;
}

void RulerSettings::Configure(RulerBase& ruler) const {
    ruler.SetStepFactor(stepFactor);
    ruler.SetAbbreviateNumbers(abbreviateNumbers);
    ruler.SetLabel1(label1.Text());
    ruler.SetLabel2(label2.Text());
    if (auto* const logarithmic = dynamic_cast<kroui::utility::LogRuler*>(&ruler)) {
        logarithmic->SetLogSeed(logSeed);
        logarithmic->SetLogStep(logStep);
    }
}

} // namespace uit::controls
