#include "workbench/commands/RenderCommand.h"

#include "host/ByteStream.h"
#include "host/OfflineRenderer.h"
#include "host/SoundPart.h"
#include "krocore/Units.h"
#include "krocore/config/Error.h"
#include "workbench/commands/CommandLine.h"
#include "workbench/commands/Interruption.h"
#include "workbench/commands/Messages.h"
#include "workbench/commands/OutputFile.h"
#include "workbench/commands/PresetCommand.h"
#include "workbench/commands/Terminal.h"
#include "workbench/commands/TextOfSound.h"
#include "workbench/session/EffectNames.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
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
        if (fShown >= 0) std::fprintf(stderr, "\r%*s\r", kLineWidth, "");
        fShown = -1;
    }

    void Show(double part) {
        const int percent = static_cast<int>(krocore::PercentOfFraction(part));
        if (!fIsTerminal || percent == fShown || SteadyClock::now() - fStart < kPatience) return;
        fShown = percent;
        std::fprintf(stderr, "\rrendering %d %%", percent);
        std::fflush(stderr);
    }

private:
    static constexpr std::chrono::seconds kPatience{1};
    static constexpr int kLineWidth = 20;

    const SteadyClock::time_point fStart = SteadyClock::now();
    const bool fIsTerminal = IsErrorOutputTerminal();
    int fShown = -1; // percent; nothing yet
};

std::string Text(double seconds) {
    return krocore::ToStdString(TimeText(seconds));
}

qohost::SoundPartReader PartToRender(const RenderRequest& request, qohost::SoundReader& sound) {
    const double length = static_cast<double>(sound.Frames()) / sound.SampleRate();
    const double end = request.to.value_or(length);
    const bool isAsked = request.from > 0 || request.to;
    if (isAsked && (request.from >= length || request.from >= end)) {
        throw krocore::config::Error(fmt::format("{}: there is nothing from {} to {}; the sound is {} long",
                                                 qohost::InputName(request.input), Text(request.from), Text(end),
                                                 Text(length)));
    }
    const auto frame = [&](double seconds) {
        return static_cast<std::uint64_t>(std::llround(std::min(seconds, length) * sound.SampleRate()));
    };
    return {sound, frame(request.from), request.to ? frame(end) : sound.Frames()};
}

// Whether the file may be written in spite of it.
bool TellClipping(const RenderRequest& request, const qohost::Clipping& clipping) {
    if (clipping.samples == 0) return true;
    const std::string what = krocore::ToStdString(ClippingText(clipping));
    const std::string name = qohost::OutputName(request.output);
    constexpr const char* kAdvice = "--bits float keeps them, --normalize -1 turns the sound down";
    if (request.strict)
        TellProblem(fmt::format("{} was not written: {}; {}", name, what, kAdvice));
    else
        TellNote(fmt::format("{}: {}; {}", name, what, kAdvice));
    return !request.strict;
}

} // namespace

int Render(const RenderRequest& request) {
    const qoc::components::EffectDescription& effect = EffectFromName(request.effect);
    CheckMayWrite(request.output, request.overwrite);
    const auto filter = NewFilter(effect);
    qohost::SoundFileReader file(request.input, request.kind);
    qohost::SoundPartReader input = PartToRender(request, file);
    qohost::RenderOptions options;
    options.tailSeconds = request.tailSeconds;
    if (request.live) options.quality = kroaudiofilterhost::AudioFilterQuality::kLive;
    // How many parameters there are may follow the channels.
    filter->Prepare(input.SampleRate(), options.blockFrames, input.Layout());
    ApplyPresetNamed(*filter, effect, request.preset);
    ApplySettings(*filter, request.settings);
    if (!request.automation.empty())
        options.automation = qohost::ReadAutomation(*filter, request.automation, request.from);

    std::optional<Interruption> interruption(std::in_place);
    Progress progress;
    options.progress = [&](double part) {
        progress.Show(part);
        return !interruption->HasHappened();
    };
    qohost::OfflineRenderer renderer(*filter, input, options);
    qohost::SoundFileWriter output(request.output,
                                   {.sampleRate = input.SampleRate(),
                                    .layout = renderer.Layout(),
                                    .frames = renderer.Frames(),
                                    .like = file.Encoding(),
                                    .samples = request.bits},
                                   request.kind);
    const bool isRun =
        request.peakDecibels ? qohost::RunWithPeakAt(*request.peakDecibels, renderer, output) : renderer.Run(output);
    progress.Clear();
    if (!isRun || interruption->HasHappened()) {
        TellProblem(fmt::format("interrupted; {} was not written", qohost::OutputName(request.output)));
        return kExitInterrupted;
    }
    if (!TellClipping(request, output.GetClipping())) return kExitFailed;
    interruption.reset(); // whoever reads the stream may take their time
    output.Commit();
    return kExitDone;
}

} // namespace workbench
