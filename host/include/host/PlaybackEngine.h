#pragma once

#include "host/PlaybackFeed.h"
#include "host/PlaybackRange.h"
#include "host/SoundSource.h"
#include "kroaudiofilterhost/AudioFilter.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace qohost {

class PlaybackCore;
struct PlaybackRequest;

// Plays a sound through a filter: the transport of a program. Owned by the program, which calls Render from its audio
// device and everything else from the user-interface thread. The device runs at the sound's rate, in hertz. Sound and
// filter are kept alive while they are loaded.
//
// While it plays, the filter is not suspended and its parameters that can't be automated are locked. Starting,
// stopping, seeking and bypassing fade for a moment, so that nothing clicks. Where a sound on the disk is not there
// yet, starting and seeking wait for it, in silence; what is not there later is silence of the same length. Samples
// that are no numbers never reach the device.
class PlaybackEngine {
public:
    static constexpr std::size_t kUsualBlock = 1024; // frames

    PlaybackEngine();
    PlaybackEngine(const PlaybackEngine&) = delete;
    PlaybackEngine& operator=(const PlaybackEngine&) = delete;
    ~PlaybackEngine();

    // Stops at once and takes what to play from now on, from its start: prepares the filter for the sound. Throws
    // krocore::config::Error when the filter can't work on it; nothing is loaded then. The filter is run by this engine
    // until Close or the next Open.
    void Open(std::unique_ptr<PlaybackFeed> feed, boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter,
              std::size_t deviceChannels, std::size_t maximumBlock = kUsualBlock);
    // The same for a sound in memory, and for one from where it lies, read ahead by a thread.
    void Open(std::shared_ptr<const Sound> sound, boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter,
              std::size_t deviceChannels, std::size_t maximumBlock = kUsualBlock);
    void Open(std::shared_ptr<const SoundSource> sound, boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter,
              std::size_t deviceChannels, std::size_t maximumBlock = kUsualBlock);
    // Stops at once and lets go of sound and filter. When it returns, Render touches neither.
    void Close() noexcept;

    // Goes on where it stopped; from the start when it has come to the end.
    void Play();
    // Fades out, and is over when IsPlaying says so.
    void Stop() noexcept;
    // Without a fade: for changes of the filter that can't wait and can't be made while it plays.
    void StopAtOnce() noexcept;
    bool IsPlaying() const noexcept { return fPlaying.load(); }
    // To be called by the program's timer: tells the filter when the playing has ended.
    void Poll() noexcept;

    // What is heard now, in samples from the start of the sound.
    std::size_t Position() const noexcept { return fPosition.load(std::memory_order_relaxed); }
    // Beyond the end means the end.
    void Seek(std::size_t frame) noexcept;

    // What it plays, once or again and again. What is played behind the range goes on to the end of the sound.
    void SetRange(const PlaybackRange& range) noexcept;
    // From the end of the range it goes on at its begin, without a fade.
    void SetLoop(bool loop) noexcept { fLoop.store(loop, std::memory_order_relaxed); }
    bool IsLooping() const noexcept { return fLoop.load(std::memory_order_relaxed); }

    // Hears the sound without the effect, at the same time (the latency stays).
    void SetBypass(bool bypass) noexcept { fBypass.store(bypass, std::memory_order_relaxed); }
    bool IsBypassed() const noexcept { return fBypass.load(std::memory_order_relaxed); }

    // The largest absolute sample since the last call, before and behind the effect. 0 for a channel that is none.
    float TakeInputPeak(std::size_t channel) noexcept { return TakePeak(fInputPeaks, channel); }
    float TakeOutputPeak(std::size_t channel) noexcept { return TakePeak(fOutputPeaks, channel); }

    // What of the sound was not there in time and was silence instead, in frames, since the last call.
    std::size_t TakeMissing() noexcept { return fMissing.exchange(0); }
    // Why the sound can't be read, as a user is told; empty when there is nothing new to tell.
    std::string TakeProblem();

    // The device asks for sound: `frames` frames of `channels` interleaved samples. Sound thread; never allocates,
    // locks or calls the system. Silence while nothing plays; so are channels beyond those that Open was told.
    void Render(float* interleaved, std::size_t frames, std::size_t channels) noexcept;

private:
    class Pause;
    using Peaks = std::array<std::atomic<float>, kroaudiofilterhost::AudioFilter::kMaximumChannels>;

    static constexpr std::int64_t kNoSeek = -1;

    static float TakePeak(Peaks& peaks, std::size_t channel) noexcept;
    static void RaisePeaks(Peaks& peaks, std::span<const std::vector<float>> channels, std::size_t frames) noexcept;
    PlaybackRequest CurrentRequest() noexcept;
    PlaybackRange CurrentRange() noexcept;
    void RenderBlock(float* interleaved, std::size_t frames, std::size_t channels) noexcept;
    void TellFilter(bool playing) noexcept;

    std::unique_ptr<PlaybackCore> fCore; // the sound thread's, unless paused
    bool fToldPlaying = false;           // user-interface thread

    std::atomic<bool> fMayRender{false};
    std::atomic<bool> fInRender{false};
    std::atomic<bool> fPlaying{false};
    std::atomic<bool> fStop{false};
    std::atomic<std::int64_t> fSeek{kNoSeek};
    std::atomic<std::size_t> fPosition{0};
    std::atomic<std::size_t> fMissing{0};
    std::atomic<bool> fLoop{false};
    std::atomic<unsigned> fRangeVersion{0}; // odd while the range is written
    std::atomic<std::size_t> fRangeBegin{0};
    std::atomic<std::size_t> fRangeEnd{0};
    PlaybackRange fLastRange; // the sound thread's
    std::atomic<bool> fBypass{false};
    Peaks fInputPeaks{};
    Peaks fOutputPeaks{};
};

} // namespace qohost
