#include "qoc/components/CenterChannelExtract.h"

#include "qoc/components/ComponentIDs.h"
#include "qoc/components/ParameterIndices.h"
#include "qoc/dsp/spectrum/WindowFunction.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace qoc::components {

namespace {

constexpr std::size_t kStereo = 2;
constexpr float kPi = std::numbers::pi_v<float>;
constexpr float kHalfTurn = 180;          // degrees
constexpr float kLowestLevel = -48;       // dB: stands for silence
constexpr float kHighestFrequency = 1e6F; // hertz: half of any sample rate is less

enum Position : int { kCenter, kLeft, kRight, kSurround, kCustomPosition };
constexpr const char* kPositionNames[] = {
    "$$$/CenterChannelExtractUI/Center=Center", "$$$/CenterChannelExtractUI/Left=Left",
    "$$$/CenterChannelExtractUI/Right=Right", "$$$/CenterChannelExtractUI/Surround=Surround",
    "$$$/CenterChannelExtractUI/Custom=Custom"};

enum Range : int { kMaleVoice, kFemaleVoice, kBass, kFullSpectrum, kCustomRange };
constexpr const char* kRangeNames[] = {
    "$$$/CenterChannelExtractUI/MaleVoice=Male Voice", "$$$/CenterChannelExtractUI/FemaleVoice=Female Voice",
    "$$$/CenterChannelExtractUI/Bass=Bass", "$$$/CenterChannelExtractUI/FullSpectrum=Full Spectrum",
    "$$$/CenterChannelExtractUI/Custom=Custom"};

constexpr const char* kSizeNames[] = {"1024", "2048", "4096", "8192", "16384", "32768"};
constexpr std::size_t kSmallestSize = 1024;
constexpr int kDefaultSize = 2; // 4096

constexpr WindowKind kWindows[] = {WindowKind::kHann, WindowKind::kHamming, WindowKind::kBlackman,
                                   WindowKind::kBlackmanHarris, WindowKind::kTriangular};
constexpr const char* kWindowNames[] = {
    "$$$/CenterChannelExtractUI/Hann=Hann", "$$$/CenterChannelExtractUI/Hamming=Hamming",
    "$$$/CenterChannelExtractUI/Blackman=Blackman", "$$$/CenterChannelExtractUI/BlackmanHarris=Blackman-Harris",
    "$$$/CenterChannelExtractUI/Triangular=Triangular"};

constexpr ParameterRow kRows[] = {
    {.index = kCenterExtractPosition,
     .id = "position",
     .name = "$$$/CenterChannelExtract/Position=Extract",
     .hi = kCustomPosition,
     .decimals = 0,
     .kind = ParameterKind::kChoice,
     .items = kPositionNames},
    {.index = kCenterExtractPhase,
     .id = "phase",
     .name = "$$$/CenterChannelExtract/Phase=Phase Angle",
     .unit = "$$$/CenterChannelExtract/Degrees=#{deg}",
     .lo = -kHalfTurn,
     .hi = kHalfTurn,
     .decimals = 1},
    {.index = kCenterExtractPan,
     .id = "pan",
     .name = "$$$/CenterChannelExtract/Pan=Pan",
     .unit = "%",
     .lo = -100,
     .hi = 100,
     .decimals = 1},
    {.index = kCenterExtractDelay,
     .id = "delay",
     .name = "$$$/CenterChannelExtract/Delay=Delay",
     .unit = "ms",
     .lo = -5,
     .hi = 5},
    {.index = kCenterExtractRange,
     .id = "range",
     .name = "$$$/CenterChannelExtract/Range=Frequency Range",
     .hi = kCustomRange,
     .defaultValue = kFullSpectrum,
     .decimals = 0,
     .kind = ParameterKind::kChoice,
     .items = kRangeNames},
    {.index = kCenterExtractLowFrequency,
     .id = "low",
     .name = "$$$/CenterChannelExtract/Low=Lowest Frequency",
     .unit = "Hz",
     .defaultValue = 100,
     .decimals = 0,
     .scale = ParameterScale::kNyquist},
    {.index = kCenterExtractHighFrequency,
     .id = "high",
     .name = "$$$/CenterChannelExtract/High=Highest Frequency",
     .unit = "Hz",
     .defaultValue = 10000,
     .decimals = 0,
     .scale = ParameterScale::kNyquist},
    {.index = kCenterExtractCenterLevel,
     .id = "centerLevel",
     .name = "$$$/CenterChannelExtract/CenterLevel=Center Level",
     .unit = "dB",
     .lo = kLowestLevel,
     .hi = 12,
     .decimals = 1},
    {.index = kCenterExtractSideLevel,
     .id = "sideLevel",
     .name = "$$$/CenterChannelExtract/SideLevel=Side Level",
     .unit = "dB",
     .lo = kLowestLevel,
     .hi = 12,
     .defaultValue = kLowestLevel,
     .decimals = 1},
    {.index = kCenterExtractPhaseDiscrimination,
     .id = "phaseDiscrimination",
     .name = "$$$/CenterChannelExtract/PhaseDiscrimination=Phase Discrimination",
     .unit = "$$$/CenterChannelExtract/Degrees=#{deg}",
     .lo = 1,
     .hi = kHalfTurn,
     .defaultValue = 45,
     .decimals = 1},
    {.index = kCenterExtractAmplitudeDiscrimination,
     .id = "amplitudeDiscrimination",
     .name = "$$$/CenterChannelExtract/AmplitudeDiscrimination=Amplitude Discrimination",
     .unit = "%",
     .lo = 1,
     .hi = 100,
     .defaultValue = 30,
     .decimals = 1},
    {.index = kCenterExtractCrossover,
     .id = "crossover",
     .name = "$$$/CenterChannelExtract/Crossover=Crossover",
     .unit = "%",
     .hi = 100,
     .defaultValue = 50,
     .decimals = 1},
    {.index = kCenterExtractBleed,
     .id = "bleed",
     .name = "$$$/CenterChannelExtract/Bleed=Bleed",
     .unit = "%",
     .hi = 100,
     .decimals = 1},
    {.index = kCenterExtractDecay,
     .id = "decay",
     .name = "$$$/CenterChannelExtract/Decay=Spectral Decay",
     .unit = "ms",
     .hi = 500,
     .defaultValue = 20,
     .decimals = 0},
    {.index = kCenterExtractSize,
     .id = "size",
     .name = "$$$/CenterChannelExtract/Size=FFT Size",
     .hi = std::size(kSizeNames) - 1,
     .defaultValue = kDefaultSize,
     .decimals = 0,
     .kind = ParameterKind::kChoice,
     .flags = kParameterNotAutomatable | kParameterNeedsPrepare,
     .items = kSizeNames},
    {.index = kCenterExtractWindow,
     .id = "window",
     .name = "$$$/CenterChannelExtract/Window=Window",
     .hi = std::size(kWindowNames) - 1,
     .decimals = 0,
     .kind = ParameterKind::kChoice,
     .flags = kParameterNotAutomatable | kParameterNeedsPrepare,
     .items = kWindowNames},
    {.index = kCenterExtractOverlaps,
     .id = "overlaps",
     .name = "$$$/CenterChannelExtract/Overlaps=Overlaps",
     .lo = 2,
     .hi = 16,
     .defaultValue = 4,
     .decimals = 0,
     .flags = kParameterNotAutomatable | kParameterNeedsPrepare | kParameterWhole},
    {.index = kCenterExtractMono,
     .id = "mono",
     .name = "$$$/CenterChannelExtract/Mono=Mix to Mono",
     .kind = ParameterKind::kSwitch},
    {.index = kCenterExtractKeepOutside,
     .id = "keepOutside",
     .name = "$$$/CenterChannelExtract/KeepOutside=Keep Frequencies Outside the Range",
     .kind = ParameterKind::kSwitch},
    {.index = kCenterExtractHearRemoved,
     .id = "hearRemoved",
     .name = "$$$/CenterChannelExtract/HearRemoved=Hear What Is Removed",
     .kind = ParameterKind::kSwitch},
    {.index = kCenterExtractPresentLow,
     .id = "presentLow",
     .name = "$$$/CenterChannelExtract/PresentLow=Start of the Range",
     .unit = "Hz",
     .decimals = 0,
     .scale = ParameterScale::kNyquist,
     .flags = kParameterNotAutomatable | kParameterReadOnly},
    {.index = kCenterExtractPresentHigh,
     .id = "presentHigh",
     .name = "$$$/CenterChannelExtract/PresentHigh=End of the Range",
     .unit = "Hz",
     .defaultValue = kHighestFrequency,
     .decimals = 0,
     .scale = ParameterScale::kNyquist,
     .flags = kParameterNotAutomatable | kParameterReadOnly},
};

constexpr std::size_t kNamedRanges = 3;
// In hertz: the voices from their lowest tones to the sibilants, the bass to the tones that tell its notes.
constexpr std::pair<float, float> kRanges[kNamedRanges] = {{80, 8000}, {150, 10000}, {20, 300}};

constexpr double kCost = 30;      // of comparing the spectra, in transforms
constexpr std::size_t kGroup = 8; // bins

// The square root of the window, so that it stands once before and once behind the transform.
std::vector<float> AnalysisWindow(WindowKind kind, std::size_t frame) {
    std::vector<float> window(frame);
    for (std::size_t i = 0; i < frame; ++i) {
        const double place = 2 * (static_cast<double>(i) + 0.5) / static_cast<double>(frame) - 1;
        window[i] = static_cast<float>(std::sqrt(std::max(0.0, WindowAt(kind, place))));
    }
    return window;
}

// What brings overlapping frames back to the sound, whatever the window (Griffin and Lim, "Signal estimation from
// modified short-time Fourier transform", 1984).
std::vector<float> SynthesisWindow(const std::vector<float>& analysis, std::size_t hop, std::size_t transform) {
    std::vector<float> window(transform);
    for (std::size_t offset = 0; offset < hop; ++offset) {
        double sum = 0;
        for (std::size_t i = offset; i < analysis.size(); i += hop)
            sum += double{analysis[i]} * analysis[i];
        for (std::size_t i = offset; i < analysis.size(); i += hop)
            window[i] = static_cast<float>(analysis[i] / sum);
    }
    return window;
}

// 1 up to `inner`, 0 from `outer` on, without a kink between them.
float Within(float distance, float inner, float outer) noexcept {
    if (distance <= inner) return 1;
    if (distance >= outer) return 0;
    return 0.5F + 0.5F * std::cos(kPi * (distance - inner) / (outer - inner));
}

} // namespace

