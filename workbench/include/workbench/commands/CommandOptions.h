#pragma once

#include "host/SoundFile.h"
#include "workbench/commands/Table.h"

#include <CLI/CLI.hpp>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace workbench {

// Options and arguments that several commands take. What they fill lives as long as the command.

// A number within limits: written as people do ("1.5", "1,5", "-1 dB"); what is none ("nan") is refused.
void AddNumber(CLI::App& command, const char* name, double low, double high, const char* unit, const char* help,
               const std::function<void(double)>& set);
void AddWholeNumber(CLI::App& command, const char* name, int low, int high, const char* help,
                    const std::function<void(int)>& set);
// One of some words, case aside; `set` gets it as it stands in the list.
void AddWord(CLI::App& command, const char* name, const std::vector<std::string>& words, const char* help,
             const std::function<void(const std::string&)>& set);
CLI::Option* AddPath(CLI::App& command, std::filesystem::path& path, const char* name, const char* help);

void AddTheme(CLI::App& command, std::string& theme);
void AddScale(CLI::App& command, float& scale, const char* name, const char* help);
void AddFormat(CLI::App& command, TableFormat& format);
void AddEffect(CLI::App& command, std::string& effect);
void AddPreset(CLI::App& command, std::string& preset);
void AddSettings(CLI::App& command, std::vector<std::string>& settings);
// What a stream holds.
void AddSoundKind(CLI::App& command, qohost::SoundKind& kind);
void AddOverwrite(CLI::App& command, bool& overwrite);

} // namespace workbench
