#include "workbench/RenderCommand.h"

#include "host/AudioFile.h"
#include "host/OfflineRenderer.h"
#include "workbench/CommandLine.h"
#include "workbench/EffectNames.h"
#include "workbench/Interruption.h"
#include "workbench/PresetCommand.h"
#include "workbench/Terminal.h"

#include <fmt/format.h>

#include <chrono>
#include <cstdio>

namespace workbench {

namespace {

using SteadyClock = std::chrono::steady_clock;

// Says on a terminal how far a longer render is.
class Progress {
public:
    ~Progress() {
        if (fShown >= 0) fmt::print(stderr, "\r{:{}}\r", "", kLineWidth);
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

} // namespace

int Render(const RenderRequest& request) {
    const qoc::components::EffectDescription& effect = EffectFromName(request.effect);
    const auto filter = NewFilter(effect);
    const qohost::AudioFile file = qohost::ReadAudioFile(request.input);
    qohost::RenderOptions options;
    // How many parameters there are may follow the channels.
    filter->Prepare(file.sound.sampleRate, options.blockFrames, file.sound.layout);
    ApplyPresetNamed(*filter, effect, request.preset);
    ApplySettings(*filter, request.settings);

    const Interruption interruption;
    std::optional<qohost::Sound> result;
    {
        Progress progress;
        options.progress = [&](double part) {
            progress.Show(part);
            return !interruption.HasHappened();
        };
        result = qohost::RenderOffline(*filter, file.sound, options);
    }
    if (!result || interruption.HasHappened()) {
        fmt::print(stderr, "workbench: interrupted; {} was not written\n", request.output.string());
        return kExitInterrupted;
    }
    qohost::WriteAudioFile(request.output, *result, file.encoding);
    return kExitDone;
}

} // namespace workbench
