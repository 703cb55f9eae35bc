#include "qoc/dsp/pitch/SpectralStretcher.h"

#include "math/ComplexProduct.h"
#include "qoc/dsp/spectrum/WindowFunction.h"
#include "qoc/dsp/stream/SaneSample.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <numbers>
#include <utility>

namespace qoc::dsp {

namespace {

// Of frames: the longest that there is time for is the best, as it keeps more tones apart.
constexpr std::array<double, 7> kFrames = {0.032, 0.046, 0.07, 0.0925, 0.11, 0.128, 0.145}; // seconds
// More take too long to transform in one go: 85 ms at 192 kHz.
constexpr std::size_t kMostSamples = 16384;
// What there always is time for: frames of which size at which ratio.
constexpr std::size_t kShortSize = 2;
constexpr double kLowestRatio = 0.5;
constexpr std::size_t kUsualSize = 3;
constexpr double kUsualRatio = 0.75;
constexpr double kSlack = 0.01; // seconds
// So much later than it is due a sound without hits may change for the sake of longer frames.
constexpr double kMostLate = 0.032;
// The mean of a squared Hann window, and how much of what frames add up to counts as all.
constexpr double kWindowMean = 0.375;
constexpr double kWhole = 0.98;
constexpr float kLeastWeight = 1e-3F;

// A size that is at most a tenth shorter: a power of two, which transforms quickest, if one is near, or one with the
// factors 3 and 5.
std::size_t FastSize(double wanted) noexcept {
    const double least = 0.9 * wanted;
    const std::size_t power = std::bit_ceil(static_cast<std::size_t>(std::ceil(least)));
    std::size_t best = power;
    for (const std::size_t factor : {3U, 5U, 9U, 15U}) {
        std::size_t size = factor * 8;
        while (static_cast<double>(size) < least)
            size *= 2;
        best = std::min(best, size);
    }
    return 10 * power <= 11 * best ? power : best;
}

std::vector<float> HannWindow(std::size_t size) {
    std::vector<float> window(size);
    for (std::size_t i = 0; i < size; ++i)
        window[i] = static_cast<float>(
            WindowAt(WindowKind::kHann, 2 * (static_cast<double>(i) + 0.5) / static_cast<double>(size) - 1));
    return window;
}

} // namespace

void SpectralStretcher::Prepare(std::size_t channels, double sampleRate, std::size_t margin) {
    fMargin = static_cast<std::int64_t>(margin);
    fSlack = static_cast<std::int64_t>(kSlack * sampleRate);
    fMostLate = static_cast<std::int64_t>(kMostLate * sampleRate);
    fSizes.clear();
    for (const double seconds : kFrames) {
        const std::size_t size = FastSize(seconds * sampleRate);
        if (size > kMostSamples && fSizes.size() > kUsualSize) break;
        fSizes.push_back({static_cast<std::int64_t>(size / 2), RealFFT(size), HannWindow(size)});
    }
    const std::size_t most = fSizes.back().window.size();
    const std::size_t bins = most / 2 + 1;
    const std::size_t kept = std::bit_ceil(2 * most);
    fScratch.assign(most, 0.0F);
    fWeights.assign(kept, 0.0F);
    fChannels.assign(channels, {Spectrum(bins), Spectrum(bins), Spectrum(bins), std::vector<float>(kept)});
    fTurned.assign(channels, {});
    fSplice.Prepare(bins);
    fStretched.Prepare(channels + 1, kept);
    fFinished.assign(channels + 1, std::vector<float>(most));
    fFinishedChannels.clear();
    for (const std::vector<float>& finished : fFinished)
        fFinishedChannels.push_back(finished.data());
    fReach = static_cast<std::int64_t>(LeastReach());
    fRuns = false;
    Reset();
}

void SpectralStretcher::Reset() noexcept {
    Stop();
    fStretched.Reset();
    fBase = fBegin = fFinal = 0;
}

// A frame's half, and half of its sound, until it is due.
std::size_t SpectralStretcher::LeastReach() const noexcept {
    const auto reachFor = [this](const Size& size, double ratio) {
        return fSlack + size.half + std::llround(static_cast<double>(fMargin + size.half) / ratio) + 4;
    };
    return static_cast<std::size_t>(
        std::max(reachFor(fSizes[kShortSize], kLowestRatio), reachFor(fSizes[kUsualSize], kUsualRatio)));
}

void SpectralStretcher::SetFrames(double longest, double overlap) noexcept {
    fLongest = longest;
    fFrames = overlap;
}

void SpectralStretcher::SetBounds(std::int64_t first, std::int64_t last) noexcept {
    fFirstBound = first;
    fLastBound = last;
}

// The first position that can be finished in time.
std::int64_t SpectralStretcher::Lead(std::int64_t frame, const TimeMap& map) const noexcept {
    return static_cast<std::int64_t>(std::ceil(map.PositionAt(frame + fSlack))) + fMargin;
}

std::int64_t SpectralStretcher::LatestTime(std::int64_t frame) const noexcept {
    return std::min(fLastBound, frame + fReach) - fSize->half;
}

void SpectralStretcher::Stop() noexcept {
    if (!fRuns) return;
    fRuns = false;
    for (std::int64_t position = fFinal; position < fCentre + fSize->half; ++position) {
        const std::size_t slot = Slot(position);
        fWeights[slot] = 0;
        for (Channel& channel : fChannels)
            channel.sum[slot] = 0;
    }
}

// Null if none fits now.
const SpectralStretcher::Size* SpectralStretcher::SizeFor(std::int64_t frame, double offset, double longest,
                                                          const TimeMap& map) const noexcept {
    const double most = std::min(longest, fLongest);
    for (auto size = fSizes.rbegin(); size != fSizes.rend(); ++size) {
        if (&*size != fSizes.data() && static_cast<double>(2 * size->half) > most) continue;
        const Fit fit = FitOf(*size, frame, offset, map);
        if (fit != Fit::kNot) return fit == Fit::kNow ? &*size : nullptr;
    }
    return nullptr;
}

bool SpectralStretcher::Start(std::int64_t frame, double offset, double longest, const TimeMap& map) noexcept {
    fSize = SizeFor(frame, offset, longest, map);
    if (fSize == nullptr) return false;
    fFinal = Lead(frame, map);
    fCentre = fFinal + fSize->half;
    const double latest = std::min(static_cast<double>(fCentre) + offset, static_cast<double>(LatestTime(frame) - 1));
    fSoundedCentre = static_cast<std::int64_t>(std::floor(latest - offset));
    const double place = static_cast<double>(fSoundedCentre) + offset;
    fCopyTime = static_cast<std::int64_t>(std::floor(place));
    fFraction = place - static_cast<double>(fCopyTime);
    fBegin = fStretched.Now();
    fBase = fFinal - fBegin;
    for (Channel& channel : fChannels) {
        for (Spectrum* spectrum : {&channel.present, &channel.before, &channel.sounded})
            spectrum->resize(static_cast<std::size_t>(fSize->half) + 1);
    }
    fRuns = true;
    Begin(frame, Stage::kCopy, map);
    return true;
}

// Whether frames of the size can lie between the bounds and their sound is known when they are due.
SpectralStretcher::Fit SpectralStretcher::FitOf(const Size& size, std::int64_t frame, double offset,
                                                const TimeMap& map) const noexcept {
    const auto position = static_cast<double>(Lead(frame, map) + size.half);
    const std::int64_t known = frame + fReach - size.half;
    const std::int64_t late = static_cast<std::int64_t>(std::ceil(map.FrameAt(position))) - known;
    const std::int64_t due = known + std::min<std::int64_t>(late, 0);
    const auto heard = static_cast<std::int64_t>(position + offset);
    if (late > fMostLate || std::max(due, heard) + size.half > fLastBound) return Fit::kNot;
    return std::min(due, heard) - size.half < fFirstBound ? Fit::kNotYet : Fit::kNow;
}

float SpectralStretcher::ShareAt(double position) const noexcept {
    const auto time = static_cast<std::int64_t>(std::floor(TimeOf(position)));
    if (time < fBegin || time + fBase >= fFinal) return 0;
    return *fStretched.At(fChannels.size(), time);
}

bool SpectralStretcher::IsDue(std::int64_t frame, const TimeMap& map) const noexcept {
    return Lead(frame, map) >= fCentre - fSize->half;
}

void SpectralStretcher::Advance(std::int64_t frame, const TimeMap& map, const HistoryBuffer& history) noexcept {
    if (!fRuns) return;
    if (fStage == Stage::kDone && IsDue(frame, map)) Begin(frame, Stage::kPresent, map);
    const auto isDue = [&] {
        return static_cast<double>(frame - fStepsBegin) >= static_cast<double>(fStepsDone) * fBetweenSteps;
    };
    for (; fStage != Stage::kDone && isDue(); ++fStepsDone)
        RunStep(history);
}

void SpectralStretcher::Begin(std::int64_t frame, Stage first, const TimeMap& map) noexcept {
    const double ratio = map.RatioAt(frame + fSlack);
    fHop = 2 * static_cast<double>(fSize->half) / fFrames * std::min(1.0, ratio);
    fTime = std::clamp<std::int64_t>(std::llround(map.FrameAt(static_cast<double>(fCentre))), fFirstBound + fSize->half,
                                     std::max(fFirstBound + fSize->half, LatestTime(frame)));
    fTime = std::min(fTime, LatestTime(frame));
    fSplice.SetOverlap(2 * static_cast<double>(fSize->half) / fHop);
    fStage = first;
    fStageStep = 0;
    const auto stages = static_cast<std::size_t>(Stage::kDone) - static_cast<std::size_t>(first);
    const auto steps = static_cast<double>(stages * kSteps * fChannels.size());
    fBetweenSteps = std::min(static_cast<double>(fSlack), fHop / ratio) / steps;
    fStepsBegin = frame;
    fStepsDone = 0;
}

void SpectralStretcher::RunStep(const HistoryBuffer& history) noexcept {
    Channel& channel = fChannels[fStageStep / kSteps];
    switch (fStage) {
    case Stage::kCopy:
        Analyse(history, fCopyTime, channel.sounded);
        if (IsLastOfChannel()) ShiftByFraction(channel.sounded);
        break;
    case Stage::kPresent: Analyse(history, fTime, channel.present); break;
    case Stage::kBefore: Analyse(history, fTime - (fCentre - fSoundedCentre), channel.before); break;
    case Stage::kTurn: Turn(); break;
    case Stage::kSynthesis: Synthesise(channel); break;
    case Stage::kDone: return;
    }
    if (++fStageStep < kSteps * fChannels.size()) return;
    fStageStep = 0;
    fStage = static_cast<Stage>(static_cast<int>(fStage) + 1);
    if (fStage == Stage::kDone) Finish();
}

void SpectralStretcher::Analyse(const HistoryBuffer& history, std::int64_t centre, Spectrum& spectrum) noexcept {
    const std::span<float> frame(fScratch.data(), fSize->window.size());
    if (fStageStep % kSteps == 0) {
        const float* const sound = history.At(fStageStep / kSteps, centre - fSize->half);
        for (std::size_t i = 0; i < frame.size(); ++i)
            frame[i] = fSize->window[i] * SaneSample(sound[i]);
    }
    fSize->transform.Forward(frame, spectrum, TransformPart());
}

// So much of a sample on. Each bin is turned by the angle to the first of a run of bins and by that within the run.
void SpectralStretcher::ShiftByFraction(Spectrum& spectrum) const noexcept {
    constexpr std::size_t kRun = 64;
    const double angle = std::numbers::pi * fFraction / static_cast<double>(fSize->half);
    std::array<std::complex<float>, kRun> turns;
    for (std::size_t i = 0; i < kRun; ++i)
        turns[i] = std::complex<float>(std::polar(1.0, angle * static_cast<double>(i)));
    for (std::size_t begin = 0; begin < spectrum.size(); begin += kRun) {
        const std::complex<float> first(std::polar(1.0, angle * static_cast<double>(begin)));
        for (std::size_t i = 0; i < std::min(kRun, spectrum.size() - begin); ++i)
            spectrum[begin + i] = Product(spectrum[begin + i], Product(first, turns[i]));
    }
}

void SpectralStretcher::Turn() noexcept {
    std::ranges::transform(fChannels, fTurned.begin(), [](Channel& channel) {
        return SpectralSplice::Channel{channel.present, channel.before, channel.sounded};
    });
    fSplice.Turn(fTurned, fStageStep, kSteps * fChannels.size());
}

void SpectralStretcher::Synthesise(Channel& channel) noexcept {
    const std::span<float> frame(fScratch.data(), fSize->window.size());
    fSize->transform.Inverse(channel.sounded, frame, TransformPart());
    if (!IsLastOfChannel()) return;
    for (std::size_t i = 0; i < frame.size(); ++i)
        channel.sum[Slot(fCentre - fSize->half + static_cast<std::int64_t>(i))] += fSize->window[i] * frame[i];
}

// What lies before the next frame is finished.
void SpectralStretcher::Finish() noexcept {
    const std::vector<float>& window = fSize->window;
    for (std::size_t i = 0; i < window.size(); ++i)
        fWeights[Slot(fCentre - fSize->half + static_cast<std::int64_t>(i))] += window[i] * window[i];
    fSoundedCentre = fCentre;
    fCentre += std::max<std::int64_t>(1, std::llround(fHop));
    const auto count = static_cast<std::size_t>(fCentre - fSize->half - fFinal);
    const auto whole = static_cast<float>(kWhole * kWindowMean * static_cast<double>(window.size()) / fHop);
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t slot = Slot(fFinal + static_cast<std::int64_t>(i));
        const float weight = std::exchange(fWeights[slot], 0.0F);
        const float scale = 1 / std::max(weight, kLeastWeight);
        for (std::size_t channel = 0; channel < fChannels.size(); ++channel)
            fFinished[channel][i] = scale * std::exchange(fChannels[channel].sum[slot], 0.0F);
        fFinished.back()[i] = std::min(1.0F, weight / whole);
    }
    fStretched.Write(fFinishedChannels, 0, count);
    fFinal += static_cast<std::int64_t>(count);
}

} // namespace qoc::dsp
