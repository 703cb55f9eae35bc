#pragma once

#include "ChannelMatrix.h"
#include "host/PlaybackFeed.h"
#include "host/PlaybackRange.h"
#include "kroaudiofilterhost/AudioFilter.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace qohost {

// What the user wants of the playback, as it stands when a block is rendered. Positions in samples.
struct PlaybackRequest {
    bool stop = false;
    bool bypass = false;
    bool loop = false;
    PlaybackRange range;
    std::optional<std::size_t> seek;
};

// The sound-thread part of PlaybackEngine, which owns it: fetches the sound, runs the filter, fades, mixes down. Knows
// nothing of threads; constructed and started while nobody renders, and allocates only then.
class PlaybackCore {
public:
    // Prepares the filter; see PlaybackEngine::Open.
    PlaybackCore(std::unique_ptr<PlaybackFeed> feed, boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter,
                 std::size_t deviceChannels, std::size_t maximumBlock);

    kroaudiofilterhost::AudioFilter& Filter() const noexcept { return *fFilter; }
    PlaybackFeed& Feed() const noexcept { return *fFeed; }
    std::size_t MaximumBlock() const noexcept { return fMaximumBlock; }
    std::size_t Frames() const noexcept { return fFeed->Frames(); }

    // To go on from the present position. Prepares the filter again: what is fixed from one Prepare to the next, such
    // as its latency, may follow parameters that were changed while it was stopped.
    void Start(bool bypassed);
    // Without a fade: for while nothing is heard. Beyond the end means the end.
    void JumpTo(std::size_t frame) noexcept;
    // What is heard next, in samples from the start of the sound.
    std::size_t Position() const noexcept;

    // Makes up to MaximumBlock() frames; silence, and the position stays, as long as the sound where playing begins is
    // not there. At the end of the range the effect sounds on, or it goes on at its begin.
    // False when the playback is over and silence follows; what is left of the block is silent already.
    bool Render(float* interleaved, std::size_t frames, std::size_t channels, const PlaybackRequest& request) noexcept;
    // Whether the last Render has done the seek that it was asked for.
    bool HasSought() const noexcept { return fHasSought; }
    // How many frames of the last block were silence because the sound was not there in time.
    std::size_t LastMissing() const noexcept { return fMissing; }

    // The channels of the last block, before and behind the effect.
    std::span<const std::vector<float>> LastInput() const noexcept { return fInput; }
    std::span<const std::vector<float>> LastOutput() const noexcept { return fOutput; }

private:
    void Prepare();
    using Buffers = std::vector<std::vector<float>>;

    PlaybackPath PathFrom(const PlaybackRequest& request) const noexcept;
    bool IsWaiting() const noexcept;
    void BeSilent(float* interleaved, std::size_t frames, std::size_t channels) noexcept;
    void GoOnFrom(std::size_t frame) noexcept;
    void FetchInput(std::size_t frames, const PlaybackRequest& request) noexcept;
    std::size_t FetchFromSound(std::size_t offset, std::size_t frames, std::size_t end) noexcept;
    void DelayInput(std::size_t frames) noexcept;
    void Fade(std::size_t frames, float target) noexcept;
    void WriteOut(float* interleaved, std::size_t frames, std::size_t channels) const noexcept;
    std::size_t EndOf(const PlaybackRange& range) const noexcept;
    bool HasSoundEnded(const PlaybackRange& range) const noexcept;
    bool FinishFade(const PlaybackRequest& request) noexcept;

    std::unique_ptr<PlaybackFeed> fFeed;
    boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> fFilter;
    std::size_t fMaximumBlock;
    ChannelMatrix fMatrix;
    std::size_t fLatency = 0;
    std::size_t fTail = 0;
    std::size_t fOrigin = 0;     // where playing began or came back to last
    std::size_t fFed = 0;        // next sample of the sound to go into the filter
    std::size_t fSilenceFed = 0; // samples of silence that went in after the end of the sound
    Buffers fInput;              // what goes into the filter; from DelayInput on as late as what comes out
    Buffers fOutput;
    Buffers fDelay; // a ring of fLatency samples a channel
    std::size_t fDelayPosition = 0;
    std::vector<const float*> fInputPointers;
    std::vector<float*> fOutputPointers;
    float fFadeStep; // a sample
    float fFade = 0;
    kroaudiofilterhost::AudioFilterTempo fTempo; // as playing began
    bool fHasSought = false;
    std::size_t fMissing = 0;
};

} // namespace qohost
