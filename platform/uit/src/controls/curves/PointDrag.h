#pragma once

#include "kroui/Geometry.h"

#include <cstdint>

namespace uit::controls {

// The way of the pointer while something is dragged in two directions: nothing counts before it has left the spot of
// the press, Ctrl counts a tenth, Shift only along the axis in which it moves first. A modifier that goes down or up in
// mid-drag makes no jump.
class PointDrag {
public:
    explicit PointDrag(kroui::Point press) : fPress(press), fLast(press) {}

    bool HasMoved() const { return fHasMoved; }
    kroui::Point Press() const { return fPress; }
    kroui::Point Last() const { return fLast; }
    // Pixels that count since the press, or since Restart.
    kroui::PointT<double> Moved() const { return fMoved; }

    void MoveTo(kroui::Point point, std::uint8_t modifiers);
    void Restart() { fMoved = {}; }
    void Add(kroui::PointT<double> moved) { fMoved = {fMoved.x + moved.x, fMoved.y + moved.y}; }

private:
    enum class Lock : unsigned char { kNone, kUndecided, kHorizontal, kVertical };

    void Count(double dx, double dy, double pace);

    kroui::Point fPress;
    kroui::Point fLast;
    kroui::PointT<double> fMoved;
    kroui::PointT<double> fPending; // while it is not known which axis is meant
    Lock fLock = Lock::kNone;
    bool fHasMoved = false;
};

} // namespace uit::controls
