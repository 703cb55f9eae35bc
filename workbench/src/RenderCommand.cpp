#include "workbench/RenderCommand.h"

#include "host/ByteStream.h"
#include "host/OfflineRenderer.h"
#include "workbench/CommandLine.h"
#include "workbench/EffectNames.h"
#include "workbench/Interruption.h"
#include "workbench/PresetCommand.h"
#include "workbench/Terminal.h"

#include <fmt/format.h>

#include <chrono>
#include <cstdio>
#include <optional>
#include <utility>

namespace workbench {

namespace {

using SteadyClock = std::chrono::steady_clock;

// Says on a terminal how far a longer render is.
class Progress {
public:
    ~Progress() { Clear(); }

    void Clear() {
        if (fShown >= 0) fmt::print(stderr, "\r{:{}}\r", "", kLineWidth);
        fShown = -1;
    }

    void Show(double part) {
        const int percent = static_cast<int>(part * 100);
        if (!fIsTerminal || percent == fShown || SteadyClock::now() - fStart < kPatience) return;
        fShown = percent;
        fmt::print(stderr, "\rrendering {} %", percent);
        std::fflush(stderr);
    }

private:
    static constexpr std::chrono::seconds kPatience{1};
    static constexpr int kLineWidth = 20;

    const SteadyClock::time_point fStart = SteadyClock::now();
    const bool fIsTerminal = IsErrorOutputTerminal();
    int fShown = -1; // percent; nothing yet
};

qohost::SoundFileWriter::Format FormatOf(const qohost::OfflineRenderer& renderer,
                                         const qohost::SoundFileReader& input) {
    return {.sampleRate = input.SampleRate(),
            .layout = renderer.Layout(),
            .frames = renderer.Frames(),
            .like = input.Encoding()};
}

} // namespace

int Render(const RenderRequest& request) {
    const qoc::components::EffectDescription& effect = EffectFromName(request.effect);
    const auto filter = NewFilter(effect);
    qohost::SoundFileReader input(request.input, request.kind);
    qohost::RenderOptions options;
    // How many parameters there are may follow the channels.
    filter->Prepare(input.SampleRate(), options.blockFrames, input.Layout());
    ApplyPresetNamed(*filter, effect, request.preset);
    ApplySettings(*filter, request.settings);

    std::optional<Interruption> interruption(std::in_place);
    Progress progress;
    options.progress = [&](double part) {
        progress.Show(part);
        return !interruption->HasHappened();
    };
    qohost::OfflineRenderer renderer(*filter, input, options);
    qohost::SoundFileWriter output(request.output, FormatOf(renderer, input), request.kind);
    const bool isDone = renderer.Run(output) && !interruption->HasHappened();
    progress.Clear();
    if (!isDone) {
        fmt::print(stderr, "workbench: interrupted; {} was not written\n", qohost::OutputName(request.output));
        return kExitInterrupted;
    }
    interruption.reset(); // whoever reads the stream may take their time
    output.Commit();
    return kExitDone;
}

} // namespace workbench
