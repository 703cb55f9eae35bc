#include "qoc/components/AdaptiveNoiseReduction.h"

#include "qoc/components/ComponentIDs.h"
#include "qoc/components/ParameterIndices.h"
#include "qoc/dsp/stream/DenormalGuard.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace qoc::components {

namespace {

constexpr const char* kSizeNames[] = {"1024", "2048", "4096", "8192", "16384"};
constexpr std::size_t kFrames[] = {1024, 2048, 4096, 8192, 16384};
constexpr float kQuietest = -120; // dB

constexpr ParameterRow kRows[] = {
    {.index = kAdaptiveNoiseReductionReduceBy,
     .id = "reduceBy",
     .name = "$$$/AdaptiveNoiseReduction/ReduceByName=Reduce Noise By",
     .unit = "dB",
     .hi = 40,
     .defaultValue = 20,
     .decimals = 1},
    {.index = kAdaptiveNoiseReductionNoisiness,
     .id = "noisiness",
     .name = "$$$/AdaptiveNoiseReduction/NoisinessName=Noisiness",
     .unit = "%",
     .hi = 100,
     .defaultValue = 30,
     .decimals = 1},
    {.index = kAdaptiveNoiseReductionFineTune,
     .id = "fineTune",
     .name = "$$$/AdaptiveNoiseReduction/FineTuneName=Fine Tune Noise Floor",
     .unit = "dB",
     .lo = -10,
     .hi = 10,
     .defaultValue = 0,
     .decimals = 1},
    {.index = kAdaptiveNoiseReductionThreshold,
     .id = "threshold",
     .name = "$$$/AdaptiveNoiseReduction/ThresholdName=Signal Threshold",
     .unit = "dB",
     .lo = -20,
     .hi = 20,
     .defaultValue = 2.5F,
     .decimals = 1},
    {.index = kAdaptiveNoiseReductionDecay,
     .id = "decay",
     .name = "$$$/AdaptiveNoiseReduction/DecayName=Spectral Decay Rate",
     .unit = "ms",
     .hi = 1000,
     .defaultValue = 140,
     .decimals = 0},
    {.index = kAdaptiveNoiseReductionBroadband,
     .id = "broadband",
     .name = "$$$/AdaptiveNoiseReduction/BroadbandName=Broadband Preservation",
     .unit = "Hz",
     .hi = 500,
     .defaultValue = 100,
     .decimals = 0},
    {.index = kAdaptiveNoiseReductionFFTSize,
     .id = "fftSize",
     .name = "$$$/AdaptiveNoiseReduction/FFTSizeName=FFT Size",
     .hi = 4,
     .defaultValue = 2,
     .kind = ParameterKind::kChoice,
     .flags = kParameterNotAutomatable | kParameterNeedsPrepare,
     .items = kSizeNames},
    {.index = kAdaptiveNoiseReductionHighQuality,
     .id = "highQuality",
     .name = "$$$/AdaptiveNoiseReduction/HighQualityName=High Quality",
     .defaultValue = 0,
     .kind = ParameterKind::kSwitch,
     .flags = kParameterNotAutomatable | kParameterNeedsPrepare},
    {.index = kAdaptiveNoiseReductionNoiseFloor,
     .id = "noiseFloor",
     .name = "$$$/AdaptiveNoiseReduction/NoiseFloorName=Noise Floor",
     .unit = "dB",
     .lo = kQuietest,
     .hi = 0,
     .defaultValue = kQuietest,
     .decimals = 1,
     .flags = kParameterNotAutomatable | kParameterReadOnly},
};

constexpr std::size_t kHopsPerFrame = 4;
constexpr std::size_t kHopsPerFineFrame = 8;

// What is so far above the noise, in decibels, is sound for certain.
constexpr double kMarginBase = 3;
constexpr double kMarginPerPercent = 0.133;
// The signal threshold at which the ratio of sound and noise counts as it is.
constexpr double kNeutralThreshold = 1.9; // dB
constexpr double kLowestFrequency = 25;   // Hz; what is below is judged as one
constexpr std::size_t kLowestBin = 3;     // the window lets 0 Hz into those below
constexpr double kDecayDepth = 60;        // dB; the decay is the time for that
// A new value is told, and panels show it, when it differs by so much.
constexpr double kShownStep = 0.5; // dB

double PowerOf(double decibels) {
    return std::pow(10, decibels / 10);
}

// The root of a Hann window, once to go in and once to come out.
std::vector<float> RootHann(std::size_t size, double scale) {
    std::vector<float> window(size);
    for (std::size_t i = 0; i < size; ++i)
        window[i] =
            static_cast<float>(scale * std::sin(std::numbers::pi * static_cast<double>(i) / static_cast<double>(size)));
    return window;
}

} // namespace

