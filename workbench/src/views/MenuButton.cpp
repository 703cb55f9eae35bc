#include "workbench/views/MenuButton.h"

namespace workbench {

using kroui::controls::UI_Menu;

MenuButton::MenuButton(boost::function<Commands()> commands)
    : fAskForCommands(std::move(commands)), fMenu(new UI_Menu) {
    // Space is to go on playing.
    SetChangeFocusOnClick(false);
    NotifyWhenChanged([this](auto*) { Open(); });
}

void MenuButton::UI_NodeChanged(NodeChange change) {
    if (change == kDetaching) fMenu->Close();
    UI_TextButton::UI_NodeChanged(change);
}

void MenuButton::Open() {
    if (!UI_GetWindow() || fMenu->IsOpen()) return;
    fCommands = fAskForCommands();
    std::vector<UI_Menu::Item> items;
    for (const Command& command : fCommands)
        items.push_back({command.text, command.isEnabled, command.text.empty()});
    fMenu->SetItems(std::move(items));
    const kroui::Point place = UI_LocalToWindow({});
    const kroui::Rect anchor = UI_GetLocalRect().Offset(place.x, place.y);
    fMenu->OpenBelow(*UI_GetWindow(), anchor, [this](int item) {
        // The action may change anything, this button's commands too.
        const Commands commands = std::move(fCommands);
        if (item >= 0) commands[static_cast<std::size_t>(item)].action();
    });
}

} // namespace workbench
