#pragma once

#include "workbench/session/Session.h"
#include "workbench/views/CompareSwitch.h"
#include "workbench/views/PresetBar.h"
#include "workbench/window/StatusLine.h"

namespace workbench {

// Carries presets and the two slots between the session and the controls in the header; what goes wrong is said on the
// status line. Owned by the view, which lives no longer than the session.
class PresetController {
public:
    PresetController(Session& session, StatusLine& status);

    const boost::intrusive_ptr<PresetBar>& Bar() const { return fBar; }
    const boost::intrusive_ptr<CompareSwitch>& Switch() const { return fSwitch; }

    // The effect is another now.
    void ShowEffect();
    // Settings may have changed.
    void Follow();
    void SwitchSlot();

private:
    void Load(const PresetLibrary::Entry& entry);
    void Save();
    krocore::string16 SaveAs(std::u16string_view name);
    void Delete();
    void Reset();
    bool Try(const boost::function<void()>& action);
    void ShowNotes(const std::vector<std::string>& notes);

    Session& fSession;
    StatusLine& fStatus;
    boost::intrusive_ptr<PresetBar> fBar;
    boost::intrusive_ptr<CompareSwitch> fSwitch;
};

} // namespace workbench
