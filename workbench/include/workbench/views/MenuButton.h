#pragma once

#include "kroui/controls/UI_Menu.h"
#include "kroui/controls/UI_TextButton.h"

#include <boost/function.hpp>

#include <vector>

namespace workbench {

// A button that opens a menu of commands.
class MenuButton final : public kroui::controls::UI_TextButton {
public:
    struct Command {
        krocore::string16 text; // empty: a line
        boost::function<void()> action;
        bool isEnabled = true;
    };
    using Commands = std::vector<Command>;

    // Asks for the commands whenever the menu opens.
    explicit MenuButton(boost::function<Commands()> commands);

    void UI_NodeChanged(NodeChange change) override;

private:
    void Open();

    boost::function<Commands()> fAskForCommands;
    Commands fCommands; // of the menu that is open
    boost::intrusive_ptr<kroui::controls::UI_Menu> fMenu;
};

} // namespace workbench
