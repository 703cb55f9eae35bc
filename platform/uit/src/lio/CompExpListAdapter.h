#pragma once

#include "ControlAdapter.h"
#include "CurveValue.h"

#include "kroui/controls/Messages.h"
#include "uit/controls/UI_CompExpList.h"

namespace uit::lio {

// The widget `aud_comp_exp_list`: the segments of a dynamics curve, whose points are the cells of an
// `aud_curve_editor`: `bind` and, if there is one, `bind_point_count`.
class CompExpListAdapter final : public ControlAdapter {
public:
    static const WidgetClass kClass;

    explicit CompExpListAdapter(const WidgetContext& context);

    void SetAttribute(int row, const orrin::any_regular_t& value) override;

private:
    struct Table;

    CompExpListAdapter(const WidgetContext& context, const boost::intrusive_ptr<controls::UI_CompExpList>& list);
    void ShowPoints();
    void OnInteractiveChange(kroui::controls::UI_InteractiveControlChangedMessage* message);
    CurveValue::Points EditedPoints() const;

    const boost::intrusive_ptr<controls::UI_CompExpList> fList;
    CurveValue fCurve; // what the cells hold, as far as it is known
};

} // namespace uit::lio
