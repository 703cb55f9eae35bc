#include "kroui/utility/DecibelRuler.h"

#include "krocore/FaderTranslator.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace kroui::utility {

namespace {

constexpr double kLowestDecibels = -144;
constexpr double kHighestDecibels = 144;
constexpr double kDecibelsPerDecade = 20;
constexpr double kSlack = 1e-9;

double InSight(double decibels) {
    return std::clamp(decibels, kLowestDecibels, kHighestDecibels);
}

// Labels come in this order: 0 dB, then multiples of 12, 6, 3, 1.
int RankOf(int decibels) {
    constexpr std::array<int, 4> kSteps = {12, 6, 3, 1};
    if (decibels == 0) return 0;
    int rank = 1;
    for (const int step : kSteps) {
        if (decibels % step == 0) break;
        ++rank;
    }
    return rank;
}

} // namespace

void DecibelRuler::CollectTicks(std::vector<Candidate>& candidates) const {
    const double low = LowValue();
    const double high = HighValue();
    if (low <= 0 && high >= 0) candidates.push_back({0, 0, NumberText(-std::numeric_limits<double>::infinity(), 0)});
    if (high <= 0) return;
    const int first = static_cast<int>(std::ceil(InSight(DecibelsOf(low)) - kSlack));
    const int last = static_cast<int>(std::floor(InSight(DecibelsOf(high)) + kSlack));
    for (int decibels = last; decibels >= first; --decibels)
        candidates.push_back({ValueOf(decibels), RankOf(decibels), NumberText(decibels, 0)});
}

double DecibelRuler::DecibelsOf(double value) const {
    if (GetStyle() == kFader) return krocore::FaderTranslator<double>().GetDecibelValue(value);
    return value > 0 ? kDecibelsPerDecade * std::log10(value) : -std::numeric_limits<double>::infinity();
}

double DecibelRuler::ValueOf(double decibels) const {
    if (GetStyle() == kFader) return krocore::FaderTranslator<double>().GetNormalizedValue(decibels);
    return std::pow(10.0, decibels / kDecibelsPerDecade);
}

} // namespace kroui::utility
