#include "host/UserPresets.h"

#include "krocore/FilePath.h"
#include "krocore/Localizer.h"
#include "krocore/UserFolders.h"
#include "krocore/config/Error.h"

#include <algorithm>
#include <cctype>
#include <system_error>

namespace qohost {

namespace {

namespace fs = std::filesystem;

constexpr const char* kExtension = ".json";
constexpr std::size_t kLongestName = 200; // bytes; file systems take 255 with what is added

[[noreturn]] void Refuse(const char* key, std::string_view about, std::string_view reason = {}) {
    throw krocore::config::Error(krocore::ToStdString(
        krocore::ReplacePlaceholders(krocore::Localize(key), {krocore::ToUTF16(about), krocore::ToUTF16(reason)})));
}

// On any system, so that presets can go from one to another.
bool CanBeFileName(std::string_view name) {
    const auto isForbidden = [](unsigned char c) {
        return c < 0x20 || c == 0x7F || std::string_view("/\\:*?\"<>|").find(static_cast<char>(c)) != std::string::npos;
    };
    if (name.empty() || name.size() > kLongestName || name.front() == '.' || name.front() == ' ') return false;
    return name.back() != '.' && name.back() != ' ' && std::ranges::none_of(name, isForbidden);
}

bool IsBefore(const std::string& a, const std::string& b) {
    const auto lower = [](unsigned char c) { return std::tolower(c); };
    if (std::ranges::equal(a, b, {}, lower, lower)) return a < b;
    return std::ranges::lexicographical_compare(a, b, {}, lower, lower);
}

} // namespace

std::filesystem::path UserPresets::UsualFolder() {
    return krocore::UserFolder(krocore::UserFiles::kData) / "qoaudio" / "presets";
}

UserPresets::UserPresets(fs::path folder) : fFolder(std::move(folder)) {
}

std::vector<std::string> UserPresets::Names(std::string_view effect) const {
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator entry(fFolder / effect, error), end; !error && entry != end; entry.increment(error)) {
        const fs::path& file = entry->path();
        std::error_code ignored; // what can't be looked at is no file
        if (file.extension() == kExtension && CanBeFileName(krocore::PathText(file.stem())) &&
            entry->is_regular_file(ignored))
            names.push_back(krocore::PathText(file.stem()));
    }
    std::ranges::sort(names, IsBefore);
    return names;
}

bool UserPresets::Has(std::string_view effect, std::string_view name) const {
    std::error_code error;
    return CanBeFileName(name) && fs::exists(FileOf(effect, name), error);
}

fs::path UserPresets::FileOf(std::string_view effect, std::string_view name) const {
    if (!CanBeFileName(name)) {
        Refuse("$$$/qohost/UserPresets/Name=\"@0\" can't be a preset's name: none of / \\ : * ? \" < > |, no dot or "
               "space at its ends, not longer than 200 letters.",
               name);
    }
    return fFolder / effect / krocore::PathFromText(std::string(name) + kExtension);
}

Preset UserPresets::Read(std::string_view effect, std::string_view name) const {
    Preset preset = ReadPresetFile(FileOf(effect, name));
    preset.name = name;
    return preset;
}

void UserPresets::Write(std::string_view effect, const Preset& preset) const {
    const fs::path file = FileOf(effect, preset.name);
    std::error_code error;
    fs::create_directories(file.parent_path(), error);
    if (error)
        Refuse("$$$/qohost/UserPresets/Folder=@0: the folder can't be made (@1).",
               krocore::PathText(file.parent_path()), error.message());
    WritePresetFile(file, preset);
}

void UserPresets::Remove(std::string_view effect, std::string_view name) const {
    const fs::path file = FileOf(effect, name);
    std::error_code error;
    fs::remove(file, error);
    if (error)
        Refuse("$$$/qohost/UserPresets/Removed=@0: the file can't be deleted (@1).", krocore::PathText(file),
               error.message());
}

} // namespace qohost