CenterChannelExtract::CenterChannelExtract()
    : ComponentBase(kCenterChannelExtractComponentID, std::move(ParameterTable().Add(kRows))) {
    StorePresentBand();
}

CenterChannelExtract::~CenterChannelExtract() = default;

void CenterChannelExtract::OnParametersChanged(ParameterIndices /*changed*/) {
    StorePresentBand();
}

void CenterChannelExtract::PrepareProcessing(std::size_t /*maximumBlock*/) {
    StorePresentBand();
    const std::size_t channels = GetNumberOfInputChannels();
    fOthers.clear();
    fLatency = 0;
    if (channels < kStereo) return;
    const std::size_t size = kSmallestSize << Item(kCenterExtractSize);
    const auto overlaps = static_cast<std::size_t>(std::lround(Natural(kCenterExtractOverlaps)));
    const std::size_t hop = size / overlaps;
    const OverlapAdd::Layout layout{.transform = size, .frame = hop * overlaps, .hop = hop};
    const std::vector<float> analysis =
        AnalysisWindow(kWindows[static_cast<std::size_t>(Item(kCenterExtractWindow))], layout.frame);
    fSteps = PacedSteps::CountFor(hop);
    fTransform.Prepare(kStereo, layout, std::array{OverlapAdd::Work{.steps = fSteps, .cost = kCost}}, analysis,
                       SynthesisWindow(analysis, hop, size));
    fLatency = fTransform.Latency();
    fHertzPerBin = GetSampleRate() / static_cast<float>(size);
    fFrameSeconds = static_cast<float>(hop) / GetSampleRate();
    fShares.assign(size / 2 + 1, 0.0F);
    fOthers.assign(channels - kStereo, std::vector<float>(fLatency));
}

