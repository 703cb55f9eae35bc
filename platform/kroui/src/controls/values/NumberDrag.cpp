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
    const float right = fDirection == Direction::kVertical ? 0 : point.x - fLast.x;
    const float up = fDirection == Direction::kHorizontal ? 0 : fLast.y - point.y;
    fLast = point;
    return right + up;
}

double NumberDrag::Travel(double stepCount) {
    return std::clamp(stepCount * kPixelsAStep, kShortestTravel, kLongestTravel);
}

bool NumberDrag::IsInSteps(double stepCount) {
    return stepCount * kWideStep <= Travel(stepCount);
}

} // namespace kroui::controls
