#include "qoc/components/Doppler.h"

#include "qoc/components/ComponentIDs.h"
#include "qoc/components/ParameterIndices.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>
#include <utility>

namespace qoc::components {

namespace {

constexpr const char* kQualities[] = {
    "$$$/DopplerEditorView/QualityLow=Low (fastest)",        "$$$/DopplerEditorView/QualityGood=Good",
    "$$$/DopplerEditorView/QualityVeryGood=Very Good",       "$$$/DopplerEditorView/QualityExcellent=Excellent",
    "$$$/DopplerEditorView/QualityNearPerfect=Near Perfect", "$$$/DopplerEditorView/QualityPerfect=Perfect (slowest)",
};

constexpr ParameterRow kRows[] = {
    // Stored as sixths although there is no seventh item.
    {.index = kDopplerQuality,
     .id = "quality",
     .name = "$$$/Doppler/Quality=Quality",
     .hi = 6,
     .defaultValue = 3,
     .kind = ParameterKind::kChoice,
     .flags = kParameterNotAutomatable,
     .items = kQualities},
    {.index = kDopplerRadius,
     .id = "distance",
     .name = "$$$/Doppler/Distance=Starting Distance or Radius",
     .unit = "m",
     .lo = 0.01F,
     .hi = 100000,
     .defaultValue = 50},
    {.index = kDopplerVelocity,
     .id = "velocity",
     .name = "$$$/Doppler/Velocity=Velocity",
     .unit = "m/s",
     .lo = 0.1F,
     .hi = 355,
     .defaultValue = 25},
    {.index = kDopplerStartingAngle,
     .id = "angle",
     .name = "$$$/Doppler/Angle=Coming From or Starting Angle",
     .unit = "#{deg}",
     .hi = 360,
     .defaultValue = 270},
    {.index = kDopplerCenterFront,
     .id = "front",
     .name = "$$$/Doppler/Front=Center in Front by",
     .unit = "m",
     .lo = -10000,
     .hi = 10000,
     .defaultValue = 10},
    {.index = kDopplerCenterRight,
     .id = "right",
     .name = "$$$/Doppler/Right=Center on Right by",
     .unit = "m",
     .lo = -10000,
     .hi = 10000,
     .defaultValue = 0},
    {.index = kDopplerCircular,
     .id = "circular",
     .name = "$$$/Doppler/Circular=Circular Path",
     .kind = ParameterKind::kSwitch},
    {.index = kDopplerAdjustDistance,
     .id = "adjustdistance",
     .name = "$$$/Doppler/AdjustDistance=Adjust Volume by Distance",
     .defaultValue = 1,
     .kind = ParameterKind::kSwitch},
    {.index = kDopplerAdjustDirection,
     .id = "adjustdirection",
     .name = "$$$/Doppler/AdjustDirection=Adjust Volume by Direction",
     .defaultValue = 1,
     .kind = ParameterKind::kSwitch},
};

constexpr double kFadeSeconds = 0.03;
constexpr double kNearField = 1; // metres: nearer sources are not louder, nor do they jump from ear to ear

// What the moment of emission is known to, in seconds: far below what an interpolator tells apart.
constexpr double kEmissionTolerance = 1e-10;
constexpr int kMostAttempts = 60;

constexpr kromediatypes::AudioChannelLabel kLeftLabels[] = {kromediatypes::kAudioChannelLabelLeft,
                                                            kromediatypes::kAudioChannelLabelLeftSurround,
                                                            kromediatypes::kAudioChannelLabelLeftRearSurround};
constexpr kromediatypes::AudioChannelLabel kRightLabels[] = {kromediatypes::kAudioChannelLabelRight,
                                                             kromediatypes::kAudioChannelLabelRightSurround,
                                                             kromediatypes::kAudioChannelLabelRightRearSurround};

bool IsOneOf(std::span<const kromediatypes::AudioChannelLabel> labels, kromediatypes::AudioChannelLabel label) {
    return std::ranges::find(labels, label) != labels.end();
}

} // namespace

bool Doppler::Scene::SoundsLike(const Scene& other) const noexcept {
    return path.GetShape() == other.path.GetShape() && kind == other.kind && adjustsDistance == other.adjustsDistance &&
           adjustsDirection == other.adjustsDirection;
}

Doppler::Doppler() : ComponentBase(kDopplerComponentID, std::move(ParameterTable().Add(kRows))) {
}

Doppler::~Doppler() = default;

std::size_t Doppler::Tail() const noexcept {
    const Scene scene = ReadScene();
    const double delay = (scene.path.DistanceAt(fDuration) - scene.nearest) / DopplerPath::kSpeedOfSound;
    return static_cast<std::size_t>(std::ceil(std::clamp(delay, 0.0, fLongestDelay) * fSampleRate)) +
           SampleInterpolator::kLargestHalfWidth;
}

void Doppler::PrepareProcessing(std::size_t /*maximumBlock*/) {
    fSampleRate = GetSampleRate();
    TakeDuration();
    fLongestDelay = std::min(kLongestDelay, fDuration);
    const double needed = fLongestDelay * fSampleRate + 2 * static_cast<double>(SampleInterpolator::kMostWeights);
    const std::size_t size = std::bit_ceil(static_cast<std::size_t>(needed));
    fMask = size - 1;
    const kromediatypes::AudioChannelLayout& layout = GetInputBuses().front().GetLayout();
    fLines.assign(layout.size(), std::vector<float>(size));
    fFadeLength = static_cast<std::size_t>(kFadeSeconds * fSampleRate);
    fSides.clear();
    for (const kromediatypes::AudioChannelLabel label : layout)
        fSides.push_back(IsOneOf(kLeftLabels, label)    ? Side::kLeft
                         : IsOneOf(kRightLabels, label) ? Side::kRight
                                                        : Side::kNone);
}

void Doppler::ResetProcessing() noexcept {
    for (std::vector<float>& line : fLines)
        std::ranges::fill(line, 0.0F);
    fPosition = 0;
    TakeDuration();
}

void Doppler::ReadParameters(bool settle) noexcept {
    const Scene scene = ReadScene();
    if (settle) {
        fScene = scene;
        fFadeRemaining = 0;
        fHasPending = false;
        return;
    }
    fHasPending = !scene.SoundsLike(fFadeRemaining > 0 ? fNextScene : fScene);
    if (fHasPending) fPendingScene = scene;
}

void Doppler::ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept {
    for (std::size_t frame = 0; frame < block.frames; ++frame) {
        StoreInput(block, frame);
        AdvanceFade();
        const float fadedIn =
            fFadeRemaining == 0 ? 0 : 1 - static_cast<float>(fFadeRemaining) / static_cast<float>(fFadeLength);
        for (float* const output : block.outputs)
            output[frame] = 0;
        AddScene(fScene, 1 - fadedIn, block.outputs.data(), frame);
        if (fFadeRemaining > 0) AddScene(fNextScene, fadedIn, block.outputs.data(), frame);
        ++fPosition;
    }
}

Doppler::Scene Doppler::ReadScene() const noexcept {
    Scene scene;
    scene.path = DopplerPath({.distance = Natural(kDopplerRadius),
                              .velocity = Natural(kDopplerVelocity),
                              .angle = Natural(kDopplerStartingAngle),
                              .front = Natural(kDopplerCenterFront),
                              .right = Natural(kDopplerCenterRight),
                              .circular = IsOn(kDopplerCircular)});
    scene.kind = static_cast<SampleInterpolator::Kind>(Item(kDopplerQuality));
    scene.adjustsDistance = IsOn(kDopplerAdjustDistance);
    scene.adjustsDirection = IsOn(kDopplerAdjustDirection);
    scene.nearest = scene.path.NearestDistance(fDuration);
    return scene;
}

void Doppler::TakeDuration() noexcept {
    fDuration = GetDuration() > 0 ? GetDuration() / fSampleRate : kLongestDelay;
}

void Doppler::AdvanceFade() noexcept {
    if (fFadeRemaining > 0 && --fFadeRemaining == 0) fScene = fNextScene;
    if (fFadeRemaining > 0 || !fHasPending) return;
    fNextScene = fPendingScene;
    fHasPending = false;
    fFadeRemaining = fFadeLength;
}

// Solves arrival(emitted) = now. The arrival grows with the emission, for the source is slower than sound, so that
// Newton's steps, held within what is known of the place, lead there; from the sample before it is one or two.
void Doppler::FindEmission(Scene& scene) const noexcept {
    const double now = (static_cast<double>(fPosition) - SampleInterpolator::kLargestHalfWidth) / fSampleRate;
    double low = now - fLongestDelay;
    double high = now;
    double emitted = scene.isStarted ? std::clamp(scene.emitted + scene.speed / fSampleRate, low, high) : high;
    DopplerPath::Position position;
    for (int attempt = 0; attempt < kMostAttempts; ++attempt) {
        position = scene.path.At(emitted);
        const double error = Arrival(scene, position, emitted) - now;
        if (std::abs(error) <= kEmissionTolerance) break;
        (error > 0 ? high : low) = emitted;
        if (high - low <= kEmissionTolerance) break;
        const double next = emitted - error / (1 + position.radialVelocity / DopplerPath::kSpeedOfSound);
        emitted = next > low && next < high ? next : (low + high) / 2;
    }
    scene.emitted = emitted;
    const bool isHeld = position.distance <= scene.nearest || emitted <= now - fLongestDelay + kEmissionTolerance;
    scene.speed = isHeld ? 1 : 1 / (1 + position.radialVelocity / DopplerPath::kSpeedOfSound);
    scene.isStarted = true;
    SetGains(scene, position);
}

double Doppler::Arrival(const Scene& scene, const DopplerPath::Position& position, double emitted) const noexcept {
    return emitted + std::max(0.0, position.distance - scene.nearest) / DopplerPath::kSpeedOfSound;
}

void Doppler::SetGains(Scene& scene, const DopplerPath::Position& position) const noexcept {
    const double distance = std::max(position.distance, kNearField);
    scene.gain = scene.adjustsDistance
                     ? static_cast<float>(std::min(1.0, std::max(scene.nearest, kNearField) / distance))
                     : 1.0F;
    scene.leftGain = scene.rightGain = scene.gain;
    if (!scene.adjustsDirection) return;
    const double side = position.right / distance; // -1...1, the sine of the angle
    scene.leftGain *= static_cast<float>(std::sqrt(1 - side));
    scene.rightGain *= static_cast<float>(std::sqrt(1 + side));
}

void Doppler::ComputeWeights(const Scene& scene) noexcept {
    const double place = scene.emitted * fSampleRate;
    const double whole = std::floor(place);
    fInterpolator.Compute(scene.kind, place - whole, scene.speed, static_cast<double>(fPosition) - whole - 1, fWeights);
    fWeightsAt = static_cast<std::int64_t>(whole) + fWeights.first;
}

void Doppler::AddScene(Scene& scene, float level, float* const* outputs, std::size_t frame) noexcept {
    FindEmission(scene);
    ComputeWeights(scene);
    for (std::size_t channel = 0; channel < fLines.size(); ++channel) {
        const float gain = fSides[channel] == Side::kLeft    ? scene.leftGain
                           : fSides[channel] == Side::kRight ? scene.rightGain
                                                             : scene.gain;
        outputs[channel][frame] += level * gain * Read(fLines[channel]);
    }
}

float Doppler::Read(const std::vector<float>& line) const noexcept {
    const std::size_t start = static_cast<std::size_t>(fWeightsAt) & fMask;
    float sum = 0;
    for (std::size_t i = 0; i < fWeights.count; ++i)
        sum += fWeights.values[i] * line[(start + i) & fMask];
    return sum;
}

void Doppler::StoreInput(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t frame) noexcept {
    const std::size_t at = static_cast<std::size_t>(fPosition) & fMask;
    for (std::size_t channel = 0; channel < fLines.size(); ++channel)
        fLines[channel][at] = block.inputs[channel][frame];
}

} // namespace qoc::components
