#include "workbench/commands/CommandDescriptions.h"
#include "workbench/commands/CommandLine.h"
#include "workbench/commands/CommandOptions.h"
#include "workbench/commands/EffectTables.h"
#include "workbench/commands/Messages.h"
#include "workbench/session/PanelsLibrary.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <memory>

namespace workbench {

namespace {

struct ListingRequest {
    std::string effect;
    std::vector<std::string> words;
    TableFormat format = TableFormat::kAligned;
    SoundFormat sound;
};

int List(const ListingRequest& request) {
    const PanelsLibrary library;
    PrintOut(EffectTable(fmt::format("{}", fmt::join(request.words, " "))).ToText(request.format));
    return kExitDone;
}

void AddEffectToList(CLI::App& command, ListingRequest& request) {
    command.add_option("EFFECT", request.effect, R"(see "workbench list")")->required();
    AddFormat(command, request.format);
}

void AddParameters(CommandSet& commands) {
    const auto request = std::make_shared<ListingRequest>();
    CLI::App& command =
        commands.Add("params", "list the parameters of an effect",
                     "EFFECT [--rate HZ] [--channels N] [--format table|tsv|json]", [request] {
                         PrintOut(ParameterTable(request->effect, request->sound).ToText(request->format));
                         return kExitDone;
                     });
    AddEffectToList(command, *request);
    command.add_option("--rate", request->sound.sampleRate, "as it is at this sample rate, in hertz; 44100 otherwise");
    command.add_option("--channels", request->sound.channels, "as it is for so many channels; 2 otherwise");
}

void AddPresets(CommandSet& commands) {
    const auto request = std::make_shared<ListingRequest>();
    CLI::App& command = commands.Add("presets", "list the presets of an effect, and your own for it",
                                     "EFFECT [--format table|tsv|json]", [request] {
                                         PrintOut(PresetTable(request->effect).ToText(request->format));
                                         return kExitDone;
                                     });
    AddEffectToList(command, *request);
}

} // namespace

void AddListingCommands(CommandSet& commands) {
    const auto request = std::make_shared<ListingRequest>();
    CLI::App& command = commands.Add("list", "list the effects, or those that some words find",
                                     "[WORD...] [--format table|tsv|json]", [request] { return List(*request); });
    command.add_option("WORD", request->words, "a part of a name, a category, a preset or a plain word: hum");
    AddFormat(command, request->format);
    AddParameters(commands);
    AddPresets(commands);
}

} // namespace workbench
