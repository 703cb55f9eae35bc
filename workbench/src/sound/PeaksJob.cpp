#include "workbench/sound/PeaksJob.h"

#include "workbench/commands/ProblemText.h"
#include "workbench/sound/ThreadPriority.h"

#include <exception>
#include <utility>
#include <vector>

namespace workbench {

PeaksJob::PeaksJob(std::shared_ptr<const qohost::SoundSource> sound, PeaksCache cache)
    : fSound(std::move(sound)), fCache(std::move(cache)), fPeaks(std::make_shared<WaveformPeaks>(fSound->Frames())),
      fKnownPeaks(fPeaks) {
    if (fSound->InMemory())
        Run();
    else
        fThread = std::thread([this] {
            GiveWayToOtherThreads();
            Run();
        });
}

PeaksJob::~PeaksJob() {
    fIsCancelled.store(true);
    if (fThread.joinable()) fThread.join();
}

void PeaksJob::Run() noexcept {
    try {
        FindOrRead();
    } catch (const std::exception& error) {
        fProblem = ProblemText(error);
    }
    fIsOver.store(true);
}

void PeaksJob::FindOrRead() {
    const std::string identity = fSound->Identity();
    const auto known = fCache.Find(identity);
    if (known && fPeaks->Set(*known)) return;
    Read();
    if (!fPeaks->IsComplete()) return;
    fSound->NewReader(); // throws when what was read may be another's already
    fCache.Keep(identity, fPeaks->Ranges());
}

void PeaksJob::Read() {
    constexpr std::size_t kBlockFrames = 16384;
    const auto reader = fSound->NewReader();
    std::vector<std::vector<float>> block(fSound->Layout().size(), std::vector<float>(kBlockFrames));
    std::vector<float*> channels;
    channels.reserve(block.size());
    for (auto& channel : block)
        channels.push_back(channel.data());
    const std::vector<const float*> read(channels.begin(), channels.end());
    while (!fIsCancelled.load()) {
        const std::size_t frames = reader->Read(channels, kBlockFrames);
        if (frames == 0) return;
        fPeaks->Add(read, frames);
    }
}

} // namespace workbench
