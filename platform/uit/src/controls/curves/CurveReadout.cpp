#include "controls/curves/CurveReadout.h"

#include "kroui/ui/PixelGrid.h"

#include <algorithm>
#include <cmath>

namespace uit::controls {

using kroui::Point;
using kroui::Rect;

namespace {

constexpr kroui::limner::Font kFont{11, false};
constexpr float kHeight = 20;
constexpr float kPadding = 8;
constexpr float kDistance = 12; // from the point
constexpr float kMargin = 4;    // from the content's edges
constexpr float kRadius = 3;
constexpr float kGroundOpacity = 0.9F;

} // namespace

void CurveReadout::ShowBeside(Point point, const krocore::string16& text) {
    if (!fGraph.UI_GetDrawSupplier()) return Hide();
    const float width = WidthOf(text);
    const Rect room = fGraph.GetContentRect().Inset(kMargin, kMargin);
    Rect rect{point.x + kDistance, 0, width, kHeight};
    if (rect.Right() > room.Right()) rect.left = point.x - kDistance - width;
    rect.left = std::max(rect.left, room.left);
    rect.top = std::clamp(point.y - kHeight - kMargin, room.top, std::max(room.top, room.Bottom() - kHeight));
    Show(text, rect);
}

void CurveReadout::ShowForPointer(Point pointer, const krocore::string16& text) {
    if (!fGraph.UI_GetDrawSupplier()) return Hide();
    const Rect content = fGraph.GetContentRect();
    const float width = WidthOf(text);
    Rect rect{content.Right() - kMargin - width, content.top + kMargin, width, kHeight};
    if (rect.Inset(-kDistance, -kDistance).Contains(pointer)) rect.left = content.left + kMargin;
    Show(text, rect);
}

void CurveReadout::Draw(kroui::limner::Limner& limner) const {
    if (fText.empty()) return;
    const kroui::ui::PixelGrid grid(fGraph, limner);
    const Rect box = grid.Snap(fRect);
    limner.FillRoundRect(box, kRadius,
                         UI_RulerGridBase::ContentColor(kroui::ui::kColorRaised).WithAlpha(kGroundOpacity));
    limner.FrameRoundRect(box, kRadius, UI_RulerGridBase::ContentColor(kroui::ui::kColorLine), grid.Line());
    limner.DrawText(fText, kFont, UI_RulerGridBase::ContentColor(kroui::ui::kColorText), box,
                    {kroui::limner::TextAlignment::kCentre, kroui::limner::TextTruncation::kNone, false});
}

float CurveReadout::WidthOf(const krocore::string16& text) const {
    return std::ceil(fGraph.UI_GetDrawSupplier()->MeasureText(text, kFont).width) + 2 * kPadding;
}

void CurveReadout::Show(const krocore::string16& text, const Rect& rect) {
    if (text == fText && rect == fRect) return;
    fGraph.UI_InvalidateRect(fRect);
    fText = text;
    fRect = rect;
    fGraph.UI_InvalidateRect(fRect);
}

} // namespace uit::controls
