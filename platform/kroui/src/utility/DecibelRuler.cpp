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
constexpr std::array<int, 2> kSides = {-1, 1};

double InSight(double decibels) {
    return std::clamp(decibels, kLowestDecibels, kHighestDecibels);
}

// Labels come in this order: 0 dB, then multiples of 12, 6, 3, 1.
constexpr std::array<int, 4> kSteps = {12, 6, 3, 1};

int RankOf(int decibels) {
    if (decibels == 0) return 0;
    const auto step = std::find_if(kSteps.begin(), kSteps.end(), [=](int s) { return decibels % s == 0; });
    return 1 + static_cast<int>(step - kSteps.begin());
}

} // namespace

void DecibelRuler::CollectTicks(std::vector<Candidate>& candidates) const {
    const double low = LowValue();
    const double high = HighValue();
    if (low <= 0 && high >= 0) candidates.push_back({0, 0, NumberText(-std::numeric_limits<double>::infinity(), 0)});
    if (high <= 0) return;
    const int first = static_cast<int>(std::ceil(InSight(DecibelsOf(low)) - kSlack));
    const int last = static_cast<int>(std::floor(InSight(DecibelsOf(high)) + kSlack));
    for (int decibels = last; decibels >= first; --decibels) {
        const int rank = RankOf(decibels);
        const bool isLabelled = rank <= kLastMajorRank || HasRoom(decibels, kSteps[static_cast<std::size_t>(rank - 1)]);
        candidates.push_back({ValueOf(decibels), isLabelled ? rank : kUnlabelled,
                              isLabelled ? NumberText(decibels, 0) : krocore::string16()});
    }
}

// Whether multiples of the step can be labelled on both sides, so that no odd number fills a gap that its rounder
// neighbours leave.
bool DecibelRuler::HasRoom(int decibels, int step) const {
    const double need = std::max<double>(GetStepFactor(), NeededLength(NumberText(decibels, 0)));
    return std::all_of(kSides.begin(), kSides.end(), [&](int side) {
        const double neighbour = ValueOf(decibels + side * step);
        const bool isShown = neighbour >= LowValue() && neighbour <= HighValue();
        return !isShown || std::abs(GetPixel(neighbour) - GetPixel(ValueOf(decibels))) >= need;
    });
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
