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

// The steps of a look, each in a hop of its own. The transform comes at an odd hop, when few frames of others end.
constexpr std::size_t kBandSteps = 4;
constexpr std::size_t kTurns = 4;

std::size_t TransformStep(std::size_t turn) {
    return 1 + 2 * turn;
}

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
    fSound.assign(frame, 0.0F);
    fShortFrame.assign(fBands.ShortFrame(), 0.0F);
    fLongFrame.assign(frame, 0.0F);
    fSpectrum.assign(frame / 2 + 1, {});
    fPowers.assign(frame / 2 + 1, 0.0F);
    fSorted.assign(frame / 2 + 1, 0.0F);
    fSums.assign(fShortTransform.Bins() + 1, 0.0);
    fShortPowers.assign(bands * kHopsPerLook, 0.0F);
    for (std::vector<float>* values : {&fSteadiness, &fNoise, &fMeans})
        values->assign(bands, 0.0F);
    Reset();
}

void NoiseTracker::Reset() noexcept {
    fGrid.Reset();
    std::ranges::fill(fSound, 0.0F);
    std::ranges::fill(fShortPowers, 0.0F);
    fHops = 0;
    fStep = 0;
}

void NoiseTracker::Keep(std::span<const float> samples, std::size_t position) noexcept {
    const std::size_t place = fHops % kHopsPerLook * (fBands.ShortFrame() / 2) + position;
    std::ranges::transform(samples, fSound.begin() + static_cast<std::ptrdiff_t>(place), SaneSample);
}

// Whether a look is finished.
bool NoiseTracker::FinishHop() noexcept {
    ++fHops;
    AnalyseShort();
    if (fHops < kHopsPerLook) return false;
    if (fHops % (kHopsPerLook / 2) != 0) return ContinueLook();
    BeginLook();
    return false;
}

void NoiseTracker::AnalyseShort() noexcept {
    const std::size_t hop = fBands.ShortFrame() / 2;
    const std::size_t older = (fHops + kHopsPerLook - 2) % kHopsPerLook;
    const std::size_t newer = (older + 1) % kHopsPerLook;
    for (std::size_t i = 0; i < hop; ++i) {
        fShortFrame[i] = fSound[older * hop + i] * fShortWindow[i];
        fShortFrame[hop + i] = fSound[newer * hop + i] * fShortWindow[hop + i];
    }
    const std::span spectrum = std::span(fSpectrum).first(fShortTransform.Bins());
    fShortTransform.Forward(fShortFrame, spectrum);
    for (std::size_t bin = 0; bin < spectrum.size(); ++bin)
        fSums[bin + 1] = fSums[bin] + std::norm(spectrum[bin]);
    const auto bands = fBands.All();
    for (std::size_t band = 0; band < bands.size(); ++band)
        fShortPowers[band * kHopsPerLook + newer] =
            static_cast<float>(fSums[bands[band].shortEnd] - fSums[bands[band].shortBegin]);
}

// Takes what the next hop overwrites.
void NoiseTracker::BeginLook() noexcept {
    const auto oldest = fSound.begin() + static_cast<std::ptrdiff_t>(fHops % kHopsPerLook * (fBands.ShortFrame() / 2));
    std::rotate_copy(fSound.begin(), oldest, fSound.end(), fLongFrame.begin());
    for (std::size_t band = 0; band < fSteadiness.size(); ++band)
        fSteadiness[band] = SteadinessOf(band);
    fStep = 0;
}

bool NoiseTracker::ContinueLook() noexcept {
    ++fStep;
    if (fStep == TransformStep(fTurn)) AnalyseLong();
    if (fStep <= TransformStep(fTurn)) return false;
    const std::size_t step = fStep - TransformStep(fTurn) - 1;
    if (step >= kBandSteps) return false;
    const auto bands = fBands.All();
    for (std::size_t band = step * bands.size() / kBandSteps; band < (step + 1) * bands.size() / kBandSteps; ++band) {
        fNoise[band] = QuarterOf(bands[band]) * fScales[band].quarter * fSteadiness[band];
        fMeans[band] = MeanOf(bands[band]);
    }
    return step + 1 == kBandSteps;
}

void NoiseTracker::AnalyseLong() noexcept {
    std::ranges::transform(fLongFrame, fLongWindow, fLongFrame.begin(), std::multiplies<>());
    fLongTransform.Forward(fLongFrame, fSpectrum);
    std::ranges::transform(fSpectrum, fPowers.begin(), [](std::complex<float> bin) { return std::norm(bin); });
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
    const std::span powers = std::span(fShortPowers).subspan(band * kHopsPerLook, kHopsPerLook);
    double mean = 0;
    for (std::size_t i = 0; i < kHopsPerLook; ++i)
        mean += double{fFrameWeights[i]} * powers[(fHops + i) % kHopsPerLook];
    if (mean < kSilence) return 0;
    std::ranges::copy(powers, fSorted.begin());
    std::nth_element(fSorted.begin(), fSorted.begin() + kShortRank, fSorted.begin() + kHopsPerLook);
    const double quiet = double{fSorted[kShortRank]} * fScales[band].fifth;
    return static_cast<float>(std::min(kSteadiest, quiet / mean));
}

} // namespace qoc::dsp
