#pragma once

#include <CLI/CLI.hpp>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace workbench {

// The commands that the program's first argument chooses from: what each takes, how it is used, and what it does.
class CommandSet {
public:
    // The parser is the program's and lives longer.
    explicit CommandSet(CLI::App& app);
    CommandSet(const CommandSet&) = delete;
    CommandSet& operator=(const CommandSet&) = delete;

    // A command whose options and arguments the caller adds. `usage` is what follows its name on a command line; `run`
    // returns the exit code.
    CLI::App& Add(const std::string& name, const std::string& summary, const std::string& usage,
                  std::function<int()> run);

    bool Has(std::string_view name) const { return Find(name) != nullptr; }
    std::vector<std::string> Names() const;
    // The command that the parser has met, even if it found fault with what came behind; null for none.
    const CLI::App* Chosen() const;
    // "workbench render --effect NAME [options] IN OUT"; without a command that of the program.
    std::string UsageOf(const CLI::App* command) const;
    // The help about a command; about the program for an empty name. Throws CLI::ValidationError for an unknown name.
    std::string Help(const std::string& name) const;
    // Does what the arguments ask for. Returns the exit code.
    int Run() const;

private:
    struct Entry {
        const CLI::App* app;
        std::string usage;
        std::function<int()> run;
    };
    const Entry* Find(std::string_view name) const;

    CLI::App& fApp;
    std::vector<Entry> fEntries;
};

} // namespace workbench