AdaptiveNoiseReduction::AdaptiveNoiseReduction()
    : ComponentBase(kAdaptiveNoiseReductionComponentID, std::move(ParameterTable().Add(kRows))) {
}

AdaptiveNoiseReduction::~AdaptiveNoiseReduction() = default;

void AdaptiveNoiseReduction::PrepareProcessing(std::size_t /*maximumBlock*/) {
    fFrame = kFrames[Item(kAdaptiveNoiseReductionFFTSize)];
    const std::size_t hops = IsOn(kAdaptiveNoiseReductionHighQuality) ? kHopsPerFineFrame : kHopsPerFrame;
    const std::size_t hop = fFrame / hops;
    const std::size_t bins = fFrame / 2 + 1;
    // The squared windows add up to half as many as there are hops.
    const double sum = static_cast<double>(hops) / 2;
    fStepsPerPass = (PacedSteps::CountFor(hop) + 1) / 2;
    std::vector<OverlapAdd::Work> work;
    for (std::size_t i = 0; i < GetNumberOfInputChannels() * SpectralGain::kPasses; ++i)
        work.push_back({.steps = fStepsPerPass, .cost = SpectralGain::kCosts[i % SpectralGain::kPasses]});
    fStream.Prepare(GetNumberOfInputChannels(), {.transform = fFrame, .frame = fFrame, .hop = hop}, work,
                    RootHann(fFrame, 1), RootHann(fFrame, 1 / sum));
    fFramesPerSecond = GetSampleRate() / static_cast<double>(hop);
    // Of noise whose samples have the mean square 1 a bin has the power 1: the window's energy is half its size.
    fPowerScale = 2 / static_cast<float>(fFrame);
    fPowers.assign(bins, 0.0F);
    fGrid.SetHop(hop);
    fInputs.assign(GetNumberOfInputChannels(), nullptr);
    fOutputs.assign(GetNumberOfInputChannels(), nullptr);
    fChannels = std::vector<Channel>(GetNumberOfInputChannels());
    const double hertzPerBin = GetSampleRate() / static_cast<double>(fFrame);
    const auto lowest = static_cast<std::size_t>(std::ceil(kLowestFrequency / hertzPerBin));
    for (std::size_t i = 0; i < fChannels.size(); ++i) {
        Channel& channel = fChannels[i];
        channel.estimator.Prepare(bins, GetSampleRate(), i);
        channel.noise.assign(bins, 0.0F);
        channel.gain.Prepare({.bins = bins,
                              .framesPerSecond = fFramesPerSecond,
                              .hopsPerFrame = hops,
                              .lowest = std::max(kLowestBin, lowest)});
    }
}

void AdaptiveNoiseReduction::ResetProcessing() noexcept {
    fStream.Reset();
    fGrid.Reset();
    for (Channel& channel : fChannels) {
        channel.estimator.Reset();
        channel.gain.Reset();
    }
    fHasListened = false;
    fFrames = 0;
    fNoiseFloor = kQuietest;
    StoreNoiseFloor();
}

void AdaptiveNoiseReduction::ReadParameters(bool /*settle*/) noexcept {
    const double hertzPerBin = GetSampleRate() / static_cast<double>(fFrame);
    const double decay = SecondsOfMilliseconds(Natural(kAdaptiveNoiseReductionDecay)) * fFramesPerSecond; // frames
    fSettings.presence =
        static_cast<float>(PowerOf(kMarginBase + kMarginPerPercent * Natural(kAdaptiveNoiseReductionNoisiness)));
    fSettings.noiseScale = static_cast<float>(PowerOf(Natural(kAdaptiveNoiseReductionFineTune)));
    fSettings.threshold = static_cast<float>(PowerOf(Natural(kAdaptiveNoiseReductionThreshold) - kNeutralThreshold));
    fSettings.decayPerFrame = decay > 0 ? static_cast<float>(PowerOf(-kDecayDepth / decay / 2)) : 0.0F;
    fSettings.width =
        static_cast<std::size_t>(std::lround(Natural(kAdaptiveNoiseReductionBroadband) / 2 / hertzPerBin));
    fSettings.floor = static_cast<float>(PowerOf(-Natural(kAdaptiveNoiseReductionReduceBy) / 2));
}