void CenterChannelExtract::ResetProcessing() noexcept {
    if (fLatency == 0) return;
    fTransform.Reset();
    std::ranges::fill(fShares, 0.0F);
    for (auto& ring : fOthers)
        std::ranges::fill(ring, 0.0F);
    fOthersPosition = 0;
}

// Frames overlap, so that what changes from one to the next is faded.
void CenterChannelExtract::ReadParameters(bool /*settle*/) noexcept {
    const auto decay = static_cast<float>(SecondsOfMilliseconds(Natural(kCenterExtractDecay)));
    fSettings = {.place = ReadPlace(),
                 .band = ReadBand(),
                 .phaseEdge = ReadEdge(kCenterExtractPhaseDiscrimination, kPi / kHalfTurn),
                 .panEdge = ReadEdge(kCenterExtractAmplitudeDiscrimination, static_cast<float>(FractionOfPercent(1))),
                 .centerLevel = LevelFrom(kCenterExtractCenterLevel),
                 .sideLevel = LevelFrom(kCenterExtractSideLevel),
                 .bleed = static_cast<float>(FractionOfPercent(Natural(kCenterExtractBleed))),
                 .kept = decay > 0 ? std::exp(-fFrameSeconds / decay) : 0,
                 .isMono = IsOn(kCenterExtractMono),
                 .keepsOutside = IsOn(kCenterExtractKeepOutside),
                 .hearsRemoved = IsOn(kCenterExtractHearRemoved)};
}

