#include "qoc/components/FullReverb.h"

#include "qoc/components/ComponentIDs.h"
#include "qoc/components/ParameterIndices.h"
#include "qoc/dsp/filters/MatchedDesign.h"
#include "qoc/dsp/reverb/ReverbFigures.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qoc::components {

namespace {

constexpr float kShortestDecay = 100; // milliseconds
constexpr float kLongestDecay = 20000;
constexpr float kLongestPredelay = 2000;

constexpr ParameterRow PercentRow(int index, const char* id, const char* name, float defaultValue, float lo = 0) {
    return {.index = index,
            .id = id,
            .name = name,
            .unit = "%",
            .lo = lo,
            .hi = 100,
            .defaultValue = defaultValue,
            .decimals = 0};
}

constexpr ParameterRow FrequencyRow(int index, const char* id, const char* name, float defaultValue) {
    return {.index = index,
            .id = id,
            .name = name,
            .unit = "Hz",
            .lo = 20,
            .hi = 20000,
            .defaultValue = defaultValue,
            .decimals = 0};
}

constexpr ParameterRow GainRow(int index, const char* id, const char* name) {
    return {.index = index, .id = id, .name = name, .unit = "dB", .lo = -24, .hi = 24, .decimals = 1};
}

constexpr ParameterRow SwitchRow(int index, const char* id, const char* name) {
    return {.index = index, .id = id, .name = name, .kind = ParameterKind::kSwitch};
}

constexpr ParameterRow ToldRow(int index, const char* id, const char* name, const char* unit, float lo, float hi,
                               float defaultValue) {
    return {.index = index,
            .id = id,
            .name = name,
            .unit = unit,
            .lo = lo,
            .hi = hi,
            .defaultValue = defaultValue,
            .decimals = 1,
            .flags = kParameterNotAutomatable | kParameterReadOnly};
}

constexpr ParameterRow kRows[] = {
    {.index = kFullReverbDecay,
     .id = "decay",
     .name = "$$$/FullReverb/Decay=Decay Time",
     .unit = "ms",
     .lo = kShortestDecay,
     .hi = kLongestDecay,
     .defaultValue = 1500,
     .decimals = 0},
    {.index = kFullReverbPredelay,
     .id = "predelay",
     .name = "$$$/FullReverb/Predelay=Pre-Delay Time",
     .unit = "ms",
     .hi = kLongestPredelay,
     .defaultValue = 25,
     .decimals = 0},
    PercentRow(kFullReverbDiffusion, "diffusion", "$$$/FullReverb/Diffusion=Diffusion", 80),
    PercentRow(kFullReverbPerception, "perception", "$$$/FullReverb/Perception=Perception", 20),
    {.index = kFullReverbRoomSize,
     .id = "roomsize",
     .name = "$$$/FullReverb/RoomSize=Room Size",
     .unit = "m#{cubed}",
     .lo = 10,
     .hi = 30000,
     .defaultValue = 1500,
     .decimals = 0},
    {.index = kFullReverbDimension,
     .id = "dimension",
     .name = "$$$/FullReverb/Dimension=Width to Depth Ratio",
     .lo = 0.25F,
     .hi = 4,
     .defaultValue = 0.75F},
    PercentRow(kFullReverbLocation, "location", "$$$/FullReverb/Location=Left or Right Location", 0, -100),
    PercentRow(kFullReverbDistance, "distance", "$$$/FullReverb/Distance=Source Distance", 60),
    {.index = kFullReverbHighPass,
     .id = "highpass",
     .name = "$$$/FullReverb/HighPass=High-Pass Cutoff",
     .unit = "Hz",
     .lo = 20,
     .hi = 500,
     .defaultValue = 80,
     .decimals = 0},
    FrequencyRow(kFullReverbLowFrequency, "lowfrequency", "$$$/FullReverb/LowFrequency=Low Shelf Frequency", 200),
    GainRow(kFullReverbLowGain, "lowgain", "$$$/FullReverb/LowGain=Low Shelf Gain"),
    FrequencyRow(kFullReverbMiddleFrequency, "middlefrequency", "$$$/FullReverb/MiddleFrequency=Peak Frequency", 1000),
    GainRow(kFullReverbMiddleGain, "middlegain", "$$$/FullReverb/MiddleGain=Peak Gain"),
    {.index = kFullReverbMiddleQ,
     .id = "middleq",
     .name = "$$$/FullReverb/MiddleQ=Peak Q",
     .lo = 0.1F,
     .hi = 10,
     .defaultValue = 0.7F},
    FrequencyRow(kFullReverbHighFrequency, "highfrequency", "$$$/FullReverb/HighFrequency=High Shelf Frequency", 5000),
    GainRow(kFullReverbHighGain, "highgain", "$$$/FullReverb/HighGain=High Shelf Gain"),
    PercentRow(kFullReverbDry, "dry", "$$$/FullReverb/Dry=Dry Level", 100),
    PercentRow(kFullReverbReverberation, "reverberation", "$$$/FullReverb/Reverberation=Reverberation Level", 30),
    PercentRow(kFullReverbEarly, "early", "$$$/FullReverb/Early=Early Reflections Level", 30),
    SwitchRow(kFullReverbSetByRoom, "setbyroom", "$$$/FullReverb/SetByRoom=Set Reverberation by Room"),
    SwitchRow(kFullReverbIncludeDirect, "includedirect", "$$$/FullReverb/IncludeDirect=Include Direct Sound"),
    SwitchRow(kFullReverbSumInputs, "sum", "$$$/FullReverb/SumInputs=Sum Inputs"),
    ToldRow(kFullReverbRoomWidth, "roomwidth", "$$$/FullReverb/RoomWidth=Room Width", "m", 0, 100, 12.8F),
    ToldRow(kFullReverbRoomDepth, "roomdepth", "$$$/FullReverb/RoomDepth=Room Depth", "m", 0, 100, 17.1F),
    ToldRow(kFullReverbRoomHeight, "roomheight", "$$$/FullReverb/RoomHeight=Room Height", "m", 0, 20, 6.9F),
    ToldRow(kFullReverbRoomDecay, "roomdecay", "$$$/FullReverb/RoomDecay=Decay Time of the Room", "ms", kShortestDecay,
            kLongestDecay, 1429),
    ToldRow(kFullReverbRoomPredelay, "roompredelay", "$$$/FullReverb/RoomPredelay=Pre-Delay Time of the Room", "ms", 0,
            kLongestPredelay, 20.7F),
    ToldRow(kFullReverbFirstReflection, "firstreflection", "$$$/FullReverb/FirstReflection=First Reflection", "ms", 0,
            500, 1.4F),
};

constexpr double kWallAbsorption = 0.2; // of a room that is neither bare nor furnished to be dry
constexpr double kLinesOfRoom = 5;      // mean length of the tank's lines against the way from wall to wall
constexpr double kShortestLines = 0.01; // seconds

} // namespace

