#include "qoc/components/StudioReverb.h"

#include "qoc/components/ComponentIDs.h"
#include "qoc/components/ParameterIndices.h"
#include "qoc/dsp/filters/MatchedDesign.h"
#include "qoc/dsp/reverb/ReverbFigures.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace qoc::components {

namespace {

constexpr ParameterRow kRows[] = {
    {.index = kStudioReverbRoomSize,
     .id = "roomsize",
     .name = "$$$/StudioReverb/RoomSize=Room Size",
     .unit = "%",
     .hi = 100,
     .defaultValue = 50,
     .decimals = 0},
    {.index = kStudioReverbDecay,
     .id = "decay",
     .name = "$$$/StudioReverb/Decay=Decay Time",
     .unit = "ms",
     .lo = 100,
     .hi = 20000,
     .defaultValue = 1800,
     .decimals = 0},
    {.index = kStudioReverbEarly,
     .id = "early",
     .name = "$$$/StudioReverb/Early=Early Reflections",
     .unit = "%",
     .hi = 100,
     .defaultValue = 30,
     .decimals = 0},
    {.index = kStudioReverbWidth,
     .id = "width",
     .name = "$$$/StudioReverb/Width=Stereo Width",
     .unit = "%",
     .hi = 100,
     .defaultValue = 100,
     .decimals = 0},
    {.index = kStudioReverbHighCut,
     .id = "highcut",
     .name = "$$$/StudioReverb/HighCut=High Frequency Cut",
     .unit = "Hz",
     .lo = 500,
     .hi = 20000,
     .defaultValue = 12000,
     .decimals = 0},
    {.index = kStudioReverbLowCut,
     .id = "lowcut",
     .name = "$$$/StudioReverb/LowCut=Low Frequency Cut",
     .unit = "Hz",
     .lo = 20,
     .hi = 1000,
     .defaultValue = 60,
     .decimals = 0},
    {.index = kStudioReverbDamping,
     .id = "damping",
     .name = "$$$/StudioReverb/Damping=Damping",
     .unit = "%",
     .hi = 100,
     .defaultValue = 40,
     .decimals = 0},
    {.index = kStudioReverbDiffusion,
     .id = "diffusion",
     .name = "$$$/StudioReverb/Diffusion=Diffusion",
     .unit = "%",
     .hi = 100,
     .defaultValue = 90,
     .decimals = 0},
    {.index = kStudioReverbDry,
     .id = "dry",
     .name = "$$$/StudioReverb/Dry=Dry Level",
     .unit = "%",
     .hi = 100,
     .defaultValue = 100,
     .decimals = 1},
    {.index = kStudioReverbWet,
     .id = "wet",
     .name = "$$$/StudioReverb/Wet=Wet Level",
     .unit = "%",
     .hi = 100,
     .defaultValue = 35,
     .decimals = 1},
    {.index = kStudioReverbLength,
     .id = "length",
     .name = "$$$/StudioReverb/Length=Reverberation Length",
     .unit = "s",
     .hi = 22,
     .defaultValue = 1.8F,
     .flags = kParameterNotAutomatable | kParameterReadOnly},
    {.index = kStudioReverbDirectRatio,
     .id = "directratio",
     .name = "$$$/StudioReverb/DirectRatio=Direct to Reverberant Ratio",
     .unit = "dB",
     .lo = -kMostDirectRatio,
     .hi = kMostDirectRatio,
     .defaultValue = 9.12F,
     .decimals = 1,
     .flags = kParameterNotAutomatable | kParameterReadOnly},
};

// From a closet to a hall.
constexpr double kLeastVolume = 8; // cubic metres
constexpr double kMostVolume = 20000;
constexpr double kRoomRatio = 0.8;      // width by depth
constexpr double kSourceLocation = 0.1; // not in the middle, where ways to both sides are alike
constexpr double kSourceDistance = 0.6;

// The tank's lines: those of the decay, or somewhat shorter and longer ones.
constexpr double kLeastLines = 0.6;
constexpr double kMostLines = 1.4;

// The share of the decay time in which the highest frequencies decay at most damping.
constexpr double kMostDamped = 0.1;
constexpr int kCutOrder = 2;
constexpr double kMostOfRate = 0.45; // of the sample rate: beyond it there is nothing to cut

} // namespace

StudioReverb::StudioReverb() : RoomReverb(kStudioReverbComponentID, std::move(ParameterTable().Add(kRows))) {
    Tell();
}

StudioReverb::~StudioReverb() = default;

std::size_t StudioReverb::Tail() const noexcept {
    const double seconds =
        std::max(AudibleSeconds(SecondsOfMilliseconds(Natural(kStudioReverbDecay))), EarlyReflections::kLongestSeconds);
    return static_cast<std::size_t>(std::ceil(seconds * GetSampleRate()));
}

void StudioReverb::OnParametersChanged(ParameterIndices /*changed*/) {
    Tell();
}

