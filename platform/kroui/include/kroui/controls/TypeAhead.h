#pragma once

#include "krocore/String.h"

#include <boost/function.hpp>

#include <string_view>

namespace kroui::controls {

// Finds an item of a list by the letters that the user types: letters in quick succession make up the beginning of a
// text, the same letter again and again goes round the items that begin with it. Case does not count. A member of the
// control that shows the list.
class TypeAhead {
public:
    // The text of an item; empty for one that can't be chosen.
    using TextOfItem = boost::function<std::u16string_view(int item)>;

    // Takes what was typed at `now` (seconds of the node manager's clock) and tells which of `count` items it leads to
    // when `current` is the one shown (-1: none); -1 if none begins so.
    int Type(std::u16string_view typed, double now, int current, int count, const TextOfItem& textOf);
    // Whether a letter typed at `now` would go on with what was typed before.
    bool IsTyping(double now) const { return !fTyped.empty() && now - fLast < kPauseSeconds; }

    // Whether a text holds another somewhere; case does not count. Every text holds the empty one.
    static bool Contains(std::u16string_view text, std::u16string_view part);

    static constexpr double kPauseSeconds = 1;

private:
    bool IsOneLetterRepeated() const;

    krocore::string16 fTyped; // case folded
    double fLast = 0;
};

} // namespace kroui::controls
