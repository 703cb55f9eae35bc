#include "host/PlaybackEngine.h"

#include "PlaybackCore.h"
#include "host/PagedFeed.h"

#include <algorithm>
#include <cmath>
#include <thread>
#include <utility>

namespace qohost {

// While one lives, Render makes silence and leaves everything alone. Waits for a block that is being rendered.
class PlaybackEngine::Pause {
public:
    explicit Pause(PlaybackEngine& engine) noexcept : fEngine(engine) {
        fEngine.fMayRender.store(false);
        while (fEngine.fInRender.load())
            std::this_thread::yield();
    }
    Pause(const Pause&) = delete;
    Pause& operator=(const Pause&) = delete;
    ~Pause() { fEngine.fMayRender.store(fEngine.fCore != nullptr); }

private:
    PlaybackEngine& fEngine;
};

PlaybackEngine::PlaybackEngine() = default;

PlaybackEngine::~PlaybackEngine() {
    Close();
}

void PlaybackEngine::Open(std::shared_ptr<const Sound> sound,
                          boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter, std::size_t deviceChannels,
                          std::size_t maximumBlock) {
    Open(SourceInMemory(std::move(sound)), std::move(filter), deviceChannels, maximumBlock);
}

void PlaybackEngine::Open(std::shared_ptr<const SoundSource> sound,
                          boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter, std::size_t deviceChannels,
                          std::size_t maximumBlock) {
    Close();
    Open(FeedFrom(std::move(sound)), std::move(filter), deviceChannels, maximumBlock);
}

void PlaybackEngine::Open(std::unique_ptr<PlaybackFeed> feed,
                          boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter, std::size_t deviceChannels,
                          std::size_t maximumBlock) {
    Close();
    auto core = std::make_unique<PlaybackCore>(std::move(feed), std::move(filter), deviceChannels, maximumBlock);
    const Pause pause(*this);
    fCore = std::move(core);
}

void PlaybackEngine::Close() noexcept {
    const Pause pause(*this);
    fPlaying.store(false);
    TellFilter(false);
    fCore.reset();
    fStop.store(false);
    fSeek.store(kNoSeek);
    fPosition.store(0);
    fMissing.store(0);
    for (Peaks* const peaks : {&fInputPeaks, &fOutputPeaks})
        for (auto& peak : *peaks)
            peak.store(0.0F);
}

void PlaybackEngine::Play() {
    if (!fCore || (fPlaying.load() && !fStop.load())) return;
    const Pause pause(*this);
    fStop.store(false);
    if (!fPlaying.load()) {
        fCore->Start(IsBypassed());
        fPlaying.store(true);
    }
    TellFilter(true);
}

void PlaybackEngine::Stop() noexcept {
    if (IsPlaying()) fStop.store(true);
}

void PlaybackEngine::StopAtOnce() noexcept {
    const Pause pause(*this);
    fPlaying.store(false);
    fStop.store(false);
    TellFilter(false);
}

void PlaybackEngine::Poll() noexcept {
    if (IsPlaying()) return;
    TellFilter(false);
    const std::int64_t seek = fSeek.exchange(kNoSeek);
    if (seek != kNoSeek) Seek(static_cast<std::size_t>(seek));
}

void PlaybackEngine::Seek(std::size_t frame) noexcept {
    if (!fCore) return;
    if (IsPlaying()) {
        fSeek.store(static_cast<std::int64_t>(std::min(frame, fCore->Frames())));
        return;
    }
    const Pause pause(*this);
    fCore->JumpTo(frame);
    fPosition.store(fCore->Position());
}

void PlaybackEngine::SetRange(const PlaybackRange& range) noexcept {
    ++fRangeVersion;
    fRangeBegin.store(range.begin);
    fRangeEnd.store(range.end);
    ++fRangeVersion;
}

void PlaybackEngine::Render(float* interleaved, std::size_t frames, std::size_t channels) noexcept {
    fInRender.store(true);
    std::size_t done = 0;
    while (done < frames && fMayRender.load() && fPlaying.load()) {
        const std::size_t count = std::min(frames - done, fCore->MaximumBlock());
        RenderBlock(interleaved + done * channels, count, channels);
        done += count;
    }
    std::fill_n(interleaved + done * channels, (frames - done) * channels, 0.0F);
    fInRender.store(false);
}

std::string PlaybackEngine::TakeProblem() {
    return fCore ? fCore->Feed().TakeProblem() : std::string();
}

float PlaybackEngine::TakePeak(Peaks& peaks, std::size_t channel) noexcept {
    return channel < peaks.size() ? peaks[channel].exchange(0.0F) : 0.0F;
}

void PlaybackEngine::RaisePeaks(Peaks& peaks, std::span<const std::vector<float>> channels,
                                std::size_t frames) noexcept {
    for (std::size_t channel = 0; channel < channels.size(); ++channel) {
        float peak = 0;
        for (std::size_t i = 0; i < frames; ++i)
            peak = std::max(peak, std::abs(channels[channel][i]));
        float before = peaks[channel].load();
        while (before < peak && !peaks[channel].compare_exchange_weak(before, peak)) {
        }
    }
}

// A range that is just being written is taken with the next block.
PlaybackRange PlaybackEngine::CurrentRange() noexcept {
    const unsigned version = fRangeVersion.load();
    const PlaybackRange range{fRangeBegin.load(), fRangeEnd.load()};
    if (version % 2 == 0 && fRangeVersion.load() == version) fLastRange = range;
    return fLastRange;
}

PlaybackRequest PlaybackEngine::CurrentRequest() noexcept {
    PlaybackRequest request;
    request.stop = fStop.load();
    request.bypass = IsBypassed();
    request.loop = IsLooping();
    request.range = CurrentRange();
    const std::int64_t seek = fSeek.load();
    if (seek != kNoSeek) request.seek = static_cast<std::size_t>(seek);
    return request;
}

void PlaybackEngine::RenderBlock(float* interleaved, std::size_t frames, std::size_t channels) noexcept {
    const PlaybackRequest request = CurrentRequest();
    const bool goesOn = fCore->Render(interleaved, frames, channels, request);
    if (fCore->HasSought()) {
        // A seek that came in meanwhile stays for the next block.
        auto done = static_cast<std::int64_t>(*request.seek);
        fSeek.compare_exchange_strong(done, kNoSeek);
    }
    fMissing.fetch_add(fCore->LastMissing(), std::memory_order_relaxed);
    RaisePeaks(fInputPeaks, fCore->LastInput(), frames);
    RaisePeaks(fOutputPeaks, fCore->LastOutput(), frames);
    fPosition.store(fCore->Position(), std::memory_order_relaxed);
    if (!goesOn) fPlaying.store(false);
}

void PlaybackEngine::TellFilter(bool playing) noexcept {
    if (fToldPlaying == playing) return;
    fToldPlaying = playing;
    fCore->Feed().SetPlaying(playing);
    fCore->Filter().SetSuspended(!playing);
    fCore->Filter().SetCanChangeNonAutomatableParameters(!playing);
}

} // namespace qohost
