#include "qoc/components/Reverb.h"

#include "qoc/components/ComponentIDs.h"
#include "qoc/components/ParameterIndices.h"
#include "qoc/dsp/reverb/ReverbFigures.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qoc::components {

namespace {

constexpr float kLongestDecay = 20000;   // milliseconds
constexpr float kLongestPredelay = 2000; // milliseconds

constexpr ParameterRow kRows[] = {
    {.index = kReverbDecay,
     .id = "decay",
     .name = "$$$/Reverb/Decay=Decay Time",
     .unit = "ms",
     .lo = 100,
     .hi = kLongestDecay,
     .defaultValue = 1500,
     .decimals = 0},
    {.index = kReverbPredelay,
     .id = "predelay",
     .name = "$$$/Reverb/Predelay=Pre-Delay Time",
     .unit = "ms",
     .hi = kLongestPredelay,
     .defaultValue = 20,
     .decimals = 0},
    {.index = kReverbDiffusion,
     .id = "diffusion",
     .name = "$$$/Reverb/Diffusion=Diffusion",
     .unit = "%",
     .hi = 100,
     .defaultValue = 80,
     .decimals = 0},
    {.index = kReverbPerception,
     .id = "perception",
     .name = "$$$/Reverb/Perception=Perception",
     .unit = "%",
     .hi = 100,
     .defaultValue = 20,
     .decimals = 0},
    {.index = kReverbDry,
     .id = "dry",
     .name = "$$$/Reverb/Dry=Dry Level",
     .unit = "%",
     .hi = 100,
     .defaultValue = 100,
     .decimals = 1},
    {.index = kReverbWet,
     .id = "wet",
     .name = "$$$/Reverb/Wet=Wet Level",
     .unit = "%",
     .hi = 100,
     .defaultValue = 35,
     .decimals = 1},
    {.index = kReverbSumInputs, .id = "sum", .name = "$$$/Reverb/SumInputs=Sum Inputs", .kind = ParameterKind::kSwitch},
    {.index = kReverbLength,
     .id = "length",
     .name = "$$$/Reverb/Length=Reverberation Length",
     .unit = "s",
     .hi = 22,
     .defaultValue = 1.52F,
     .flags = kParameterNotAutomatable | kParameterReadOnly},
    {.index = kReverbDirectRatio,
     .id = "directratio",
     .name = "$$$/Reverb/DirectRatio=Direct to Reverberant Ratio",
     .unit = "dB",
     .lo = -kMostDirectRatio,
     .hi = kMostDirectRatio,
     .defaultValue = 9.12F,
     .decimals = 1,
     .flags = kParameterNotAutomatable | kParameterReadOnly},
};

} // namespace

Reverb::Reverb() : ComponentBase(kReverbComponentID, std::move(ParameterTable().Add(kRows))) {
    Tell();
}

Reverb::~Reverb() = default;

std::size_t Reverb::Tail() const noexcept {
    const double seconds =
        SecondsOfMilliseconds(Natural(kReverbPredelay)) + AudibleSeconds(SecondsOfMilliseconds(Natural(kReverbDecay)));
    return static_cast<std::size_t>(std::ceil(seconds * GetSampleRate()));
}

void Reverb::OnParametersChanged(ParameterIndices /*changed*/) {
    Tell();
}

void Reverb::PrepareProcessing(std::size_t /*maximumBlock*/) {
    const double sampleRate = GetSampleRate();
    fRoom.Prepare(sampleRate, GetInputBuses().front().GetLayout());
    fPredelay.Prepare(sampleRate, fRoom.size(),
                      static_cast<std::size_t>(std::ceil(SecondsOfMilliseconds(kLongestPredelay) * sampleRate)));
    fTank.Prepare(sampleRate, fRoom.size());
    fDry.Prepare(sampleRate);
    fWet.Prepare(sampleRate);
    fSound.assign(fRoom.size(), {});
}

void Reverb::ResetProcessing() noexcept {
    fPredelay.Reset();
    fTank.Reset();
}

void Reverb::ReadParameters(bool settle) noexcept {
    fDry.Set(FractionOfPercent(Natural(kReverbDry)), settle);
    fWet.Set(FractionOfPercent(Natural(kReverbWet)), settle);
    fRoom.SetSums(IsOn(kReverbSumInputs), settle);
    fPredelay.Set(
        static_cast<std::size_t>(std::lround(SecondsOfMilliseconds(Natural(kReverbPredelay)) * GetSampleRate())),
        settle);
    const double decay = SecondsOfMilliseconds(Natural(kReverbDecay));
    fTank.Set({.decay = decay,
               .meanLength = MeanLineLength(decay),
               .diffusion = FractionOfPercent(Natural(kReverbDiffusion)),
               .mixing = 1 - FractionOfPercent(Natural(kReverbPerception))},
              settle);
}

void Reverb::ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept {
    for (std::size_t begin = 0, frames = 0; begin < block.frames; begin += frames) {
        frames = fTank.Within(std::min(kPieceFrames, block.frames - begin));
        Take(block, begin, frames);
        fPredelay.Process(fSound, frames);
        fTank.Process(fSound, frames);
        Add(block, begin, frames);
    }
}

void Reverb::Take(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t begin, std::size_t frames) noexcept {
    fRoom.Take(block, begin, frames, fSound);
    SoundPiece dry;
    fDry.Next(std::span(dry).first(frames));
    for (std::size_t channel = 0; channel < block.outputs.size(); ++channel) {
        float* const output = block.outputs[channel] + begin;
        for (std::size_t i = 0; i < frames; ++i)
            output[i] = dry[i] * fRoom.Dry(channel)[i];
    }
}

void Reverb::Add(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t begin, std::size_t frames) noexcept {
    SoundPiece wet;
    fWet.Next(std::span(wet).first(frames));
    for (std::size_t k = 0; k < fSound.size(); ++k) {
        float* const output = block.outputs[fRoom.Channels()[k]] + begin;
        for (std::size_t i = 0; i < frames; ++i)
            output[i] += wet[i] * fSound[k][i];
    }
}

void Reverb::Tell() noexcept {
    TellParameter(kReverbLength, SecondsOfMilliseconds(Natural(kReverbPredelay) + Natural(kReverbDecay)));
    TellParameter(kReverbDirectRatio, DirectRatio(Natural(kReverbDry), Natural(kReverbWet)));
}

} // namespace qoc::components
