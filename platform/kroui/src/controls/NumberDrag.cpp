#include "kroui/controls/NumberDrag.h"

namespace kroui::controls {

namespace {

constexpr float kPlay = 3; // pixels
constexpr double kPixelsAStep = 2;
constexpr double kShortestTravel = 120;
constexpr double kLongestTravel = 600;
constexpr double kWideStep = 4;

} // namespace

float NumberDrag::MoveTo(Point point) {
    const float fromPress = std::max(std::abs(point.x - fPress.x), std::abs(point.y - fPress.y));
    fHasMoved = fHasMoved || fromPress >= kPlay;
    if (!fHasMoved) return 0;
    const float moved = (point.x - fLast.x) - (point.y - fLast.y);
    fLast = point;
    return moved;
}

double NumberDrag::Travel(double stepCount) {
    return std::clamp(stepCount * kPixelsAStep, kShortestTravel, kLongestTravel);
}

bool NumberDrag::IsInSteps(double stepCount) {
    return stepCount * kWideStep <= Travel(stepCount);
}

} // namespace kroui::controls
