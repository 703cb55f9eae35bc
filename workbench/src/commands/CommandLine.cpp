#include "workbench/commands/CommandLine.h"

#include "workbench/commands/CommandDescriptions.h"
#include "workbench/commands/Messages.h"
#include "workbench/commands/NearestName.h"
#include "workbench/commands/ProblemText.h"

#include <fmt/format.h>

#include <algorithm>
#include <exception>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

namespace workbench {

namespace {

constexpr const char* kFooter = R"(A file in place of a command is opened. "workbench help COMMAND" tells more.

Exit codes:
  0    done
  1    it could not be done; the error output says why
  2    the command line makes no sense; of "check": a file can't be read
  130  interrupted
)";

void AddHelp(CommandSet& commands) {
    const auto topic = std::make_shared<std::string>();
    CLI::App& command = commands.Add("help", "tell about the program or a command", "[COMMAND]", [topic, &commands] {
        PrintOut(commands.Help(*topic));
        return kExitDone;
    });
    command.add_option("COMMAND", *topic, "the command to tell about");
}

bool IsAboutProgram(const std::string& word) {
    return word == "--help" || word == "-h" || word == "--version";
}

// A word that can't be a file's name by its looks was meant to be a command.
bool LooksLikeFile(const std::string& word) {
    std::error_code error;
    return word.find_first_of("./\\") != std::string::npos || std::filesystem::exists(word, error);
}

// "open" goes without saying. CLI11 wants the arguments in reverse.
std::vector<std::string> CompleteArguments(const CommandSet& commands, int argc, const char* const* argv) {
    std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
    const bool isEmpty = arguments.empty();
    if (isEmpty || (!commands.Has(arguments.front()) && !IsAboutProgram(arguments.front()))) {
        const bool isCommand = !isEmpty && !arguments.front().starts_with('-') && !LooksLikeFile(arguments.front());
        if (isCommand) {
            throw CLI::ValidationError(fmt::format(R"(there is no command and no file "{}"{})", arguments.front(),
                                                   DidYouMean(arguments.front(), commands.Names())));
        }
        arguments.insert(arguments.begin(), "open");
    }
    std::reverse(arguments.begin(), arguments.end());
    return arguments;
}

// An argument that is unknown is the likely reason for what else is wrong.
std::string MessageOfExtras(const CLI::App& command, const std::string& usual) {
    const auto extras = command.remaining();
    const auto option = std::ranges::find_if(extras, [](const std::string& word) { return word.starts_with('-'); });
    if (option == extras.end()) return extras.empty() ? usual : fmt::format(R"("{}" is too much)", extras.front());
    std::vector<std::string> names;
    for (const CLI::Option* const each : command.get_options())
        for (const std::string& name : each->get_lnames())
            names.push_back("--" + name);
    const std::string name = option->substr(0, option->find('='));
    return fmt::format(R"(there is no option "{}"{})", name, DidYouMean(name, names));
}

int RefuseUsage(const CommandSet& commands, const CLI::ParseError& error) {
    const CLI::App* const command = commands.Chosen();
    const std::string what = command != nullptr ? MessageOfExtras(*command, error.what()) : error.what();
    const std::string name = command != nullptr ? " " + command->get_name() : "";
    TellProblem(fmt::format("{}\nusage: {} (\"workbench help{}\" tells more)", what, commands.UsageOf(command), name));
    return kExitWrongUsage;
}

int ParseAndRun(int argc, const char* const* argv) {
    CLI::App app("Try audio effects in their panels, or run them over sound files.", "workbench");
    app.set_version_flag("--version", "workbench " QO_VERSION, "print the version");
    app.footer(kFooter);
    CommandSet commands(app);
    AddPanelCommands(commands);
    AddSoundCommands(commands);
    AddListingCommands(commands);
    AddHelp(commands);
    try {
        app.parse(CompleteArguments(commands, argc, argv));
        return commands.Run();
    } catch (const CLI::Success& wish) {
        return app.exit(wish); // help or version
    } catch (const CLI::ParseError& error) {
        return RefuseUsage(commands, error);
    }
}

} // namespace

int RunCommandLine(int argc, const char* const* argv) {
    try {
        const int exitCode = ParseAndRun(argc, argv);
        FinishOutput();
        return exitCode;
    } catch (const std::exception& error) {
        TellProblem(ProblemText(error));
        return kExitFailed;
    }
}

} // namespace workbench
