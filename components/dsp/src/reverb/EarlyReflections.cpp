#include "qoc/dsp/reverb/EarlyReflections.h"

#include "LineVectors.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>
#include <optional>
#include <utility>

namespace qoc::dsp {

namespace {

constexpr double kFadeSeconds = 0.03;
constexpr double kMicrophoneReach = 0.085;      // metres from the middle
constexpr std::size_t kMostSources = 8;         // more channels than these are one source
constexpr double kLoudspeakerShare = 30 / 55.0; // of a microphone's angle: that of its loudspeaker

// Degrees from the front to the right.
std::optional<double> SideOf(kromediatypes::AudioChannelLabel label) noexcept {
    switch (label) {
    case kromediatypes::kAudioChannelLabelLeft: return -55;
    case kromediatypes::kAudioChannelLabelRight: return 55;
    case kromediatypes::kAudioChannelLabelCenter: return 0;
    case kromediatypes::kAudioChannelLabelLeftSurround: return -120;
    case kromediatypes::kAudioChannelLabelRightSurround: return 120;
    case kromediatypes::kAudioChannelLabelLeftRearSurround: return -150;
    case kromediatypes::kAudioChannelLabelRightRearSurround: return 150;
    case kromediatypes::kAudioChannelLabelCenterSurround: return 180;
    default: return std::nullopt;
    }
}

} // namespace

void EarlyReflections::Prepare(double sampleRate, std::span<const kromediatypes::AudioChannelLabel> labels) {
    fSampleRate = sampleRate;
    fMicrophones.clear();
    for (const kromediatypes::AudioChannelLabel label : labels) {
        const std::optional<double> side = SideOf(label);
        const double radians = side.value_or(0) * std::numbers::pi / 180;
        fMicrophones.push_back({std::sin(radians), std::cos(radians), side.has_value()});
    }
    fLongest = static_cast<std::size_t>(kLongestSeconds * sampleRate);
    fMask = std::bit_ceil(fLongest + kPiece) - 1;
    fRings.assign(RingSize() * (labels.size() + 1), 0.0F);
    fFadeLength = static_cast<std::size_t>(std::ceil(kFadeSeconds * sampleRate));
    const std::size_t pairs = labels.size() * (labels.size() > kMostSources ? 1 : labels.size());
    for (Taps* const taps : {&fFrom, &fTo}) {
        taps->direct.reserve(pairs);
        taps->reflected.reserve(pairs * (Room::kImages - 1));
    }
}

void EarlyReflections::Reset() noexcept {
    std::ranges::fill(fRings, 0.0F);
    fPosition = 0;
    fTaken = 0;
}

void EarlyReflections::Set(const Scene& scene, bool settle) noexcept {
    fPending = scene;
    if (settle) {
        fScene = scene;
        fFadeRemaining = 0;
        MakeTaps(scene, fTo);
    } else if (fFadeRemaining == 0) {
        StartFade();
    }
}

void EarlyReflections::Take(std::span<const Piece> inputs, std::size_t frames) noexcept {
    Piece mean{};
    for (std::size_t source = 0; source < inputs.size(); ++source) {
        Write(source, std::span(inputs[source]).first(frames));
        for (std::size_t i = 0; i < kPiece; ++i)
            mean[i] += inputs[source][i];
    }
    for (float& sample : mean)
        sample /= static_cast<float>(std::max<std::size_t>(inputs.size(), 1));
    Write(inputs.size(), std::span(mean).first(frames));
    fPosition = (fPosition + frames) & fMask;
    fTaken = frames;
}

void EarlyReflections::Give(std::span<Piece> direct, std::span<Piece> reflected) noexcept {
    std::ranges::fill(direct, Piece());
    std::ranges::fill(reflected, Piece());
    for (std::size_t done = 0; done < fTaken;) {
        const std::size_t frames = fFadeRemaining > 0 ? std::min(fTaken - done, fFadeRemaining) : fTaken - done;
        const Part part = {done, frames, (fPosition - fTaken + done) & fMask};
        Add(fTo, part, false, direct, reflected);
        done += frames;
        if (fFadeRemaining == 0) continue;
        Add(fFrom, part, true, direct, reflected);
        fFadeRemaining -= frames;
        if (fFadeRemaining == 0) StartFade();
    }
    fTaken = 0;
}

void EarlyReflections::StartFade() noexcept {
    if (fPending == fScene) return;
    fScene = fPending;
    std::swap(fFrom, fTo);
    MakeTaps(fScene, fTo);
    fFadeRemaining = fFadeLength;
}

void EarlyReflections::MakeTaps(const Scene& scene, Taps& taps) const noexcept {
    taps.direct.clear();
    taps.reflected.clear();
    const std::size_t channels = fMicrophones.size();
    const bool isOne = scene.isOneSource || channels > kMostSources;
    const std::size_t first = isOne ? channels : 0; // the last ring holds the mean
    const std::size_t end = isOne ? channels + 1 : channels;

    double nearest = scene.room.width + scene.room.depth + scene.room.height;
    for (std::size_t source = first; source < end; ++source) {
        for (const Microphone& microphone : fMicrophones)
            nearest = std::min(nearest, SourceOf(scene, source).DistanceTo(MicrophoneAt(scene.room, microphone)));
    }
    for (std::size_t channel = 0; channel < channels; ++channel) {
        for (std::size_t source = first; source < end; ++source) {
            const Tap way{.source = static_cast<std::uint32_t>(source), .channel = static_cast<std::uint32_t>(channel)};
            AddTaps(scene, scene.room.Images(SourceOf(scene, source)), way, nearest, taps);
        }
    }
}

// Those by which a source is heard in a channel. `way`: from where to where; `nearest`: how far sound goes at least.
void EarlyReflections::AddTaps(const Scene& scene, std::span<const RoomImage> images, Tap way, double nearest,
                               Taps& taps) const noexcept {
    const Microphone& microphone = fMicrophones[way.channel];
    const RoomPlace at = MicrophoneAt(scene.room, microphone);
    const double reflection = std::sqrt(1 - scene.absorption); // of the pressure
    for (const RoomImage& image : images) {
        const double distance = image.place.DistanceTo(at);
        const double towards = (image.place.x - at.x) * microphone.sine - (image.place.y - at.y) * microphone.cosine;
        const double sensitivity = microphone.hasSide ? 0.5 + 0.5 * towards / distance : 1;
        const bool isDirect = image.reflections == 0;
        const double level = isDirect ? scene.directLevel : scene.level;
        const double gain = level * sensitivity * nearest / distance * std::pow(reflection, image.reflections);
        if (gain == 0) continue;
        const double delay = (distance - nearest) / Room::kSpeedOfSound * fSampleRate;
        way.delay = static_cast<std::uint32_t>(std::min(static_cast<std::size_t>(std::lround(delay)), fLongest));
        way.gain = static_cast<float>(gain);
        (isDirect ? taps.direct : taps.reflected).push_back(way);
    }
}

// At the same distance from the listener, turned to the channel's side.
RoomPlace EarlyReflections::SourceOf(const Scene& scene, std::size_t source) const noexcept {
    if (source >= fMicrophones.size() || !fMicrophones[source].hasSide) return scene.source;
    const Microphone& side = fMicrophones[source];
    const double angle = kLoudspeakerShare * std::atan2(side.sine, side.cosine);
    const RoomPlace listener = scene.room.Listener();
    const double x = scene.source.x - listener.x;
    const double y = scene.source.y - listener.y;
    return scene.room.Inside({listener.x + x * std::cos(angle) - y * std::sin(angle),
                              listener.y + x * std::sin(angle) + y * std::cos(angle), scene.source.z});
}

RoomPlace EarlyReflections::MicrophoneAt(const Room& room, const Microphone& microphone) const noexcept {
    RoomPlace place = room.Listener();
    if (!microphone.hasSide) return place;
    place.x += kMicrophoneReach * microphone.sine;
    place.y -= kMicrophoneReach * microphone.cosine;
    return place;
}

// Not more than a piece, which may go around the end.
void EarlyReflections::Write(std::size_t source, std::span<const float> samples) noexcept {
    float* const ring = &fRings[source * RingSize()];
    const std::size_t toEnd = std::min(samples.size(), fMask + 1 - fPosition);
    std::copy_n(samples.data(), toEnd, ring + fPosition);
    std::copy(samples.data() + toEnd, samples.data() + samples.size(), ring);
    if (toEnd < samples.size() || fPosition < kPiece) std::copy_n(ring, kPiece, ring + fMask + 1);
}

// Of the scene that is being faded from, so many frames on.
float EarlyReflections::ShareBefore(std::size_t frame) const noexcept {
    if (fFadeRemaining == 0) return 0;
    return static_cast<float>(fFadeRemaining - frame) / static_cast<float>(fFadeLength);
}

void EarlyReflections::Add(const Taps& taps, const Part& part, bool isBefore, std::span<Piece> direct,
                           std::span<Piece> reflected) const noexcept {
    Add(taps.direct, part, isBefore, direct);
    Add(taps.reflected, part, isBefore, reflected);
}

// As many taps of the first one's channel as are added at once. Returns their number.
std::size_t EarlyReflections::AddSome(std::span<const Tap> taps, const Part& part, Piece& sums) const noexcept {
    constexpr std::size_t kMost = Room::kImages - 1;
    std::array<const float*, kMost> heard;
    std::array<float, kMost> gains;
    std::size_t count = 0;
    for (; count < std::min(kMost, taps.size()) && taps[count].channel == taps.front().channel; ++count) {
        const Tap& tap = taps[count];
        heard[count] = &fRings[tap.source * RingSize() + ((part.position - tap.delay) & fMask)];
        gains[count] = tap.gain;
    }
    AddLines(std::span(heard).first(count), gains, sums);
    return count;
}

// Taps of one channel stand together. A whole piece is added whatever its length: what lies behind is left out.
void EarlyReflections::Add(std::span<const Tap> taps, const Part& part, bool isBefore,
                           std::span<Piece> outputs) const noexcept {
    for (std::size_t at = 0; at < taps.size();) {
        const std::uint32_t channel = taps[at].channel;
        Piece sums{};
        while (at < taps.size() && taps[at].channel == channel)
            at += AddSome(taps.subspan(at), part, sums);
        for (std::size_t i = 0; i < part.frames; ++i) {
            const float share = isBefore ? ShareBefore(i) : 1 - ShareBefore(i);
            outputs[channel][part.begin + i] += share * sums[i];
        }
    }
}

} // namespace qoc::dsp
