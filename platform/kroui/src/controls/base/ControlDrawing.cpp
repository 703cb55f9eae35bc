#include "controls/base/ControlDrawing.h"

#include <algorithm>

namespace kroui::controls::drawing {

namespace {

constexpr limner::Pen MarkPen(const limner::Color& color, float width) {
    return {color, width, limner::LineCap::kRound, limner::LineJoin::kRound, 0};
}

} // namespace

void DrawCheckMark(limner::Limner& context, const Rect& box, const limner::Color& color) {
    const auto at = [&](float x, float y) { return Point{box.left + x * box.width, box.top + y * box.height}; };
    const Point start = at(0.24F, 0.52F);
    const Point corner = at(0.43F, 0.71F);
    const Point end = at(0.77F, 0.32F);
    context.NewPath();
    context.MoveTo(start.x, start.y);
    context.LineTo(corner.x, corner.y);
    context.LineTo(end.x, end.y);
    context.Stroke(MarkPen(color, box.width * 0.125F));
}

void DrawChevron(limner::Limner& context, Point centre, float width, int direction, const limner::Color& color) {
    const float rise = width / 4 * static_cast<float>(direction);
    context.NewPath();
    context.MoveTo(centre.x - width / 2, centre.y - rise);
    context.LineTo(centre.x, centre.y + rise);
    context.LineTo(centre.x + width / 2, centre.y - rise);
    context.Stroke(MarkPen(color, 1.5F));
}

void DrawHalo(limner::Limner& context, const Rect& rect, float radius, const limner::Color& accent,
              const Rect& bounds) {
    constexpr float kOpacity = 0.5F;
    context.Save();
    context.ClipRect(bounds);
    context.FrameRoundRect(rect.Inset(-kHaloWidth, -kHaloWidth), radius + kHaloWidth, accent.WithAlpha(kOpacity),
                           kHaloWidth);
    context.Restore();
}

Rect FitPicture(Size picture, const Rect& room) {
    if (!(picture.width > 0 && picture.height > 0) || room.IsEmpty()) return {};
    const float factor = std::min({1.0F, room.width / picture.width, room.height / picture.height});
    const Size size{picture.width * factor, picture.height * factor};
    const Point centre = room.Centre();
    return {centre.x - size.width / 2, centre.y - size.height / 2, size.width, size.height};
}

float Bounded(float value, float low, float high) {
    return value >= low ? std::min(value, high) : low;
}

limner::TextAlignment KnownAlignment(limner::TextAlignment alignment) {
    return alignment <= limner::TextAlignment::kRight ? alignment : limner::TextAlignment::kLeft;
}

limner::TextTruncation KnownTruncation(limner::TextTruncation truncation) {
    return truncation <= limner::TextTruncation::kEnd ? truncation : limner::TextTruncation::kNone;
}

krocore::string16 OnOffText(bool on) {
    return krocore::Localize(on ? "$$$/kroui/Accessible/On=on" : "$$$/kroui/Accessible/Off=off");
}

} // namespace kroui::controls::drawing
