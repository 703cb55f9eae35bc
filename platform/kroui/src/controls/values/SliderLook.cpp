#include "kroui/controls/SliderLook.h"

#include "controls/base/ControlDrawing.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <utility>

namespace kroui::controls {

namespace {

constexpr float kTrackThickness = 4;
constexpr float kTrackRadius = 2;
constexpr float kKnobDiameter = 16;
constexpr float kKnobLine = 1.5F;
constexpr float kDotDiameter = 6;
constexpr float kVerticalKnobRadius = 4;
constexpr float kHorizontalCapLength = 16; // as far across the track as the disc
constexpr float kMarkMargin = 4;           // from the mark to the cap's edges
constexpr float kArrowWidth = 12;
constexpr float kArrowLength = 16;
constexpr float kArrowDotDiameter = 4;

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
    float width = kKnobDiameter;
    float height = kKnobDiameter;
    if (HasCap()) width = vertical ? kVerticalKnobWidth : kHorizontalCapLength, height = kVerticalKnobHeight;
    if (HasCap() && !vertical) std::swap(width, height);
    if (arrow != Arrow::kNone) width = kArrowWidth, height = kArrowLength;
    if (arrow != Arrow::kNone && vertical) std::swap(width, height);
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
    const ui::PixelGrid grid(node, context);
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
    if (origin > 0 && origin < 1) {
        context.FillRect(filled, color);
    } else {
        // From the track's round end; the other end of the box hides under the knob.
        const Rect rounded = filled.Inset(vertical ? 0.0F : -kTrackRadius, vertical ? -kTrackRadius : 0.0F);
        context.FillRoundRect(grid.Snap(rounded), kTrackRadius, color);
    }
}

void SliderLook::DrawKnob(limner::Limner& context, const ui::UI_Node& node) const {
    const ui::PixelGrid grid(node, context);
    const bool isDisc = arrow == Arrow::kNone && !HasCap();
    const Rect shape = isDisc ? grid.Square(At(position), kKnobDiameter) : grid.Snap(KnobRect());
    const bool isLit = enabled && (hovered || pressed || focused);
    const int line = isLit ? ui::kColorAccent : enabled ? ui::kColorKnobLine : ui::kColorDisabledText;
    const limner::Color fill = node.GetColor(ui::kColorKnob);
    const float width = grid.Line(kKnobLine);
    if (arrow != Arrow::kNone) {
        DrawArrow(context, shape, fill, {.color = node.GetColor(line), .width = width});
    } else {
        const float radius = HasCap() ? kVerticalKnobRadius : shape.width / 2;
        context.FillRoundRect(shape, radius, fill);
        context.FrameRoundRect(shape, radius, node.GetColor(line), width);
    }
    DrawMark(context, node, shape);
}

// A pentagon: a box with a tip towards the marks.
void SliderLook::DrawArrow(limner::Limner& context, const Rect& knob, const limner::Color& fill,
                           const limner::Pen& line) const {
    const Rect box = knob.Inset(line.width / 2, line.width / 2);
    const float along = vertical ? box.height : box.width;
    const float across = vertical ? box.width : box.height;
    const float start = vertical ? box.top : box.left;
    const bool isUpLeft = arrow == Arrow::kUpLeft;
    const float base = (vertical ? box.left : box.top) + (isUpLeft ? across : 0);
    const float inwards = isUpLeft ? -1.0F : 1.0F;
    const auto at = [&](float a, float c) {
        const float first = start + a * along;
        const float second = base + inwards * c * across;
        return vertical ? Point{second, first} : Point{first, second};
    };
    constexpr float kShoulder = 0.55F; // where the tip begins
    const Point corners[] = {at(0, 0), at(1, 0), at(1, kShoulder), at(0.5F, 1), at(0, kShoulder)};
    const auto outline = [&] {
        context.NewPath();
        context.MoveTo(corners[0].x, corners[0].y);
        for (const Point corner : std::span(corners).subspan(1))
            context.LineTo(corner.x, corner.y);
        context.ClosePath();
    };
    outline();
    context.Fill({fill});
    outline();
    limner::Pen pen = line;
    pen.join = limner::LineJoin::kRound;
    context.Stroke(pen);
}

// What tells a cap's middle, and a knob that is held or has the focus.
void SliderLook::DrawMark(limner::Limner& context, const ui::UI_Node& node, const Rect& shape) const {
    const ui::PixelGrid grid(node, context);
    const bool isMarked = enabled && (pressed || focused);
    if (arrow == Arrow::kNone && HasCap()) {
        const float line = grid.Line();
        const Point middle = shape.Centre();
        const float half = (vertical ? shape.width : shape.height) / 2 - kMarkMargin;
        const Rect mark = vertical ? Rect{middle.x - half, grid.Y(middle.y - line / 2), 2 * half, line}
                                   : Rect{grid.X(middle.x - line / 2), middle.y - half, line, 2 * half};
        const int color = isMarked ? ui::kColorAccent : enabled ? ui::kColorText : ui::kColorDisabledText;
        context.FillRect(grid.Snap(mark), node.GetColor(color));
    } else if (isMarked) {
        const Rect dot = grid.Square(shape.Centre(), arrow == Arrow::kNone ? kDotDiameter : kArrowDotDiameter);
        context.FillRoundRect(dot, dot.width / 2, node.GetColor(ui::kColorAccent));
    }
}

} // namespace kroui::controls
