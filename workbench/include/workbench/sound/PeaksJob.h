#pragma once

#include "host/SoundSource.h"
#include "workbench/sound/PeaksCache.h"
#include "workbench/sound/WaveformPeaks.h"

#include <atomic>
#include <memory>
#include <string>
#include <thread>

namespace workbench {

// Finds the peaks of a sound: at once if it is in memory, otherwise on a thread of its own, from the cache or by
// reading the sound, after which they are in the cache. User-interface thread.
class PeaksJob {
public:
    PeaksJob(std::shared_ptr<const qohost::SoundSource> sound, PeaksCache cache);
    PeaksJob(const PeaksJob&) = delete;
    PeaksJob& operator=(const PeaksJob&) = delete;
    // Cancels, and waits for the thread.
    ~PeaksJob();

    // They become known from the start on.
    const std::shared_ptr<const WaveformPeaks>& Peaks() const { return fKnownPeaks; }
    bool IsOver() const { return fIsOver.load(); }
    // Once it is over: why they are not complete; empty if they are.
    const std::string& Problem() const { return fProblem; }

private:
    void Run() noexcept;
    void FindOrRead();
    void Read();

    std::shared_ptr<const qohost::SoundSource> fSound;
    PeaksCache fCache;
    std::shared_ptr<WaveformPeaks> fPeaks;
    std::shared_ptr<const WaveformPeaks> fKnownPeaks;
    std::string fProblem; // the thread's, until it is over
    std::atomic<bool> fIsCancelled{false};
    std::atomic<bool> fIsOver{false};
    std::thread fThread; // starts when all else is there
};

} // namespace workbench
