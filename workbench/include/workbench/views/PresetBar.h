#pragma once

#include "kroui/controls/UI_Popup.h"
#include "workbench/session/PresetLibrary.h"
#include "workbench/views/MenuButton.h"

namespace workbench {

// The presets of the effect in a pop-up, the current one with a "*" when the settings have changed since, and a button
// with what can be done about them. The name of a new one is typed in the place of the pop-up.
class PresetBar final : public kroui::ui::UI_Node {
public:
    static constexpr float kWidth = 208;

    struct Actions {
        boost::function<void(const PresetLibrary::Entry&)> take;
        boost::function<void()> save;
        // Returns why that is not possible; empty if it is done.
        boost::function<krocore::string16(std::u16string_view)> saveAs;
        boost::function<void()> remove;
        boost::function<void()> reset;
    };
    explicit PresetBar(Actions actions);

    void Show(const PresetLibrary& book);
    // What the user chose did not come to be: the next Show writes everything anew.
    void Forget() { fEntries.clear(); }

    void UI_SizeChanged(const kroui::RectT<float>& rect) override;

private:
    using Finish = kroui::controls::UI_TextField::Finish;

    void AddItem(const PresetLibrary::Entry& entry);
    MenuButton::Commands Commands();
    void OnChoice();
    void BeginNaming();
    void FinishNaming(Finish finish);
    void EndNaming();

    Actions fActions;
    std::vector<PresetLibrary::Entry> fEntries;
    PresetLibrary::Entry fCurrent;
    bool fIsChanged = false;
    boost::intrusive_ptr<kroui::controls::UI_Popup> fPopup;
    std::vector<int> fItems; // of the pop-up, by entry
    boost::intrusive_ptr<MenuButton> fMenu;
    boost::intrusive_ptr<kroui::controls::UI_TextField> fName;
};

} // namespace workbench