void StudioReverb::PrepareProcessing(std::size_t maximumBlock) {
    RoomReverb::PrepareProcessing(maximumBlock);
    const double sampleRate = GetSampleRate();
    fCuts.Prepare(sampleRate, fRoom.size(), 2);
    fWet.Prepare(sampleRate);
    fWidth.Prepare(sampleRate);
}

void StudioReverb::ResetProcessing() noexcept {
    RoomReverb::ResetProcessing();
    fCuts.Reset();
}

void StudioReverb::ReadParameters(bool settle) noexcept {
    fDry.Set(FractionOfPercent(Natural(kStudioReverbDry)), settle);
    fWet.Set(FractionOfPercent(Natural(kStudioReverbWet)), settle);
    fWidth.Set(FractionOfPercent(Natural(kStudioReverbWidth)), settle);
    fRoom.SetSums(false, settle);
    ReadRoom(settle);
    ReadCuts(settle);
}

void StudioReverb::Reverberate(std::span<SoundPiece> sound, std::size_t frames) noexcept {
    fTank.Process(sound, frames);
}

void StudioReverb::Mix(std::span<SoundPiece> wet, std::span<const SoundPiece> /*direct*/,
                       std::span<const SoundPiece> reflected, std::size_t frames) noexcept {
    for (std::size_t i = 0; i < frames; ++i) {
        fCuts.Advance();
        for (std::size_t k = 0; k < wet.size(); ++k)
            wet[k][i] = static_cast<float>(fCuts.Process(k, double{wet[k][i]} + reflected[k][i]));
    }
    if (!fWidth.IsSettled() || fWidth.Target() != 1) {
        SoundPiece width{};
        fWidth.Next(std::span(width).first(frames));
        Widen(wet, width);
    }
    SoundPiece level{};
    fWet.Next(std::span(level).first(frames));
    for (SoundPiece& piece : wet) {
        for (std::size_t i = 0; i < kPieceFrames; ++i)
            piece[i] *= level[i];
    }
}

void StudioReverb::Tell() noexcept {
    TellParameter(kStudioReverbLength, SecondsOfMilliseconds(Natural(kStudioReverbDecay)));
    TellParameter(kStudioReverbDirectRatio, DirectRatio(Natural(kStudioReverbDry), Natural(kStudioReverbWet)));
}

void StudioReverb::ReadRoom(bool settle) noexcept {
    const double size = FractionOfPercent(Natural(kStudioReverbRoomSize));
    const double decay = SecondsOfMilliseconds(Natural(kStudioReverbDecay));
    const Room room = Room::OfVolume(kLeastVolume * std::pow(kMostVolume / kLeastVolume, size), kRoomRatio);
    fEarly.Set({.room = room,
                .source = room.Source(kSourceLocation, kSourceDistance),
                .absorption = room.Absorption(decay),
                .level = FractionOfPercent(Natural(kStudioReverbEarly))},
               settle);
    const double diffusion = FractionOfPercent(Natural(kStudioReverbDiffusion));
    const double mean = MeanLineLength(decay) * (kLeastLines + (kMostLines - kLeastLines) * size);
    fTank.Set({.decay = decay,
               .highDecay = std::pow(kMostDamped, FractionOfPercent(Natural(kStudioReverbDamping))),
               .meanLength = mean,
               .diffusion = diffusion,
               .mixing = 1},
              settle);
    fScatter.Set({.diffusion = diffusion, .spread = ReverbTank::SpreadOf(mean)}, settle);
}

void StudioReverb::ReadCuts(bool settle) noexcept {
    const double sampleRate = GetSampleRate();
    const auto hertz = [&](int index) { return std::min<double>(Natural(index), kMostOfRate * sampleRate); };
    const std::array cuts = {
        MatchedDesign::LowPass(sampleRate, hertz(kStudioReverbHighCut), kCutOrder)[0],
        MatchedDesign::HighPass(sampleRate, hertz(kStudioReverbLowCut), kCutOrder)[0],
    };
    fCuts.Set(cuts, settle);
}

// Brings the channels nearer to their mean, and keeps the power of channels that are not correlated.
void StudioReverb::Widen(std::span<SoundPiece> sound, const SoundPiece& width) const noexcept {
    if (sound.size() < 2) return;
    const auto count = static_cast<float>(sound.size());
    SoundPiece mean{};
    for (const SoundPiece& piece : sound) {
        for (std::size_t i = 0; i < kPieceFrames; ++i)
            mean[i] += piece[i];
    }
    for (std::size_t i = 0; i < kPieceFrames; ++i) {
        if (width[i] == 1) continue;
        const float middle = std::sqrt(count - (count - 1) * width[i] * width[i]) * (mean[i] / count);
        for (SoundPiece& piece : sound)
            piece[i] = middle + width[i] * (piece[i] - mean[i] / count);
    }
}

} // namespace qoc::components