FullReverb::FullReverb() : RoomReverb(kFullReverbComponentID, std::move(ParameterTable().Add(kRows))) {
    TellRoom();
}

FullReverb::~FullReverb() = default;

std::size_t FullReverb::Tail() const noexcept {
    const double seconds = std::max(Predelay() + AudibleSeconds(Decay()), EarlyReflections::kLongestSeconds);
    constexpr double kDecayed = 1e-3; // 60 dB
    const double equaliser = BiquadCoefficients::DecaySamples(EqualiserOfParameters(), kDecayed);
    return static_cast<std::size_t>(std::ceil(seconds * GetSampleRate() + equaliser));
}

bool FullReverb::GetResponseCurve(int index, std::size_t size, std::vector<float>& values) const {
    if (index != 0 || size == 0) return false;
    const double sampleRate = GetSampleRate();
    const kroaudiofilterhost::FrequencyAxis axis{kCurveStart, std::min(kCurveEnd, sampleRate / 2), true};
    const Equaliser sections = EqualiserOfParameters();
    values.resize(size);
    for (std::size_t i = 0; i < size; ++i) {
        const ResponsePoint point(sampleRate, axis.HertzAt(i, size));
        values[i] = static_cast<float>(10 * std::log10(BiquadCoefficients::MagnitudeSquared(sections, point)));
    }
    return true;
}

void FullReverb::OnParametersChanged(ParameterIndices /*changed*/) {
    TellRoom();
}

void FullReverb::PrepareProcessing(std::size_t maximumBlock) {
    RoomReverb::PrepareProcessing(maximumBlock);
    const double sampleRate = GetSampleRate();
    fPredelay.Prepare(sampleRate, fRoom.size(),
                      static_cast<std::size_t>(std::ceil(SecondsOfMilliseconds(kLongestPredelay) * sampleRate)));
    fHighPass.Prepare(sampleRate, fRoom.size(), 1);
    fEqualiser.Prepare(sampleRate, fRoom.size(), Equaliser().size());
    fReverberation.Prepare(sampleRate);
}

void FullReverb::ResetProcessing() noexcept {
    RoomReverb::ResetProcessing();
    fPredelay.Reset();
    fHighPass.Reset();
    fEqualiser.Reset();
}

void FullReverb::ReadParameters(bool settle) noexcept {
    ReadLevels(settle);
    ReadRoom(settle);
    fHighPass.Set(MatchedDesign::HighPass(GetSampleRate(), Natural(kFullReverbHighPass), 2), settle);
    fEqualiser.Set(EqualiserOfParameters(), settle);
}

void FullReverb::Reverberate(std::span<SoundPiece> sound, std::size_t frames) noexcept {
    fPredelay.Process(sound, frames);
    fTank.Process(sound, frames);
}

