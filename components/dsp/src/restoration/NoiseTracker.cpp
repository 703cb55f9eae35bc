#include "qoc/dsp/restoration/NoiseTracker.h"

#include "qoc/dsp/stream/SaneSample.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>

namespace qoc::dsp {

namespace {

constexpr std::size_t kHopsPerLook = 2 * NoiseBands::kShortFramesPerLong; // hops of half a short frame
constexpr double kLongPart = 0.25;                                        // of a band's bins, the quietest
constexpr std::size_t kShortRank = kHopsPerLook / 5;                      // of a look's short frames, the quietest
constexpr double kFifth = -0.8416;    // the quietest fifth of what is distributed normally, in deviations
constexpr double kIndependent = 0.67; // values in a bin under a Hann window
// Chance makes noise look steadier than it is as well as less steady.
constexpr double kSteadiest = 1.6;
constexpr double kSilence = 1e-20;

// Rings hold a second look's worth, so that nothing is overwritten while it is worked on.
constexpr std::size_t kRingHops = 2 * kHopsPerLook;

// How long a look is worked on, in hops; those of other turns longer, so that they are not finished at once.
constexpr std::size_t kTurns = 4;
constexpr std::size_t kLeastHopsOfWork = 4;

// The steps that each kind of work is cut into, and about how long it takes, in nanoseconds.
constexpr std::size_t kParts = 32;
constexpr double kSteadinessCost = 150; // a band
constexpr double kWindowCost = 0.4;     // a sample
constexpr double kTransformCost = 1;    // a sample
constexpr double kPowersCost = 0.4;     // a sample
constexpr double kQuarterCost = 5;      // a bin
constexpr double kMeanCost = 0.8;       // a bin

// Of the power 1.
std::vector<float> Hann(std::size_t size) {
    std::vector<float> window(size);
    const double scale = std::sqrt(8.0 / 3 / static_cast<double>(size));
    for (std::size_t i = 0; i < size; ++i) {
        const double turn = 2 * std::numbers::pi * (static_cast<double>(i) + 0.5) / static_cast<double>(size);
        window[i] = static_cast<float>(scale * 0.5 * (1 - std::cos(turn)));
    }
    return window;
}

std::size_t RankOf(std::size_t count) {
    return static_cast<std::size_t>(kLongPart * static_cast<double>(count));
}

// The mean of the value of a rank among so many powers of noise, whose mean is 1: they are distributed exponentially.
double MeanOfRank(std::size_t rank, std::size_t count) {
    double mean = 0;
    for (std::size_t i = 0; i <= rank; ++i)
        mean += 1 / static_cast<double>(count - i);
    return mean;
}

// The quietest fifth of means of so many powers of noise: Wilson and Hilferty, "The distribution of chi-square", 1931.
double FifthOfMeans(std::size_t count) {
    const double width = 1 / (9 * kIndependent * static_cast<double>(count));
    return std::pow(1 - width + kFifth * std::sqrt(width), 3);
}

} // namespace

void NoiseTracker::Prepare(double sampleRate, std::size_t turn) {
    fBands.Prepare(sampleRate);
    fTurn = turn % kTurns;
    fScales.clear();
    for (const NoiseBands::Band& band : fBands.All()) {
        const std::size_t count = band.LongCount();
        fScales.push_back({static_cast<float>(1 / MeanOfRank(RankOf(count), count)),
                           static_cast<float>(1 / FifthOfMeans(band.shortEnd - band.shortBegin))});
    }
    const std::size_t frame = fBands.Frame();
    const std::size_t bands = fBands.All().size();
    fGrid.SetHop(fBands.ShortFrame() / 2);
    fShortTransform = RealFFT(fBands.ShortFrame());
    fLongTransform = RealFFT(frame);
    fShortWindow = Hann(fBands.ShortFrame());
    fLongWindow = Hann(frame);
    fFrameWeights = Hann(kHopsPerLook); // squared they are those that the long window gives the frames
    std::ranges::transform(fFrameWeights, fFrameWeights.begin(), [](float weight) { return weight * weight; });
    fSound.assign(kRingHops * fBands.ShortFrame() / 2, 0.0F);
    fShortFrame.assign(fBands.ShortFrame(), 0.0F);
    fLongFrame.assign(frame, 0.0F);
    fShortSpectrum.assign(fShortTransform.Bins(), {});
    fSpectrum.assign(frame / 2 + 1, {});
    fPowers.assign(frame / 2 + 1, 0.0F);
    fSorted.assign(frame / 2 + 1, 0.0F);
    fSums.assign(fShortTransform.Bins() + 1, 0.0);
    fShortPowers.assign(bands * kRingHops, 0.0F);
    for (std::vector<float>* values : {&fSteadiness, &fNoise, &fMeans})
        values->assign(bands, 0.0F);
    PlanLook();
    Reset();
}

void NoiseTracker::PlanLook() {
    fSteps.clear();
    fPace.Clear();
    const auto frame = static_cast<double>(fBands.Frame());
    AddSteps(Kind::kSteadiness, kSteadinessCost * static_cast<double>(fBands.All().size()));
    AddSteps(Kind::kWindow, kWindowCost * frame);
    AddSteps(Kind::kTransform, kTransformCost * frame);
    AddSteps(Kind::kPowers, kPowersCost * frame);
    for (std::size_t band = 0; band < fBands.All().size(); ++band) {
        const NoiseBands::Band& bins = fBands.All()[band];
        fSteps.push_back({Kind::kBand, {band, fBands.All().size()}});
        fPace.Add(1, kQuarterCost * static_cast<double>(bins.LongCount()) +
                         kMeanCost * static_cast<double>(bins.longEnd - bins.longBegin));
    }
    fPace.SpreadOver(HopsOfWork() * fBands.ShortFrame() / 2);
}

void NoiseTracker::AddSteps(Kind kind, double cost) {
    for (std::size_t part = 0; part < kParts; ++part)
        fSteps.push_back({kind, {part, kParts}});
    fPace.Add(kParts, cost);
}

std::size_t NoiseTracker::HopsOfWork() const noexcept {
    return kLeastHopsOfWork + 2 * fTurn;
}

void NoiseTracker::Reset() noexcept {
    fGrid.Reset();
    std::ranges::fill(fSound, 0.0F);
    std::ranges::fill(fShortPowers, 0.0F);
    fHops = 0;
    fLookEnd = 0;
}

void NoiseTracker::Keep(std::span<const float> samples, std::size_t position) noexcept {
    const std::size_t place = fHops % kRingHops * (fBands.ShortFrame() / 2) + position;
    std::ranges::transform(samples, fSound.begin() + static_cast<std::ptrdiff_t>(place), SaneSample);
}

void NoiseTracker::WorkUntil(std::size_t position) noexcept {
    if (fLookEnd == 0) return;
    const std::size_t hops = fHops - fLookEnd;
    fPace.RunUntil(hops * (fBands.ShortFrame() / 2) + position, [this](std::size_t step) { Do(fSteps[step]); });
}

// Whether a look is finished.
bool NoiseTracker::FinishHop() noexcept {
    ++fHops;
    AnalyseShort();
    if (fHops < kHopsPerLook) return false;
    if (fHops % (kHopsPerLook / 2) == 0) {
        fLookEnd = fHops;
        fPace.Restart();
    }
    return fHops - fLookEnd == HopsOfWork();
}

void NoiseTracker::AnalyseShort() noexcept {
    const std::size_t hop = fBands.ShortFrame() / 2;
    const std::size_t older = (fHops + kRingHops - 2) % kRingHops;
    const std::size_t newer = (older + 1) % kRingHops;
    for (std::size_t i = 0; i < hop; ++i) {
        fShortFrame[i] = fSound[older * hop + i] * fShortWindow[i];
        fShortFrame[hop + i] = fSound[newer * hop + i] * fShortWindow[hop + i];
    }
    fShortTransform.Forward(fShortFrame, fShortSpectrum);
    for (std::size_t bin = 0; bin < fShortSpectrum.size(); ++bin)
        fSums[bin + 1] = fSums[bin] + std::norm(fShortSpectrum[bin]);
    const auto bands = fBands.All();
    for (std::size_t band = 0; band < bands.size(); ++band)
        fShortPowers[band * kRingHops + newer] =
            static_cast<float>(fSums[bands[band].shortEnd] - fSums[bands[band].shortBegin]);
}

void NoiseTracker::Do(const Step& step) noexcept {
    const auto [part, parts] = step.part;
    switch (step.kind) {
    case Kind::kSteadiness: {
        const auto bands = StepRange::Of(part, parts, fSteadiness.size());
        for (std::size_t band = bands.begin; band < bands.end; ++band)
            fSteadiness[band] = SteadinessOf(band);
        return;
    }
    case Kind::kWindow: return WindowLong(StepRange::Of(part, parts, fLongFrame.size()));
    case Kind::kTransform: return fLongTransform.Forward(fLongFrame, fSpectrum, step.part);
    case Kind::kPowers: {
        const auto bins = StepRange::Of(part, parts, fSpectrum.size());
        for (std::size_t bin = bins.begin; bin < bins.end; ++bin)
            fPowers[bin] = std::norm(fSpectrum[bin]);
        return;
    }
    case Kind::kBand: return MeasureBand(part);
    }
}

void NoiseTracker::WindowLong(StepRange samples) noexcept {
    const std::size_t oldest = (fLookEnd + kRingHops - kHopsPerLook) % kRingHops * (fBands.ShortFrame() / 2);
    for (std::size_t i = samples.begin; i < samples.end; ++i)
        fLongFrame[i] = fSound[(oldest + i) % fSound.size()] * fLongWindow[i];
}

void NoiseTracker::MeasureBand(std::size_t band) noexcept {
    const NoiseBands::Band& bins = fBands.All()[band];
    fNoise[band] = QuarterOf(bins) * fScales[band].quarter * fSteadiness[band];
    fMeans[band] = MeanOf(bins);
}

// Of the powers in a band.
float NoiseTracker::QuarterOf(const NoiseBands::Band& band) noexcept {
    const std::size_t count = band.LongCount();
    for (std::size_t i = 0; i < count; ++i)
        fSorted[i] = fPowers[band.longBegin + i * band.longStep];
    const auto begin = fSorted.begin();
    const auto quarter = begin + static_cast<std::ptrdiff_t>(RankOf(count));
    std::nth_element(begin, quarter, begin + static_cast<std::ptrdiff_t>(count));
    return *quarter;
}

float NoiseTracker::MeanOf(const NoiseBands::Band& band) const noexcept {
    const std::span bins = std::span(fPowers).subspan(band.longBegin, band.longEnd - band.longBegin);
    return std::accumulate(bins.begin(), bins.end(), 0.0F) / static_cast<float>(bins.size());
}

// About 1 for noise, less for what swells and fades.
float NoiseTracker::SteadinessOf(std::size_t band) noexcept {
    const float* const powers = fShortPowers.data() + band * kRingHops;
    double mean = 0;
    for (std::size_t i = 0; i < kHopsPerLook; ++i) {
        fSorted[i] = powers[(fLookEnd + kRingHops - kHopsPerLook + i) % kRingHops];
        mean += double{fFrameWeights[i]} * fSorted[i];
    }
    if (mean < kSilence) return 0;
    std::nth_element(fSorted.begin(), fSorted.begin() + kShortRank, fSorted.begin() + kHopsPerLook);
    const double quiet = double{fSorted[kShortRank]} * fScales[band].fifth;
    return static_cast<float>(std::min(kSteadiest, quiet / mean));
}

} // namespace qoc::dsp
