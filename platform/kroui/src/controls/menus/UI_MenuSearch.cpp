// The field on top of a searchable UI_Menu.

#include "kroui/controls/UI_Menu.h"

#include "controls/menus/MenuMeasures.h"
#include "krocore/Localizer.h"

#include <utility>

namespace kroui::controls {

using namespace menu;
using ui::Key;

namespace {

// The menu has the keys that end an entry.
void LeaveToMenu(UI_TextField::Finish /*finish*/) {
}

} // namespace

void UI_Menu::ShowSearchField(ui::UI_Window& window) {
    if (!fSearchField) {
        fSearchField = boost::intrusive_ptr<UI_TextField>(new UI_TextField);
        fSearchField->SetPlaceholder(krocore::Localize("$$$/kroui/Menu/Search=Search"));
        fSearchField->SetFinishHandler(&LeaveToMenu);
        fSearchField->NotifyWhenChangedInteractively([this](UI_InteractiveControlChangedMessage* message) {
            if (message->GetChangeMessage() == UI_InteractiveControlChangedMessage::kChanged) FilterItems();
        });
        ChildPushBack(fSearchField);
    }
    const Rect inside = Panel().Inset(kPadding, kPadding);
    fSearchField->UI_SetFrame({inside.left, inside.top, inside.width, kSearchHeight});
    fSearchField->SetFontSize(fFontSize);
    fFocusBefore = window.FocusNode();
    fSearchField->UI_TakeFocus();
}

void UI_Menu::ReturnFocus() {
    const boost::intrusive_ptr<ui::UI_Node> before = std::move(fFocusBefore);
    fFocusBefore.reset();
    if (fSearchField && fSearchField->UI_HasFocus()) UI_GetWindow()->SetFocus(before.get());
}

bool UI_Menu::IsFiltered(int item) const {
    if (!fSearchField || fSearchField->GetText().empty()) return false;
    return fItems[item].separator || !TypeAhead::Contains(fItems[item].text, fSearchField->GetText());
}

// Items that the field leaves out take no height.
void UI_Menu::PlaceItems() {
    fTops.assign(1, 0);
    for (int i = 0; i < static_cast<int>(fItems.size()); ++i) {
        const float height = fItems[i].separator ? kSeparatorHeight : RowHeight();
        fTops.push_back(fTops.back() + (IsFiltered(i) ? 0 : height));
    }
}

void UI_Menu::FilterItems() {
    PlaceItems();
    fScroll = 0;
    const bool isKept = fSearchField->GetText().empty() && CanChoose(fMarked);
    fHighlighted = isKept ? fMarked : Next(-1, 1);
    if (fHighlighted >= 0) ScrollToItem(fHighlighted);
    UI_Invalidate();
}

// What moves through the list, chooses and closes stays with the menu.
bool UI_Menu::DoSearchKey(const ui::KeyEvent& event) {
    switch (event.key) {
    case Key::kUp:
    case Key::kDown:
    case Key::kPageUp:
    case Key::kPageDown:
    case Key::kEnter:
    case Key::kEscape:
    case Key::kTab: return false;
    default: fSearchField->UI_DoKeyEvent(event); return true;
    }
}

} // namespace kroui::controls
