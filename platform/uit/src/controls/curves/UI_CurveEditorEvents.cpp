// How UI_CurveEditor answers the pointer.

#include "uit/controls/UI_CurveEditor.h"

#include "controls/curves/CurveMove.h"
#include "controls/curves/PointDrag.h"
#include "controls/curves/PointEditDialog.h"
#include "controls/curves/ResponseCurve.h"
#include "uit/controls/CurveLine.h"

#include <algorithm>
#include <cmath>

namespace uit::controls {

using kroui::Point;
using kroui::Rect;
using kroui::ui::MouseEvent;
using Message = kroui::controls::UI_InteractiveControlChangedMessage;

namespace {

constexpr float kHitRadius = 9;
constexpr float kCurveRadius = 5; // a press this near to the curve adds a point on it

} // namespace

bool UI_CurveEditor::UI_DoMouseEvent(UI_Node* node, const MouseEvent& event) {
    const boost::intrusive_ptr<UI_CurveEditor> keepAlive(this);
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
    const boost::intrusive_ptr<UI_CurveEditor> keepAlive(this);
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
    if (event.button != 1 || fDrag || (index < 0 && !GetContentRect().Contains(event.position))) return false;
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
    fDrag = std::make_unique<PointDrag>(event.position);
    fPressed = index;
    fTogglesOnRelease = event.Has(kroui::ui::kCommand);
    if (fTogglesOnRelease) return;
    SelectByUser([&] {
        if (!fPoints.IsSelected(index)) fPoints.Select(index);
        fPoints.SetLastSelected(index);
    });
}

void UI_CurveEditor::PressField(const MouseEvent& event) {
    fPressed = -1;
    fTogglesOnRelease = event.Has(kroui::ui::kCommand);
    fDrag = std::make_unique<PointDrag>(event.position);
    const CoordinatePair place = PlaceForNewPoint(event.position);
    if (fTogglesOnRelease || !CanAddAt(place)) {
        fSelectionBefore = fTogglesOnRelease ? fPoints.Selection() : std::vector<int>();
        return;
    }
    SelectByUser([&] { fPoints.Select(-1); });
    BeginGesture(Gesture::kDrag);
    if (!StartChanges() || !fDrag || !CanAddAt(place)) return;
    fPressed = InsertPoint(place);
    RememberBases();
    fSelectionChanged();
    Send(Message::kChanged);
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
    if (!fDrag) return false;
    fPointer = event.position;
    const bool hadMoved = fDrag->HasMoved();
    const Rect before = MarqueeRect();
    fDrag->MoveTo(event.position, event.modifiers);
    if (!fDrag->HasMoved()) return true;
    if (fPressed < 0) {
        UI_InvalidateRect(Union(before, MarqueeRect()));
        DragMarquee();
        return true;
    }
    if (!hadMoved && fGesture == Gesture::kNone) {
        const bool joins = fPoints.IsSelected(fPressed);
        SelectByUser([&] { joins ? fPoints.SetLastSelected(fPressed) : fPoints.Select(fPressed); });
        const auto moved = fDrag->Moved();
        RememberBases();
        fDrag->Add(moved);
        BeginGesture(Gesture::kDrag);
    }
    fTogglesOnRelease = false;
    DragPoints();
    UpdateReadout();
    return true;
}

void UI_CurveEditor::DragPoints() {
    if (!IsDraggingPoints()) return;
    if (fDragAxes != GetAxesVersion()) RememberBases();
    const auto moved = fDrag->Moved();
    ChangePoints([&] { return Mover(true).Moved(fPoints, fBases, moved.x, moved.y); });
}

void UI_CurveEditor::DragMarquee() {
    const Rect marquee = MarqueeRect();
    std::vector<int> inside = fSelectionBefore;
    for (int index = 0; index < static_cast<int>(fPoints.Count()); ++index)
        if (IsInSight(index) && marquee.Contains(PixelOf(index))) inside.push_back(index);
    std::sort(inside.begin(), inside.end());
    inside.erase(std::unique(inside.begin(), inside.end()), inside.end());
    SelectByUser([&] { fPoints.SelectOnly(std::move(inside)); });
}

bool UI_CurveEditor::Release(const MouseEvent& event) {
    if (!fDrag) return false;
    const Rect marquee = MarqueeRect();
    const bool hasMoved = fDrag->HasMoved();
    const int pressed = std::exchange(fPressed, -1);
    const bool toggles = std::exchange(fTogglesOnRelease, false);
    fDrag.reset();
    if (pressed < 0 && !hasMoved && !toggles) SelectByUser([&] { fPoints.Select(-1); });
    if (pressed >= 0 && !hasMoved && fGesture == Gesture::kNone)
        SelectByUser([&] { toggles ? fPoints.Toggle(pressed) : fPoints.Select(pressed); });
    if (fGesture == Gesture::kDrag) EndGesture();
    UI_InvalidateRect(marquee);
    HoverAt(event.position, UI_GetLocalRect().Contains(event.position));
    return true;
}

// Brings everything back to how it was at the press; whether anything was being dragged.
bool UI_CurveEditor::CancelDrag() {
    if (!fDrag) return false;
    const boost::intrusive_ptr<UI_CurveEditor> keepAlive(this);
    const bool isMarquee = fPressed < 0 && fDrag->HasMoved();
    UI_InvalidateRect(MarqueeRect());
    fDrag.reset();
    fPressed = -1;
    fTogglesOnRelease = false;
    if (isMarquee) SelectByUser([&] { fPoints.SelectOnly(std::exchange(fSelectionBefore, {})); });
    if (fGesture == Gesture::kDrag) AbandonGesture();
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

} // namespace uit::controls
