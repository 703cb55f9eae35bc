#include "kroui/controls/SliderLook.h"

#include "ControlDrawing.h"

#include <algorithm>
#include <cmath>

namespace kroui::controls {

namespace {

constexpr float kTrackThickness = 4;
constexpr float kTrackRadius = 2;
constexpr float kKnobDiameter = 16;
constexpr float kKnobLine = 1.5F;
constexpr float kDotDiameter = 6;
constexpr float kVerticalKnobRadius = 4;
constexpr float kVerticalMarkWidth = 12;

} // namespace

float SliderLook::PixelAt(double at) const {
    const double along = std::clamp(at, 0.0, 1.0) * Length();
    const bool fromFarEnd = vertical != inverted;
    const float start = vertical ? track.top : track.left;
    return start + static_cast<float>(fromFarEnd ? Length() - along : along);
}

double SliderLook::PositionAt(Point point) const {
    if (!(Length() > 0)) return 0;
    const double along = vertical ? point.y - track.top : point.x - track.left;
    const double part = std::clamp(along / Length(), 0.0, 1.0);
    return vertical != inverted ? 1 - part : part;
}

double SliderLook::Fraction(float dx, float dy) const {
    if (!(Length() > 0)) return 0;
    const double part = (vertical ? -dy : dx) / Length();
    return inverted ? -part : part;
}

Rect SliderLook::KnobRect() const {
    const Point middle = At(position);
    const float width = vertical ? kVerticalKnobWidth : kKnobDiameter;
    const float height = vertical ? kVerticalKnobHeight : kKnobDiameter;
    return {middle.x - width / 2, middle.y - height / 2, width, height};
}

Rect SliderLook::ChangedArea(double otherPosition) const {
    SliderLook other = *this;
    other.position = otherPosition;
    return RoundedOut(Union(KnobRect(), other.KnobRect()).Inset(-1, -1));
}

void SliderLook::Draw(limner::Limner& context, const ui::UI_Node& node) const {
    DrawTrack(context, node);
    DrawKnob(context, node);
}

Point SliderLook::At(double at) const {
    const Point middle = track.Centre();
    return vertical ? Point{middle.x, PixelAt(at)} : Point{PixelAt(at), middle.y};
}

void SliderLook::DrawTrack(limner::Limner& context, const ui::UI_Node& node) const {
    const drawing::PixelGrid grid(node, context);
    const auto between = [&](Point a, Point b) {
        const float half = kTrackThickness / 2;
        const float left = std::min(a.x, b.x);
        const float top = std::min(a.y, b.y);
        const float width = std::abs(a.x - b.x);
        const float height = std::abs(a.y - b.y);
        return grid.Snap(vertical ? Rect{left - half, top, kTrackThickness, height}
                                  : Rect{left, top - half, width, kTrackThickness});
    };
    const Rect whole =
        grid.Snap(between(At(0), At(1)).Inset(vertical ? 0.0F : -kTrackRadius, vertical ? -kTrackRadius : 0.0F));
    context.FillRoundRect(whole, kTrackRadius, node.GetColor(ui::kColorTrack));
    context.FrameRoundRect(whole.Inset(-1, -1), kTrackRadius + 1, node.GetColor(ui::kColorLine).WithAlpha(0.6F),
                           grid.Line());
    const Rect filled = between(At(origin), At(position));
    if (filled.IsEmpty()) return;
    const limner::Color color = node.GetColor(enabled ? ui::kColorAccent : ui::kColorDisabledText);
    if (origin > 0) {
        context.FillRect(filled, color);
    } else {
        // From the track's round end; the other end of the box hides under the knob.
        const Rect rounded = filled.Inset(vertical ? 0.0F : -kTrackRadius, vertical ? -kTrackRadius : 0.0F);
        context.FillRoundRect(grid.Snap(rounded), kTrackRadius, color);
    }
}

void SliderLook::DrawKnob(limner::Limner& context, const ui::UI_Node& node) const {
    const drawing::PixelGrid grid(node, context);
    const Rect knob = vertical ? grid.Snap(KnobRect()) : grid.Square(At(position), kKnobDiameter);
    const float radius = vertical ? kVerticalKnobRadius : knob.width / 2;
    const bool isLit = enabled && (hovered || pressed || focused);
    const int line = isLit ? ui::kColorAccent : enabled ? ui::kColorKnobLine : ui::kColorDisabledText;
    context.FillRoundRect(knob, radius, node.GetColor(ui::kColorKnob));
    context.FrameRoundRect(knob, radius, node.GetColor(line), grid.Line(kKnobLine));
    const bool isMarked = enabled && (pressed || focused);
    if (vertical) {
        const float middle = grid.Y(knob.Centre().y) - grid.Line() / 2;
        const Rect mark{knob.Centre().x - kVerticalMarkWidth / 2, grid.Y(middle), kVerticalMarkWidth, grid.Line()};
        const int color = isMarked ? ui::kColorAccent : enabled ? ui::kColorText : ui::kColorDisabledText;
        context.FillRect(grid.Snap(mark), node.GetColor(color));
    } else if (isMarked) {
        const Rect dot = grid.Square(knob.Centre(), kDotDiameter);
        context.FillRoundRect(dot, dot.width / 2, node.GetColor(ui::kColorAccent));
    }
}

} // namespace kroui::controls
