#pragma once

#include "kroui/ui/Signal.h"
#include "uit/controls/AxisText.h"
#include "uit/controls/CurvePointSet.h"
#include "uit/controls/UI_RulerGridBase.h"

#include <boost/function.hpp>

#include <memory>
#include <optional>
#include <vector>

namespace uit::controls {

class CurveGesture;
class CurveMove;
class CurveReadout;
class PointEditDialog;
class ResponseCurve;
struct CurvePress;

// A curve that is drawn with points: up to 128 handles over a ruler grid, with the effect's response behind them. The
// user adds, drags, selects, deletes and types points; every change is a gesture (messages 0, 1, 2, 3 of
// NotifyWhenChangedInteractively) and, when it is final, also a NotifyWhenChanged. The selected point is set before
// message 0. A gesture that is abandoned brings the points back with one more message 1, so that whoever follows the
// changes has the old values too, and ends with message 3. Operations called from code send nothing.
// User-interface thread.
class UI_CurveEditor : public UI_RulerGridBase {
public:
    using CurvePoint = controls::CurvePoint;
    using CurvePoints = CurvePointSet::Points;
    using Flags = CurvePointSet::Flags;
    using Translator = AxisText::Translator;
    static constexpr int kResponseCount = 4;

    UI_CurveEditor(RulerPtr horizontal, RulerPtr vertical);

    // The points, in the order of the vector; at most the maximum count, what is beyond is left out, as are points
    // that hold NaN or infinity. The selection stays with the indices that are still there. A point that is being
    // dragged goes on being dragged from its new place.
    void SetCurvePoints(const CurvePoints& points);
    const CurvePoints& GetCurvePoints() const { return fPoints.All(); }
    // The point that was selected last: its index, or -1.
    int GetSelectedNode() const { return fPoints.LastSelected(); }
    void SetSelectedNode(int index); // -1 for none
    void SelectAll();
    const std::vector<int>& GetSelection() const { return fPoints.Selection(); } // ascending
    // Calls the slot when the user has selected other points; life time as for NotifyWhenChanged.
    using SelectionSignal = kroui::ui::Signal<>;
    void NotifyWhenSelectionChanged(const SelectionSignal::slot_type& slot) { fSelectionChanged.connect(slot); }

    // One flag a point; points without one are visible, movable, deletable. `horizontally` chooses the direction.
    void SetVisiblePoints(const Flags& visible);
    void SetMoveablePoints(const Flags& moveable, bool horizontally);
    void SetDeletablePoints(const Flags& deletable);
    void SetMaxPointCount(std::size_t count); // points are added by the user while there are fewer
    // Points keep their order along the axis: a drag stops just short of the neighbours, and none can be added where
    // one stands already.
    void SetUniqueHorizontalPositions(bool unique) { fUniquePositions = unique; }
    void SetDrawLinearReference(bool draw); // a diagonal from left bottom to right top, as in transfer curves
    void SetEnableAddPoints(bool enable) { fAddEnabled = enable; } // on at first
    void SetEnableDeletePoints(bool enable) { fDeleteEnabled = enable; }
    // Texts at the points ("1".."6"), beside them or, with the flag, in a row at the content's bottom edge.
    void SetPointLabels(const std::vector<krocore::string16>& labels);
    void SetDrawPointLabelsAtBottom(bool atBottom);
    // Curve number `curve` (0...3) behind the points: values at places evenly spaced along the shown part of the
    // horizontal axis, first and last at its ends, so it is set anew when the part shown changes. NaN and infinity
    // break the line. Empty: no curve.
    void SetResponseData(const std::vector<double>& values, int curve);
    // From the unit of the response to that of the vertical axis; without one they are the same.
    void SetResponseTranslator(const Translator& responseToAxis);
    // Connects the points by straight lines (false) or a monotone cubic (true); off: no line is drawn, and response 0
    // takes the colour of the curve.
    void SetDrawCurve(bool draw);
    void SetUseSplines(bool splines);
    bool UsesSplines() const { return fUseSplines; }

    // The dialog that a double-click or Enter on a point opens. The units are shown at the pointer's position, too;
    // without them the rulers' are.
    void SetHorizontalEditDialogLabel(std::u16string_view text) { fHorizontalText.label = text; }
    void SetVerticalEditDialogLabel(std::u16string_view text) { fVerticalText.label = text; }
    void SetHorizontalEditDialogUnit(std::u16string_view text) { fHorizontalText.unit = text; }
    void SetVerticalEditDialogUnit(std::u16string_view text) { fVerticalText.unit = text; }
    // From what the user types to the axis and back; without one the axis' values are typed.
    void SetHorizontalEditDialogTranslators(const Translator& typedToAxis, const Translator& axisToTyped);
    void SetVerticalEditDialogTranslators(const Translator& typedToAxis, const Translator& axisToTyped);

    // Commands, for buttons and keys. Each tells whether the curve has changed and sends nothing.
    bool AddNewPoint();          // in the middle of the widest gap, on the curve; it is selected
    bool DeleteSelectedPoints(); // only those that can be deleted
    // Mirrors the curve: horizontal and vertical values change places, as far as the bounds allow; twice is as before.
    // A level stretch becomes two points above each other.
    bool Invert();
    // Publishes the curve as it is: a whole gesture (0, 1, 2) and a change.
    void NotifyChanged();

    kroui::limner::Color GetCurveColor() const;
    float GetContentLineThickness() const;

