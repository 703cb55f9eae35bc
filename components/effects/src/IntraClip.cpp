#include "qoc/components/IntraClip.h"

#include "qoc/components/ComponentIDs.h"
#include "qoc/components/ParameterIndices.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qoc::components {

namespace {

constexpr const char* kSizeNames[] = {"512", "1024", "2048", "4096", "8192"};
constexpr std::size_t kFrames[] = {512, 1024, 2048, 4096, 8192};
constexpr std::size_t kLargestOrder = 72;

constexpr ParameterRow kRows[] = {
    {.id = "gain",
     .name = "$$$/IntraClip/GainName=Gain",
     .unit = "dB",
     .lo = -24,
     .hi = 24,
     .defaultValue = 0,
     .decimals = 1},
    {.id = "tolerance",
     .name = "$$$/IntraClip/ToleranceName=Tolerance",
     .unit = "%",
     .lo = 0,
     .hi = 10,
     .defaultValue = 1},
    {.id = "minimumSize",
     .name = "$$$/IntraClip/MinimumSizeName=Minimum Clip Size",
     .unit = "$$$/IntraClip/Samples=samples",
     .lo = 1,
     .hi = 50,
     .defaultValue = 2,
     .decimals = 0,
     .flags = kParameterWhole},
    {.id = "level", .name = "$$$/IntraClip/LevelName=Clip Level", .unit = "dB", .lo = -40, .hi = 0, .defaultValue = 0},
    {.id = "findLevel",
     .name = "$$$/IntraClip/FindLevelName=Find Clip Level",
     .defaultValue = 0,
     .kind = ParameterKind::kSwitch},
    {.id = "useSpectrum",
     .name = "$$$/IntraClip/UseSpectrumName=FFT Interpolation",
     .defaultValue = 1,
     .kind = ParameterKind::kSwitch},
    {.id = "fftSize",
     .name = "$$$/IntraClip/FFTSizeName=FFT Size",
     .hi = 4,
     .defaultValue = 2,
     .kind = ParameterKind::kChoice,
     .flags = kParameterNotAutomatable | kParameterNeedsPrepare,
     .items = kSizeNames},
    {.id = "detail",
     .name = "$$$/IntraClip/DetailName=Model Order",
     .lo = 8,
     .hi = kLargestOrder,
     .defaultValue = 32,
     .decimals = 0,
     .flags = kParameterWhole},
};

// How often the model is made anew from what it has restored.
constexpr int kRounds = 3;

double AmplitudeOf(double decibels) {
    return std::pow(10, decibels / 20);
}

// A stored float is that near to 0 dB at best.
constexpr float kUnityWindow = 1e-5F;

} // namespace

IntraClip::IntraClip() : ComponentBase(kIntraClipComponentComponentID, std::move(ParameterTable().Add(kRows))) {
}

IntraClip::~IntraClip() = default;

void IntraClip::PrepareProcessing(std::size_t /*maximumBlock*/) {
    const std::size_t frame = kFrames[Item(kIntraClipFFTSize)];
    fLayout = {.before = frame / 4, .hop = frame / 2, .after = frame / 4};
    fStream.Prepare(GetNumberOfInputChannels(), fLayout);
    fDetector.Prepare(frame);
    fLevels.assign(GetNumberOfInputChannels(), {});
    fModel.Prepare(frame, kLargestOrder);
    fInterpolator.Prepare(frame, kLargestOrder);
    fGain.Prepare(GetSampleRate());
    fSound.assign(frame, 0.0);
    fClipped.reserve(frame);
    fUnknown.reserve(frame);
}

void IntraClip::ResetProcessing() noexcept {
    fStream.Reset();
    std::ranges::fill(fLevels, ClipDetector::Levels{});
}

