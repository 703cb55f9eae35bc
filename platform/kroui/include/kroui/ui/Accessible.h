#pragma once

#include "kroui/Geometry.h"

#include "krocore/String.h"

#include <cstdint>
#include <optional>

namespace kroui::ui {

class UI_Node;

enum class Role : std::uint8_t {
    kNone,
    kGroup,
    kText,
    kImage,
    kButton,
    kCheckBox,
    kRadioButton,
    kPopup,
    kSlider,
    kNumber,
    kTextField,
    kGraph,
    kMeter,
    kMenu,
    kMenuItem,
    kList,
    kListItem,
    kTabGroup,
    kTab,
    kGraphPoint,
};

// A number as the user reads it, in the unit that its text names: where it is, between which bounds, and how far one
// step of an arrow key takes it. A step of 0: not known.
struct AccessibleRange {
    double value = 0;
    double minimum = 0;
    double maximum = 0;
    double step = 0;
    friend bool operator==(const AccessibleRange&, const AccessibleRange&) = default;
};

// Where the caret of a text field is and what is selected, in UTF-16 units from the beginning of its value.
struct AccessibleCaret {
    std::size_t position = 0;
    std::size_t selectionStart = 0;
    std::size_t selectionEnd = 0;
    friend bool operator==(const AccessibleCaret&, const AccessibleCaret&) = default;
};

// What somebody may do without a pointer, each as the mouse or the keyboard does it: with the same gesture, messages
// and undo step.
enum class AccessibleAction : std::uint8_t {
    kPress,    // click; choose an item or a tab; end an entry
    kIncrease, // one step of the range, or on to the next choice
    kDecrease,
    kReset,    // to the default
    kSetValue, // to AccessibleRequest::value, in the unit of the range; for choices to the item's number
    kSetText,  // types AccessibleRequest::text in place of what is there
    kExpand,
    kCollapse,
    kSelect, // without changing it
    kAdd,    // a point, in the middle of the widest gap
    kRemove,
    kIncreasePosition, // as the three above, along a graph's horizontal axis
    kDecreasePosition,
    kSetPosition,
};

// A set of actions.
class AccessibleActions {
public:
    constexpr AccessibleActions() = default;
    template <class... Actions>
    constexpr explicit AccessibleActions(Actions... actions) : fBits((Bit(actions) | ...)) {}

    constexpr bool Has(AccessibleAction action) const { return (fBits & Bit(action)) != 0; }
    constexpr void Add(AccessibleActions more) { fBits |= more.fBits; }
    friend bool operator==(const AccessibleActions&, const AccessibleActions&) = default;

private:
    static constexpr std::uint32_t Bit(AccessibleAction action) { return 1U << static_cast<unsigned>(action); }

    std::uint32_t fBits = 0;
};

// An action with what it needs.
struct AccessibleRequest {
    static constexpr int kWhole = -1;

    AccessibleAction action = AccessibleAction::kPress;
    int part = kWhole; // of the node: 0 to UI_GetAccessiblePartCount() - 1
    double value = 0;  // for kSetValue and kSetPosition
    krocore::string16 text = {};
};

// What a node, or a part of one, is for somebody who cannot see it, and for a test driver: its role, the name beside
// it, its value as the user reads it, its states, and what can be done with it.
struct AccessibleInfo {
    Role role = Role::kNone;
    krocore::string16 name;
    krocore::string16 value;
    bool enabled = true;
    bool focusable = false;
    bool selected = false;                   // of points, items, tabs
    std::optional<bool> checked;             // of what is switched on and off
    std::optional<bool> expanded;            // of what opens and closes
    std::optional<AccessibleRange> range;    // of numbers; a point's height
    std::optional<AccessibleRange> position; // of points: along the horizontal axis
    std::optional<AccessibleCaret> caret;    // of text fields
    AccessibleActions actions;               // that are there now; none while disabled
};

// A part of a node that is no node itself: a point of a curve, a tab, an item of a pop-up, a bar of a meter.
struct AccessiblePart {
    AccessibleInfo info;
    Rect bounds; // in the node's coordinates; empty if it can't be seen now
};

} // namespace kroui::ui
