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
// A click goes on while its errors are that part of what finds it, and that part of its largest one.
constexpr double kGoesOn = 0.4;
constexpr double kPartOfPeak = 0.03;
// Within a burst of noise some errors are small by chance.
constexpr std::size_t kShortestSeparation = 4;
constexpr std::size_t kSeparationsPerLongest = 4;
// The errors of a burst are summed up. Of five normal values the root of the sum exceeds 1.16 times a threshold as
// rarely as one value exceeds the threshold, where that is six deviations (chi-squared of five degrees of freedom).
constexpr double kBurstSeconds = 0.11e-3;
constexpr double kBurstThreshold = 1.16;
constexpr double kBesideSeconds = 1.5e-3;
constexpr double kPulseSeconds = 0.2e-3; // to either side of its peak
// Sound that is 60 dB less on one side starts or ends there.
constexpr double kEdge = 1e-3;
// What a model that clicks have spoiled shows of them.
constexpr double kSpoiledExcess = 0.7;
constexpr double kSpoiledPartOfPeak = 0.15;

std::size_t SamplesOf(double seconds, double sampleRate) noexcept {
    return std::max<std::size_t>(1, static_cast<std::size_t>(std::lround(seconds * sampleRate)));
}

} // namespace

void ClickDetector::Prepare(std::size_t frame, std::size_t neighbourhood, double sampleRate) {
    fNeighbourhood = neighbourhood;
    fBeside = SamplesOf(kBesideSeconds, sampleRate);
    fBurst = SamplesOf(kBurstSeconds, sampleRate);
    for (std::vector<double>* values : {&fForward, &fBackward, &fExcess, &fSorted})
        values->assign(frame, 0.0);
    fUsual.assign(frame / neighbourhood, 0.0);
    fClicks.clear();
    fClicks.reserve(frame);
    fPulses.Prepare(frame, SamplesOf(kPulseSeconds, sampleRate));
}

std::span<const ClickDetector::Click> ClickDetector::Find(const LinearPrediction& model, std::span<const double> sound,
                                                          const Settings& settings) noexcept {
    model.ForwardErrors(sound, fForward);
    model.BackwardErrors(sound, fBackward);
    MeasureUsualErrors(sound, model.Order());
    CompareErrors(settings.threshold);
    CollectClicks(model.Order(), settings);
    std::erase_if(fClicks, [&](const Click& click) {
        return !StandsOut(click, sound, model.Order(), settings.isModelSpoiled ? kSpoiledExcess : 1) || IsPulse(click);
    });
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
        fUsual[i] = std::max(least, Deviation(std::span(fForward).subspan(begin, end - begin)));
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
            fExcess[k] = scale * std::min(std::abs(fForward[k]), std::abs(fBackward[k]));
    }
}

void ClickDetector::CollectClicks(std::size_t order, const Settings& settings) noexcept {
    fClicks.clear();
    const std::size_t separation = std::max(kShortestSeparation, settings.longest / kSeparationsPerLongest);
    const std::size_t last = fExcess.size() - order; // one past
    const double part = settings.isModelSpoiled ? kSpoiledPartOfPeak : kPartOfPeak;
    for (std::size_t i = order; i < last; ++i) {
        if (fExcess[i] <= kGoesOn || ExcessFrom(i, last) <= 1) continue;
        const Click click = ClickAt(i, last, separation, part);
        if (!fClicks.empty() && click.begin <= fClicks.back().end)
            fClicks.back().end = std::max(fClicks.back().end, click.end);
        else
            fClicks.push_back(click);
        i = std::max(i, click.end);
    }
    std::erase_if(fClicks, [&](const Click& click) { return click.end - click.begin > settings.longest; });
}

// Of the error at `begin` or of the burst that begins there.
double ClickDetector::ExcessFrom(std::size_t begin, std::size_t end) const noexcept {
    end = std::min(end, begin + fBurst);
    double sum = 0;
    for (std::size_t i = begin; i < end; ++i)
        sum += fExcess[i] * fExcess[i];
    return std::max(fExcess[begin], std::sqrt(sum) / kBurstThreshold);
}

// The click that stands out from `place` on. It may begin a little earlier.
ClickDetector::Click ClickDetector::ClickAt(std::size_t place, std::size_t last, std::size_t separation,
                                            double partOfPeak) const noexcept {
    Click click = {place, place + 1};
    double peak = fExcess[place];
    const auto least = [&] { return std::max(kGoesOn, partOfPeak * peak); };
    for (std::size_t i = place; i < std::min(last, click.end + separation); ++i) {
        if (fExcess[i] <= least()) continue;
        peak = std::max(peak, fExcess[i]);
        click.end = i + 1;
    }
    while (fExcess[click.begin] <= least())
        ++click.begin;
    while (fExcess[click.begin - 1] > least())
        --click.begin;
    return click;
}

// Against the errors right beside it too, each from the side that the click does not spoil.
bool ClickDetector::StandsOut(const Click& click, std::span<const double> sound, std::size_t order,
                              double least) noexcept {
    const std::size_t last = sound.size() - order;
    const std::size_t before = std::min(fBeside, click.begin - std::min(click.begin, order));
    const std::size_t after = std::min(fBeside, last - std::min(last, click.end));
    const std::size_t begin = click.begin - before;
    const double levelBefore = Deviation(sound.subspan(begin, before));
    const double levelAfter = Deviation(sound.subspan(click.end, after));
    if (std::min(levelBefore, levelAfter) < kEdge * std::max(levelBefore, levelAfter)) return false;
    const double usual = std::max(Deviation(std::span(fForward).subspan(begin, before)),
                                  Deviation(std::span(fBackward).subspan(click.end, after)));
    double excess = 0;
    for (std::size_t i = click.begin; i < click.end; ++i)
        excess = std::max(excess, ExcessFrom(i, click.end));
    return excess * UsualErrorAt(click.begin / fNeighbourhood) > least * usual;
}

bool ClickDetector::IsPulse(const Click& click) noexcept {
    const auto begin = fForward.begin() + static_cast<std::ptrdiff_t>(click.begin);
    const auto end = fForward.begin() + static_cast<std::ptrdiff_t>(click.end);
    const auto peak =
        std::max_element(begin, end, [](double one, double other) { return std::abs(one) < std::abs(other); });
    return fPulses.Contains(fForward, static_cast<std::size_t>(peak - fForward.begin()));
}

// The standard deviation of values about 0, from their median: a few large ones do not move it. 0 of none.
double ClickDetector::Deviation(std::span<const double> values) noexcept {
    if (values.empty()) return 0;
    std::ranges::transform(values, fSorted.begin(), [](double value) { return std::abs(value); });
    const auto count = static_cast<std::ptrdiff_t>(values.size());
    const auto middle = fSorted.begin() + count / 2;
    std::nth_element(fSorted.begin(), middle, fSorted.begin() + count);
    return *middle / kNormalMedian;
}

} // namespace qoc::dsp
