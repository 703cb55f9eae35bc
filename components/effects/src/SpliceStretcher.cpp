#include "qoc/components/SpliceStretcher.h"

#include <SoundTouch.h>

#include <algorithm>
#include <bit>
#include <cmath>

namespace qoc::components {

using soundtouch::SoundTouch;

namespace {

constexpr std::size_t kGroupChannels = SOUNDTOUCH_MAX_CHANNELS;
// The library takes lengths in milliseconds. With this rate a millisecond is a sample.
constexpr unsigned kSampleIsMillisecond = 1000;
// For lengths that it chooses itself it must know the rate; it takes none higher than this.
constexpr double kHighestNamedRate = 192000;
constexpr int kAutomaticOverlap = 8; // milliseconds
constexpr double kSeekSeconds = 0.015;
constexpr std::size_t kShortestOverlap = 16;
// Frames that its rate converter, which runs at rate 1, keeps back.
constexpr std::int64_t kKeptBack = 3;
// Around the reciprocals of the ratios: room for putting the position of the next splice right.
constexpr double kLowestTempo = 0.95 / SpliceStretcher::kHighestRatio;
constexpr double kHighestTempo = 1.05 / SpliceStretcher::kLowestRatio;
constexpr double kLongestAutomaticSequence = 0.1; // seconds, generously
constexpr std::size_t kReceived = 512;            // frames at a time

void Configure(SoundTouch& touch, std::size_t channels, double sampleRate, const SpliceLengths& lengths) {
    const bool isAutomatic = lengths.sequence == 0;
    const auto rate =
        isAutomatic ? static_cast<unsigned>(std::min(sampleRate, kHighestNamedRate)) : kSampleIsMillisecond;
    const double milliseconds = isAutomatic ? 1000 * kSeekSeconds : sampleRate * kSeekSeconds;
    touch.setChannels(static_cast<unsigned>(channels));
    touch.setSampleRate(rate);
    touch.setSetting(SETTING_USE_AA_FILTER, 0);
    touch.setSetting(SETTING_SEQUENCE_MS, static_cast<int>(lengths.sequence));
    touch.setSetting(SETTING_SEEKWINDOW_MS, std::max(1, static_cast<int>(milliseconds)));
    touch.setSetting(SETTING_OVERLAP_MS,
                     isAutomatic ? kAutomaticOverlap : std::max(1, static_cast<int>(lengths.overlap)));
}

} // namespace

SpliceStretcher::SpliceStretcher(std::size_t channels, double sampleRate, const SpliceLengths& lengths)
    : fChannels(channels), fHalfSeek(sampleRate * kSeekSeconds / 2), fInterleaved(kReceived * kGroupChannels),
      fPlanes(channels, std::vector<float>(kReceived)) {
    for (const auto& plane : fPlanes)
        fPlanePointers.push_back(plane.data());
    const auto automatic = static_cast<std::size_t>(kLongestAutomaticSequence * sampleRate);
    const std::size_t delay = LongestDelay(sampleRate, std::max(lengths.sequence, automatic));
    fOutput.Prepare(channels, std::bit_ceil(static_cast<std::size_t>(kHighestRatio) * delay + 2 * kReceived));
    for (std::size_t group = 0; group * kGroupChannels < channels; ++group) {
        fGroups.push_back(std::make_unique<SoundTouch>());
        Configure(*fGroups.back(), ChannelsIn(group), sampleRate, lengths);
    }
    Warm(kLowestTempo);
    Warm(kHighestTempo);
}

SpliceStretcher::~SpliceStretcher() = default;

std::size_t SpliceStretcher::LongestDelay(double sampleRate, std::size_t longestSequence) {
    const double sequence = static_cast<double>(std::max(longestSequence, 2 * kShortestOverlap));
    // To skip by, and how much earlier the middle of a piece comes than in a sound of its own length.
    const double need = (kHighestTempo + (kHighestTempo - 1) / 2) * sequence + kSeekSeconds * sampleRate;
    return static_cast<std::size_t>(std::ceil(need)) + kShortestOverlap + kKeptBack + kChunk;
}

void SpliceStretcher::SetQuickSeek(bool quick) noexcept {
    for (const auto& touch : fGroups)
        touch->setSetting(SETTING_USE_QUICKSEEK, quick ? 1 : 0);
}

void SpliceStretcher::Start(std::int64_t frame, const PitchClock& clock) noexcept {
    for (const auto& touch : fGroups)
        touch->clear();
    fOutput.Reset();
    fStart = frame;
    fOrigin = static_cast<std::int64_t>(std::floor(clock.PositionAt(frame)));
    fFed = 0;
}

void SpliceStretcher::Feed(const SoundHistory& history, const PitchClock& clock) noexcept {
    const double tempo = NextTempo(clock);
    for (std::size_t group = 0; group < fGroups.size(); ++group) {
        fGroups[group]->setTempo(tempo);
        FeedGroup(group, history);
    }
    fFed += kChunk;
    Receive();
}

// Lets the buffers grow to what they will ever need: twice the usual chunk, until a second piece comes out.
void SpliceStretcher::Warm(double tempo) {
    const std::vector<float> silence(2 * kChunk * kGroupChannels);
    for (const auto& touch : fGroups) {
        touch->setTempo(tempo);
        for (int pieces = 0; pieces < 2;) {
            touch->putSamples(silence.data(), 2 * kChunk);
            if (touch->numSamples() == 0) continue;
            ++pieces;
            touch->receiveSamples(touch->numSamples());
        }
        touch->clear();
    }
}

// Such that the middle of the piece after the next is the frame that the clock has for it: in a piece the sound goes on
// at its own pace, so its ends are as early and late as they have to be.
double SpliceStretcher::NextTempo(const PitchClock& clock) const noexcept {
    const double piece = fGroups.front()->getSetting(SETTING_NOMINAL_OUTPUT_SEQUENCE);
    const std::int64_t waiting = fGroups.front()->numUnprocessedSamples();
    const bool isFirst = fOutput.Now() == 0;
    // A piece is looked for around the middle of the room; the first is taken from the very beginning.
    const double begin =
        isFirst ? 0 : static_cast<double>(std::max<std::int64_t>(0, fFed - kKeptBack - waiting)) + fHalfSeek;
    const double middle = clock.FrameAt(static_cast<double>(fOrigin + fOutput.Now()) + 1.5 * piece);
    const double next = middle - static_cast<double>(fStart) - piece / 2;
    return std::clamp((next - begin) / piece, kLowestTempo, kHighestTempo);
}

void SpliceStretcher::FeedGroup(std::size_t group, const SoundHistory& history) noexcept {
    const std::size_t channels = ChannelsIn(group);
    for (std::size_t channel = 0; channel < channels; ++channel) {
        const float* input = history.At(group * kGroupChannels + channel, Now());
        for (std::size_t i = 0; i < kChunk; ++i)
            fInterleaved[i * channels + channel] = input[i];
    }
    fGroups[group]->putSamples(fInterleaved.data(), kChunk);
}

void SpliceStretcher::Receive() noexcept {
    for (;;) {
        const auto frames = std::min<unsigned>(fGroups.front()->numSamples(), kReceived);
        if (frames == 0) return;
        for (std::size_t group = 0; group < fGroups.size(); ++group) {
            const std::size_t channels = ChannelsIn(group);
            fGroups[group]->receiveSamples(fInterleaved.data(), frames);
            for (std::size_t channel = 0; channel < channels; ++channel) {
                for (std::size_t i = 0; i < frames; ++i)
                    fPlanes[group * kGroupChannels + channel][i] = fInterleaved[i * channels + channel];
            }
        }
        fOutput.Write(fPlanePointers, 0, frames);
    }
}

std::size_t SpliceStretcher::ChannelsIn(std::size_t group) const noexcept {
    return std::min(kGroupChannels, fChannels - group * kGroupChannels);
}

} // namespace qoc::components
