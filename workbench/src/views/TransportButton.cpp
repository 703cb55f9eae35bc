#include "workbench/views/TransportButton.h"

#include "kroui/ui/PixelGrid.h"

#include <algorithm>

namespace workbench {

using kroui::limner::Brush;
using kroui::limner::Color;
using kroui::limner::Limner;
using kroui::limner::Pen;

namespace {

constexpr float kRingWidth = 2;

// The signs are drawn for a button of diameter 1 around its centre.
void DrawPlay(Limner& limner, kroui::Point centre, float size, const Color& color) {
    const float left = centre.x - 0.15F * size;
    limner.NewPath();
    limner.MoveTo(left, centre.y - 0.22F * size);
    limner.LineTo(left + 0.4F * size, centre.y);
    limner.LineTo(left, centre.y + 0.22F * size);
    limner.ClosePath();
    limner.Fill(Brush{color});
}

void DrawPause(Limner& limner, kroui::Point centre, float size, const Color& color) {
    const float height = 0.4F * size;
    const float width = 0.12F * size;
    limner.FillRect({centre.x - 0.17F * size, centre.y - height / 2, width, height}, color);
    limner.FillRect({centre.x + 0.17F * size - width, centre.y - height / 2, width, height}, color);
}

void DrawStop(Limner& limner, kroui::Point centre, float size, const Color& color) {
    const float side = 0.36F * size;
    limner.FillRect({centre.x - side / 2, centre.y - side / 2, side, side}, color);
}

// Most of a circle, with an arrow head at its end, which points down there.
void DrawLoop(Limner& limner, kroui::Point centre, float size, const Color& color) {
    constexpr float kStart = 70;
    constexpr float kEnd = 360;
    const float radius = 0.23F * size;
    const float head = 0.12F * size;
    limner.NewPath();
    limner.Arc(centre.x, centre.y, radius, kStart, kEnd);
    limner.Stroke(Pen{.color = color, .width = 0.055F * size});
    limner.NewPath();
    limner.MoveTo(centre.x + radius - head, centre.y - 0.01F * size);
    limner.LineTo(centre.x + radius + head, centre.y - 0.01F * size);
    limner.LineTo(centre.x + radius, centre.y + head * 1.3F);
    limner.ClosePath();
    limner.Fill(Brush{color});
}

} // namespace

TransportButton::TransportButton(Sign sign) : fSign(sign) {
    // Space is to go on playing.
    SetChangeFocusOnClick(false);
}

void TransportButton::SetSign(Sign sign) {
    if (sign == fSign) return;
    fSign = sign;
    UI_Invalidate();
}

void TransportButton::UI_Draw(Limner* limner) {
    const Face face = FaceOfState();
    const kroui::Rect rect = kroui::ui::PixelGrid(*this, *limner).Snap(UI_GetLocalRect());
    const float size = std::min(rect.width, rect.height);
    const auto ground = GetColor(face.hot ? kroui::ui::kColorRaisedHover : kroui::ui::kColorRaised);
    const auto accent = GetColor(kroui::ui::kColorAccent);
    if (face.accent < 1) limner->FillRoundRect(rect, size / 2, ground);
    if (face.accent > 0) limner->FillRoundRect(rect, size / 2, accent.WithAlpha(face.accent));
    if (face.focused) {
        const kroui::Rect ring = face.accent > 0 ? rect.Inset(kRingWidth, kRingWidth) : rect;
        limner->FrameRoundRect(ring, ring.width / 2, face.accent > 0 ? GetColor(kroui::ui::kColorAccentText) : accent,
                               kRingWidth);
    } else if (face.accent == 0) {
        limner->FrameRoundRect(rect, size / 2, face.hot ? accent : GetColor(kroui::ui::kColorLine), 1);
    }
    const Color color = ContentColor(face);
    switch (fSign) {
    case Sign::kPlay: return DrawPlay(*limner, rect.Centre(), size, color);
    case Sign::kPause: return DrawPause(*limner, rect.Centre(), size, color);
    case Sign::kStop: return DrawStop(*limner, rect.Centre(), size, color);
    case Sign::kLoop: return DrawLoop(*limner, rect.Centre(), size, color);
    }
}

} // namespace workbench
