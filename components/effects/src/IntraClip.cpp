#include "qoc/components/IntraClip.h"

#include "qoc/components/ComponentIDs.h"
#include "qoc/dsp/stream/SaneSample.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qoc::components {

namespace {

constexpr const char* kSizeNames[] = {"512", "1024", "2048", "4096", "8192"};
constexpr std::size_t kFrames[] = {512, 1024, 2048, 4096, 8192};
constexpr std::size_t kLargestOrder = 72;

constexpr ParameterRow kRows[] = {
    {.index = kIntraClipGain,
     .id = "gain",
     .name = "$$$/IntraClip/GainName=Gain",
     .unit = "dB",
     .lo = -24,
     .hi = 24,
     .defaultValue = 0,
     .decimals = 1},
    {.index = kIntraClipTolerance,
     .id = "tolerance",
     .name = "$$$/IntraClip/ToleranceName=Tolerance",
     .unit = "%",
     .lo = 0,
     .hi = 10,
     .defaultValue = 1},
    {.index = kIntraClipMinimumSize,
     .id = "minimumSize",
     .name = "$$$/IntraClip/MinimumSizeName=Minimum Clip Size",
     .unit = "$$$/IntraClip/Samples=samples",
     .lo = 1,
     .hi = 50,
     .defaultValue = 2,
     .decimals = 0,
     .flags = kParameterWhole},
    {.index = kIntraClipLevel,
     .id = "level",
     .name = "$$$/IntraClip/LevelName=Clip Level",
     .unit = "dB",
     .lo = -40,
     .hi = 0,
     .defaultValue = 0},
    {.index = kIntraClipFindLevel,
     .id = "findLevel",
     .name = "$$$/IntraClip/FindLevelName=Find Clip Level",
     .defaultValue = 0,
     .kind = ParameterKind::kSwitch},
    {.index = kIntraClipUseSpectrum,
     .id = "useSpectrum",
     .name = "$$$/IntraClip/UseSpectrumName=FFT Interpolation",
     .defaultValue = 1,
     .kind = ParameterKind::kSwitch},
    {.index = kIntraClipFFTSize,
     .id = "fftSize",
     .name = "$$$/IntraClip/FFTSizeName=FFT Size",
     .hi = 4,
     .defaultValue = 2,
     .kind = ParameterKind::kChoice,
     .flags = kParameterNotAutomatable | kParameterNeedsPrepare,
     .items = kSizeNames},
    {.index = kIntraClipDetail,
     .id = "detail",
     .name = "$$$/IntraClip/DetailName=Model Order",
     .lo = 8,
     .hi = kLargestOrder,
     .defaultValue = 32,
     .decimals = 0,
     .flags = kParameterWhole},
};

// How often the model goes over a frame while playing and in a render.
constexpr std::size_t kLiveRounds = 20;
constexpr std::size_t kRenderRounds = 32;

double AmplitudeOf(double decibels) {
    return std::pow(10, decibels / 20);
}

// A frame lasts as long at high rates as it does at 44.1 and 48 kHz.
std::size_t OctavesAbove48kHz(double rate) {
    std::size_t octaves = 0;
    while (std::ldexp(60000.0, static_cast<int>(octaves)) < rate)
        ++octaves;
    return octaves;
}

// More may turn out to be left than one can tell: what there is is done faster, so that there is time for that.
constexpr double kAhead = 1.1;

// In nanoseconds, about.
double CostOfDetecting(const RepairStream::Layout& layout) {
    return 0.7 * static_cast<double>(layout.Frame());
}
double CostOfBeginning(const RepairStream::Layout& layout) {
    return 1.5 * static_cast<double>(layout.Frame());
}

// A stored float is that near to 0 dB at best.
constexpr float kUnityWindow = 1e-5F;

} // namespace

IntraClip::IntraClip() : ComponentBase(kIntraClipComponentComponentID, std::move(ParameterTable().Add(kRows))) {
}

IntraClip::~IntraClip() = default;

void IntraClip::PrepareProcessing(std::size_t /*maximumBlock*/) {
    const std::size_t octaves = OctavesAbove48kHz(GetSampleRate());
    const std::size_t frame = kFrames[Item(kIntraClipFFTSize)] << octaves;
    fLayout = {.before = frame / 4, .hop = frame / 2, .after = frame / 4};
    const std::size_t channels = GetNumberOfInputChannels();
    const bool isRender = GetQuality() == kroaudiofilterhost::AudioFilterQuality::kRender;
    fRestorer.Prepare({.frame = frame,
                       .first = fLayout.before,
                       .largestOrder = kLargestOrder,
                       .rounds = isRender ? kRenderRounds : kLiveRounds,
                       .octaves = static_cast<double>(octaves)});
    fSteps = PacedSteps::CountFor(fLayout.hop);
    fStream.Prepare(channels, fLayout, std::vector<double>(fSteps, 1));
    fChannels.assign(channels, {});
    for (Channel& channel : fChannels) {
        channel.detector.Prepare(frame);
        channel.heard.resize(frame);
    }
    fDetected = fBegun = channels;
    fGain.Prepare(GetSampleRate());
}

