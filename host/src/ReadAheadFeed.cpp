#include "host/PagedFeed.h"

#include "MemoryFeed.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

namespace qohost {

namespace {

// Pages that a thread reads. The sound thread wakes nobody, since it must not call the system: while it plays, the
// thread looks by itself what is asked for, and otherwise sleeps.
class ReadAheadFeed final : public PagedFeed {
public:
    explicit ReadAheadFeed(std::shared_ptr<const SoundSource> source)
        : PagedFeed(std::move(source)), fThread([this] { Run(); }) {}
    ~ReadAheadFeed() override {
        {
            const std::lock_guard lock(fMutex);
            fIsOver = true;
        }
        fWake.notify_one();
        fThread.join();
    }

    void SetPlaying(bool playing) noexcept override {
        PagedFeed::SetPlaying(playing);
        {
            const std::lock_guard lock(fMutex);
            fIsPlaying = playing;
        }
        fWake.notify_one();
    }

private:
    void Run() noexcept {
        constexpr std::chrono::milliseconds kPollTime{5};
        std::unique_lock lock(fMutex);
        while (!fIsOver) {
            lock.unlock();
            Serve();
            lock.lock();
            if (fIsOver) return;
            if (fIsPlaying)
                fWake.wait_for(lock, kPollTime);
            else
                fWake.wait(lock, [this] { return fIsOver || fIsPlaying; });
        }
    }

    std::mutex fMutex;
    std::condition_variable fWake;
    bool fIsPlaying = false;
    bool fIsOver = false;
    std::thread fThread; // starts when all else is there
};

} // namespace

std::unique_ptr<PlaybackFeed> FeedFrom(std::shared_ptr<const SoundSource> source) {
    if (source->InMemory()) return std::make_unique<MemoryFeed>(std::move(source));
    return std::make_unique<ReadAheadFeed>(std::move(source));
}

} // namespace qohost
