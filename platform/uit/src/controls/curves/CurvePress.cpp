#include "controls/curves/CurvePress.h"

#include <algorithm>
#include <cmath>

namespace uit::controls {

kroui::Rect CurvePress::Marquee() const {
    if (!IsMarquee() || !drag.HasMoved()) return {};
    const kroui::Point a = drag.Press();
    const kroui::Point b = drag.Last();
    return {std::min(a.x, b.x), std::min(a.y, b.y), std::abs(a.x - b.x) + 1, std::abs(a.y - b.y) + 1};
}

} // namespace uit::controls
