#pragma once

#include "workbench/commands/FileChecker.h"
#include "workbench/session/PanelsLibrary.h"
#include "workbench/session/WatchedFolder.h"

#include <memory>
#include <optional>

namespace workbench {

// Makes panels for filters, from what the library has embedded or from the files that an author edits, and knows when a
// panel has to be made again. User-interface thread.
class PanelSource {
public:
    struct Made {
        PanelPtr panel;            // null if there is none, or if what it is made of is broken
        krocore::string16 problem; // what is broken, a line a fault; a panel that works may have faults, too
    };

    // The library outlives the panels.
    explicit PanelSource(const PanelsLibrary& library);

    // Puts a folder's files in front of the embedded resources. Throws krocore::config::Error if there is none.
    void Watch(const std::filesystem::path& folder);
    bool IsWatching() const { return fFolder != nullptr; }

    // For a filter of the library or a ScriptFilter, whose parameters become the inputs of its sheet. Throws nothing:
    // what can't be made is a problem.
    Made Make(const boost::intrusive_ptr<kroaudiofilterhost::AudioFilter>& filter);

    // Looks at the folder: true if the panel that was made last is made of something that has changed.
    bool HasChanged();
    // Of the folder's files that no panel is made of: a message for each, once. Empty if there is none any more.
    krocore::string16 TakeUnusedFile();

private:
    PanelPtr MakePanel(const boost::intrusive_ptr<kroaudiofilterhost::AudioFilter>& filter);
    PanelPtr MakeScriptPanel(const boost::intrusive_ptr<kroaudiofilterhost::AudioFilter>& filter,
                             const std::string& scripts) const;
    FileChecker::Problems CheckArchives() const;
    FileChecker::Problems CheckPairs() const;
    FileChecker::Problems CheckScripts() const;

    const PanelsLibrary& fLibrary;
    std::optional<FileChecker> fChecker;
    std::unique_ptr<WatchedFolder> fFolder;
    WatchedFolder::Names fParts;  // what the last panel was made of, or looked for
    WatchedFolder::Names fJudged; // files of which it is known whether they are used
};

// The filter of a pair of scripts, with the sheet's inputs for parameters. Throws krocore::config::Error if there are
// no scripts of the name, neither embedded nor watched.
boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> NewScriptFilter(const std::string& scripts);

} // namespace workbench