void FullReverb::Mix(std::span<SoundPiece> wet, std::span<const SoundPiece> direct,
                     std::span<const SoundPiece> reflected, std::size_t frames) noexcept {
    for (std::size_t i = 0; i < frames; ++i) {
        fHighPass.Advance();
        fEqualiser.Advance();
        const float reverberation = fReverberation.Next();
        for (std::size_t k = 0; k < wet.size(); ++k) {
            const double sound = reverberation * wet[k][i] + fHighPass.Process(k, reflected[k][i]);
            wet[k][i] = direct[k][i] + static_cast<float>(fEqualiser.Process(k, sound));
        }
    }
}

void FullReverb::TellRoom() noexcept {
    const Room room = RoomOfParameters();
    TellParameter(kFullReverbRoomWidth, room.width);
    TellParameter(kFullReverbRoomDepth, room.depth);
    TellParameter(kFullReverbRoomHeight, room.height);
    TellParameter(kFullReverbRoomDecay, MillisecondsOfSeconds(room.DecayTime(kWallAbsorption)));
    TellParameter(kFullReverbRoomPredelay, MillisecondsOfSeconds(room.MeanFreeTime()));

    const RoomPlace source = SourceIn(room);
    const RoomPlace listener = room.Listener();
    double nearest = room.width + room.depth + room.height;
    for (const RoomImage& image : room.Images(source)) {
        if (image.reflections == 1) nearest = std::min(nearest, image.place.DistanceTo(listener));
    }
    const double seconds = (nearest - source.DistanceTo(listener)) / Room::kSpeedOfSound;
    TellParameter(kFullReverbFirstReflection, MillisecondsOfSeconds(seconds));
}

Room FullReverb::RoomOfParameters() const noexcept {
    return Room::OfVolume(Natural(kFullReverbRoomSize), Natural(kFullReverbDimension));
}

RoomPlace FullReverb::SourceIn(const Room& room) const noexcept {
    return room.Source(FractionOfPercent(Natural(kFullReverbLocation)),
                       FractionOfPercent(Natural(kFullReverbDistance)));
}

double FullReverb::Decay() const noexcept {
    return SecondsOfMilliseconds(Natural(IsOn(kFullReverbSetByRoom) ? kFullReverbRoomDecay : kFullReverbDecay));
}

double FullReverb::Predelay() const noexcept {
    return SecondsOfMilliseconds(Natural(IsOn(kFullReverbSetByRoom) ? kFullReverbRoomPredelay : kFullReverbPredelay));
}

FullReverb::Equaliser FullReverb::EqualiserOfParameters() const noexcept {
    const double sampleRate = GetSampleRate();
    return {
        MatchedDesign::LowShelf(sampleRate, Natural(kFullReverbLowFrequency), Natural(kFullReverbLowGain), true),
        MatchedDesign::Bell(sampleRate, Natural(kFullReverbMiddleFrequency), Natural(kFullReverbMiddleQ),
                            Natural(kFullReverbMiddleGain)),
        MatchedDesign::HighShelf(sampleRate, Natural(kFullReverbHighFrequency), Natural(kFullReverbHighGain), true)};
}

void FullReverb::ReadLevels(bool settle) noexcept {
    fDry.Set(FractionOfPercent(IsOn(kFullReverbIncludeDirect) ? 0 : Natural(kFullReverbDry)), settle);
    fReverberation.Set(FractionOfPercent(Natural(kFullReverbReverberation)), settle);
    fRoom.SetSums(IsOn(kFullReverbSumInputs), settle);
}

void FullReverb::ReadRoom(bool settle) noexcept {
    const Room room = RoomOfParameters();
    const double decay = Decay();
    fEarly.Set({.room = room,
                .source = SourceIn(room),
                .absorption = room.Absorption(decay),
                .level = FractionOfPercent(Natural(kFullReverbEarly)),
                .directLevel = IsOn(kFullReverbIncludeDirect) ? FractionOfPercent(Natural(kFullReverbDry)) : 0,
                .isOneSource = IsOn(kFullReverbSumInputs)},
               settle);
    fPredelay.Set(static_cast<std::size_t>(std::lround(Predelay() * GetSampleRate())), settle);
    const double diffusion = FractionOfPercent(Natural(kFullReverbDiffusion));
    const double lines = std::max(kLinesOfRoom * room.MeanFreeTime(), kShortestLines);
    const double mean = std::min(lines, MeanLineLength(decay));
    fTank.Set({.decay = decay,
               .meanLength = mean,
               .diffusion = diffusion,
               .mixing = 1 - FractionOfPercent(Natural(kFullReverbPerception))},
              settle);
    fScatter.Set({.diffusion = diffusion, .spread = ReverbTank::SpreadOf(mean)}, settle);
}

} // namespace qoc::components
