#include "workbench/RenderJob.h"

#include "host/OfflineRenderer.h"

#include <exception>
#include <utility>

namespace workbench {

namespace {

qohost::Sound Part(const qohost::Sound& sound, const qohost::PlaybackRange& range) {
    const bool isWhole = range.end <= range.begin;
    const std::size_t begin = isWhole ? 0 : std::min(range.begin, sound.Frames());
    const std::size_t end = isWhole ? sound.Frames() : std::min(range.end, sound.Frames());
    qohost::Sound part{sound.sampleRate, sound.layout, {}};
    for (const std::vector<float>& channel : sound.channels) {
        part.channels.emplace_back(channel.begin() + static_cast<std::ptrdiff_t>(begin),
                                   channel.begin() + static_cast<std::ptrdiff_t>(end));
    }
    return part;
}

std::filesystem::path FreeName(const std::filesystem::path& wanted) {
    std::filesystem::path file = wanted;
    for (int number = 2; std::filesystem::exists(std::filesystem::symlink_status(file)); ++number) {
        std::filesystem::path name = wanted.stem();
        name += "-" + std::to_string(number);
        name += wanted.extension();
        file = wanted.parent_path() / name;
    }
    return file;
}

} // namespace

RenderJob::RenderJob(Task task) : fTask(std::move(task)), fThread([this] { Run(); }) {
}

RenderJob::~RenderJob() {
    Cancel();
    fThread.join();
}

void RenderJob::Run() noexcept {
    try {
        Render();
    } catch (const std::exception& error) {
        fOutcome.problem = error.what();
    }
    fIsOver.store(true);
}

void RenderJob::Render() {
    qohost::RenderOptions options;
    options.progress = [this](double part) {
        fPartDone.store(part);
        return !fIsCancelled.load();
    };
    const auto result = qohost::RenderOffline(*fTask.filter, Part(*fTask.sound, fTask.range), options);
    if (!result || fIsCancelled.load()) return;
    const std::filesystem::path file = FreeName(fTask.file);
    qohost::WriteAudioFile(file, *result, fTask.encoding);
    if (fIsCancelled.load())
        std::filesystem::remove(file);
    else
        fOutcome.file = file;
}

} // namespace workbench
