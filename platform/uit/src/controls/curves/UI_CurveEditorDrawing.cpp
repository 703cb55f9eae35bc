// What UI_CurveEditor shows over its grid.

#include "uit/controls/UI_CurveEditor.h"

#include "controls/curves/CurveGesture.h"
#include "controls/curves/CurvePress.h"
#include "controls/curves/CurveReadout.h"
#include "controls/curves/PointEditDialog.h"
#include "controls/curves/ResponseCurve.h"

#include "kroui/ui/PixelGrid.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace uit::controls {

using kroui::Point;
using kroui::Rect;
using kroui::limner::Color;
using kroui::limner::Limner;

namespace {

constexpr float kHandleRadius = 5;
constexpr float kLargeHandleRadius = 6.5F; // under the pointer
constexpr float kHandleRing = 1.5F;
constexpr float kHandleOutline = 1;
constexpr float kOutlineOpacity = 0.7F;
constexpr float kHandleReach = 8;
constexpr kroui::limner::Font kLabelFont{10, false};
constexpr float kLabelHeight = 13;
constexpr float kLabelDistance = 6; // from a handle's middle
constexpr float kLabelMargin = 2;
constexpr float kEstimatedAdvance = 7;
constexpr float kResponseThickness = 1.25F;

// Behind the points' own line responses are cool, each its own.
constexpr std::array<int, UI_CurveEditor::kResponseCount> kResponseRoles = {
    kroui::ui::kColorAccent, kroui::ui::kColorMeter, kroui::ui::kColorWarning, kroui::ui::kColorDimText};
constexpr float kResponseOpacity = 0.75F;
constexpr float kFillOpacity = 0.1F;
constexpr Color kHandleGround{0, 0, 0, 1};
constexpr Color kReferenceColor{1, 1, 1, 0.35F};

// The handles' places in quarters of a pixel: fine enough to follow a curve, coarse enough for stamps to be found.
class HandleGrid {
public:
    HandleGrid(const kroui::ui::UI_Node& node, const Limner& limner)
        : fOrigin(node.UI_LocalToWindow({})), fParts(4 * limner.ScaleFactor()) {}

    Rect Disc(Point centre, float radius) const {
        const auto snapped = [this](float at, float origin) {
            return std::round((at + origin) * fParts) / fParts - origin;
        };
        const float r = std::round(radius * fParts) / fParts;
        return {snapped(centre.x, fOrigin.x) - r, snapped(centre.y, fOrigin.y) - r, 2 * r, 2 * r};
    }

private:
    Point fOrigin;
    float fParts;
};

void FillDisc(Limner& limner, const Rect& disc, const Color& color) {
    limner.FillRoundRect(disc, disc.width / 2, color);
}

} // namespace

void UI_CurveEditor::DrawContent(Limner& limner) {
    if (fDrawLinearReference) DrawLinearReference(limner);
    DrawResponses(limner);
    DrawCurvePoints(limner);
    DrawLabels(limner);
}

void UI_CurveEditor::DrawOverContent(Limner& limner) {
    for (const bool selected : {false, true})
        for (int index = 0; index < static_cast<int>(fPoints.Count()); ++index)
            if (fPoints.IsSelected(index) == selected && IsInSight(index)) DrawHandle(limner, index);
    if (const Rect marquee = MarqueeRect(); !marquee.IsEmpty()) {
        constexpr float kGroundOpacity = 0.15F;
        const Color accent = ContentColor(kroui::ui::kColorAccent);
        const kroui::ui::PixelGrid grid(*this, limner);
        limner.FillRect(grid.Snap(marquee), accent.WithAlpha(kGroundOpacity));
        limner.FrameRoundRect(grid.Snap(marquee), 0, accent, grid.Line());
    }
    if (fReadoutAxes != GetAxesVersion()) UpdateReadout();
    fReadout->Draw(limner);
}

void UI_CurveEditor::DrawCurvePoints(Limner& limner) {
    if (fDrawCurve) limner.StrokeFunction(GetCurveLine(), {GetCurveColor(), GetContentLineThickness()});
}

void UI_CurveEditor::DrawLinearReference(Limner& limner) const {
    constexpr float kDash = 4;
    const Point from = GetPixelForCoordinatePair({GetBound(0), GetBound(3)});
    const Point to = GetPixelForCoordinatePair({GetBound(1), GetBound(2)});
    limner.NewPath();
    limner.MoveTo(from.x, from.y);
    limner.LineTo(to.x, to.y);
    kroui::limner::Pen pen{Dimmed(kReferenceColor), 1};
    pen.dash = kDash;
    limner.Stroke(pen);
}

