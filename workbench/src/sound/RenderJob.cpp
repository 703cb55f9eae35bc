#include "workbench/sound/RenderJob.h"

#include "host/OfflineRenderer.h"
#include "host/SoundPart.h"
#include "workbench/commands/ProblemText.h"

#include <exception>
#include <utility>

namespace workbench {

namespace {

qohost::SoundPartReader Part(qohost::SoundReader& sound, const qohost::PlaybackRange& range) {
    const bool isWhole = range.end <= range.begin;
    return {sound, isWhole ? 0 : range.begin, isWhole ? sound.Frames() : range.end};
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
        fOutcome.problem = ProblemText(error);
    }
    fIsOver.store(true);
}

void RenderJob::Render() {
    qohost::RenderOptions options;
    options.progress = [this](double part) {
        fPartDone.store(part);
        return !fIsCancelled.load();
    };
    const auto sound = fTask.sound->NewReader();
    qohost::SoundPartReader input = Part(*sound, fTask.range);
    qohost::OfflineRenderer renderer(*fTask.filter, input, options);
    const std::filesystem::path file = FreeName(fTask.file);
    qohost::SoundFileWriter output(file, {.sampleRate = input.SampleRate(),
                                          .layout = renderer.Layout(),
                                          .frames = renderer.Frames(),
                                          .like = fTask.encoding,
                                          .samples = fTask.wishes.format});
    const auto peak = fTask.wishes.peakDecibels;
    const bool isRun = peak ? qohost::RunWithPeakAt(*peak, renderer, output) : renderer.Run(output);
    if (!isRun || fIsCancelled.load()) return;
    fOutcome.clipping = output.GetClipping();
    output.Commit();
    if (fIsCancelled.load())
        std::filesystem::remove(file);
    else
        fOutcome.file = file;
}

} // namespace workbench
