#include "qoc/components/AutoPhaseCorrection.h"

#include "qoc/components/ComponentIDs.h"
#include "qoc/components/ParameterIndices.h"
#include "qoc/dsp/spectrum/WindowFunction.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>
#include <utility>

namespace qoc::components {

namespace {

constexpr float kLongestShift = 20; // milliseconds
constexpr float kHalfTurn = 180;    // degrees
constexpr std::size_t kOverlaps = 4;
constexpr std::size_t kLeastShifts = 4; // the longest shift, in an analysis: it has to see what is late
constexpr double kAlignCost = 8;        // of a pass over a channel's phases, in transforms
constexpr std::size_t kPartsOfPass = 8; // of an analysis

constexpr const char* kSizeNames[] = {"1024", "2048", "4096", "8192", "16384"};
constexpr std::size_t kSmallestSize = 1024;
constexpr int kDefaultSize = 2; // 4096

constexpr const char* kResolutionNames[] = {"$$$/AutoPhaseCorrectionUI/Low=Low",
                                            "$$$/AutoPhaseCorrectionUI/Medium=Medium",
                                            "$$$/AutoPhaseCorrectionUI/High=High"};
constexpr std::size_t kAnalysesPerSize[] = {2, 4, 8};

constexpr const char* kResponseNames[] = {"$$$/AutoPhaseCorrectionUI/Slow=Slow",
                                          "$$$/AutoPhaseCorrectionUI/Medium=Medium",
                                          "$$$/AutoPhaseCorrectionUI/Fast=Fast"};
constexpr float kResponseSeconds[] = {2, 0.5F, 0.12F};

constexpr float kLastChannel = AutoPhaseCorrection::kMaximumChannels - 1;

constexpr ParameterRow kRows[] = {
    {.index = kAutoPhaseGlobalTimeShift,
     .id = "globalTimeShift",
     .name = "$$$/AutoPhaseCorrection/GlobalTimeShift=Global Time Shift",
     .defaultValue = 1,
     .kind = ParameterKind::kSwitch,
     .flags = kParameterNotAutomatable},
    {.index = kAutoPhaseAutoAlign,
     .id = "autoAlign",
     .name = "$$$/AutoPhaseCorrection/AutoAlign=Automatic Alignment",
     .defaultValue = 1,
     .kind = ParameterKind::kSwitch},
    {.index = kAutoPhaseChannel,
     .id = "channel",
     .name = "$$$/AutoPhaseCorrection/Channel=Reference Channel",
     .hi = kLastChannel,
     .decimals = 0,
     .flags = kParameterWhole},
    {.index = kAutoPhaseAnalysisSize,
     .id = "size",
     .name = "$$$/AutoPhaseCorrection/Size=Analysis Size",
     .hi = std::size(kSizeNames) - 1,
     .defaultValue = kDefaultSize,
     .decimals = 0,
     .kind = ParameterKind::kChoice,
     .flags = kParameterNotAutomatable | kParameterNeedsPrepare,
     .items = kSizeNames},
    {.index = kAutoPhaseTimeResolution,
     .id = "timeResolution",
     .name = "$$$/AutoPhaseCorrection/TimeResolution=Time Resolution",
     .hi = std::size(kResolutionNames) - 1,
     .defaultValue = 1,
     .decimals = 0,
     .kind = ParameterKind::kChoice,
     .flags = kParameterNotAutomatable | kParameterNeedsPrepare,
     .items = kResolutionNames},
    {.index = kAutoPhaseResponsiveness,
     .id = "responsiveness",
     .name = "$$$/AutoPhaseCorrection/Responsiveness=Responsiveness",
     .hi = std::size(kResponseNames) - 1,
     .defaultValue = 1,
     .decimals = 0,
     .kind = ParameterKind::kChoice,
     .flags = kParameterNotAutomatable,
     .items = kResponseNames},
    {.index = kAutoPhaseStrength,
     .id = "strength",
     .name = "$$$/AutoPhaseCorrection/Strength=Strength",
     .unit = "%",
     .hi = 100,
     .defaultValue = 100,
     .decimals = 1},
    {.index = kAutoPhaseSmoothing,
     .id = "smoothing",
     .name = "$$$/AutoPhaseCorrection/Smoothing=Smoothing",
     .unit = "%",
     .hi = 100,
     .defaultValue = 30,
     .decimals = 1},
    {.index = kAutoPhaseTimeShift,
     .id = "timeShift",
     .name = "$$$/AutoPhaseCorrection/TimeShift=Time Shift",
     .unit = "ms",
     .lo = -kLongestShift,
     .hi = kLongestShift,
     .decimals = 3},
    {.index = kAutoPhasePhaseShift,
     .id = "phaseShift",
     .name = "$$$/AutoPhaseCorrection/PhaseShift=Phase Shift",
     .unit = "$$$/AutoPhaseCorrection/Degrees=#{deg}",
     .lo = -kHalfTurn,
     .hi = kHalfTurn,
     .decimals = 1},
    {.index = kAutoPhaseLongestShift,
     .id = "longestShift",
     .name = "$$$/AutoPhaseCorrection/LongestShift=Longest Shift",
     .unit = "ms",
     .lo = 1,
     .hi = kLongestShift,
     .defaultValue = 5,
     .decimals = 1},
    {.index = kAutoPhaseBalance,
     .id = "balance",
     .name = "$$$/AutoPhaseCorrection/Balance=Balance Levels",
     .kind = ParameterKind::kSwitch},
    {.index = kAutoPhaseFoundShift,
     .id = "foundShift",
     .name = "$$$/AutoPhaseCorrection/FoundShift=Found Shift",
     .unit = "ms",
     .lo = -kLongestShift,
     .hi = kLongestShift,
     .decimals = 3,
     .flags = kParameterNotAutomatable | kParameterReadOnly},
};

constexpr auto kKind = SampleInterpolator::Kind::kSinc32;
constexpr std::size_t kReach = SampleInterpolator::kLargestHalfWidth;
constexpr double kGlideSeconds = 0.03; // time constant of a shift's changes
constexpr double kArrived = 1e-4;      // samples: nobody hears the rest
constexpr double kNearby = 0.1;        // samples

// 120 dB above full scale: no sound, and small enough for what remembers powers.
constexpr float kLoudest = 1e6F;

std::vector<float> RootHann(std::size_t size) {
    std::vector<float> window(size);
    for (std::size_t i = 0; i < size; ++i)
        window[i] = static_cast<float>(std::sin(std::numbers::pi * static_cast<double>(i) / static_cast<double>(size)));
    return window;
}

float SamplesOf(float milliseconds, float sampleRate) noexcept {
    return milliseconds * static_cast<float>(SecondsOfMilliseconds(1)) * sampleRate;
}

} // namespace

AutoPhaseCorrection::AutoPhaseCorrection()
    : ComponentBase(kAutoPhaseCorrectionComponentID, std::move(ParameterTable().Add(kRows))) {
}

AutoPhaseCorrection::~AutoPhaseCorrection() = default;

void AutoPhaseCorrection::PrepareProcessing(std::size_t maximumBlock) {
    fChannels.clear();
    fLatency = 0;
    const std::size_t channels = GetNumberOfInputChannels();
    if (channels < 2) return;
    fSize = kSmallestSize << Item(kAutoPhaseAnalysisSize);
    const auto longest = static_cast<std::size_t>(std::ceil(SamplesOf(kLongestShift, GetSampleRate())));
    fAnalysisSize = std::max(fSize, std::bit_ceil(kLeastShifts * longest));
    fHop = fAnalysisSize / kAnalysesPerSize[Item(kAutoPhaseTimeResolution)];
    // No step ends beyond a frame of the transform, which is to see the channels as they are at its end.
    const std::size_t step = std::min(fHop, fSize / kOverlaps);
    fAnalyses.SetHop(step);
    fStepsPerAnalysis = fHop / step;
    fDelay = longest + kReach + 1;
    fHistory.Prepare(channels, std::bit_ceil(fAnalysisSize + 2 * (fDelay + fHop) + maximumBlock));
    fTransform = std::make_unique<RealFFT>(fAnalysisSize);
    fWindow = RootHann(fAnalysisSize);
    fScratch.resize(fAnalysisSize);
    // Two such windows, at four frames a window, add up to 2.
    const std::vector<float> window = RootHann(fSize);
    std::vector<float> synthesis = window;
    for (float& value : synthesis)
        value *= 2.0F / kOverlaps;
    const OverlapAdd::Layout layout{.transform = fSize, .frame = fSize, .hop = fSize / kOverlaps};
    fStepsPerPass = PacedSteps::CountFor(layout.hop);
    fOverlapAdd.Prepare(
        channels, layout,
        std::vector(channels * PhaseAligner::kPasses, OverlapAdd::Work{.steps = fStepsPerPass, .cost = kAlignCost}),
        window, synthesis);
    fLatency = fDelay + fHop + fOverlapAdd.Latency();
    fGlide = 2 / (kGlideSeconds * GetSampleRate());
    fChannels.resize(channels);
    fMoved.clear();
    fOutputs.resize(channels);
    for (Channel& channel : fChannels) {
        channel.delay.Prepare(fAnalysisSize);
        channel.aligner.Prepare(fSize / 2 + 1);
        channel.level.Prepare(GetSampleRate());
        channel.spectrum.resize(fTransform->Bins());
        channel.moved.resize(maximumBlock);
        fMoved.push_back(channel.moved.data());
    }
    PlanAnalysis();
}

void AutoPhaseCorrection::PlanAnalysis() {
    fWork.clear();
    fPace.Clear();
    for (std::size_t channel = 0; channel < fChannels.size(); ++channel) {
        AddSteps(Kind::kWindow, channel, 0, 5);
        AddSteps(Kind::kTransform, channel, 0, 2);
    }
    AddSteps(Kind::kReference, 0, 0, TimeDelayEstimator::CostOf(0));
    for (std::size_t other = 0; other + 1 < fChannels.size(); ++other) {
        for (std::size_t pass = 0; pass < TimeDelayEstimator::kPasses; ++pass)
            AddSteps(Kind::kOther, other, pass, TimeDelayEstimator::CostOf(pass));
    }
    fPace.SpreadOver(fHop);
}

void AutoPhaseCorrection::AddSteps(Kind kind, std::size_t channel, std::size_t pass, double cost) {
    for (std::size_t part = 0; part < kPartsOfPass; ++part)
        fWork.push_back({kind, channel, pass, {part, kPartsOfPass}});
    fPace.Add(kPartsOfPass, cost);
}

void AutoPhaseCorrection::ResetProcessing() noexcept {
    if (!IsWorking()) return;
    fHistory.Reset();
    fOverlapAdd.Reset();
    fAnalyses.Reset();
    fSteps = 0;
    fAnalysis.isWorking = false;
    for (Channel& channel : fChannels) {
        channel.delay.Reset();
        channel.aligner.Reset();
        channel.found = 0;
        channel.levelRatio = 1;
        channel.isCopy = false;
        channel.alike = 0;
        channel.unsettled = 0;
        channel.level.Settle(1);
    }
    StoreFoundShift();
}

void AutoPhaseCorrection::ReadParameters(bool settle) noexcept {
    if (!IsWorking()) return;
    const float sampleRate = GetSampleRate();
    fReference = std::min(static_cast<std::size_t>(std::lround(Natural(kAutoPhaseChannel))), fChannels.size() - 1);
    fShiftsTime = IsOn(kAutoPhaseGlobalTimeShift);
    fIsAutomatic = IsOn(kAutoPhaseAutoAlign);
    fBalances = IsOn(kAutoPhaseBalance);
    const float response = kResponseSeconds[Item(kAutoPhaseResponsiveness)] * sampleRate;
    fResponse = static_cast<std::size_t>(response);
    fKept = std::exp(-static_cast<float>(fHop) / response);
    fStrength = static_cast<float>(FractionOfPercent(Natural(kAutoPhaseStrength)));
    fAligning = {.kept = std::exp(-static_cast<float>(fSize) / kOverlaps / response),
                 .strength = fStrength,
                 .octaves = static_cast<float>(FractionOfPercent(Natural(kAutoPhaseSmoothing)))};
    fLongestShift = SamplesOf(Natural(kAutoPhaseLongestShift), sampleRate);
    fTimeShift = SamplesOf(Natural(kAutoPhaseTimeShift), sampleRate);
    fTurn = std::polar(1.0F, Natural(kAutoPhasePhaseShift) * std::numbers::pi_v<float> / kHalfTurn);
    for (std::size_t index = 0; index < fChannels.size(); ++index) {
        Channel& channel = fChannels[index];
        FollowSettings(channel, index == fReference);
        if (!settle) continue;
        channel.shift = channel.target;
        channel.speed = 0;
        ComputeWeights(channel);
    }
}

void AutoPhaseCorrection::ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept {
    if (!IsWorking()) {
        std::copy_n(block.inputs[0], block.frames, block.outputs[0]);
        return;
    }
    fAnalyses.Cut(
        block.frames,
        [&](std::size_t start, std::size_t frames, std::size_t position) {
            ProcessChunk(block, start, frames);
            if (!fAnalysis.isWorking) return;
            const std::size_t step = fHop / fStepsPerAnalysis;
            fPace.RunUntil(fSteps % fStepsPerAnalysis * step + position + frames,
                           [this](std::size_t index) { Do(fWork[index]); });
        },
        [&] {
            if (++fSteps % fStepsPerAnalysis != 0) return;
            FinishAnalysis();
            BeginAnalysis();
        });
}

void AutoPhaseCorrection::ProcessChunk(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t start,
                                       std::size_t frames) noexcept {
    fHistory.Write(block.inputs, start, frames);
    for (std::size_t index = 0; index < fChannels.size(); ++index)
        Move(fChannels[index], index, frames);
    for (std::size_t index = 0; index < fChannels.size(); ++index)
        fOutputs[index] = block.outputs[index] + start;
    fOverlapAdd.Process({fMoved, fOutputs, frames}, *this);
}

void AutoPhaseCorrection::Move(Channel& channel, std::size_t index, std::size_t frames) noexcept {
    std::int64_t time = fHistory.Now() - static_cast<std::int64_t>(frames + fDelay + fHop);
    for (std::size_t i = 0; i < frames; ++i, ++time) {
        if (channel.shift != channel.target) {
            Glide(channel);
            ComputeWeights(channel);
        }
        const float sample = SampleAt(channel, index, time + channel.whole) * channel.level.Next();
        channel.moved[i] = std::clamp(sample, -kLoudest, kLoudest);
    }
}

// Damped critically: it sets off and arrives without a kink, which would click.
void AutoPhaseCorrection::Glide(Channel& channel) const noexcept {
    const double left = channel.target - channel.shift;
    channel.speed += fGlide * (fGlide * left - 2 * channel.speed);
    channel.shift += channel.speed;
    if (std::abs(left) > kArrived || std::abs(channel.speed) > kArrived) return;
    channel.shift = channel.target;
    channel.speed = 0;
}

float AutoPhaseCorrection::SampleAt(Channel& channel, std::size_t index, std::int64_t time) noexcept {
    if (channel.weighted == 0) return *fHistory.At(index, time);
    const float* const sound = fHistory.At(index, time + channel.weights.first);
    float sum = 0;
    for (std::size_t i = 0; i < channel.weights.count; ++i)
        sum += sound[i] * channel.weights.values[i];
    return sum;
}

void AutoPhaseCorrection::ComputeWeights(Channel& channel) noexcept {
    const double whole = std::floor(channel.shift);
    channel.whole = static_cast<std::ptrdiff_t>(whole);
    channel.weighted = channel.shift - whole;
    fInterpolator.Compute(kKind, channel.weighted, 1, kReach, channel.weights);
}

void AutoPhaseCorrection::BeginAnalysis() noexcept {
    // A start in the middle of the window would be found to be common to all channels.
    if (fHistory.Now() < static_cast<std::int64_t>(fAnalysisSize + 2 * fDelay)) return;
    fAnalysis = {.time = fHistory.Now(),
                 .reference = fReference,
                 .frame = {.kept = fKept, .longest = fLongestShift, .takesDelayOut = fShiftsTime},
                 .isWorking = true};
    fPace.Restart();
}

void AutoPhaseCorrection::Do(const Step& step) noexcept {
    switch (step.kind) {
    case Kind::kWindow: return Window(step.channel, StepRange::Of(step.part.index, step.part.count, fAnalysisSize));
    case Kind::kTransform: return fTransform->Forward(fScratch, fChannels[step.channel].spectrum, step.part);
    case Kind::kReference: return fChannels[fAnalysis.reference].delay.Add(FrameOf(fAnalysis.reference), step.part);
    case Kind::kOther:
        return FindDelay(step.channel + (step.channel < fAnalysis.reference ? 0 : 1), step.pass, step.part);
    }
}

void AutoPhaseCorrection::Window(std::size_t index, StepRange samples) noexcept {
    const std::ptrdiff_t origin = index == fAnalysis.reference ? 0 : fChannels[index].delay.Origin();
    const float* const sound =
        fHistory.At(index, fAnalysis.time - static_cast<std::int64_t>(fAnalysisSize + fDelay) + origin);
    for (std::size_t i = samples.begin; i < samples.end; ++i)
        fScratch[i] = std::clamp(sound[i], -kLoudest, kLoudest) * fWindow[i] * fWindow[i];
}

void AutoPhaseCorrection::FindDelay(std::size_t index, std::size_t pass, RealFFT::Part part) noexcept {
    TimeDelayEstimator& delay = fChannels[index].delay;
    if (pass == 0 && part.index == 0) delay.Begin(FrameOf(index));
    delay.Pass(pass, part);
}

TimeDelayEstimator::Frame AutoPhaseCorrection::FrameOf(std::size_t index) const noexcept {
    TimeDelayEstimator::Frame frame = fAnalysis.frame;
    frame.reference = fChannels[fAnalysis.reference].spectrum;
    frame.other = fChannels[index].spectrum;
    return frame;
}

void AutoPhaseCorrection::FinishAnalysis() noexcept {
    if (!fAnalysis.isWorking) return;
    fAnalysis.isWorking = false;
    for (std::size_t index = 0; index < fChannels.size(); ++index) {
        Channel& channel = fChannels[index];
        if (index == fAnalysis.reference)
            channel.delay.ForgetDelay();
        else
            Compare(channel);
        channel.found = channel.delay.Delay();
        if (fBalances) channel.levelRatio = channel.delay.LevelRatio();
        FollowSettings(channel, index == fReference);
    }
    StoreFoundShift();
}

// Sound that is only akin, as the channels of a mix are, stays as it is: a treatment has to take out most of what both
// differ by, for half the time that the response takes.
void AutoPhaseCorrection::Compare(Channel& channel) noexcept {
    constexpr double kStarts = 0.3; // of the difference may be left
    constexpr double kGoesOn = 0.5;
    constexpr double kLeastDifference = 1e-6; // 57 dB below
    const auto [untreated, treated] = channel.delay.GetLikeness();
    const double difference = 1 - untreated;
    const bool isAlike =
        difference > kLeastDifference && 1 - treated < (channel.isCopy ? kGoesOn : kStarts) * difference;
    channel.alike = isAlike ? channel.alike + fHop : 0;
    channel.isCopy = isAlike && (channel.isCopy || channel.alike >= fResponse / 2);
}

void AutoPhaseCorrection::FollowSettings(Channel& channel, bool isReference) noexcept {
    constexpr float kMostBalance = 4; // 12 dB up or down
    if (isReference)
        channel.target = 0;
    else if (fIsAutomatic)
        channel.target = fShiftsTime && channel.isCopy ? channel.found * fStrength : 0;
    else
        channel.target = -fTimeShift;
    const bool balances = fBalances && !isReference;
    const float level = balances ? std::clamp(channel.levelRatio, 1 / kMostBalance, kMostBalance) : 1.0F;
    if (level != channel.level.Target()) channel.level.SetTarget(level);
}

void AutoPhaseCorrection::BeginFrame() noexcept {
    fTakenReference = fReference;
    fTakenTurn = fTurn;
    fTakenAligning = fAligning;
    for (std::size_t index = 0; index < fChannels.size(); ++index) {
        Channel& channel = fChannels[index];
        channel.treatment = index == fReference ? Treatment::kNone : TreatmentFor(channel);
    }
}

AutoPhaseCorrection::Treatment AutoPhaseCorrection::TreatmentFor(Channel& channel) const noexcept {
    // Phases tell nothing while the channel is still on its way, nor as long as a frame has some of that.
    if (std::abs(channel.target - channel.shift) > kNearby) channel.unsettled = kOverlaps;
    if (channel.unsettled > 0) {
        --channel.unsettled;
        channel.aligner.Reset();
    }
    if (!fIsAutomatic) return fTurn == std::complex<float>(1) ? Treatment::kNone : Treatment::kTurn;
    if (channel.isCopy) return Treatment::kAlign;
    channel.aligner.Reset();
    return Treatment::kNone;
}

// Channel by channel, pass by pass.
void AutoPhaseCorrection::ProcessSpectra(std::span<const Spectrum> spectra, std::size_t step) noexcept {
    const std::size_t index = step / (PhaseAligner::kPasses * fStepsPerPass);
    const std::size_t pass = step / fStepsPerPass % PhaseAligner::kPasses;
    const Spectrum spectrum = spectra[index];
    const auto bins = StepRange::Of(step % fStepsPerPass, fStepsPerPass, spectrum.size());
    Channel& channel = fChannels[index];
    if (channel.treatment == Treatment::kAlign)
        channel.aligner.Align(spectra[fTakenReference], spectrum, fTakenAligning, pass, bins);
    if (channel.treatment != Treatment::kTurn || pass > 0) return;
    for (std::size_t bin = bins.begin; bin < bins.end; ++bin)
        spectrum[bin] *= fTakenTurn;
}

// Of the first channel beside the reference.
void AutoPhaseCorrection::StoreFoundShift() noexcept {
    const double found = fChannels[fReference == 0 ? 1 : 0].found;
    TellParameter(kAutoPhaseFoundShift, MillisecondsOfSeconds(found / GetSampleRate()));
}

} // namespace qoc::components
