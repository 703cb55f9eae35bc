#include "qoc/dsp/stream/PacedSteps.h"

#include <algorithm>
#include <numeric>

namespace qoc::dsp {

std::size_t PacedSteps::CountFor(std::size_t hop) noexcept {
    constexpr std::size_t kSamplesPerStep = 32;
    constexpr std::size_t kMost = 64;
    return std::clamp<std::size_t>(hop / kSamplesPerStep, 1, kMost);
}

void PacedSteps::Clear() noexcept {
    fCosts.clear();
    fDue.clear();
    fDone = 0;
}

void PacedSteps::Add(std::size_t steps, double cost) {
    fCosts.insert(fCosts.end(), steps, cost / static_cast<double>(steps));
}

void PacedSteps::SpreadOver(std::size_t hop) {
    const double all = std::accumulate(fCosts.begin(), fCosts.end(), 0.0);
    double before = 0;
    fDue.clear();
    for (const double cost : fCosts) {
        const double part = all > 0 ? before / all : 0;
        fDue.push_back(std::min(hop - 1, static_cast<std::size_t>(part * static_cast<double>(hop))));
        before += cost;
    }
    fDone = 0;
}

} // namespace qoc::dsp
