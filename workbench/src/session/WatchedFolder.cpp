#include "workbench/session/WatchedFolder.h"

#include "krocore/FilePath.h"
#include "krocore/ModuleResources.h"
#include "krocore/config/Error.h"
#include "workbench/session/TextFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <system_error>
#include <utility>

namespace workbench {

namespace {

constexpr std::array<std::string_view, 4> kTypes = {"trn", "lio", "xml", "png"};

// What the file stands for; no name if it is none of ours.
ResourceName NameOf(const std::filesystem::path& file) {
    const std::string extension = LowerExtension(file);
    if (extension.empty() || std::ranges::find(kTypes, extension.substr(1)) == kTypes.end()) return {};
    return {LowerStem(file), extension.substr(1)};
}

} // namespace

WatchedFolder::WatchedFolder(std::filesystem::path folder) : fFolder(std::move(folder)) {
    if (!See())
        throw krocore::config::Error(fmt::format("{}: there is no such folder to watch", krocore::PathText(fFolder)));
    for (auto& [name, entry] : fEntries)
        Load(name, entry);
}

WatchedFolder::~WatchedFolder() {
    for (const auto& [name, entry] : fEntries)
        krocore::RemoveResourceOverride(name.name, name.type);
}

WatchedFolder::Names WatchedFolder::Look() {
    std::map<ResourceName, Stamp> before;
    for (const auto& [name, entry] : fEntries)
        before.emplace(name, entry.seen);
    Names changed;
    if (!See()) return changed;
    for (auto& [name, entry] : fEntries) {
        const auto earlier = before.find(name);
        const bool isAtRest = earlier != before.end() && earlier->second == entry.seen;
        if (isAtRest && !(entry.seen == entry.loaded) && Load(name, entry)) changed.insert(name);
    }
    return changed;
}

WatchedFolder::Names WatchedFolder::Files() const {
    Names names;
    for (const auto& [name, entry] : fEntries)
        if (entry.loaded.isThere) names.insert(name);
    return names;
}

const krotarnlio::Script* WatchedFolder::Find(const ResourceName& name) const {
    const auto found = fEntries.find(name);
    return found != fEntries.end() && found->second.loaded.isThere ? &found->second.script : nullptr;
}

WatchedFolder::Stamp WatchedFolder::StampOf(const std::filesystem::path& file) {
    std::error_code error;
    Stamp stamp;
    stamp.time = std::filesystem::last_write_time(file, error);
    if (error) return {};
    stamp.size = std::filesystem::file_size(file, error);
    stamp.isThere = !error;
    return error ? Stamp() : stamp;
}

// False, with everything as before, if the folder can't be read.
bool WatchedFolder::See() {
    std::error_code error;
    std::map<ResourceName, std::filesystem::path> files;
    for (std::filesystem::directory_iterator at(fFolder, error), end; !error && at != end; at.increment(error)) {
        const ResourceName name = NameOf(at->path());
        if (!name.name.empty()) files.emplace(name, at->path());
    }
    if (error) return false;
    for (auto& [name, entry] : fEntries)
        if (!files.contains(name)) entry.seen = {};
    for (const auto& [name, path] : files) {
        Entry& entry = fEntries[name];
        entry.path = path;
        entry.seen = StampOf(path);
    }
    return true;
}

// False if the file is being written, to be loaded later.
bool WatchedFolder::Load(const ResourceName& name, Entry& entry) {
    if (!entry.seen.isThere) {
        krocore::RemoveResourceOverride(name.name, name.type);
        entry.loaded = {};
        return true;
    }
    auto text = ReadFile(entry.path);
    if (!text || !(StampOf(entry.path) == entry.seen)) return false;
    krocore::SetResourceOverride(name.name, name.type, std::as_bytes(std::span(*text)));
    entry.script = {krocore::PathText(entry.path), std::move(*text)};
    entry.loaded = entry.seen;
    return true;
}

} // namespace workbench
