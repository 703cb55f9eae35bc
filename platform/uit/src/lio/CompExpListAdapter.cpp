#include "CompExpListAdapter.h"

#include "AttributeTable.h"
#include "uit/lio/AttributeValues.h"

#include <boost/bind/bind.hpp>

#include <algorithm>

namespace uit::lio {

using controls::CurvePoint;
using controls::TransferPoint;
using controls::UI_CompExpList;
using orrin::any_regular_t;
using Message = kroui::controls::UI_InteractiveControlChangedMessage;

namespace {

// As the list orders them.
CurveValue::Points Ascending(CurveValue::Points points) {
    std::ranges::stable_sort(points, {}, [](const CurvePoint& point) { return point.coordinates.horizontal; });
    return points;
}

} // namespace

struct CompExpListAdapter::Table {
    using A = CompExpListAdapter;
    using V = any_regular_t;

    static constexpr Attribute<A> kAttributes[] = {
        {{"width"}, [](A& a, const V& v) { a.fList->SetWidth(LengthOf(v)); }},
        {{"name", AttributeKind::kFollows}, [](A& a, const V& v) { a.fList->SetName(TextOf(v)); }},
        {{"bind_point_count", AttributeKind::kBound}, [](A& a, const V& v) { a.fCurve.SetCount(v); }},
        {{"bind", AttributeKind::kBound}, [](A& a, const V& v) { a.fCurve.SetArray(v); }},
    };
    static constexpr auto kRows = RowsOf(kAttributes);
    static constexpr int kBind = RowOf(kAttributes, "bind");
};

constinit const WidgetClass CompExpListAdapter::kClass{"aud_comp_exp_list", Table::kRows,
                                                       &CreateAdapter<CompExpListAdapter>};

CompExpListAdapter::CompExpListAdapter(const WidgetContext& context)
    : CompExpListAdapter(context, boost::intrusive_ptr<UI_CompExpList>(new UI_CompExpList)) {
}

CompExpListAdapter::CompExpListAdapter(const WidgetContext& context, const boost::intrusive_ptr<UI_CompExpList>& list)
    : ControlAdapter(context, list, Table::kBind), fList(list) {
    fList->NotifyWhenChangedInteractively(
        boost::bind(&CompExpListAdapter::OnInteractiveChange, this, boost::placeholders::_1));
}

void CompExpListAdapter::SetAttribute(int row, const any_regular_t& value) {
    Table::kAttributes[row].set(*this, value);
    ShowPoints();
}

void CompExpListAdapter::ShowPoints() {
    std::vector<TransferPoint> points;
    for (const CurvePoint& point : Ascending(fCurve.All()))
        points.push_back({point.coordinates.horizontal, point.coordinates.vertical});
    fList->SetPoints(std::move(points));
}

// Nothing is touched after the write, which may do away with the panel.
void CompExpListAdapter::OnInteractiveChange(Message* message) {
    if (message->GetChangeMessage() == Message::kStarted) return;
    const CurveValue::Points points = EditedPoints();
    if (points == fCurve.All()) return;
    fCurve.Take(points);
    Write(Table::kBind, any_regular_t(fCurve.Array()));
}

// The curve's points in their own order at the list's levels.
CurveValue::Points CompExpListAdapter::EditedPoints() const {
    CurveValue::Points points = fCurve.All();
    const CurveValue::Points ascending = Ascending(points);
    const std::vector<TransferPoint>& edited = fList->GetPoints();
    for (std::size_t i = 0; i < std::min(ascending.size(), edited.size()); ++i) {
        const auto point = std::ranges::find(points, ascending[i].identifier, &CurvePoint::identifier);
        point->coordinates = {edited[i].input, edited[i].output};
    }
    return points;
}

} // namespace uit::lio
