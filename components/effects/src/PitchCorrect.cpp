#include "qoc/components/PitchCorrect.h"

#include "qoc/components/ComponentIDs.h"
#include "qoc/components/ParameterIndices.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qoc::components {

namespace {

constexpr std::size_t kNotesPerOctave = 12;
constexpr float kStereo = 2;

constexpr const char* kSizeNames[] = {"1024", "2048", "4096"};
constexpr std::size_t kFrames[] = {1024, 2048, 4096};

// Downwards from D: item i is the note (2 - i) modulo 12.
constexpr int kFirstKey = 2;
constexpr const char* kKeyNames[kNotesPerOctave] = {"D", "C#", "C", "B", "A#", "A", "G#", "G", "F#", "F", "E", "D#"};
constexpr float kKeyOfC = 2; // the item

constexpr const char* kScaleNames[] = {
    "$$$/PitchCorrect/Major=Major",
    "$$$/PitchCorrect/Minor=Minor",
    "$$$/PitchCorrect/Chromatic=Chromatic",
};

constexpr ParameterRow kRows[] = {
    // Channel c of n lies at c...c + 1 of a range that ends at n.
    {.index = kPitchCorrectChannel,
     .id = "channel",
     .name = "$$$/PitchCorrect/Channel=Channel",
     .hi = kStereo,
     .defaultValue = 0,
     .decimals = 1,
     .flags = kParameterNotAutomatable},
    {.index = kPitchCorrectFFTSize,
     .id = "fftSize",
     .name = "$$$/PitchCorrect/FFTSize=FFT Size",
     .hi = 2,
     .defaultValue = 1,
     .kind = ParameterKind::kChoice,
     .flags = kParameterNotAutomatable | kParameterNeedsPrepare,
     .items = kSizeNames},
    {.index = kPitchCorrectCalibration,
     .id = "calibration",
     .name = "$$$/PitchCorrect/Calibration=Calibration",
     .unit = "Hz",
     .lo = 410,
     .hi = 470,
     .defaultValue = 440,
     .decimals = 1,
     .flags = kParameterNotAutomatable},
    // The stored value of an item is the middle of its twelfth.
    {.index = kPitchCorrectKey,
     .id = "key",
     .name = "$$$/PitchCorrect/Key=Key",
     .lo = -0.5F,
     .hi = 11.5F,
     .defaultValue = kKeyOfC,
     .kind = ParameterKind::kChoice,
     .items = kKeyNames},
    {.index = kPitchCorrectScale,
     .id = "scale",
     .name = "$$$/PitchCorrect/Scale=Scale",
     .hi = 2,
     .defaultValue = 0,
     .kind = ParameterKind::kChoice,
     .items = kScaleNames},
    {.index = kPitchCorrectSensitivity,
     .id = "sensitivity",
     .name = "$$$/PitchCorrect/Sensitivity=Sensitivity",
     .unit = "%",
     .lo = 0,
     .hi = 100,
     .defaultValue = 50,
     .decimals = 1},
    {.index = kPitchCorrectAttack,
     .id = "attack",
     .name = "$$$/PitchCorrect/Attack=Attack",
     .unit = "ms",
     .lo = 500, // from slow to fast, as panels show it
     .hi = 0.5F,
     .defaultValue = 50,
     .decimals = 1},
    {.index = kPitchCorrectCorrection,
     .id = "correction",
     .name = "$$$/PitchCorrect/Correction=Correction",
     .lo = 0.5F,
     .hi = 2,
     .defaultValue = 1,
     .decimals = 4,
     .scale = ParameterScale::kLogarithmic,
     .flags = kParameterNotAutomatable | kParameterReadOnly},
};

constexpr std::size_t kScaleCount = std::size(kScaleNames);
constexpr std::size_t kSizeCount = std::size(kFrames);
constexpr std::size_t kLargestFrame = kFrames[2];
// Room for the longest latency, a grain moved by the longest period, and its sinc.
constexpr std::size_t kHistory = 2 * kLargestFrame;
constexpr std::size_t kHopsPerFrame = 4;

// Sound without pitch is cut into grains of this length, so that a voice is taken up quickly.
constexpr double kPlainGrain = 0.005; // seconds

constexpr double kNoteOfCalibration = 69;
constexpr double kCentsPerOctave = 1200;
// Steps of the shown correction, in cents.
constexpr double kShownStep = 0.01;

std::size_t LatencyOf(std::size_t frame) {
    return frame / 2 + frame / kHopsPerFrame;
}

} // namespace

PitchCorrect::PitchCorrect()
    : ComponentBase(kPitchCorrectComponentID, std::move(ParameterTable().Add(kRows))), fDetectors{PitchDetector(1024),
                                                                                                  PitchDetector(2048),
                                                                                                  PitchDetector(4096)},
      fLatency(LatencyOf(2048)) {
}

