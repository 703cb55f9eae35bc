#pragma once

#include "kroui/Geometry.h"

#include <cstdint>
#include <string_view>

namespace kroui::ui {

enum Modifiers : std::uint8_t { kNoModifier = 0, kShift = 1, kCommand = 2, kAlt = 4 }; // kCommand is the Ctrl key here

// One thing the pointer did, in the coordinates of the node that receives it.
struct MouseEvent {
    enum class Action : std::uint8_t {
        kNone = 0,
        kPressed = 1,
        kReleased = 2,
        kMoved = 3,   // no button down
        kDragged = 4, // a button is down; goes to the node that took the press
        kEntered = 5,
        kLeft = 6,
        kWheel = 7,
        kCaptureLost = 8, // the press that this node took will get no release (window lost the pointer, node hidden)
    };

    Action action = Action::kNone;
    Point position;
    int button = 1;     // 1 left, 2 middle, 3 right
    int clickCount = 1; // 2 in the second press of a double-click, 3 in the third
    std::uint8_t modifiers = kNoModifier;
    float wheelX = 0; // notches, positive to the right; trackpads send fractions
    float wheelY = 0; // notches, positive away from the user

    bool IsAction(Action a) const { return action == a; }
    bool Has(Modifiers m) const { return (modifiers & m) != 0; }
};

enum class Key : std::uint8_t {
    kNone,
    kEnter,
    kEscape,
    kTab,
    kSpace,
    kBackspace,
    kDelete,
    kLeft,
    kRight,
    kUp,
    kDown,
    kPageUp,
    kPageDown,
    kHome,
    kEnd,
    kF2,
    kCharacter, // a letter or digit: see `character`
};

struct KeyEvent {
    Key key = Key::kNone;
    char16_t character = 0; // lower case, for kCharacter (shortcuts); typed text comes as a TextEvent
    std::uint8_t modifiers = kNoModifier;
    bool isRepeat = false;

    bool Has(Modifiers m) const { return (modifiers & m) != 0; }
};

// Text that the user typed (after dead keys and input methods).
struct TextEvent {
    std::u16string_view text;
};

enum class Cursor : std::uint8_t { kArrow, kHand, kText, kHorizontal, kVertical, kMove, kCross };

} // namespace kroui::ui
