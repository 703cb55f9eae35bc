// How UI_CurveEditor answers the pointer.

#include "uit/controls/UI_CurveEditor.h"

#include "controls/curves/CurveGesture.h"
#include "controls/curves/CurveMove.h"
#include "controls/curves/CurvePress.h"
#include "controls/curves/CurveReadout.h"
#include "controls/curves/PointEditDialog.h"
#include "controls/curves/ResponseCurve.h"
#include "uit/controls/CurveLine.h"

#include <algorithm>
#include <cmath>

namespace uit::controls {

using kroui::Point;
using kroui::Rect;
using kroui::ui::MouseEvent;

namespace {

constexpr float kHitRadius = 9;
constexpr float kCurveRadius = 5; // a press this near to the curve adds a point on it

} // namespace

bool UI_CurveEditor::UI_DoMouseEvent(UI_Node* node, const MouseEvent& event) {
    if (event.IsAction(MouseEvent::Action::kCaptureLost) && CancelDrag()) return true;
    bool isHandled = false;
    if (!node && IsEnabled()) {
        switch (event.action) {
        case MouseEvent::Action::kPressed: isHandled = Press(event); break;
        case MouseEvent::Action::kDragged: isHandled = Drag(event); break;
        case MouseEvent::Action::kReleased: isHandled = Release(event); break;
        case MouseEvent::Action::kEntered:
        case MouseEvent::Action::kMoved: HoverAt(event.position, true); break;
        case MouseEvent::Action::kLeft: HoverAt(event.position, false); break;
        default: break;
        }
    }
    return isHandled || UI_RulerGridBase::UI_DoMouseEvent(node, event);
}

void UI_CurveEditor::UI_FocusChanged(bool hasFocus) {
    if (!hasFocus) FlushRun();
    UI_RulerGridBase::UI_FocusChanged(hasFocus);
}

void UI_CurveEditor::UI_NodeChanged(NodeChange change) {
    if (change == kDetaching) {
        FlushRun();
        CancelDrag();
    }
    if (change == kDetaching || change == kHidden) {
        if (fDialog) fDialog->Close();
        HoverAt({}, false);
    }
    UI_RulerGridBase::UI_NodeChanged(change);
}

kroui::ui::Cursor UI_CurveEditor::UI_GetCursor(Point point) const {
    if (!IsEnabled()) return kroui::ui::Cursor::kArrow;
    if (const int index = PointAt(point); index >= 0) {
        const bool movesAcross = fPoints.May(CurvePointSet::kHorizontal, index);
        const bool movesUp = fPoints.May(CurvePointSet::kVertical, index);
        if (movesAcross && movesUp) return kroui::ui::Cursor::kMove;
        if (movesAcross) return kroui::ui::Cursor::kHorizontal;
        return movesUp ? kroui::ui::Cursor::kVertical : kroui::ui::Cursor::kHand;
    }
    if (!GetContentRect().Contains(point)) return UI_RulerGridBase::UI_GetCursor(point);
    return CanAddAt(PlaceForNewPoint(point)) ? kroui::ui::Cursor::kCross : kroui::ui::Cursor::kArrow;
}

// The nearest handle within reach; of two that lie together the one in front, a selected one above all.
int UI_CurveEditor::PointAt(Point pixel) const {
    int nearest = -1;
    float least = kHitRadius * kHitRadius;
    const auto& points = fPoints.All();
    for (int index = 0; index < static_cast<int>(points.size()); ++index) {
        const Point at = PixelOf(index);
        const float distance = (at.x - pixel.x) * (at.x - pixel.x) + (at.y - pixel.y) * (at.y - pixel.y);
        if (!(distance <= least) || !IsInSight(index)) continue;
        if (distance == least && nearest >= 0 && fPoints.IsSelected(nearest) && !fPoints.IsSelected(index)) continue;
        nearest = index;
        least = distance;
    }
    return nearest;
}

bool UI_CurveEditor::Press(const MouseEvent& event) {
    const int index = PointAt(event.position);
    if (event.button != 1 || fPress || (index < 0 && !GetContentRect().Contains(event.position))) return false;
    UI_TakeFocus();
    FlushRun();
    HoverAt(event.position, true);
    if (index < 0) {
        PressField(event);
    } else if (event.clickCount == 2 && !event.Has(kroui::ui::kCommand)) {
        SelectByUser([&] { fPoints.Select(index); });
        OpenDialog(index);
    } else {
        PressPoint(index, event);
    }
    UpdateReadout();
    return true;
}

void UI_CurveEditor::PressPoint(int index, const MouseEvent& event) {
    const bool toggles = event.Has(kroui::ui::kCommand);
    fPress = std::make_unique<CurvePress>(CurvePress{PointDrag(event.position), index, toggles});
    if (toggles) return;
    SelectByUser([&] {
        if (!fPoints.IsSelected(index)) fPoints.Select(index);
        fPoints.SetLastSelected(index);
    });
}

void UI_CurveEditor::PressField(const MouseEvent& event) {
    const bool toggles = event.Has(kroui::ui::kCommand);
    fPress = std::make_unique<CurvePress>(CurvePress{PointDrag(event.position), -1, toggles});
    const CoordinatePair place = PlaceForNewPoint(event.position);
    if (toggles) fPress->selectionBefore = fPoints.Selection();
    if (toggles || !CanAddAt(place)) return;
    SelectByUser([&] { fPoints.Select(-1); });
    fGesture->Begin(CurveGesture::Kind::kDrag);
    if (!fGesture->Start() || !fPress || !CanAddAt(place)) return;
    fPress->point = InsertPoint(place);
    RememberBases();
    fSelectionChanged();
    fGesture->TellOfChange();
}

// Where the pointer is; on the curve if that is near.
UI_CurveEditor::CoordinatePair UI_CurveEditor::PlaceForNewPoint(Point pixel) const {
    const Rect content = GetContentRect();
    pixel.x = std::clamp(pixel.x, content.left, content.Right());
    pixel.y = std::clamp(pixel.y, content.top, content.Bottom());
    const float height = fDrawCurve ? CurveLine::HeightAt(GetCurveLine(), pixel.x) : pixel.y;
    if (std::abs(height - pixel.y) <= kCurveRadius) pixel.y = std::clamp(height, content.top, content.Bottom());
    return GetCoordinatePairForPixel(pixel);
}

bool UI_CurveEditor::Drag(const MouseEvent& event) {
    if (!fPress) return false;
    fPointer = event.position;
    PointDrag& drag = fPress->drag;
    const bool hadMoved = drag.HasMoved();
    const Rect before = MarqueeRect();
    drag.MoveTo(event.position, event.modifiers);
    if (!drag.HasMoved()) return true;
    if (fPress->IsMarquee()) {
        UI_InvalidateRect(Union(before, MarqueeRect()));
        DragMarquee();
        return true;
    }
    if (!hadMoved && !fGesture->IsActive()) BeginDrag();
    if (fPress) fPress->togglesOnRelease = false;
    DragPoints();
    UpdateReadout();
    return true;
}

// A press on a point has become a drag.
void UI_CurveEditor::BeginDrag() {
    const int pressed = fPress->point;
    const bool joins = fPoints.IsSelected(pressed);
    SelectByUser([&] { joins ? fPoints.SetLastSelected(pressed) : fPoints.Select(pressed); });
    if (!fPress) return;
    const auto moved = fPress->drag.Moved();
    RememberBases();
    fPress->drag.Add(moved);
    fGesture->Begin(CurveGesture::Kind::kDrag);
}

void UI_CurveEditor::DragPoints() {
    if (!fPoints.Has(PressedPoint())) return;
    if (fPress->axes != GetAxesVersion()) RememberBases();
    const auto moved = fPress->drag.Moved();
    // A listener may end the press, and begin something else, before the points move.
    fGesture->Change(
        [&] { return fPress ? Mover(true).Moved(fPoints, fPress->bases, moved.x, moved.y) : fPoints.All(); });
}

// The drag counts from here on.
void UI_CurveEditor::RememberBases() {
    if (!fPress) return;
    fPress->bases.clear();
    for (const int index : fPoints.Selection())
        fPress->bases.push_back(fPoints.At(index).coordinates);
    fPress->axes = GetAxesVersion();
    fPress->drag.Restart();
}

int UI_CurveEditor::PressedPoint() const {
    return fPress ? fPress->point : -1;
}

Rect UI_CurveEditor::MarqueeRect() const {
    return fPress ? Intersection(fPress->Marquee(), GetContentRect()) : Rect{};
}

void UI_CurveEditor::DragMarquee() {
    const Rect marquee = MarqueeRect();
    std::vector<int> inside = fPress->selectionBefore;
    for (int index = 0; index < static_cast<int>(fPoints.Count()); ++index)
        if (IsInSight(index) && marquee.Contains(PixelOf(index))) inside.push_back(index);
    std::sort(inside.begin(), inside.end());
    inside.erase(std::unique(inside.begin(), inside.end()), inside.end());
    SelectByUser([&] { fPoints.SelectOnly(std::move(inside)); });
}

bool UI_CurveEditor::Release(const MouseEvent& event) {
    if (!fPress) return false;
    const Rect marquee = MarqueeRect();
    const std::unique_ptr<CurvePress> press = std::move(fPress);
    const bool hasMoved = press->drag.HasMoved();
    const bool toggles = press->togglesOnRelease;
    if (press->IsMarquee() && !hasMoved && !toggles) SelectByUser([&] { fPoints.Select(-1); });
    if (!press->IsMarquee() && !hasMoved && !fGesture->IsActive())
        SelectByUser([&] { toggles ? fPoints.Toggle(press->point) : fPoints.Select(press->point); });
    if (fGesture->Is(CurveGesture::Kind::kDrag)) fGesture->End();
    UI_InvalidateRect(marquee);
    HoverAt(event.position, UI_GetLocalRect().Contains(event.position));
    return true;
}

// Brings everything back to how it was at the press; whether anything was being dragged.
bool UI_CurveEditor::CancelDrag() {
    if (!fPress) return false;
    UI_InvalidateRect(MarqueeRect());
    const std::unique_ptr<CurvePress> press = std::move(fPress);
    if (press->IsMarquee() && press->drag.HasMoved())
        SelectByUser([&] { fPoints.SelectOnly(std::move(press->selectionBefore)); });
    if (fGesture->Is(CurveGesture::Kind::kDrag)) fGesture->Abandon();
    UpdateReadout();
    return true;
}

void UI_CurveEditor::SelectByUser(const boost::function<void()>& select) {
    const std::vector<int> before = fPoints.Selection();
    const int lastBefore = fPoints.LastSelected();
    select();
    if (before == fPoints.Selection() && lastBefore == fPoints.LastSelected()) return;
    for (const auto* const selection : {&before, &fPoints.Selection()})
        for (const int index : *selection)
            if (fPoints.Has(index)) UI_InvalidateRect(HandleArea(index));
    UpdateReadout();
    fSelectionChanged();
}

void UI_CurveEditor::HoverAt(Point pixel, bool isInside) {
    fPointer = pixel;
    fPointerIsInside = isInside;
    const int hovered = isInside ? PointAt(pixel) : -1;
    const int before = std::exchange(fHovered, hovered);
    if (before != hovered) {
        for (const int index : {before, hovered})
            if (fPoints.Has(index)) UI_InvalidateRect(HandleArea(index));
    }
    UpdateReadout();
}

void UI_CurveEditor::UpdateReadout() {
    fReadoutAxes = GetAxesVersion();
    const Rect content = GetContentRect();
    const int index = PointOfReadout();
    const bool isMarquee = fPress && fPress->IsMarquee();
    const bool hasPlace = index >= 0 || (fPointerIsInside && content.Contains(fPointer));
    if (!IsEnabled() || isMarquee || content.IsEmpty() || !hasPlace) return fReadout->Hide();
    if (index >= 0) {
        fReadout->ShowBeside(PixelOf(index), PositionText(fPoints.At(index).coordinates));
    } else {
        fReadout->ShowForPointer(fPointer, PositionText(GetCoordinatePairForPixel(fPointer)));
    }
}

// The point that is being moved or is under the pointer, if it can be seen.
int UI_CurveEditor::PointOfReadout() const {
    int index = fPress ? fPress->point : fHovered;
    if (fGesture->Is(CurveGesture::Kind::kRun)) index = GetSelectedNode();
    return IsInSight(index) ? index : -1;
}

} // namespace uit::controls
