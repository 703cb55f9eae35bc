#include "workbench/CommandLine.h"

#include "krocore/config/Error.h"
#include "workbench/CheckCommand.h"
#include "workbench/EffectTables.h"
#include "workbench/Interruption.h"
#include "workbench/OpenCommand.h"
#include "workbench/PanelsLibrary.h"
#include "workbench/PresetCommand.h"
#include "workbench/ProblemText.h"
#include "workbench/RenderCommand.h"
#include "workbench/SnapshotCommand.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <exception>
#include <map>
#include <string>
#include <vector>

namespace workbench {

namespace {

constexpr const char* kUsage = R"(usage: workbench [open] [--effect NAME | --scripts NAME] [--watch DIR] [FILE]
       workbench list
       workbench params EFFECT [--format table|tsv]
       workbench presets EFFECT
       workbench preset --effect NAME [--preset NAME|FILE] [--set PARAM=VALUE]... OUT.json
       workbench render --effect NAME [--preset NAME|FILE] [--set PARAM=VALUE]...
                        [--type TYPE [--rate HZ --channels N]] IN OUT
       workbench snapshot (--effect NAME | --scripts NAME) [--watch DIR] [--theme dark|light] [--scale F] [--channels N] OUT.png
       workbench gallery DIR
       workbench check FILE...
)";

constexpr double kSmallestScale = 0.5;
constexpr double kLargestScale = 4;
constexpr int kMostChannels = 32;

// What the arguments ask for; filled by the parser.
struct Request {
    OpenRequest open;
    RenderRequest render;
    SnapshotRequest snapshot;
    PresetRequest preset;
    std::string presetsOf;
    std::string parametersOf;
    TableFormat parametersFormat = TableFormat::kAligned;
    std::filesystem::path gallery;
    CheckRequest check;
};

CLI::Option* AddTheme(CLI::App& command, std::string& theme) {
    return command.add_option("--theme", theme, "dark or light")->check(CLI::IsMember({"dark", "light"}));
}

CLI::Option* AddScale(CLI::App& command, float& scale, const char* name, const char* help) {
    return command.add_option(name, scale, help)->check(CLI::Range(kSmallestScale, kLargestScale));
}

CLI::Option* AddPath(CLI::App& command, std::filesystem::path& path, const char* name, const char* help) {
    return command.add_option_function<std::string>(
        name, [&path](const std::string& text) { path = text; }, help);
}

void AddSettings(CLI::App& command, std::vector<std::string>& settings) {
    command.add_option("--set", settings, R"(set a parameter: gain1=-6, "Gain 1=-6 dB", n:0.5 for a normalised value)")
        ->type_name("PARAM=VALUE")
        ->expected(1)
        ->allow_extra_args(false) // the files may follow
        ->take_all();
}

// Of streams, under the name "-", and of files whose extension says nothing.
void AddSoundKind(CLI::App& command, qohost::SoundKind& kind) {
    constexpr int kHighestRate = 1000000;
    command.add_option("--type", kind.type, "how a stream stores sound: wav, au, raw (16 bits) and the like")
        ->type_name("TYPE")
        ->check(CLI::Validator(
            [](const std::string& type) { return qohost::IsSoundType(type) ? "" : "no kind of sound file: " + type; },
            ""));
    command.add_option("--rate", kind.sampleRate, "the sample rate of raw sound that is read, in hertz")
        ->type_name("HZ")
        ->check(CLI::Range(1, kHighestRate));
    command.add_option("--channels", kind.channels, "the channels of raw sound that is read, 1 to 32")
        ->type_name("N")
        ->check(CLI::Range(1, kMostChannels));
}

void AddPreset(CLI::App& command, std::string& preset) {
    command.add_option("--preset", preset, R"(a preset to begin with: its name, see "workbench presets", or a file)")
        ->type_name("NAME|FILE");
}

// What a panel is for: an effect, or scripts that belong to none; and where its author edits it.
template <class PanelRequest>
CLI::Option_group& AddPanel(CLI::App& command, PanelRequest& request, const char* effectHelp) {
    CLI::Option_group& choice = *command.add_option_group("panel");
    choice.add_option("--effect", request.effect, effectHelp)->type_name("NAME");
    choice.add_option("--scripts", request.scripts, "a pair of scripts, NAME.trn and NAME.lio")->type_name("NAME");
    choice.require_option(0, 1);
    AddPath(command, request.watch, "--watch", "use the scripts, archives and pictures in this folder");
    return choice;
}

void DescribeOpen(CLI::App& app, OpenRequest& request) {
    CLI::App& command = *app.add_subcommand("open", "open the window (what happens without a command)");
    AddPanel(command, request, "the effect to begin with");
    AddTheme(command, request.theme);
    AddScale(command, request.scale, "--scale", "pixels a unit of the picture, 0.5 to 4");
    AddScale(command, request.zoom, "--zoom", "magnification on top of that, 0.5 to 4");
    command.add_option("--trace", request.trace, "write traces up to this level, 1 to 9, on the error output")
        ->type_name("LEVEL")
        ->check(CLI::Range(0, 9));
    AddSoundKind(command, request.kind);
    AddPath(command, request.file, "FILE", "the sound to open, - for the standard input; without it a built-in one");
}

void DescribeRender(CLI::App& app, RenderRequest& request) {
    CLI::App& command = *app.add_subcommand("render", "run a sound file through an effect");
    command.add_option("--effect", request.effect, R"(see "workbench list")")->type_name("NAME")->required();
    AddPreset(command, request.preset);
    AddSettings(command, request.settings);
    AddSoundKind(command, request.kind);
    AddPath(command, request.input, "IN", "the sound file to read; - for the standard input")->required();
    AddPath(command, request.output, "OUT", "the sound file to write, may be the same; - for the standard output")
        ->required();
}

void DescribePresets(CLI::App& app, Request& request) {
    CLI::App& list = *app.add_subcommand("presets", "list the presets of an effect");
    list.add_option("EFFECT", request.presetsOf, R"(see "workbench list")")->required();
    CLI::App& command = *app.add_subcommand("preset", "write settings of an effect into a preset file");
    command.add_option("--effect", request.preset.effect, R"(see "workbench list")")->type_name("NAME")->required();
    AddPreset(command, request.preset.preset);
    AddSettings(command, request.preset.settings);
    AddPath(command, request.preset.output, "OUT", "the file to write; - for the standard output")->required();
}

void DescribeSnapshot(CLI::App& app, SnapshotRequest& request) {
    CLI::App& command = *app.add_subcommand("snapshot", "draw a panel into a PNG file");
    AddPanel(command, request, R"(see "workbench list")").require_option(1);
    AddSettings(command, request.settings);
    AddTheme(command, request.theme);
    AddScale(command, request.scale, "--scale", "pixels a unit of the picture, 0.5 to 4");
    command.add_option("--channels", request.channels, "the channels that the effect has, 1 to 32")
        ->check(CLI::Range(1, kMostChannels));
    AddPath(command, request.output, "OUT", "the file to write; - for the standard output")->required();
}

void DescribeParameters(CLI::App& app, Request& request) {
    CLI::App& command = *app.add_subcommand("params", "list the parameters of an effect");
    command.add_option("EFFECT", request.parametersOf, R"(see "workbench list")")->required();
    const std::map<std::string, TableFormat> formats = {{"table", TableFormat::kAligned},
                                                        {"tsv", TableFormat::kTabbed}};
    command.add_option("--format", request.parametersFormat, "table, or tsv: a tab between cells")
        ->transform(CLI::CheckedTransformer(formats))
        ->type_name("FORMAT");
}

void Describe(CLI::App& app, Request& request) {
    app.set_version_flag("--version", "workbench " QO_VERSION);
    app.require_subcommand(1);
    DescribeOpen(app, request.open);
    app.add_subcommand("list", "list the effects");
    DescribeParameters(app, request);
    DescribePresets(app, request);
    DescribeRender(app, request.render);
    DescribeSnapshot(app, request.snapshot);
    CLI::App& gallery = *app.add_subcommand("gallery", "draw every panel, in both themes, into a folder");
    AddPath(gallery, request.gallery, "DIR", "the folder; made if it is not there")->required();
    CLI::App& check = *app.add_subcommand("check", "say what is wrong in layout archives, sheets and layouts");
    check.add_option("FILE", request.check.files, "NAME.xml, NAME.trn or NAME.lio")->required();
}

int Run(const CLI::App& app, const Request& request) {
    const std::string command = app.get_subcommands().front()->get_name();
    if (command == "open") return Open(request.open);
    RemoveUnfinishedFilesAtTheEnd();
    if (command == "render") return Render(request.render);
    if (command == "check") return Check(request.check);
    if (command == "list") {
        const PanelsLibrary library;
        fmt::print("{}", EffectTable());
    } else if (command == "params") {
        fmt::print("{}", ParameterTableOf(request.parametersOf, request.parametersFormat));
    } else if (command == "presets") {
        fmt::print("{}", PresetListOf(request.presetsOf));
    } else if (command == "preset") {
        MakePreset(request.preset);
    } else if (command == "snapshot") {
        Snapshot(request.snapshot);
    } else {
        fmt::print("{} pictures in {}\n", Gallery(request.gallery), request.gallery.string());
    }
    return kExitDone;
}

// "open" goes without saying. CLI11 wants the arguments in reverse.
std::vector<std::string> CompleteArguments(const CLI::App& app, int argc, const char* const* argv) {
    std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
    const auto isCommand = [&](const std::string& word) {
        const auto commands = app.get_subcommands([](const CLI::App*) { return true; });
        return std::any_of(commands.begin(), commands.end(),
                           [&](const CLI::App* command) { return command->get_name() == word; });
    };
    const auto isAboutProgram = [](const std::string& word) {
        return word == "--help" || word == "-h" || word == "--version";
    };
    const bool isComplete = !arguments.empty() && (isCommand(arguments.front()) || isAboutProgram(arguments.front()));
    if (!isComplete) arguments.insert(arguments.begin(), "open");
    std::reverse(arguments.begin(), arguments.end());
    return arguments;
}

int ParseAndRun(int argc, const char* const* argv) {
    CLI::App app("Try audio effects in their panels, or run them over sound files.", "workbench");
    Request request;
    Describe(app, request);
    try {
        app.parse(CompleteArguments(app, argc, argv));
    } catch (const CLI::Success& wish) {
        return app.exit(wish); // help or version
    } catch (const CLI::ParseError& error) {
        fmt::print(stderr, "workbench: {}\n{}", error.what(), kUsage);
        return kExitWrongUsage;
    }
    return Run(app, request);
}

} // namespace

int RunCommandLine(int argc, const char* const* argv) {
    try {
        return ParseAndRun(argc, argv);
    } catch (const std::exception& error) {
        fmt::print(stderr, "workbench: {}\n", ProblemText(error));
        return kExitFailed;
    }
}

} // namespace workbench