void IntraClip::ResetProcessing() noexcept {
    fStream.Reset();
    for (Channel& channel : fChannels)
        channel.levels = {};
    fHeardFrames = 0;
}

void IntraClip::ReadParameters(bool settle) noexcept {
    const float decibels = Natural(kIntraClipGain);
    const float gain = std::abs(decibels) < kUnityWindow ? 1.0F : static_cast<float>(AmplitudeOf(decibels));
    settle ? fGain.Settle(gain) : fGain.SetTarget(gain);
    fSettings.detection.level = AmplitudeOf(Natural(kIntraClipLevel));
    fSettings.detection.findsLevel = IsOn(kIntraClipFindLevel);
    fSettings.detection.tolerance = FractionOfPercent(Natural(kIntraClipTolerance));
    fSettings.detection.minimumSize = 1; // what is too short to be restored is not to be trusted either
    fSettings.restoration.usesSpectrum = IsOn(kIntraClipUseSpectrum);
    fSettings.restoration.order = static_cast<std::size_t>(std::lround(Natural(kIntraClipDetail)));
    fSettings.restoration.minimumSize = static_cast<std::size_t>(std::lround(Natural(kIntraClipMinimumSize)));
}

void IntraClip::ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept {
    fStream.Process(block, *this);
    for (std::size_t i = 0; i < block.frames; ++i) {
        const float gain = fGain.Next();
        for (float* const output : block.outputs)
            output[i] *= gain;
    }
}

// All channels of a frame are worked on with the settings at its beginning: what is clipped is looked for in all of
// them, and then restored in one after the other.
void IntraClip::Begin(std::span<const Frame> frames) noexcept {
    fFrames = frames;
    fTaken = fSettings;
    fRestorer.Stop();
    fDetected = 0;
    fBegun = 0;
}

// How much there is to do depends on how much is clipped, and whether the predictions suit the sound: each step does
// its part of what is left as far as one can tell.
void IntraClip::Step(std::size_t step) noexcept {
    const bool isLast = step + 1 == fSteps;
    double budget = kAhead * CostLeft() / static_cast<double>(fSteps - step);
    while (!IsDone() && (budget > 0 || isLast))
        budget -= Work();
}

bool IntraClip::IsDone() const noexcept {
    return fDetected == fChannels.size() && fBegun == fChannels.size() && fRestorer.IsDone();
}

// In nanoseconds, about, as all costs.
double IntraClip::CostLeft() const noexcept {
    double cost = static_cast<double>(fChannels.size() - fDetected) * CostOfDetecting(fLayout) + fRestorer.CostLeft();
    for (std::size_t channel = fBegun; channel < fDetected; ++channel) {
        const auto& runs = fChannels[channel].runs;
        if (!runs.empty()) cost += CostOfBeginning(fLayout) + fRestorer.CostOf(runs, fTaken.restoration);
    }
    return cost;
}

double IntraClip::Work() noexcept {
    if (fDetected < fChannels.size()) return Detect();
    if (!fRestorer.IsDone()) return fRestorer.Work();
    const auto [original, repaired] = fFrames[fBegun];
    const auto& runs = fChannels[fBegun++].runs;
    if (runs.empty()) return 0;
    fRestorer.Begin(original, repaired, runs, fTaken.restoration);
    return CostOfBeginning(fLayout);
}

double IntraClip::Detect() noexcept {
    Channel& channel = fChannels[fDetected];
    channel.runs = channel.detector.Find(fFrames[fDetected].original, fTaken.detection, channel.levels);
    if (std::ranges::none_of(channel.runs, [this](const auto& run) { return IsHeard(run); })) channel.runs = {};
    ++fDetected;
    return CostOfDetecting(fLayout);
}

bool IntraClip::IsHeard(const ClipDetector::Run& run) const noexcept {
    return run.end - run.begin >= fTaken.restoration.minimumSize && run.end > fLayout.before &&
           run.begin < fLayout.before + fLayout.hop;
}

// The levels that the whole sound shows, so that its first peaks are restored too.
void IntraClip::OnListen(std::span<const float* const> inputs, std::size_t frames) {
    for (std::size_t i = 0; i < frames; ++i) {
        for (std::size_t channel = 0; channel < fChannels.size(); ++channel)
            fChannels[channel].heard[fHeardFrames] = SaneSample(inputs[channel][i]);
        if (++fHeardFrames == fLayout.Frame()) HearFrame();
    }
}

void IntraClip::HearFrame() noexcept {
    for (Channel& channel : fChannels)
        channel.detector.Find(channel.heard, fSettings.detection, channel.levels);
    fHeardFrames = 0;
}

} // namespace qoc::components
