#include "TimecodeEditAdapter.h"

#include "AttributeTable.h"
#include "TimecodeSettingsValue.h"

namespace uit::lio {

using controls::UI_TimecodeEdit;
using orrin::any_regular_t;

struct TimecodeEditAdapter::Table {
    using A = TimecodeEditAdapter;
    using V = any_regular_t;

    static constexpr Attribute<A> kAttributes[] = {
        {{"is_duration"},
         [](A& a, const V& v) {
             a.fIsDuration = BoolOf(v);
             a.fEdit->SetTimecodeFormat(TimecodeSettingsOf(a.fFormat, a.fIsDuration));
         }},
        {{"bind_format", AttributeKind::kBound},
         [](A& a, const V& v) {
             a.fEdit->SetTimecodeFormat(TimecodeSettingsOf(v, a.fIsDuration));
             a.fFormat = v;
         }},
        {{"min_max_filter", AttributeKind::kFollows}, [](A& a, const V& v) { a.SetBounds(BoundsOf(v)); }},
        {{"name", AttributeKind::kFollows}, [](A& a, const V& v) { a.fEdit->SetName(TextOf(v)); }},
        {{"bind", AttributeKind::kBound}, [](A& a, const V& v) { a.SetBoundValue(NumberOf(v)); }},
    };
    static constexpr auto kRows = RowsOf(kAttributes);
    static constexpr int kBind = RowOf(kAttributes, "bind");
};

constinit const WidgetClass TimecodeEditAdapter::kClass{"aud_timecode_edit", Table::kRows,
                                                        &CreateAdapter<TimecodeEditAdapter>};

TimecodeEditAdapter::TimecodeEditAdapter(const WidgetContext& context)
    : TimecodeEditAdapter(context, boost::intrusive_ptr<UI_TimecodeEdit>(new UI_TimecodeEdit)) {
}

TimecodeEditAdapter::TimecodeEditAdapter(const WidgetContext& context,
                                         const boost::intrusive_ptr<UI_TimecodeEdit>& edit)
    : NumberAdapter(context, edit, Table::kBind), fEdit(edit) {
}

void TimecodeEditAdapter::SetAttribute(int row, const any_regular_t& value) {
    Table::kAttributes[row].set(*this, value);
    if (row != Table::kBind) LayoutChanged();
}

} // namespace uit::lio
