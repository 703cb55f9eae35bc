#include "qoc/components/AdaptiveNoiseReduction.h"

#include "qoc/components/ComponentIDs.h"
#include "qoc/components/ParameterIndices.h"

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
    {.id = "reduceBy",
     .name = "$$$/AdaptiveNoiseReduction/ReduceByName=Reduce Noise By",
     .unit = "dB",
     .hi = 40,
     .defaultValue = 20,
     .decimals = 1},
    {.id = "noisiness",
     .name = "$$$/AdaptiveNoiseReduction/NoisinessName=Noisiness",
     .unit = "%",
     .hi = 100,
     .defaultValue = 30,
     .decimals = 1},
    {.id = "fineTune",
     .name = "$$$/AdaptiveNoiseReduction/FineTuneName=Fine Tune Noise Floor",
     .unit = "dB",
     .lo = -10,
     .hi = 10,
     .defaultValue = 0,
     .decimals = 1},
    {.id = "threshold",
     .name = "$$$/AdaptiveNoiseReduction/ThresholdName=Signal Threshold",
     .unit = "dB",
     .lo = -20,
     .hi = 20,
     .defaultValue = 2.5F,
     .decimals = 1},
    {.id = "decay",
     .name = "$$$/AdaptiveNoiseReduction/DecayName=Spectral Decay Rate",
     .unit = "ms",
     .hi = 1000,
     .defaultValue = 140,
     .decimals = 0},
    {.id = "broadband",
     .name = "$$$/AdaptiveNoiseReduction/BroadbandName=Broadband Preservation",
     .unit = "Hz",
     .hi = 500,
     .defaultValue = 100,
     .decimals = 0},
    {.id = "fftSize",
     .name = "$$$/AdaptiveNoiseReduction/FFTSizeName=FFT Size",
     .hi = 4,
     .defaultValue = 2,
     .kind = ParameterKind::kChoice,
     .flags = kParameterNotAutomatable | kParameterNeedsPrepare,
     .items = kSizeNames},
    {.id = "highQuality",
     .name = "$$$/AdaptiveNoiseReduction/HighQualityName=High Quality",
     .defaultValue = 0,
     .kind = ParameterKind::kSwitch,
     .flags = kParameterNotAutomatable | kParameterNeedsPrepare},
    {.id = "noiseFloor",
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

// How far above the minimum sound is still noise, in decibels.
constexpr double kMarginBase = 3;
constexpr double kMarginPerPercent = 0.133;
constexpr double kDecayDepth = 60; // dB; the decay is the time for that
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
    fStream.Prepare(GetNumberOfInputChannels(), {.transform = fFrame, .frame = fFrame, .hop = hop}, RootHann(fFrame, 1),
                    RootHann(fFrame, 1 / sum));
    fFramesPerSecond = GetSampleRate() / static_cast<double>(hop);
    // Parseval: both halves of the spectrum, over the size and the window's energy, which is half the size.
    fPowerScale = 4 / std::pow(static_cast<double>(fFrame), 2);
    fPowers.assign(bins, 0.0F);
    fChannels.assign(GetNumberOfInputChannels(), {});
    for (Channel& channel : fChannels) {
        channel.noise.Prepare(bins, fFramesPerSecond);
        channel.gain.Prepare(bins, fFramesPerSecond);
    }
}

void AdaptiveNoiseReduction::ResetProcessing() noexcept {
    fStream.Reset();
    for (Channel& channel : fChannels) {
        channel.noise.Reset();
        channel.gain.Reset();
    }
    fNoiseFloor = kQuietest;
    StoreNoiseFloor();
}

void AdaptiveNoiseReduction::ReadParameters(bool /*settle*/) noexcept {
    const double hertzPerBin = GetSampleRate() / static_cast<double>(fFrame);
    const double decay = SecondsOfMilliseconds(Natural(kAdaptiveNoiseReductionDecay)) * fFramesPerSecond; // frames
    fMargin = static_cast<float>(PowerOf(kMarginBase + kMarginPerPercent * Natural(kAdaptiveNoiseReductionNoisiness)));
    fSettings.noiseScale = static_cast<float>(PowerOf(Natural(kAdaptiveNoiseReductionFineTune)));
    fSettings.threshold = static_cast<float>(PowerOf(Natural(kAdaptiveNoiseReductionThreshold)));
    fSettings.decayPerFrame = decay > 0 ? static_cast<float>(PowerOf(-kDecayDepth / decay / 2)) : 0.0F;
    fSettings.width =
        static_cast<std::size_t>(std::lround(Natural(kAdaptiveNoiseReductionBroadband) / 2 / hertzPerBin));
    fSettings.floor = static_cast<float>(PowerOf(-Natural(kAdaptiveNoiseReductionReduceBy) / 2));
}

void AdaptiveNoiseReduction::ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept {
    fStream.Process(block, *this);
    StoreNoiseFloor();
}

void AdaptiveNoiseReduction::ProcessSpectra(std::span<const Spectrum> spectra) noexcept {
    for (std::size_t channel = 0; channel < spectra.size(); ++channel)
        Reduce(fChannels[channel], spectra[channel]);
    MeasureNoiseFloor();
}

void AdaptiveNoiseReduction::Reduce(Channel& channel, Spectrum spectrum) noexcept {
    std::ranges::transform(spectrum, fPowers.begin(), [](std::complex<float> bin) { return std::norm(bin); });
    channel.noise.Update(fPowers, fMargin);
    const auto gains = channel.gain.Update(fPowers, channel.noise.Noise(), fSettings);
    for (std::size_t bin = 0; bin < spectrum.size(); ++bin)
        spectrum[bin] *= gains[bin];
}

void AdaptiveNoiseReduction::MeasureNoiseFloor() noexcept {
    double highest = 0;
    for (const Channel& channel : fChannels) {
        double sum = 0;
        for (const float power : channel.noise.Noise())
            sum += power;
        highest = std::max(highest, sum);
    }
    const double decibels = 10 * std::log10(std::max(highest * fPowerScale, 1e-30));
    fNoiseFloor = std::clamp<double>(decibels, kQuietest, 0);
}

void AdaptiveNoiseReduction::StoreNoiseFloor() noexcept {
    if (std::abs(fNoiseFloor - fStoredNoiseFloor) < kShownStep) return;
    fStoredNoiseFloor = fNoiseFloor;
    StoreParameter(kAdaptiveNoiseReductionNoiseFloor,
                   GetParameterInfo(kAdaptiveNoiseReductionNoiseFloor)->ToNormalised(static_cast<float>(fNoiseFloor)));
}

} // namespace qoc::components
