#include "uit/controls/SliderRuler.h"

#include <algorithm>

namespace uit::controls {

using kroui::Rect;
using kroui::controls::SliderLook;
using kroui::utility::RulerBase;
using kroui::utility::RulerColors;

namespace {

constexpr float kTickDistance = SliderLook::kKnobReach + 1; // from the track's middle
constexpr float kVerticalTickDistance = SliderLook::kVerticalKnobWidth / 2 + 1;

float TickDistance(const RulerBase& ruler) {
    return ruler.IsVertical() ? kVerticalTickDistance : kTickDistance;
}

} // namespace

double SliderRuler::Position(double value) const {
    const double fraction = ruler->GetFraction(value);
    return std::clamp(IsAscending() ? fraction : 1 - fraction, 0.0, 1.0);
}

double SliderRuler::ValueAt(double position) const {
    return ruler->GetValueAt(IsAscending() ? position : 1 - position);
}

void SliderRuler::Draw(kroui::limner::Limner& context, const kroui::ui::UI_Node& node, const SliderLook& look,
                       const Rect& room) const {
    if (!ruler) return;
    DrawSide(context, node, look, room, Placement::kRulerLeftTop);
    DrawSide(context, node, look, room, Placement::kRulerRightBottom);
}

bool SliderRuler::StandsOn(Placement side) const {
    if (textPlacement == TextPlacement::kTextBoth) return true;
    return static_cast<int>(textPlacement) == static_cast<int>(side);
}

float SliderRuler::Reach(Placement side) const {
    if (!ruler) return 0;
    if (!StandsOn(side)) return 0;
    const float text = ruler->IsVertical() ? kTextWidth : ruler->TextHeight();
    return TickDistance(*ruler) + RulerBase::kTextDistance + text;
}

void SliderRuler::DrawSide(kroui::limner::Limner& context, const kroui::ui::UI_Node& node, const SliderLook& look,
                           const Rect& room, Placement side) const {
    const float reach = Reach(side);
    if (reach <= 0) return;
    const bool isBefore = side == Placement::kRulerLeftTop;
    const float distance = TickDistance(*ruler);
    const float depth = reach - distance;
    const kroui::Point middle = look.track.Centre();
    Rect strip;
    if (look.vertical) {
        strip = {isBefore ? middle.x - reach : middle.x + distance, room.top, depth, room.height};
    } else {
        strip = {room.left, isBefore ? middle.y - reach : middle.y + distance, room.width, depth};
    }
    const unsigned parts = RulerBase::kTicks | RulerBase::kTexts;
    ruler->Draw(context, strip, RulerColors::Of(node), node.UI_GetDrawSupplier(),
                isBefore ? RulerBase::Edge::kRightBottom : RulerBase::Edge::kLeftTop, parts);
}

} // namespace uit::controls
