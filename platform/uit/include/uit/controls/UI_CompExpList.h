#pragma once

#include "uit/controls/TransferSegments.h"

#include "kroui/controls/UI_InteractiveControlView.h"

namespace uit::controls {

// The segments of a dynamics curve, a row each, from the loudest down: what it does (Compressor, Expander, 1:1), its
// ratio, and the input levels it holds for. The ratio is dragged, stepped or typed ("4", "4:1", "1:4"), which moves the
// segment's upper point, in the lowest of several segments its lower one. A press on a row, or the focus on its ratio,
// selects the segment. Rows that have no room scroll. The value is the curve's points; a change of a ratio is a
// gesture.
class UI_CompExpList : public kroui::controls::UI_InteractiveControlView {
public:
    using Point = TransferPoint;

    // From code: no messages. Ordered by input level here; points that hold NaN or infinity are left out.
    void SetPoints(std::vector<TransferPoint> points);
    const std::vector<TransferPoint>& GetPoints() const { return fPoints; }

    // The segment from point i to point i + 1 is number i; -1 for none. Setting sends nothing.
    void SetSelectedSegment(int segment);
    int GetSelectedSegment() const { return fSelected; }

    void SetWidth(float width) { fWidth = width; }

    // A segment's row, in the list's coordinates; it may be scrolled out of sight.
    kroui::Rect RowRect(int segment) const;
    float ScrollPosition() const { return fScroll; }

    kroui::Size UI_GetNaturalSize() const override;
    void UI_Draw(kroui::limner::Limner* context) override;
    bool UI_DoMouseEvent(UI_Node* node, const kroui::ui::MouseEvent& event) override;
    void UI_SizeChanged(const kroui::RectT<float>& rect) override;
    bool UI_ClipsChildren() const override { return true; }
    kroui::ui::AccessibleInfo UI_GetAccessibleInfo() const override;

    static constexpr float kRowHeight = 22;

protected:
    ~UI_CompExpList() override = default;

    void ControlStateChanged() override;

private:
    class Ratio; // the number in a row

    using ChangeMessage = kroui::controls::UI_InteractiveControlChangedMessage::ChangeMessage;

    int SegmentCount() const { return fPoints.empty() ? 0 : static_cast<int>(fPoints.size()) - 1; }
    Ratio& RatioOf(int segment) const;
    kroui::Rect ListRect() const;
    kroui::Rect RatioRect(int segment) const;
    kroui::Rect ThumbRect() const; // empty if everything can be seen
    float MostScroll() const;
    int SegmentAt(kroui::Point point) const;
    void UpdateRows();
    void PlaceRows();
    void ScrollTo(float scroll);
    void ScrollToSegment(int segment);
    void SetHovered(int segment);
    void RatioChanged(int segment, ChangeMessage change);
    bool PressAt(kroui::Point point);
    void DrawRow(kroui::limner::Limner& context, int segment) const;

    std::vector<TransferPoint> fPoints;
    std::vector<TransferPoint> fPointsBefore; // when the gesture began
    float fWidth = 270;
    float fScroll = 0;
    float fThumbGrip = -1; // where the scroll bar's thumb is held; below 0: it is not
    int fSelected = -1;
    int fHovered = -1;
};

} // namespace uit::controls
