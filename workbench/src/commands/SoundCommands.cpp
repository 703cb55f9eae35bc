#include "workbench/commands/CommandDescriptions.h"
#include "workbench/commands/CommandLine.h"
#include "workbench/commands/CommandOptions.h"
#include "workbench/commands/PresetCommand.h"
#include "workbench/commands/RenderCommand.h"
#include "workbench/commands/TextOfSound.h"

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <utility>

namespace workbench {

namespace {

constexpr double kLowestPeak = -96; // dB
constexpr double kLongestTail = 3600;

double TimeOrUsageError(const char* name, const std::string& text) {
    const auto seconds = TimeFromText(text);
    if (!seconds) throw CLI::ValidationError(name, fmt::format(R"("{}" is no time; write 90, 1:30 or 1:30.5)", text));
    return *seconds;
}

void AddRange(CLI::App& command, RenderRequest& request) {
    const auto addTime = [&](const char* name, const char* help, const std::function<void(double)>& set) {
        command
            .add_option_function<std::string>(
                name, [name, set](const std::string& text) { set(TimeOrUsageError(name, text)); }, help)
            ->type_name("TIME");
    };
    addTime("--from", "where in IN to begin: seconds, or 1:30.5", [&request](double time) { request.from = time; });
    addTime("--to", "where in IN to end", [&request](double time) { request.to = time; });
}

void AddTail(CLI::App& command, RenderRequest& request) {
    const auto read = [&request](const std::string& text) {
        if (text == "natural") {
            request.tailSeconds.reset();
            return;
        }
        const double seconds = text == "none" ? 0 : TimeFromText(text).value_or(-1);
        if (seconds < 0 || seconds > kLongestTail)
            throw CLI::ValidationError("--tail", fmt::format(R"("{}" is none of none, natural and seconds)", text));
        request.tailSeconds = seconds;
    };
    command
        .add_option_function<std::string>("--tail", read,
                                          "how far OUT goes beyond the sound; natural, the default: as long as the "
                                          "effect goes on, a minute at most")
        ->type_name("none|natural|SECONDS");
}

void AddSamples(CLI::App& command, RenderRequest& request) {
    using qohost::SampleFormat;
    static const std::vector<std::pair<std::string, SampleFormat>> kFormats = {
        {"8", SampleFormat::k8Bits},   {"16", SampleFormat::k16Bits},   {"24", SampleFormat::k24Bits},
        {"32", SampleFormat::k32Bits}, {"float", SampleFormat::kFloat}, {"double", SampleFormat::kDouble},
    };
    std::vector<std::string> words;
    for (const auto& [word, format] : kFormats)
        words.push_back(word);
    AddWord(command, "--bits", words, "how OUT stores a sample; otherwise as near to IN as its kind of file can",
            [&request](const std::string& word) {
                request.bits = std::ranges::find(kFormats, word, &std::pair<std::string, SampleFormat>::first)->second;
            });
    AddNumber(command, "--normalize", kLowestPeak, 0, "dB",
              "turn all of OUT up or down so that its peak is there: -1 is just below full scale",
              [&request](double decibels) { request.peakDecibels = decibels; });
}

void AddRender(CommandSet& commands) {
    const auto request = std::make_shared<RenderRequest>();
    CLI::App& command = commands.Add("render", "run a sound file through an effect", "--effect NAME [options] IN OUT",
                                     [request] { return Render(*request); });
    AddEffect(command, request->effect);
    AddPreset(command, request->preset);
    AddSettings(command, request->settings);
    AddPath(command, request->automation, "--automate",
            "parameters over time: a file of lines TIME,PARAM,VALUE[,line], or JSON; - for the standard input");
    AddRange(command, *request);
    AddTail(command, *request);
    AddSamples(command, *request);
    command.add_flag(
        "--live", request->live,
        "as it sounds while it plays, in a plug-in host too: nothing is heard first, nor worked on longer");
    command.add_flag("--strict", request->strict, "write nothing, and fail, if samples would be clipped");
    AddOverwrite(command, request->overwrite);
    AddSoundKind(command, request->kind);
    AddPath(command, request->input, "IN", "the sound file to read; - for the standard input")->required();
    AddPath(command, request->output, "OUT",
            "the sound file to write: wav, aif, flac, ogg, caf, w64, au or raw; - for the standard output")
        ->required();
}

void AddPresetFile(CommandSet& commands) {
    const auto request = std::make_shared<PresetRequest>();
    CLI::App& command = commands.Add("preset", "write settings of an effect into a preset file",
                                     "--effect NAME [options] OUT.json | --as-lv2 NAME", [request] {
                                         MakePreset(*request);
                                         return kExitDone;
                                     });
    AddEffect(command, request->effect);
    AddPreset(command, request->preset);
    AddSettings(command, request->settings);
    command.add_flag(
        "--as-lv2", request->isForHosts,
        "write a preset for plug-in hosts: OUT is its name, and it goes to ~/.lv2; or the folder to write");
    AddOverwrite(command, request->overwrite);
    AddPath(command, request->output, "OUT", "the file to write; - for the standard output")->required();
}

} // namespace

void AddSoundCommands(CommandSet& commands) {
    AddRender(commands);
    AddPresetFile(commands);
}

} // namespace workbench