    bool UI_DoMouseEvent(UI_Node* node, const kroui::ui::MouseEvent& event) override;
    bool UI_DoKeyEvent(const kroui::ui::KeyEvent& event) override;
    bool UI_DoTimerNotify(long timerID) override;
    void UI_FocusChanged(bool hasFocus) override;
    void UI_NodeChanged(NodeChange change) override;
    kroui::ui::Cursor UI_GetCursor(kroui::Point point) const override;
    kroui::ui::AccessibleInfo UI_GetAccessibleInfo() const override;
    // The visible points: height as their range, place as their position, both in the units that are typed.
    int UI_GetAccessiblePartCount() const override;
    kroui::ui::AccessiblePart UI_GetAccessiblePart(int part) const override;
    bool UI_DoAccessibleAction(const kroui::ui::AccessibleRequest& request) override;

protected:
    ~UI_CurveEditor() override;

    void DrawContent(kroui::limner::Limner& limner) override;
    void DrawOverContent(kroui::limner::Limner& limner) override;
    // The line through the points. Overridden by graphs that draw their own; the handles are drawn after it.
    virtual void DrawCurvePoints(kroui::limner::Limner& limner);
    // That line in pixels, straight or a spline, level from the content's edges to the first and the last visible
    // point; kept until points or axes change. Points beyond the bounds count at them, as effects take what lies beyond
    // a range. For Limner::StrokeFunction. Empty without points.
    const std::vector<kroui::Point>& GetCurveLine() const;

    void ControlStateChanged() override;

private:
    // Points (UI_CurveEditor.cpp).
    kroui::Point PixelOf(int index) const { return GetPixelForCoordinatePair(fPoints.At(index).coordinates); }
    bool IsInSight(int index) const;
    CoordinatePair HeldWithinBounds(const CoordinatePair& place) const;
    CurvePoints Usable(const CurvePoints& points) const;
    CurveMove Mover(bool withinShown) const;
    bool CanAddAt(const CoordinatePair& place) const;
    int IndexFor(const CoordinatePair& place) const;
    int InsertPoint(const CoordinatePair& place);
    CoordinatePair MiddleOfWidestGap() const;
    double HeightOnCurve(double horizontal) const;
    void SetFlags(CurvePointSet::Permission permission, const Flags& flags);
    void SelectByUser(const boost::function<void()>& select);
    AxisText HorizontalText() const;
    AxisText VerticalText() const;
    krocore::string16 PositionText(const CoordinatePair& place) const;
    CoordinatePair PixelLength(const CoordinatePair& place) const;
    void PointsChanged();
    void InvalidateContent();

    // Events (UI_CurveEditorEvents.cpp).
    int PointAt(kroui::Point pixel) const;
    bool Press(const kroui::ui::MouseEvent& event);
    void PressPoint(int index, const kroui::ui::MouseEvent& event);
    void PressField(const kroui::ui::MouseEvent& event);
    CoordinatePair PlaceForNewPoint(kroui::Point pixel) const;
    bool Drag(const kroui::ui::MouseEvent& event);
    void BeginDrag();
    void DragPoints();
    void DragMarquee();
    bool Release(const kroui::ui::MouseEvent& event);
    bool CancelDrag();
    void HoverAt(kroui::Point pixel, bool isInside);
    int PressedPoint() const;
    void RememberBases();
    void UpdateReadout();
    int PointOfReadout() const;
    bool WalkKey(const kroui::ui::KeyEvent& event);
    bool NudgeKey(const kroui::ui::KeyEvent& event);
    bool EditKey(const kroui::ui::KeyEvent& event);
    void FlushRun();
    bool OpenDialog(int index);
    void PlacePoint(int index, std::optional<double> horizontal, std::optional<double> vertical);

    // For those who cannot see it (UI_CurveEditorAccessible.cpp).
    int IndexOfPart(int part) const;
    kroui::ui::AccessibleRange RangeOf(int index, bool isHorizontal) const;
    bool AddByAction();
    bool MoveByAction(int index, const kroui::ui::AccessibleRequest& request);

    // Drawing (UI_CurveEditorDrawing.cpp).
    void DrawLinearReference(kroui::limner::Limner& limner) const;
    void DrawResponses(kroui::limner::Limner& limner);
    void DrawLabels(kroui::limner::Limner& limner) const;
    void DrawHandle(kroui::limner::Limner& limner, int index) const;
    kroui::Rect HandleArea(int index) const;
    kroui::Rect MarqueeRect() const;
    kroui::limner::Color Dimmed(const kroui::limner::Color& color) const;

    CurvePointSet fPoints;
    std::size_t fMaxPointCount = 128;
    AxisText fHorizontalText;
    AxisText fVerticalText;
    std::vector<krocore::string16> fPointLabels;
    std::vector<ResponseCurve> fResponses; // none before the first one is set
    Translator fResponseToAxis;
    SelectionSignal fSelectionChanged;
    bool fUniquePositions = false;
    bool fDrawLinearReference = false;
    bool fAddEnabled = true;
    bool fDeleteEnabled = true;
    bool fLabelsAtBottom = false;
    bool fDrawCurve = true;
    bool fUseSplines = false;

    // What the user is doing.
    std::unique_ptr<CurveGesture> fGesture;
    std::unique_ptr<CurvePress> fPress;
    boost::intrusive_ptr<PointEditDialog> fDialog; // made when first needed
    std::unique_ptr<CurveReadout> fReadout;
    kroui::Point fPointer;
    unsigned fReadoutAxes = 0; // the version of the axes that the read-out belongs to
    int fHovered = -1;
    bool fPointerIsInside = false;
    bool fWasEnabled = true; // when it was drawn last
    bool fShowedFocus = false;

    mutable std::vector<kroui::Point> fCurveLine;
    mutable unsigned fCurveLineAxes = 0;
    mutable bool fCurveLineIsValid = false;
};

} // namespace uit::controls