void UI_CurveEditor::DrawResponses(Limner& limner) {
    const Rect content = GetContentRect();
    for (std::size_t i = fResponses.size(); i-- > 0;) {
        if (fResponses[i].IsEmpty()) continue;
        const auto& line =
            fResponses[i].Line(fResponseToAxis, VerticalRuler(), content, limner.ScaleFactor(), GetAxesVersion());
        const bool isCurve = i == 0 && !fDrawCurve;
        const Color role = ContentColor(isCurve ? kroui::ui::kColorCurve : kResponseRoles[i]);
        const Color color = Dimmed(isCurve ? role : role.WithAlpha(kResponseOpacity));
        if (i == 0) limner.FillFunction(line, content.Bottom(), {color.WithAlpha(color.alpha * kFillOpacity)});
        limner.StrokeFunction(line, {color, isCurve ? GetContentLineThickness() : kResponseThickness});
    }
}

void UI_CurveEditor::DrawLabels(Limner& limner) const {
    const Rect content = GetContentRect();
    const kroui::limner::SupplierInterface* const supplier = UI_GetDrawSupplier();
    const Color color = Dimmed(ContentColor(kroui::ui::kColorText));
    std::vector<Rect> placed;
    for (std::size_t i = 0; i < std::min(fPointLabels.size(), fPoints.Count()); ++i) {
        const krocore::string16& text = fPointLabels[i];
        if (text.empty() || !IsInSight(static_cast<int>(i))) continue;
        const float width = supplier ? std::ceil(supplier->MeasureText(text, kLabelFont).width)
                                     : static_cast<float>(text.size()) * kEstimatedAdvance;
        const Point at = PixelOf(static_cast<int>(i));
        Rect rect{at.x + kLabelDistance, at.y - kLabelDistance - kLabelHeight, width, kLabelHeight};
        if (fLabelsAtBottom) rect.left = at.x - width / 2;
        if (fLabelsAtBottom) rect.top = content.Bottom() - kLabelHeight - kLabelMargin;
        if (rect.Right() > content.Right()) rect.left = at.x - kLabelDistance - width;
        if (rect.top < content.top) rect.top = at.y + kLabelDistance;
        rect.left = std::max(rect.left, content.left + kLabelMargin);
        // Points that stand together have their labels above each other.
        const auto isCovered = [&rect](const Rect& other) { return rect.Intersects(other); };
        while (rect.top > content.top && std::any_of(placed.begin(), placed.end(), isCovered))
            rect.top -= kLabelHeight;
        placed.push_back(rect);
        limner.DrawText(text, kLabelFont, color, rect, {});
    }
}

// A ring with the ground in it; selected ones are filled with the accent.
void UI_CurveEditor::DrawHandle(Limner& limner, int index) const {
    const Point centre = PixelOf(index);
    const bool isLarge = index == fHovered || index == PressedPoint();
    const float radius = isLarge ? kLargeHandleRadius : kHandleRadius;
    if (!limner.ClipBounds().Intersects({centre.x - radius, centre.y - radius, 2 * radius, 2 * radius})) return;
    const HandleGrid grid(*this, limner);
    const bool isSelected = fPoints.IsSelected(index);
    const int ring = IsEnabled() ? kroui::ui::kColorText : kroui::ui::kColorDisabledText;
    const int fill = IsEnabled() ? kroui::ui::kColorAccent : kroui::ui::kColorDisabledText;
    const float outer = isSelected ? radius + 1 : radius;
    // The outline parts it from whatever it stands on, at the content's edges from a light ground.
    FillDisc(limner, grid.Disc(centre, outer + kHandleOutline), kHandleGround.WithAlpha(kOutlineOpacity));
    FillDisc(limner, grid.Disc(centre, outer), isSelected ? Color{1, 1, 1, 1} : ContentColor(ring));
    FillDisc(limner, grid.Disc(centre, outer - kHandleRing), isSelected ? ContentColor(fill) : kHandleGround);
}

Rect UI_CurveEditor::HandleArea(int index) const {
    const Point centre = PixelOf(index);
    return {centre.x - kHandleReach - 1, centre.y - kHandleReach - 1, 2 * kHandleReach + 2, 2 * kHandleReach + 2};
}

Color UI_CurveEditor::Dimmed(const Color& color) const {
    constexpr float kDisabledOpacity = 0.4F;
    return IsEnabled() ? color : color.WithAlpha(color.alpha * kDisabledOpacity);
}

} // namespace uit::controls