void CenterChannelExtract::ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept {
    if (fLatency == 0) {
        std::copy_n(block.inputs[0], block.frames, block.outputs[0]);
        return;
    }
    DelayOthers(block);
    fTransform.Process({block.inputs.first(kStereo), block.outputs.first(kStereo), block.frames}, *this);
}

// Bins are dealt out to the steps in small groups: those in the range take more work than those outside.
void CenterChannelExtract::ProcessSpectra(std::span<const Spectrum> spectra, std::size_t step) noexcept {
    const std::size_t bins = fShares.size();
    for (std::size_t begin = kGroup * step; begin < bins; begin += kGroup * fSteps) {
        for (std::size_t bin = begin; bin < std::min(bins, begin + kGroup); ++bin)
            ProcessBin(bin, spectra[0][bin], spectra[1][bin]);
    }
}

void CenterChannelExtract::ProcessBin(std::size_t bin, std::complex<float>& left, std::complex<float>& right) noexcept {
    const auto index = static_cast<float>(bin);
    const float hertz = index * fHertzPerBin;
    const bool isInside = hertz >= fTaken.band.low && hertz <= fTaken.band.high;
    const float turnPerBin = 2 * kPi * fHertzPerBin * fTaken.place.delay;
    const auto turn = std::polar(1.0F, fTaken.place.phase + index * turnPerBin);
    const float found = isInside ? ShareOf(left, right, turn) : 0;
    fShares[bin] = std::max(found, fShares[bin] * fTaken.kept);
    const float level = LevelOf(fShares[bin], isInside);
    left *= level;
    right *= level;
    if (fTaken.isMono) left = right = (left + right) / 2.0F;
}

