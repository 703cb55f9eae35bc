#include "krocore/FilePath.h"
#include "krocore/config/Error.h"
#include "workbench/commands/CheckCommand.h"
#include "workbench/commands/CommandDescriptions.h"
#include "workbench/commands/CommandLine.h"
#include "workbench/commands/CommandOptions.h"
#include "workbench/commands/Messages.h"
#include "workbench/commands/OpenCommand.h"
#include "workbench/commands/SnapshotCommand.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace workbench {

namespace {

constexpr int kMostChannels = 32;
constexpr int kMostTrace = 9;

// What a panel is for: an effect, or scripts that belong to none; and where its author edits it.
template <class PanelRequest>
void AddPanel(CLI::App& command, PanelRequest& request) {
    CLI::Option* const effect = command.add_option("--effect", request.effect, R"(the effect, see "workbench list")");
    CLI::Option* const scripts =
        command.add_option("--scripts", request.scripts, "instead: a pair of scripts, NAME.trn and NAME.lio");
    effect->type_name("NAME");
    scripts->type_name("NAME")->excludes(effect);
    AddPath(command, request.watch, "--watch", "use the scripts, archives and pictures in this folder");
}

void AddOpen(CommandSet& commands) {
    const auto request = std::make_shared<OpenRequest>();
    CLI::App& command = commands.Add("open", "open the window (what happens without a command)", "[options] [FILE]",
                                     [request] { return Open(*request); });
    AddPanel(command, *request);
    AddTheme(command, request->theme);
    AddScale(command, request->scale, "--scale", "pixels a unit of the picture, 0.5 to 4");
    AddScale(command, request->zoom, "--zoom", "magnification on top of that, 0.5 to 4");
    AddWholeNumber(command, "--trace", 0, kMostTrace, "write traces up to this level, 1 to 9, on the error output",
                   [request](int level) { request->trace = level; });
    AddSoundKind(command, request->kind);
    AddPath(command, request->file, "FILE", "the sound to open, - for the standard input; without it a built-in one");
}

void AddSnapshot(CommandSet& commands) {
    const auto request = std::make_shared<SnapshotRequest>();
    CLI::App& command = commands.Add("snapshot", "draw a panel into a PNG file",
                                     "(--effect NAME | --scripts NAME) [options] OUT.png", [request] {
                                         Snapshot(*request);
                                         return kExitDone;
                                     });
    AddPanel(command, *request);
    AddSettings(command, request->settings);
    AddTheme(command, request->theme);
    AddScale(command, request->scale, "--scale", "pixels a unit of the picture, 0.5 to 4");
    AddWholeNumber(command, "--channels", 1, kMostChannels, "the channels that the effect has, 1 to 32",
                   [request](int channels) { request->channels = static_cast<std::size_t>(channels); });
    AddPath(command, request->output, "OUT", "the picture to write, replaced if it is there; - for the standard output")
        ->required();
    command.final_callback([request] {
        if (request->effect.empty() && request->scripts.empty())
            throw CLI::ValidationError("--effect NAME or --scripts NAME is required");
    });
}

void AddGallery(CommandSet& commands) {
    const auto folder = std::make_shared<std::filesystem::path>();
    CLI::App& command =
        commands.Add("gallery", "draw every panel, in both themes and two sizes, into a folder", "DIR", [folder] {
            PrintOut(fmt::format("{} pictures in {}\n", Gallery(*folder), folder->string()));
            return kExitDone;
        });
    AddPath(command, *folder, "DIR", "the folder; made if it is not there")->required();
}

void AddCheck(CommandSet& commands) {
    const auto request = std::make_shared<CheckRequest>();
    CLI::App& command = commands.Add("check", "say what is wrong in layout archives, sheets and layouts",
                                     "[--format table|tsv|json] FILE...", [request] { return Check(*request); });
    AddFormat(command, request->format);
    const auto take = [request](const std::vector<std::string>& files) {
        request->files.clear();
        std::ranges::transform(files, std::back_inserter(request->files), krocore::PathFromText);
    };
    command.add_option_function<std::vector<std::string>>("FILE", take, "NAME.xml, NAME.trn or NAME.lio")->required();
}

} // namespace

void AddPanelCommands(CommandSet& commands) {
    AddOpen(commands);
    AddSnapshot(commands);
    AddGallery(commands);
    AddCheck(commands);
}

} // namespace workbench
