#pragma once

#include "krotarnlio/ScriptChecker.h"
#include "qocui/controls/TarnLioAudioComponentEditorView.h"

namespace workbench {

// Finds what is wrong in the files that panels are made of. User-interface thread.
class FileChecker {
public:
    using Problems = std::vector<krotarnlio::ScriptProblem>;

    // The supplier measures widgets and lives longer.
    explicit FileChecker(const kroui::limner::SupplierInterface& supplier);

    Problems CheckArchive(const krotarnlio::Script& archive) const;
    // Against the ranges of the effect whose panel has a sheet of this file's name, if there is one.
    Problems CheckSheet(const krotarnlio::Script& sheet) const;
    Problems CheckLayout(const krotarnlio::Script& layout, const krotarnlio::Script& sheet) const {
        return fScripts.CheckLayout(layout, sheet);
    }

private:
    // An empty panel, whose functions the scripts call.
    boost::intrusive_ptr<qocui::controls::TarnLioAudioComponentEditorView> fPanel;
    krotarnlio::ScriptChecker fScripts;
};

} // namespace workbench
