#pragma once

#include "kroui/Geometry.h"

namespace kroui::controls {

// The pointer's way while a number is dragged: right and up together count, unless only one of them is to, and nothing
// counts before the pointer has left the spot of the press.
class NumberDrag {
public:
    enum class Direction : unsigned char { kBoth, kHorizontal, kVertical };
    void SetDirection(Direction direction) { fDirection = direction; }
    Direction GetDirection() const { return fDirection; }

    void Begin(Point press) { fLast = fPress = press, fHasMoved = false; }
    bool HasMoved() const { return fHasMoved; }
    // Pixels towards greater values since the last call.
    float MoveTo(Point point);

    // The pixels from bound to bound of a range of so many steps: neither twitchy nor endless.
    static double Travel(double stepCount);
    // Whether steps are wide enough on that way for the value to go from one to the next.
    static bool IsInSteps(double stepCount);

private:
    Point fPress;
    Point fLast;
    Direction fDirection = Direction::kBoth;
    bool fHasMoved = false;
};

} // namespace kroui::controls