void IntraClip::ReadParameters(bool settle) noexcept {
    const float decibels = Natural(kIntraClipGain);
    const float gain = std::abs(decibels) < kUnityWindow ? 1.0F : static_cast<float>(AmplitudeOf(decibels));
    settle ? fGain.Settle(gain) : fGain.SetTarget(gain);
    fSettings.level = AmplitudeOf(Natural(kIntraClipLevel));
    fSettings.findsLevel = IsOn(kIntraClipFindLevel);
    fSettings.tolerance = FractionOfPercent(Natural(kIntraClipTolerance));
    fSettings.minimumSize = static_cast<std::size_t>(std::lround(Natural(kIntraClipMinimumSize)));
    fUsesSpectrum = IsOn(kIntraClipUseSpectrum);
    fOrder = static_cast<std::size_t>(std::lround(Natural(kIntraClipDetail)));
}

void IntraClip::ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept {
    fStream.Process(block, *this);
    for (std::size_t i = 0; i < block.frames; ++i) {
        const float gain = fGain.Next();
        for (float* const output : block.outputs)
            output[i] *= gain;
    }
}

void IntraClip::Repair(std::size_t channel, std::span<const float> original, std::span<float> repaired) noexcept {
    const auto runs = fDetector.Find(original, fSettings, fLevels[channel]);
    const auto isHeard = [this](const ClipDetector::Run& run) {
        return run.end > fLayout.before && run.begin < fLayout.before + fLayout.hop;
    };
    if (std::ranges::none_of(runs, isHeard)) return;
    std::ranges::copy(repaired, fSound.begin());
    FillWithCurves(original, runs);
    CollectUnknown(runs);
    if (fUsesSpectrum) FitToSpectrum(original);
    fUnknown = fClipped;
    KeepAboveClipping(original);
    for (const std::size_t place : fClipped)
        repaired[place] = static_cast<float>(fSound[place]);
}

// Hermite's cubic, which goes on from both sides as steeply as the sound comes there.
void IntraClip::FillWithCurves(std::span<const float> original, std::span<const ClipDetector::Run> runs) noexcept {
    for (const ClipDetector::Run& run : runs) {
        if (run.begin < 2 || run.end + 2 > original.size()) continue;
        const double left = original[run.begin - 1];
        const double right = original[run.end];
        const auto length = static_cast<double>(run.end - run.begin + 1);
        const double leftSlope = (left - original[run.begin - 2]) * length;
        const double rightSlope = (original[run.end + 1] - right) * length;
        for (std::size_t place = std::max(run.begin, fLayout.before); place < run.end; ++place) {
            const double t = static_cast<double>(place - run.begin + 1) / length;
            const double s = 1 - t;
            fSound[place] =
                s * s * ((1 + 2 * t) * left + t * leftSlope) + t * t * ((1 + 2 * s) * right - s * rightSlope);
        }
    }
}

// Those that have not been heard, and that have enough sound behind them for the model.
void IntraClip::CollectUnknown(std::span<const ClipDetector::Run> runs) noexcept {
    fClipped.clear();
    const std::size_t last = fSound.size() - kLargestOrder;
    for (const ClipDetector::Run& run : runs) {
        for (std::size_t place = std::max(run.begin, fLayout.before); place < std::min(run.end, last); ++place)
            fClipped.push_back(place);
    }
}

// What the model would place below the clipping is held there, and the rest fitted to that once more.
void IntraClip::FitToSpectrum(std::span<const float> original) noexcept {
    for (int round = 0; round < kRounds; ++round) {
        fModel.Fit(fSound, fOrder);
        fUnknown = fClipped;
        fInterpolator.Restore(fModel.Coefficients(), fUnknown, fSound);
        if (KeepAboveClipping(original)) fInterpolator.Restore(fModel.Coefficients(), fUnknown, fSound);
    }
}

// True when a sample was brought to the level that it was clipped to; it is known then.
bool IntraClip::KeepAboveClipping(std::span<const float> original) noexcept {
    const auto isBelow = [&](std::size_t place) {
        const double clipped = original[place];
        if (clipped < 0 ? fSound[place] <= clipped : fSound[place] >= clipped) return false;
        fSound[place] = clipped;
        return true;
    };
    return std::erase_if(fUnknown, isBelow) > 0;
}

} // namespace qoc::components
