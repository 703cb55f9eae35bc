#include "kroui/utility/LogRuler.h"

#include <algorithm>
#include <cmath>

namespace kroui::utility {

namespace {

constexpr double kSmallestStep = 1.01;
constexpr double kMostPowers = 400;
constexpr double kSlack = 1e-9;

// Sets of the multiples of a power, a bit each.
constexpr unsigned kPowers = 1U << 1U;
constexpr unsigned kOneTwoFive = kPowers | 1U << 2U | 1U << 5U;
constexpr unsigned kAllMultiples = 0x3FE;
constexpr int kFewLabels = 4;

int LabelDecimals(double value) {
    const double power = std::floor(std::log10(value) + kSlack);
    return power < 0 ? static_cast<int>(-power) : 0;
}

} // namespace

void LogRuler::SetLogStep(double step) {
    if (std::isfinite(step) && step >= kSmallestStep) Assign(fLogStep, step);
}

void LogRuler::SetLogSeed(double seed) {
    if (std::isfinite(seed) && seed > 0) Assign(fLogSeed, seed);
}

double LogRuler::ToAxis(double value) const {
    return std::log(value);
}

double LogRuler::FromAxis(double axis) const {
    return std::exp(axis);
}

double LogRuler::Power(double index) const {
    return index >= 0 ? fLogSeed * std::pow(fLogStep, index) : fLogSeed / std::pow(fLogStep, -index);
}

template <class Visitor>
void LogRuler::VisitMultiples(const Visitor& visit) const {
    const double low = LowValue() * (1 - kSlack);
    const double high = HighValue() * (1 + kSlack);
    const double first = std::floor(std::log(low / fLogSeed) / std::log(fLogStep) + kSlack);
    const double last = std::ceil(std::log(high / fLogSeed) / std::log(fLogStep));
    if (!(last - first < kMostPowers)) return;
    const int multiples = fLogStep == 10 ? 9 : 1;
    for (int index = 0; index <= static_cast<int>(last - first); ++index) {
        const double power = first + index;
        for (int multiple = 1; multiple <= multiples; ++multiple) {
            const double value = power < 0 ? multiple * fLogSeed / std::pow(fLogStep, -power) : Power(power) * multiple;
            if (value >= low && value <= high) visit(value, multiple, power);
        }
    }
}

// Whether labels at these multiples of every power keep their distance.
bool LogRuler::LabelsFit(unsigned labelled) const {
    bool fits = true;
    bool isFirst = true;
    double lastPixel = 0;
    float lastNeed = 0;
    VisitMultiples([&](double value, int multiple, double) {
        if ((labelled >> static_cast<unsigned>(multiple) & 1U) == 0) return;
        const double pixel = GetPixel(value);
        const float need = NeededLength(NumberText(value, LabelDecimals(value)));
        const double distance = std::abs(pixel - lastPixel);
        if (!isFirst && (distance < GetStepFactor() || distance < (need + lastNeed) / 2)) fits = false;
        isFirst = false;
        lastPixel = pixel;
        lastNeed = need;
    });
    return fits;
}

void LogRuler::CollectTicks(std::vector<Candidate>& candidates) const {
    unsigned labelled = kPowers;
    for (const unsigned set : {kAllMultiples, kOneTwoFive})
        if (labelled == kPowers && LabelsFit(set)) labelled = set;

    int count = 0;
    VisitMultiples([&](double, int multiple, double) { count += labelled >> static_cast<unsigned>(multiple) & 1U; });
    if (count < kFewLabels && HighValue() / LowValue() < 10) {
        // Round numbers are densest at the upper end.
        const double pixelsPerRatio = PixelLength() / std::log(HighValue() / LowValue());
        CollectLinear(candidates, pixelsPerRatio / HighValue());
        return;
    }

    // Powers that are too close together are labelled every second, third, ... time.
    const double powerLength = PixelLength() * std::log(fLogStep) / std::log(HighValue() / LowValue());
    const double need = std::max<double>(GetStepFactor(), NeededLength(NumberText(HighValue(), 0)));
    const double every = std::max(1.0, std::ceil(need / powerLength));
    const double minorDistance = powerLength * std::log10(10.0 / 9);
    VisitMultiples([&](double value, int multiple, double power) {
        const bool isLabelled = (labelled >> static_cast<unsigned>(multiple) & 1U) != 0;
        // The ends of the range say more than the powers near them leave out.
        const bool isEnd = std::abs(value / LowValue() - 1) < kSlack || std::abs(value / HighValue() - 1) < kSlack;
        if ((isLabelled && (labelled != kPowers || std::fmod(power, every) == 0)) || isEnd) {
            candidates.push_back({value, multiple == 1 ? 0 : 1, NumberText(value, LabelDecimals(value))});
        } else if (multiple == 1 || minorDistance >= 2 || (powerLength >= 24 && (multiple == 2 || multiple == 5))) {
            candidates.push_back({value, kUnlabelled, {}});
        }
    });
}

} // namespace kroui::utility
