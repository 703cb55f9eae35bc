#include "workbench/views/SearchField.h"

namespace workbench {

using kroui::ui::Key;

SearchField::SearchField(boost::function<void()> listener) : fListener(std::move(listener)) {
    NotifyWhenChangedInteractively([this](auto*) { fListener(); });
}

bool SearchField::UI_DoKeyEvent(const kroui::ui::KeyEvent& event) {
    switch (event.key) {
    case Key::kEscape: return Clear();
    case Key::kEnter:
    case Key::kUp:
    case Key::kDown: return false;
    default: return UI_TextField::UI_DoKeyEvent(event);
    }
}

bool SearchField::Clear() {
    if (GetText().empty()) return false;
    SetText({});
    fListener();
    return true;
}

} // namespace workbench