void AdaptiveNoiseReduction::OnListen(std::span<const float* const> inputs, std::size_t frames) {
    const DenormalGuard guard;
    fHasListened = true;
    for (std::size_t i = 0; i < fChannels.size(); ++i)
        fChannels[i].estimator.Listen({inputs[i], frames});
}

// In parts that end with a frame at the latest, so that a frame knows of the sound up to its end and no further.
void AdaptiveNoiseReduction::ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept {
    fGrid.Cut(
        block.frames,
        [&](std::size_t begin, std::size_t frames, std::size_t) {
            for (std::size_t i = 0; i < fChannels.size(); ++i) {
                fInputs[i] = block.inputs[i] + begin;
                fOutputs[i] = block.outputs[i] + begin;
            }
            fFrames += frames;
            if (!fHasListened) Hear(frames);
            fStream.Process({fInputs, fOutputs, frames}, *this);
        },
        [] {});
    StoreNoiseFloor();
}

void AdaptiveNoiseReduction::Hear(std::size_t frames) noexcept {
    bool isFound = false;
    for (std::size_t i = 0; i < fChannels.size(); ++i)
        isFound = fChannels[i].estimator.Hear({fInputs[i], frames}) || isFound;
    if (isFound) MeasureNoiseFloor();
}

// The noise around the frame, of a sound that was heard beforehand.
void AdaptiveNoiseReduction::RecallNoise() noexcept {
    const std::size_t centre = fFrames - std::min(fFrames, fFrame / 2);
    bool isFound = false;
    for (Channel& channel : fChannels)
        isFound = channel.estimator.Recall(centre) || isFound;
    if (isFound) MeasureNoiseFloor();
}

void AdaptiveNoiseReduction::BeginFrame() noexcept {
    if (fHasListened) RecallNoise();
    fTaken = fSettings;
    for (Channel& channel : fChannels)
        std::ranges::copy(channel.estimator.Noise(), channel.noise.begin());
}

// Channel by channel, pass by pass.
void AdaptiveNoiseReduction::ProcessSpectra(std::span<const Spectrum> spectra, std::size_t step) noexcept {
    const std::size_t index = step / (SpectralGain::kPasses * fStepsPerPass);
    const std::size_t pass = step / fStepsPerPass % SpectralGain::kPasses;
    const auto bins = StepRange::Of(step % fStepsPerPass, fStepsPerPass, fPowers.size());
    const Spectrum spectrum = spectra[index];
    Channel& channel = fChannels[index];
    if (pass == 0 && bins.begin == 0) channel.gain.Begin(fPowers, channel.noise, fTaken);
    if (pass == 0) {
        for (std::size_t bin = bins.begin; bin < bins.end; ++bin)
            fPowers[bin] = fPowerScale * std::norm(spectrum[bin]);
    }
    channel.gain.Pass(pass, bins);
    if (pass + 1 < SpectralGain::kPasses) return;
    for (std::size_t bin = bins.begin; bin < bins.end; ++bin)
        spectrum[bin] *= channel.gain.Gains()[bin];
}

void AdaptiveNoiseReduction::MeasureNoiseFloor() noexcept {
    double highest = 0;
    for (const Channel& channel : fChannels) {
        double sum = 0;
        for (const float power : channel.estimator.Noise())
            sum += power;
        highest = std::max(highest, sum / static_cast<double>(fPowers.size()));
    }
    const double decibels = 10 * std::log10(std::max(highest, 1e-30));
    fNoiseFloor = std::clamp<double>(decibels, kQuietest, 0);
}

void AdaptiveNoiseReduction::StoreNoiseFloor() noexcept {
    if (std::abs(fNoiseFloor - fStoredNoiseFloor) < kShownStep) return;
    fStoredNoiseFloor = fNoiseFloor;
    StoreParameter(kAdaptiveNoiseReductionNoiseFloor,
                   GetParameterInfo(kAdaptiveNoiseReductionNoiseFloor)->ToNormalised(static_cast<float>(fNoiseFloor)));
}

} // namespace qoc::components
