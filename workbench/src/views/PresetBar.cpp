#include "workbench/views/PresetBar.h"

#include "krocore/Localizer.h"
#include "kroui/ui/UI_Window.h"

#include <algorithm>

namespace workbench {

using kroui::controls::UI_Popup;
using kroui::controls::UI_TextField;

namespace {

constexpr float kMenuWidth = 48;
constexpr float kGap = 8;
constexpr std::size_t kLongestName = 60;

krocore::string16 WithName(const char* key, const std::string& name) {
    return krocore::ReplacePlaceholders(krocore::Localize(key), {krocore::ToUTF16(name)});
}

} // namespace

PresetBar::PresetBar(Actions actions)
    : fActions(std::move(actions)), fPopup(new UI_Popup), fMenu(new MenuButton([this] { return Commands(); })),
      fName(new UI_TextField) {
    UI_SetID("presets");
    fPopup->UI_SetID("preset");
    fPopup->SetName(krocore::Localize("$$$/Workbench/Preset=Preset"));
    fPopup->SetChangeFocusOnClick(false);
    fPopup->SetAlwaysNotify(true); // the same one again takes changes back
    fPopup->NotifyWhenChanged([this](auto*) { OnChoice(); });
    fMenu->UI_SetID("presetMenu");
    fMenu->SetText(u"...");
    fMenu->UI_SetTooltip(krocore::Localize("$$$/Workbench/PresetMenuTip=Save, delete or reset settings"));
    fName->UI_SetID("presetName");
    fName->SetPlaceholder(krocore::Localize("$$$/Workbench/PresetName=Name of the preset"));
    fName->SetMaxLength(kLongestName);
    fName->SetFinishHandler([this](Finish finish) { FinishNaming(finish); });
    fName->UI_Show(false);
    ChildPushBack(fPopup);
    ChildPushBack(fName);
    ChildPushBack(fMenu);
}

void PresetBar::Show(const PresetLibrary& book) {
    if (fEntries == book.Entries() && fCurrent == book.Current() && fIsChanged == book.IsChanged()) return;
    fEntries = book.Entries();
    fCurrent = book.Current();
    fIsChanged = book.IsChanged();
    fPopup->DeleteAllItems();
    fItems.clear();
    for (const PresetLibrary::Entry& entry : fEntries)
        AddItem(entry);
    const auto current = std::ranges::find(fEntries, fCurrent);
    // Its file may be gone.
    fPopup->SetIncludesCustomItem(current == fEntries.end());
    fPopup->SetValue(current != fEntries.end() ? fItems[static_cast<std::size_t>(current - fEntries.begin())] : -1);
}

void PresetBar::AddItem(const PresetLibrary::Entry& entry) {
    const bool isFirstOfUser = entry.isUsers && !fEntries[fItems.size() - 1].isUsers;
    if (isFirstOfUser) fPopup->AddSeparator();
    fItems.push_back(fPopup->GetItemCount());
    krocore::string16 text = krocore::ToUTF16(entry.name);
    if (entry == fCurrent && fIsChanged) text += u" *";
    fPopup->AddItem(text);
}

void PresetBar::OnChoice() {
    const auto item = std::ranges::find(fItems, fPopup->GetValue());
    if (item == fItems.end()) return;
    const PresetLibrary::Entry entry = fEntries[static_cast<std::size_t>(item - fItems.begin())];
    fActions.take(entry);
}

MenuButton::Commands PresetBar::Commands() {
    const bool isUsers = fCurrent.isUsers;
    return {
        {isUsers ? WithName("$$$/Workbench/SavePreset=Save \"@0\"", fCurrent.name)
                 : krocore::Localize("$$$/Workbench/Save=Save"),
         fActions.save, isUsers && fIsChanged},
        {krocore::Localize("$$$/Workbench/SaveAs=Save As..."), [this] { BeginNaming(); }},
        {isUsers ? WithName("$$$/Workbench/DeletePreset=Delete \"@0\"", fCurrent.name)
                 : krocore::Localize("$$$/Workbench/Delete=Delete"),
         fActions.remove, isUsers},
        {},
        {krocore::Localize("$$$/Workbench/Reset=Reset to Default"), fActions.reset},
    };
}

void PresetBar::BeginNaming() {
    fPopup->UI_Show(false);
    fName->UI_Show(true);
    fName->SetText(fCurrent.isUsers ? krocore::ToUTF16(fCurrent.name) : krocore::string16());
    fName->UI_TakeFocus();
    fName->SelectAll();
}

void PresetBar::FinishNaming(Finish finish) {
    if (finish != Finish::kEnter) return EndNaming();
    const krocore::string16 problem = fActions.saveAs(fName->GetText());
    if (problem.empty())
        EndNaming();
    else
        fName->SetError(problem);
}

void PresetBar::EndNaming() {
    if (UI_GetWindow() && fName->UI_HasFocus()) UI_GetWindow()->SetFocus(nullptr);
    fName->UI_Show(false);
    fPopup->UI_Show(true);
}

void PresetBar::UI_SizeChanged(const kroui::RectT<float>& rect) {
    const float menu = rect.width - kMenuWidth;
    fPopup->UI_SetFrame({0, 0, menu - kGap, rect.height});
    fName->UI_SetFrame(fPopup->UI_GetFrame());
    fMenu->UI_SetFrame({menu, 0, kMenuWidth, rect.height});
}

} // namespace workbench