PitchCorrect::~PitchCorrect() = default;

std::size_t PitchCorrect::Tail() const noexcept {
    return kLargestFrame / 2;
}

void PitchCorrect::PrepareProcessing(std::size_t /*maximumBlock*/) {
    const std::size_t channels = GetNumberOfInputChannels();
    MutableInfo(kPitchCorrectChannel)->SetHiBound(static_cast<float>(channels));
    fLatency = LatencyOf(fDetectors[Part(kPitchCorrectFFTSize, kSizeCount)].FrameSize());
    fHistory.Prepare(channels, kHistory);
    fShifter.Prepare(fLatency);
}

void PitchCorrect::ResetProcessing() noexcept {
    fHistory.Reset();
    fTrack.Reset();
    fCorrector.Reset();
    fShifter.Reset();
    fCorrection = 0;
    StoreCorrection();
}

void PitchCorrect::ReadParameters(bool /*settle*/) noexcept {
    fChannel = Part(kPitchCorrectChannel, GetNumberOfInputChannels());
    fSize = Part(kPitchCorrectFFTSize, kSizeCount);
    fCalibration = Natural(kPitchCorrectCalibration);
    const int key = kFirstKey - static_cast<int>(Part(kPitchCorrectKey, kNotesPerOctave));
    fCorrector.SetScale(static_cast<MusicalScale>(Part(kPitchCorrectScale, kScaleCount)), key);
    fCorrector.SetSensitivity(Natural(kPitchCorrectSensitivity));
    fCorrector.SetAttack(SecondsOfMilliseconds(Natural(kPitchCorrectAttack)) * GetSampleRate());
}

void PitchCorrect::ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept {
    for (std::size_t done = 0; done < block.frames;) {
        while (fShifter.FramesUntilMark() == 0)
            StartGrain();
        const std::size_t frames = std::min(
            {block.frames - done, fShifter.FramesUntilMark(), FramesUntilAnalysis(), PsolaShifter::kLargestRender});
        fHistory.Write(block.inputs, done, frames);
        fShifter.Render(fHistory, block.outputs, done, frames);
        if (FramesUntilAnalysis() == Hop()) Analyse();
        done += frames;
    }
    StoreCorrection();
}

std::size_t PitchCorrect::Part(int index, std::size_t parts) const noexcept {
    const double value = StoredParameter(static_cast<std::size_t>(index));
    const auto count = static_cast<double>(parts);
    return static_cast<std::size_t>(std::clamp(value * count, 0.0, count - 1));
}

std::size_t PitchCorrect::Hop() const noexcept {
    return Detector().FrameSize() / kHopsPerFrame;
}

std::size_t PitchCorrect::FramesUntilAnalysis() const noexcept {
    return Hop() - static_cast<std::size_t>(fHistory.Now()) % Hop();
}

void PitchCorrect::Analyse() noexcept {
    const std::size_t size = Detector().FrameSize();
    const std::int64_t start = fHistory.Now() - static_cast<std::int64_t>(size);
    const auto pitch = fDetectors[fSize].Detect({fHistory.At(fChannel, start), size}, GetSampleRate());
    if (pitch)
        fTrack.Add(static_cast<double>(start) + pitch->time, pitch->period);
    else
        fTrack.Add(static_cast<double>(start) + static_cast<double>(size) / 2, std::nullopt);
}

void PitchCorrect::StartGrain() noexcept {
    const double rate = GetSampleRate();
    const double elapsed = fShifter.MarkDistance();
    const auto sounding = static_cast<double>(fHistory.Now() - static_cast<std::int64_t>(fLatency));
    std::optional<double> period = fTrack.PeriodAt(sounding);
    // The grain's mark lies a period ahead: the middle of the way there counts.
    if (period) period = fTrack.PeriodAt(sounding + *period / 2);
    if (!period) {
        fCorrection = fCorrector.Advance(std::nullopt, elapsed);
        fShifter.StartPlainGrain(kPlainGrain * rate);
        return;
    }
    const double pitch =
        kNoteOfCalibration + static_cast<double>(kNotesPerOctave) * std::log2(rate / *period / fCalibration);
    fCorrection = fCorrector.Advance(pitch, elapsed);
    fShifter.StartGrain(fHistory, fChannel, *period, std::exp2(fCorrection / kCentsPerOctave));
}

void PitchCorrect::StoreCorrection() noexcept {
    const double shown = std::round(fCorrection / kShownStep) * kShownStep;
    if (shown == fStoredCorrection) return;
    fStoredCorrection = shown;
    const auto ratio = static_cast<float>(std::exp2(shown / kCentsPerOctave));
    StoreParameter(kPitchCorrectCorrection, GetParameterInfo(kPitchCorrectCorrection)->ToNormalised(ratio));
}

} // namespace qoc::components