// How much of a frequency is center. Where one channel is much weaker its phase tells nothing.
float CenterChannelExtract::ShareOf(std::complex<float> left, std::complex<float> right,
                                    std::complex<float> turn) const noexcept {
    const float leftMagnitude = std::abs(left);
    const float rightMagnitude = std::abs(right);
    const float power = leftMagnitude * leftMagnitude + rightMagnitude * rightMagnitude;
    if (!(power > 0)) return 0;
    const float pan = std::atan2(rightMagnitude, leftMagnitude) * 4 / kPi - 1;
    const float byPan = Within(std::abs(pan - fTaken.place.pan), fTaken.panEdge.inner, fTaken.panEdge.outer);
    if (byPan == 0) return 0;
    const float apart = std::abs(std::arg(left * std::conj(right * turn)));
    const float byPhase = Within(apart, fTaken.phaseEdge.inner, fTaken.phaseEdge.outer);
    const float likeness = 2 * leftMagnitude * rightMagnitude / power;
    return byPan * (1 - likeness * (1 - byPhase));
}

float CenterChannelExtract::LevelOf(float share, bool isInside) const noexcept {
    if (!isInside && fTaken.keepsOutside) return fTaken.hearsRemoved ? 0 : 1;
    const float whole = share + fTaken.bleed * (1 - share);
    const float level = whole * fTaken.centerLevel + (1 - whole) * fTaken.sideLevel;
    return fTaken.hearsRemoved ? 1 - level : level;
}

float CenterChannelExtract::LevelFrom(int index) const noexcept {
    const float decibels = Natural(index);
    return decibels <= kLowestLevel ? 0 : std::pow(10.0F, decibels / 20);
}

CenterChannelExtract::Place CenterChannelExtract::ReadPlace() const noexcept {
    switch (Item(kCenterExtractPosition)) {
    case kLeft: return {.pan = -1};
    case kRight: return {.pan = 1};
    case kSurround: return {.phase = kPi};
    case kCustomPosition:
        return {.phase = Natural(kCenterExtractPhase) * kPi / kHalfTurn,
                .pan = static_cast<float>(FractionOfPercent(Natural(kCenterExtractPan))),
                .delay = static_cast<float>(SecondsOfMilliseconds(Natural(kCenterExtractDelay)))};
    default: return {};
    }
}

CenterChannelExtract::Band CenterChannelExtract::ReadBand() const noexcept {
    const float nyquist = GetSampleRate() / 2;
    const int range = Item(kCenterExtractRange);
    if (range == kFullSpectrum) return {0, nyquist};
    if (range == kCustomRange) {
        const auto [low, high] =
            std::minmax({Natural(kCenterExtractLowFrequency), Natural(kCenterExtractHighFrequency)});
        return {low, high};
    }
    const auto [low, high] = kRanges[range];
    return {std::min(low, nyquist), std::min(high, nyquist)};
}

// The crossover is the part of the way to the edge, and as much behind it, that is neither quite center nor quite not.
CenterChannelExtract::Edge CenterChannelExtract::ReadEdge(int index, float unit) const noexcept {
    const float edge = Natural(index) * unit;
    const auto half = static_cast<float>(FractionOfPercent(Natural(kCenterExtractCrossover)));
    return {edge * (1 - half), edge * (1 + half)};
}

void CenterChannelExtract::StorePresentBand() {
    const Band band = ReadBand();
    TellParameter(kCenterExtractPresentLow, band.low);
    TellParameter(kCenterExtractPresentHigh, band.high);
}

void CenterChannelExtract::DelayOthers(const kroaudiofilterhost::AudioFilterBlock& block) noexcept {
    if (fOthers.empty()) return;
    for (std::size_t i = 0; i < block.frames; ++i) {
        for (std::size_t other = 0; other < fOthers.size(); ++other)
            block.outputs[kStereo + other][i] =
                std::exchange(fOthers[other][fOthersPosition], block.inputs[kStereo + other][i]);
        fOthersPosition = fOthersPosition + 1 == fLatency ? 0 : fOthersPosition + 1;
    }
}

} // namespace qoc::components
