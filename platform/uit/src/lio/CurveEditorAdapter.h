#pragma once

#include "ControlAdapter.h"
#include "CurveSettings.h"
#include "CurveValue.h"

#include "kroui/controls/Messages.h"

namespace uit::lio {

// The widget `aud_curve_editor`: a curve of points over two axes. Its cells:
//
//   bind              an array of points { x, y }, ascending by x where positions are unique. A point may also say
//                     visible, movable_x, movable_y, deletable (bools, true at first); these and whatever else its
//                     dictionary has stay with the point. Written with every change of a gesture.
//   bind_point_count  how many of the array's points belong to the curve; the array then keeps its length, and no more
//                     points can be added than it has room for. Without this all points belong to it.
//   selected_node     the index of the point that was selected last, -1 for none.
//   bind_response     an array of numbers: the response behind the points, at places evenly spaced along the axis.
//
// kCurveAttributes has the other attributes, `settings` is a dictionary with any of those.
class CurveEditorAdapter final : public ControlAdapter {
public:
    static const WidgetClass kClass;

    explicit CurveEditorAdapter(const WidgetContext& context);

    void SetAttribute(int row, const orrin::any_regular_t& value) override;
    void Complete() override;
    WidgetExtent Measure(std::optional<float> width) override;

private:
    struct Table;

    CurveEditorAdapter(const WidgetContext& context, const boost::intrusive_ptr<controls::UI_CurveEditor>& editor);

    void SetArray(const orrin::any_regular_t& array);
    void SetCount(const orrin::any_regular_t& count);
    void SetSelected(const orrin::any_regular_t& index);
    void ShowSettings();
    void ShowPoints();
    void ShowSelection();

    void OnInteractiveChange(kroui::controls::UI_InteractiveControlChangedMessage* message);
    void Publish();
    bool WritePoints();
    bool WriteCurve(double countBefore);
    bool WriteSelection();
    bool WriteAndLive(int row, const orrin::any_regular_t& value);

    const boost::intrusive_ptr<controls::UI_CurveEditor> fEditor;
    CurveSettings fSettings;
    CurveSettings fShownSettings;
    CurveValue fCurve; // what the cells hold, as far as it is known
    int fSelected = -1;
    // While points and count are being written, one after the other, what the cells say waits here.
    std::optional<CurveValue> fEcho;
    // Who writes a cell may do away with the panel.
    const std::shared_ptr<const bool> fLife = std::make_shared<const bool>(true);
};

} // namespace uit::lio
