#include "controls/curves/PointDrag.h"

#include "kroui/ui/Events.h"

#include <algorithm>
#include <cmath>

namespace uit::controls {

namespace {

constexpr double kSpot = 2; // pixels around the press within which nothing has moved
constexpr double kFinePace = 0.1;

} // namespace

void PointDrag::MoveTo(kroui::Point point, std::uint8_t modifiers) {
    if (!std::isfinite(point.x) || !std::isfinite(point.y)) return;
    if (!fHasMoved && std::max(std::abs(point.x - fPress.x), std::abs(point.y - fPress.y)) < kSpot) return;
    fHasMoved = true;
    const double dx = point.x - fLast.x;
    const double dy = point.y - fLast.y;
    fLast = point;
    const bool isLocked = (modifiers & kroui::ui::kShift) != 0;
    if (!isLocked) fLock = Lock::kNone;
    if (isLocked && fLock == Lock::kNone) {
        fLock = Lock::kUndecided;
        fPending = {};
    }
    Count(dx, dy, (modifiers & kroui::ui::kCommand) != 0 ? kFinePace : 1);
}

void PointDrag::Count(double dx, double dy, double pace) {
    if (fLock == Lock::kUndecided) {
        fPending.x += dx;
        fPending.y += dy;
        if (std::max(std::abs(fPending.x), std::abs(fPending.y)) < kSpot) return;
        fLock = std::abs(fPending.x) >= std::abs(fPending.y) ? Lock::kHorizontal : Lock::kVertical;
        dx = fPending.x;
        dy = fPending.y;
    }
    if (fLock != Lock::kVertical) fMoved.x += dx * pace;
    if (fLock != Lock::kHorizontal) fMoved.y += dy * pace;
}

} // namespace uit::controls
