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
};

int List(const ListingRequest& request) {
    const PanelsLibrary library;
    PrintOut(EffectTable(fmt::format("{}", fmt::join(request.words, " "))).ToText(request.format));
    return kExitDone;
}

void AddListingOfEffect(CommandSet& commands, const char* name, const char* summary,
                        Table (*tableOf)(std::string_view)) {
    const auto request = std::make_shared<ListingRequest>();
    CLI::App& command = commands.Add(name, summary, "EFFECT [--format table|tsv|json]", [request, tableOf] {
        PrintOut(tableOf(request->effect).ToText(request->format));
        return kExitDone;
    });
    command.add_option("EFFECT", request->effect, R"(see "workbench list")")->required();
    AddFormat(command, request->format);
}

} // namespace

void AddListingCommands(CommandSet& commands) {
    const auto request = std::make_shared<ListingRequest>();
    CLI::App& command = commands.Add("list", "list the effects, or those that some words find",
                                     "[WORD...] [--format table|tsv|json]", [request] { return List(*request); });
    command.add_option("WORD", request->words, "a part of a name, a category, a preset or a plain word: hum");
    AddFormat(command, request->format);
    AddListingOfEffect(commands, "params", "list the parameters of an effect, as it is for stereo", &ParameterTable);
    AddListingOfEffect(commands, "presets", "list the presets of an effect, and your own for it", &PresetTable);
}

} // namespace workbench
