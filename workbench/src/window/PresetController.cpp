#include "workbench/window/PresetController.h"

#include "krocore/Localizer.h"
#include "workbench/commands/ProblemText.h"

#include <exception>

namespace workbench {

namespace {

krocore::string16 News(const char* key, const std::string& name) {
    return krocore::ReplacePlaceholders(krocore::Localize(key), {krocore::ToUTF16(name)});
}

krocore::string16 WithoutSpacesAround(std::u16string_view text) {
    const std::size_t begin = text.find_first_not_of(u' ');
    if (begin == std::u16string_view::npos) return {};
    return krocore::string16(text.substr(begin, text.find_last_not_of(u' ') - begin + 1));
}

} // namespace

PresetController::PresetController(Session& session, StatusLine& status)
    : fSession(session), fStatus(status),
      fBar(new PresetBar({[this](const PresetLibrary::Entry& entry) { Load(entry); }, [this] { Save(); },
                          [this](std::u16string_view name) { return SaveAs(name); }, [this] { Delete(); },
                          [this] { Reset(); }})),
      fSwitch(new CompareSwitch([this] { SwitchSlot(); })) {
}

void PresetController::ShowEffect() {
    fSession.Presets().Refresh();
    fSwitch->Show(fSession.Slot());
    Follow();
}

void PresetController::Follow() {
    fBar->Show(fSession.Presets());
}

void PresetController::SwitchSlot() {
    Try([this] { ShowNotes(fSession.SwitchSlot()); });
    fSwitch->Show(fSession.Slot());
}

void PresetController::Load(const PresetLibrary::Entry& entry) {
    Try([&] { ShowNotes(fSession.LoadPreset(entry)); });
}

void PresetController::Save() {
    const PresetLibrary::Entry entry = fSession.Presets().Current();
    const bool isDone = Try([&] { fSession.Presets().Save(entry); });
    if (isDone) fStatus.ShowNews(News("$$$/Workbench/Saved=Saved the preset \"@0\".", entry.name));
}

krocore::string16 PresetController::SaveAs(std::u16string_view name) {
    const std::string wanted = krocore::ToStdString(WithoutSpacesAround(name));
    try {
        fSession.Presets().SaveAs(wanted);
    } catch (const std::exception& error) {
        fStatus.ShowProblem(krocore::ToUTF16(ProblemText(error)));
        return krocore::ToUTF16(ProblemText(error));
    }
    fStatus.ShowNews(News("$$$/Workbench/Saved=Saved the preset \"@0\".", wanted));
    Follow();
    return {};
}

void PresetController::Delete() {
    const PresetLibrary::Entry entry = fSession.Presets().Current();
    const bool isDone = Try([&] { fSession.Presets().Delete(entry); });
    if (isDone)
        fStatus.ShowNews(News("$$$/Workbench/Deleted=Deleted the preset \"@0\". The settings are as they were; Save "
                              "As... brings it back.",
                              entry.name));
}

void PresetController::Reset() {
    Load(fSession.Presets().Entries().front());
}

// Whatever comes of it, the bar shows what is.
bool PresetController::Try(const boost::function<void()>& action) {
    bool isDone = true;
    try {
        action();
    } catch (const std::exception& error) {
        fStatus.ShowProblem(krocore::ToUTF16(ProblemText(error)));
        isDone = false;
    }
    fBar->Forget();
    Follow();
    return isDone;
}

void PresetController::ShowNotes(const std::vector<std::string>& notes) {
    if (!notes.empty()) fStatus.ShowProblem(krocore::ToUTF16(notes.front()));
}

} // namespace workbench
