#pragma once

#include "krotarnlio/ScriptChecker.h"

#include <compare>
#include <filesystem>
#include <map>
#include <set>
#include <string>

namespace workbench {

// A resource as a module looks for it; both in lower case.
struct ResourceName {
    std::string name;
    std::string type; // "trn", "lio", "xml", "png"

    auto operator<=>(const ResourceName&) const = default;
};

// A folder in which an author edits panels: its files NAME.trn, NAME.lio, NAME.xml and NAME.png stand in front of the
// embedded resources of those names while this lives. User-interface thread.
class WatchedFolder {
public:
    using Names = std::set<ResourceName>;

    // Takes the files at once. Throws krocore::config::Error if there is no such folder.
    explicit WatchedFolder(std::filesystem::path folder);
    WatchedFolder(const WatchedFolder&) = delete;
    WatchedFolder& operator=(const WatchedFolder&) = delete;
    ~WatchedFolder();

    // Looks at the folder and says what is new, changed or gone. A file counts as changed when it has been the same for
    // two looks in a row, so that one that is being written, or replaced by another one, is waited for.
    Names Look();

    // All that stands in front of resources. As of the last Look.
    Names Files() const;
    // What stands in front of the resource; null if the folder has nothing for it. Until the next Look.
    const krotarnlio::Script* Find(const ResourceName& name) const;

private:
    // By what a change of a file's contents is known without reading it.
    struct Stamp {
        std::filesystem::file_time_type time;
        std::uintmax_t size = 0;
        bool isThere = false;

        bool operator==(const Stamp&) const = default;
    };
    struct Entry {
        Stamp seen;   // at the last look
        Stamp loaded; // of what stands in front of the resource
        krotarnlio::Script script;
        std::filesystem::path path;
    };

    static Stamp StampOf(const std::filesystem::path& file);
    bool See();
    bool Load(const ResourceName& name, Entry& entry);

    std::filesystem::path fFolder;
    std::map<ResourceName, Entry> fEntries;
};

} // namespace workbench
