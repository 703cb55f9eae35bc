#include "qoc/dsp/restoration/ClickDetector.h"

#include <algorithm>
#include <cmath>

namespace qoc::dsp {

namespace {

// The median of the magnitude of a normal distribution, in standard deviations.
constexpr double kNormalMedian = 0.6745;
// A click less than that against the sound around it is not heard, and a model can't be trusted so far.
constexpr double kLeastErrorToSound = 1e-4;
constexpr double kLeastError = 1e-7; // -140 dB
// A click goes on while its errors are that part of what finds it.
constexpr double kGoesOn = 0.4;
// Within a burst of noise some errors are small by chance.
constexpr std::size_t kShortestSeparation = 4;
constexpr std::size_t kSeparationsPerLongest = 4;

} // namespace

void ClickDetector::Prepare(std::size_t frame, std::size_t neighbourhood) {
    fNeighbourhood = neighbourhood;
    fErrors.assign(frame, 0.0);
    fBackwards.assign(frame, 0.0);
    fSorted.assign(neighbourhood, 0.0);
    fUsual.assign(frame / neighbourhood, 0.0);
    fClicks.clear();
    fClicks.reserve(frame);
}

std::span<const ClickDetector::Click> ClickDetector::Find(const LinearPrediction& model, std::span<const double> sound,
                                                          const Settings& settings) noexcept {
    model.ForwardErrors(sound, fErrors);
    model.BackwardErrors(sound, fBackwards);
    MeasureUsualErrors(sound, model.Order());
    CompareErrors(settings.threshold);
    CollectClicks(model.Order(), settings);
    return fClicks;
}

void ClickDetector::MeasureUsualErrors(std::span<const double> sound, std::size_t order) noexcept {
    double energy = 0;
    for (const double sample : sound)
        energy += sample * sample;
    const double soundLevel = std::sqrt(energy / static_cast<double>(sound.size()));
    const double least = std::max(kLeastError, kLeastErrorToSound * soundLevel);
    for (std::size_t i = 0; i < fUsual.size(); ++i) {
        const std::size_t begin = std::max(order, i * fNeighbourhood);
        const std::size_t end = std::min(sound.size() - order, (i + 1) * fNeighbourhood);
        const auto count = static_cast<std::ptrdiff_t>(end - begin);
        std::transform(fErrors.begin() + static_cast<std::ptrdiff_t>(begin),
                       fErrors.begin() + static_cast<std::ptrdiff_t>(end), fSorted.begin(),
                       [](double error) { return std::abs(error); });
        std::nth_element(fSorted.begin(), fSorted.begin() + count / 2, fSorted.begin() + count);
        fUsual[i] = std::max(least, fSorted[static_cast<std::size_t>(count / 2)] / kNormalMedian);
    }
}

// The largest of the neighbours' too: where sound sets in, some errors are as large as those to come.
double ClickDetector::UsualErrorAt(std::size_t neighbourhood) const noexcept {
    double usual = fUsual[neighbourhood];
    if (neighbourhood > 0) usual = std::max(usual, fUsual[neighbourhood - 1]);
    if (neighbourhood + 1 < fUsual.size()) usual = std::max(usual, fUsual[neighbourhood + 1]);
    return usual;
}

void ClickDetector::CompareErrors(double threshold) noexcept {
    for (std::size_t i = 0; i < fUsual.size(); ++i) {
        const double scale = 1 / (threshold * UsualErrorAt(i));
        for (std::size_t k = i * fNeighbourhood; k < (i + 1) * fNeighbourhood; ++k)
            fErrors[k] = scale * std::min(std::abs(fErrors[k]), std::abs(fBackwards[k]));
    }
}

void ClickDetector::CollectClicks(std::size_t order, const Settings& settings) noexcept {
    fClicks.clear();
    const std::size_t separation = std::max(kShortestSeparation, settings.longest / kSeparationsPerLongest);
    const std::size_t first = order;
    const std::size_t last = fErrors.size() - order; // one past
    for (std::size_t i = first; i < last; ++i) {
        if (fErrors[i] <= 1) continue;
        std::size_t begin = i;
        while (begin > first && fErrors[begin - 1] > kGoesOn)
            --begin;
        std::size_t end = i + 1;
        for (std::size_t k = end; k < std::min(last, end + separation); ++k) {
            if (fErrors[k] > 1 || (k == end && fErrors[k] > kGoesOn)) end = k + 1;
        }
        AddClick(std::max(begin, first + 1) - 1, std::min(end, last - 1) + 1);
        i = end;
    }
    std::erase_if(fClicks, [&](const Click& click) { return click.end - click.begin > settings.longest + 2; });
}

// Joined with the one before when they touch.
void ClickDetector::AddClick(std::size_t begin, std::size_t end) noexcept {
    if (!fClicks.empty() && begin <= fClicks.back().end)
        fClicks.back().end = end;
    else
        fClicks.push_back({begin, end});
}

} // namespace qoc::dsp
