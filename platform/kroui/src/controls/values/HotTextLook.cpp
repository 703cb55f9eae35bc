#include "kroui/controls/HotTextLook.h"

#include "controls/base/ControlDrawing.h"

#include <algorithm>

namespace kroui::controls {

namespace {

constexpr float kBoxHeight = 20;
constexpr float kBoxRadius = 3;
constexpr float kFieldWidth = 52;
constexpr float kUnderlineDrop = 2; // below the descent's middle
constexpr float kDotPitch = 3;

void DrawDots(limner::Limner& context, const ui::PixelGrid& grid, const Rect& line, const limner::Color& color) {
    const float dot = grid.Line();
    const float pitch = grid.Line(kDotPitch); // whole pixels, so that the dots are evenly apart
    for (float x = line.left; x + dot <= line.Right() + 0.5F; x += pitch)
        context.FillRect({grid.X(x), line.top, dot, dot}, color);
}

Rect Box(const Rect& around) {
    const float height = std::min(kBoxHeight, around.height);
    return {around.left, around.Centre().y - height / 2, around.width, height};
}

} // namespace

HotTextLook::Places HotTextLook::PlaceIn(const Rect& rect, const limner::SupplierInterface& supplier) const {
    const float textWidth = supplier.MeasureText(text, font).width;
    const float unitWidth = unit.empty() ? 0 : supplier.MeasureText(unit, font).width;
    const float gap = unit.empty() ? 0 : kUnitGap;
    const float room = rect.width - 2 * kPadding - textWidth - gap - unitWidth;
    const float share = alignment == limner::TextAlignment::kLeft     ? 0.0F
                        : alignment == limner::TextAlignment::kCentre ? 0.5F
                                                                      : 1.0F;
    Places places;
    // What is too wide may use the padding before it.
    const float left = std::max(rect.left, rect.left + kPadding + room * share);
    places.text = {left, rect.top, textWidth, rect.height};
    if (unit.empty()) return places;
    const float unitLeft = places.text.Right() + gap;
    places.unit = {unitLeft, rect.top, std::min(unitWidth, rect.Right() - unitLeft), rect.height};
    return places;
}

Rect HotTextLook::FieldFrame(const Rect& rect, const Places& places, limner::TextAlignment alignment) {
    const float width = std::max(places.text.width + 3 * kPadding, kFieldWidth);
    const float right = std::min(places.text.Right() + kPadding, rect.Right());
    float left = places.text.left - kPadding;
    if (alignment == limner::TextAlignment::kRight) left = right - width;
    if (alignment == limner::TextAlignment::kCentre) left = places.text.Centre().x - width / 2;
    left = std::max(left, rect.left);
    const float room = (places.unit.IsEmpty() ? rect.Right() : places.unit.left - 1) - left;
    return Box({left, rect.top, std::max(std::min(width, room), right - left), rect.height});
}

void HotTextLook::Draw(limner::Limner& context, const ui::UI_Node& node, const Places& places) const {
    const ui::PixelGrid grid(node, context);
    const limner::TextPlacement start{};
    const limner::Color accent = node.GetColor(ui::kColorAccent);
    const int color = enabled ? ui::kColorAccent : ui::kColorDisabledText;
    context.DrawText(text, font, node.GetColor(color), places.text, start);
    if (enabled && !focused) {
        const float top = grid.Y(places.text.Centre().y + font.size / 2 + kUnderlineDrop - 1);
        const limner::Color dots = hovered ? accent : accent.WithAlpha(0.75F);
        DrawDots(context, grid, {places.text.left, top, places.text.width, 1}, dots);
    }
    if (focused) {
        const Rect box = grid.Snap(Box(places.text.Inset(-kPadding, 0)));
        context.FrameRoundRect(box, kBoxRadius, accent, grid.Line());
    }
    const int unitColor = enabled ? ui::kColorDimText : ui::kColorDisabledText;
    const limner::TextPlacement cut{limner::TextAlignment::kLeft, limner::TextTruncation::kEnd, false};
    if (!places.unit.IsEmpty()) context.DrawText(unit, font, node.GetColor(unitColor), places.unit, cut);
}

} // namespace kroui::controls
