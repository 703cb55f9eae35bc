#include "workbench/window/Shortcuts.h"

#include <algorithm>
#include <iterator>

namespace workbench {

using kroui::ui::kCommand;
using kroui::ui::Key;
using kroui::ui::KeyEvent;
using kroui::ui::kNoModifier;
using kroui::ui::kShift;

namespace {

struct Shortcut {
    Key key;
    char16_t character;
    std::uint8_t modifiers;
    Command command;
};

constexpr Shortcut kShortcuts[] = {
    {Key::kSpace, 0, kNoModifier, Command::kPlayOrPause},
    {Key::kEscape, 0, kNoModifier, Command::kStop},
    {Key::kCharacter, u'l', kNoModifier, Command::kLoop},
    {Key::kCharacter, u'b', kNoModifier, Command::kBypass},
    {Key::kCharacter, u'a', kNoModifier, Command::kSwitchSlot},
    {Key::kCharacter, u'z', kCommand, Command::kUndo},
    {Key::kCharacter, u'z', kCommand | kShift, Command::kRedo},
    {Key::kCharacter, u'y', kCommand, Command::kRedo},
    {Key::kCharacter, u'r', kCommand, Command::kRender},
    {Key::kCharacter, u'f', kCommand, Command::kSearch},
    {Key::kCharacter, u'a', kCommand, Command::kSelectAll},
    {Key::kCharacter, u't', kCommand, Command::kToggleTheme},
    {Key::kCharacter, u'+', kCommand, Command::kZoomIn},
    {Key::kCharacter, u'+', kCommand | kShift, Command::kZoomIn},
    {Key::kCharacter, u'=', kCommand, Command::kZoomIn},
    {Key::kCharacter, u'=', kCommand | kShift, Command::kZoomIn},
    {Key::kCharacter, u'-', kCommand, Command::kZoomOut},
    {Key::kCharacter, u'0', kCommand, Command::kZoomToNormal},
};

} // namespace

std::optional<Command> CommandOf(const KeyEvent& event) {
    const auto* const found = std::ranges::find_if(kShortcuts, [&event](const Shortcut& shortcut) {
        return shortcut.key == event.key && shortcut.modifiers == event.modifiers &&
               (event.key != Key::kCharacter || shortcut.character == event.character);
    });
    return found != std::end(kShortcuts) ? std::optional(found->command) : std::nullopt;
}

} // namespace workbench
