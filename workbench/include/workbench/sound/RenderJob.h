#pragma once

#include "host/PlaybackRange.h"
#include "host/SoundFile.h"
#include "host/SoundSource.h"
#include "kroaudiofilterhost/AudioFilter.h"

#include <atomic>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <thread>

namespace workbench {

// Runs a sound, or a part of it, through an effect into a new file, on a thread of its own. No file that is there is
// written over, and none is left half written. User-interface thread.
class RenderJob {
public:
    // What the user asks for beyond the sound's own encoding and level.
    struct Wishes {
        std::optional<qohost::SampleFormat> format;
        std::optional<double> peakDecibels; // what the peak is brought to
    };
    struct Task {
        std::shared_ptr<const qohost::SoundSource> sound;
        qohost::PlaybackRange range;
        boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter; // the job's alone
        qohost::AudioFileEncoding encoding = 0;                       // as near to it as the kind of file can
        std::filesystem::path file; // "a.wav": where that is there, "a-2.wav" and so on is taken
        Wishes wishes = {};
    };
    struct Outcome {
        std::filesystem::path file; // that was written
        std::string problem;        // why none was; both are empty if it was cancelled
        qohost::Clipping clipping;  // of what was written
    };

    // Starts.
    explicit RenderJob(Task task);
    RenderJob(const RenderJob&) = delete;
    RenderJob& operator=(const RenderJob&) = delete;
    // Cancels, and waits for the thread.
    ~RenderJob();

    // 0...1.
    double PartDone() const { return fPartDone.load(); }
    void Cancel() { fIsCancelled.store(true); }
    bool IsOver() const { return fIsOver.load(); }
    // Once it is over.
    const Outcome& GetOutcome() const { return fOutcome; }

private:
    void Run() noexcept;
    void Render();

    Task fTask;
    Outcome fOutcome; // the thread's, until it is over
    std::atomic<double> fPartDone{0};
    std::atomic<bool> fIsCancelled{false};
    std::atomic<bool> fIsOver{false};
    std::thread fThread; // starts when all else is there
};

} // namespace workbench
