#pragma once

#include "host/Preset.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace qohost {

// The presets that a user has saved: FOLDER/EFFECT/NAME.json, with the effect's short name. The file's name is the
// preset's; the one inside it doesn't count, so that presets can be renamed and copied as files. User-interface thread.
class UserPresets {
public:
    // The folder need not be there.
    explicit UserPresets(std::filesystem::path folder);
    // Where programs keep them: $XDG_DATA_HOME/qoaudio/presets, without that variable ~/.local/share/qoaudio/presets;
    // on Windows %APPDATA%\qoaudio\presets.
    static std::filesystem::path UsualFolder();

    // In alphabetical order, without regard to case. None if the folder can't be read.
    std::vector<std::string> Names(std::string_view effect) const;
    bool Has(std::string_view effect, std::string_view name) const;
    std::filesystem::path FileOf(std::string_view effect, std::string_view name) const;

    // They throw krocore::config::Error that names the file, or the name if no file can be called so.
    Preset Read(std::string_view effect, std::string_view name) const;
    // Under the preset's name; in place of one that is there. Makes the folder.
    void Write(std::string_view effect, const Preset& preset) const;
    void Remove(std::string_view effect, std::string_view name) const;

private:
    std::filesystem::path fFolder;
};

} // namespace qohost
