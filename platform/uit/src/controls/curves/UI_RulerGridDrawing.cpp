// Where the parts of UI_RulerGridBase lie, and what is drawn of them.

#include "uit/controls/UI_RulerGridBase.h"

#include <algorithm>
#include <cmath>

namespace uit::controls {

using kroui::Point;
using kroui::Rect;
using kroui::limner::Color;
using kroui::limner::Limner;
using kroui::utility::RulerBase;
using kroui::utility::RulerTick;

namespace {

constexpr kroui::limner::Font kLabelFont{9, false};
constexpr float kLabelHeight = 11;
constexpr float kLabelAdvance = 7; // at most, for a character of a unit
constexpr float kVerticalRulerWidth = 40;
constexpr float kHorizontalRulerHeight = 20;
constexpr float kHalfLabelWidth = 13; // labels at the ends of the horizontal ruler reach out so far
constexpr float kHalfLabelHeight = 6;
constexpr float kLabelGap = 3;
constexpr float kMinorOpacity = 0.5F;
constexpr float kLeastMinorDistance = 4; // fainter lines nearer to another would run into a grey ground

} // namespace

kroui::Size UI_RulerGridBase::SizeForContent(kroui::Size content) const {
    const Rect without = ContentIn({});
    return {content.width - without.width, content.height - without.height};
}

void UI_RulerGridBase::UI_Draw(Limner* limner) {
    fCache.Draw(*limner, UI_GetLocalRect(), UI_GetDrawSupplier(), GetTheme(), [this](Limner& l) { DrawGrid(l); });
    if (fContent.IsEmpty()) return;
    limner->Save();
    limner->ClipRect(fContent);
    DrawContent(*limner);
    limner->Restore();
    if (ShowsFocus()) {
        constexpr float kRing = 2;
        limner->FrameRoundRect(fContent.Inset(-kRing, -kRing), kRing, GetColor(kroui::ui::kColorAccent), kRing);
    }
    limner->Save();
    limner->ClipRect(UI_GetLocalRect());
    DrawOverContent(*limner);
    limner->Restore();
}

UI_RulerGridBase::Axis UI_RulerGridBase::RulerAt(Point point) const {
    if (fContent.IsEmpty() || !UI_GetLocalRect().Contains(point)) return kNoAxis;
    if (point.y >= fContent.Bottom() && point.x >= fContent.left - kHalfLabelWidth) return kHorizontalAxis;
    if (point.x < fContent.left && point.y < fContent.Bottom() + kHalfLabelHeight) return kVerticalAxis;
    return kNoAxis;
}

// The rulers and their units take the same room at every size; what is left may be nothing or less.
Rect UI_RulerGridBase::ContentIn(kroui::Size size) const {
    const float unit = static_cast<float>(fHorizontalLabel.size()) * kLabelAdvance;
    const float right = kHalfLabelWidth + (fHorizontalLabel.empty() ? 0 : kLabelGap + unit);
    const float top = kHalfLabelHeight + (fVerticalLabel.empty() ? 0 : kLabelHeight + 1);
    return {kVerticalRulerWidth, top, std::floor(size.width - kVerticalRulerWidth - right),
            std::floor(size.height - top - kHorizontalRulerHeight)};
}

void UI_RulerGridBase::UpdateContent() {
    const Rect content = ContentIn({UI_GetFrame().width, UI_GetFrame().height});
    fContent = content.width > 0 && content.height > 0 ? content : Rect{};
    AxesChanged();
}

Rect UI_RulerGridBase::LabelRect(Axis axis) const {
    if (axis == kVerticalAxis) return {0, 0, fContent.left - RulerBase::kTextDistance, kLabelHeight};
    const float left = fContent.Right() + kHalfLabelWidth + kLabelGap;
    return {left, fContent.Bottom() + RulerBase::kTextDistance, UI_GetFrame().width - left, kLabelHeight};
}

void UI_RulerGridBase::DrawGrid(Limner& limner) const {
    limner.FillRect(UI_GetLocalRect(), fRulerBackground.value_or(GetColor(kroui::ui::kColorRulerBackground)));
    if (fContent.IsEmpty()) return;
    DrawRulers(limner); // first: it places the labels that the lines belong to
    limner.FillRect(fContent, fBackground);
    limner.Save();
    limner.ClipRect(fContent);
    DrawGridLines(limner, kHorizontalAxis);
    DrawGridLines(limner, kVerticalAxis);
    limner.Restore();
}

void UI_RulerGridBase::DrawGridLines(Limner& limner, Axis axis) const {
    const float scale = limner.ScaleFactor();
    const float line = std::max(1.0F, std::floor(scale)) / scale;
    const bool isHorizontal = axis == kHorizontalAxis;
    const bool drawsMinor = isHorizontal ? fDrawHorizontalMinorTicks : fDrawVerticalMinorTicks;
    const Color minor = fGridColor.WithAlpha(fGridColor.alpha * kMinorOpacity);
    const float start = isHorizontal ? fContent.left : fContent.top;
    const float end = isHorizontal ? fContent.Right() : fContent.Bottom();
    const auto& ticks = Ruler(axis).GetTicks(UI_GetDrawSupplier());
    float last = -kLeastMinorDistance;
    for (auto tick = ticks.begin(); tick != ticks.end(); ++tick) {
        if (!tick->major) {
            const auto next = std::find_if(tick, ticks.end(), [](const RulerTick& t) { return t.major; });
            const bool isNearNext = next != ticks.end() && next->pixel - tick->pixel < kLeastMinorDistance;
            if (!drawsMinor || isNearNext || tick->pixel - last < kLeastMinorDistance) continue;
        }
        last = tick->pixel;
        // Lines at the ends stay inside.
        const float at = std::clamp(std::round((tick->pixel - line / 2) * scale) / scale, start, end - line);
        const Rect rect = isHorizontal ? Rect{at, fContent.top, line, fContent.height}
                                       : Rect{fContent.left, at, fContent.width, line};
        limner.FillRect(rect, tick->major ? fGridColor : minor);
    }
}

void UI_RulerGridBase::DrawRulers(Limner& limner) const {
    const kroui::limner::SupplierInterface* const supplier = UI_GetDrawSupplier();
    const auto colors = kroui::utility::RulerColors::Of(*this);
    fHorizontal->Draw(limner,
                      {fContent.left - kHalfLabelWidth, fContent.Bottom(), fContent.width + 2 * kHalfLabelWidth,
                       UI_GetFrame().height - fContent.Bottom()},
                      colors, supplier, RulerBase::Edge::kLeftTop);
    fVertical->Draw(limner, {0, fContent.top - kHalfLabelHeight, fContent.left, fContent.height + 2 * kHalfLabelHeight},
                    colors, supplier, RulerBase::Edge::kRightBottom);
    limner.DrawText(fHorizontalLabel, kLabelFont, colors.text, LabelRect(kHorizontalAxis), {});
    limner.DrawText(fVerticalLabel, kLabelFont, colors.text, LabelRect(kVerticalAxis),
                    {kroui::limner::TextAlignment::kRight, kroui::limner::TextTruncation::kNone, false});
}

} // namespace uit::controls
