#include "workbench/commands/CommandSet.h"

#include "workbench/commands/Interruption.h"
#include "workbench/commands/NearestName.h"

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <utility>

namespace workbench {

namespace {

constexpr int kHelpColumn = 36;
constexpr const char* kWindowCommand = "open";

// Options with the name of their value alone, and the command's own line of usage.
class HelpFormatter final : public CLI::Formatter {
public:
    explicit HelpFormatter(const CommandSet& commands) : fCommands(commands) {
        column_width(kHelpColumn);
        label("Positionals", "Arguments");
        label("Subcommands", "Commands");
    }

    std::string make_usage(const CLI::App* app, std::string /*name*/) const override {
        const bool isProgram = app->get_parent() == nullptr;
        return "\nusage: " + fCommands.UsageOf(isProgram ? nullptr : app) + "\n";
    }
    std::string make_option_opts(const CLI::Option* option) const override {
        const bool hasValue = option->get_type_size() != 0 && !option->get_positional();
        return hasValue ? " " + option->get_type_name() : "";
    }
    std::string make_option_desc(const CLI::Option* option) const override {
        const bool isNotable = option->get_required() && !option->get_positional();
        return option->get_description() + (isNotable ? " (required)" : "");
    }

private:
    const CommandSet& fCommands;
};

} // namespace

CommandSet::CommandSet(CLI::App& app) : fApp(app) {
    fApp.formatter(std::make_shared<HelpFormatter>(*this));
    fApp.set_help_flag("-h,--help", "print this help");
    fApp.require_subcommand(1);
}

CLI::App& CommandSet::Add(const std::string& name, const std::string& summary, const std::string& usage,
                          std::function<int()> run) {
    CLI::App* const command = fApp.add_subcommand(name, summary);
    command->group("Commands");
    command->footer(std::string());
    fEntries.push_back({command, usage, std::move(run)});
    return *command;
}

std::vector<std::string> CommandSet::Names() const {
    std::vector<std::string> names;
    for (const Entry& entry : fEntries)
        names.push_back(entry.app->get_name());
    return names;
}

const CommandSet::Entry* CommandSet::Find(std::string_view name) const {
    const auto found =
        std::ranges::find_if(fEntries, [name](const Entry& entry) { return entry.app->get_name() == name; });
    return found != fEntries.end() ? &*found : nullptr;
}

const CLI::App* CommandSet::Chosen() const {
    const auto chosen = fApp.get_subcommands();
    return chosen.empty() ? nullptr : chosen.front();
}

std::string CommandSet::UsageOf(const CLI::App* command) const {
    const Entry* const entry = command != nullptr ? Find(command->get_name()) : nullptr;
    if (entry == nullptr) return fApp.get_name() + " [COMMAND] [ARGUMENTS]";
    return fmt::format("{} {} {}", fApp.get_name(), entry->app->get_name(), entry->usage);
}

std::string CommandSet::Help(const std::string& name) const {
    // What the parser itself tells would be about the command that asks.
    if (name.empty()) return fApp.get_formatter()->make_help(&fApp, fApp.get_name(), CLI::AppFormatMode::Normal);
    if (const Entry* const entry = Find(name)) return entry->app->help();
    throw CLI::ValidationError(fmt::format(R"(there is no command "{}"{})", name, DidYouMean(name, Names())));
}

int CommandSet::Run() const {
    const std::string name = Chosen()->get_name();
    // The window does so itself, behind SDL.
    if (name != kWindowCommand) RemoveUnfinishedFilesAtTheEnd();
    return Find(name)->run();
}

} // namespace workbench
