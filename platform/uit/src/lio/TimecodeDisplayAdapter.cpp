#include "TimecodeDisplayAdapter.h"

#include "AttributeTable.h"
#include "TimecodeSettingsValue.h"
#include "uit/lio/AttributeValues.h"

namespace uit::lio {

using controls::UI_TimecodeDisplay;
using orrin::any_regular_t;

namespace {

constexpr int kNeverDisabled = -1; // it writes nothing, so whether it may does not matter

} // namespace

struct TimecodeDisplayAdapter::Table {
    using A = TimecodeDisplayAdapter;
    using V = any_regular_t;

    static constexpr Attribute<A> kAttributes[] = {
        {{"is_duration"},
         [](A& a, const V& v) {
             a.fIsDuration = BoolOf(v);
             a.fDisplay->SetTimecodeFormat(TimecodeSettingsOf(a.fFormat, a.fIsDuration));
         }},
        {{"bind_format", AttributeKind::kBound},
         [](A& a, const V& v) {
             a.fDisplay->SetTimecodeFormat(TimecodeSettingsOf(v, a.fIsDuration));
             a.fFormat = v;
         }},
        {{"name", AttributeKind::kFollows}, [](A& a, const V& v) { a.fDisplay->SetName(TextOf(v)); }},
        {{"bind", AttributeKind::kBound}, [](A& a, const V& v) { a.fDisplay->SetValue(NumberOf(v)); }},
    };
    static constexpr auto kRows = RowsOf(kAttributes);
};

constinit const WidgetClass TimecodeDisplayAdapter::kClass{"aud_timecode_display", Table::kRows,
                                                           &CreateAdapter<TimecodeDisplayAdapter>};

TimecodeDisplayAdapter::TimecodeDisplayAdapter(const WidgetContext& context)
    : TimecodeDisplayAdapter(context, boost::intrusive_ptr<UI_TimecodeDisplay>(new UI_TimecodeDisplay)) {
}

TimecodeDisplayAdapter::TimecodeDisplayAdapter(const WidgetContext& context,
                                               const boost::intrusive_ptr<UI_TimecodeDisplay>& display)
    : ControlAdapter(context, display, kNeverDisabled), fDisplay(display) {
}

// A time longer than a day may need more room; the layout notices.
void TimecodeDisplayAdapter::SetAttribute(int row, const any_regular_t& value) {
    const float width = fDisplay->UI_GetNaturalSize().width;
    Table::kAttributes[row].set(*this, value);
    if (fDisplay->UI_GetNaturalSize().width != width) LayoutChanged();
}

} // namespace uit::lio
