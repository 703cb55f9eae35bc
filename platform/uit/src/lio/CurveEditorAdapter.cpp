#include "CurveEditorAdapter.h"

#include "kroui/utility/LinearRuler.h"

#include <boost/bind/bind.hpp>

#include <algorithm>

namespace uit::lio {

using controls::UI_CurveEditor;
using kroui::utility::LinearRuler;
using orrin::any_regular_t;
using Message = kroui::controls::UI_InteractiveControlChangedMessage;

namespace {

// Anything: the settings bring their own.
boost::intrusive_ptr<UI_CurveEditor> MakeEditor() {
    return new UI_CurveEditor(new LinearRuler, new LinearRuler);
}

std::vector<double> NumbersOf(const any_regular_t& value) {
    std::vector<double> numbers;
    const auto& elements = value.get<orrin::array_t>();
    numbers.reserve(elements.size());
    for (const any_regular_t& element : elements)
        numbers.push_back(element.get<double>());
    return numbers;
}

} // namespace

// The rows of the settings, and behind them these.
struct CurveEditorAdapter::Table {
    using A = CurveEditorAdapter;
    using V = any_regular_t;

    static constexpr Attribute<A> kAttributes[] = {
        {{"settings", AttributeKind::kFollows}, [](A& a, const V& v) { a.fSettings.SetAll(v); }},
        {{"bind_point_count", AttributeKind::kBound}, [](A& a, const V& v) { a.SetCount(v); }},
        {{"bind", AttributeKind::kBound}, [](A& a, const V& v) { a.SetArray(v); }},
        {{"selected_node", AttributeKind::kBound}, [](A& a, const V& v) { a.SetSelected(v); }},
        {{"bind_response", AttributeKind::kBound},
         [](A& a, const V& v) { a.fEditor->SetResponseData(NumbersOf(v), 0); }},
    };
    static constexpr std::size_t kSettingCount = std::size(kCurveAttributes);
    static constexpr auto kRows = [] {
        std::array<AttributeRow, kSettingCount + std::size(kAttributes)> rows;
        std::ranges::copy(RowsOf(kCurveAttributes), rows.begin());
        std::ranges::copy(RowsOf(kAttributes), rows.begin() + kSettingCount);
        return rows;
    }();
    static constexpr int Row(std::string_view name) {
        return static_cast<int>(kSettingCount) + RowOf(kAttributes, name);
    }
};

constinit const WidgetClass CurveEditorAdapter::kClass{"aud_curve_editor", Table::kRows,
                                                       &CreateAdapter<CurveEditorAdapter>};

CurveEditorAdapter::CurveEditorAdapter(const WidgetContext& context) : CurveEditorAdapter(context, MakeEditor()) {
}

CurveEditorAdapter::CurveEditorAdapter(const WidgetContext& context, const boost::intrusive_ptr<UI_CurveEditor>& editor)
    : ControlAdapter(context, editor, Table::Row("bind")), fEditor(editor) {
    fSettings.ApplyTo(*fEditor);
    fShownSettings = fSettings;
    fEditor->NotifyWhenChangedInteractively(
        boost::bind(&CurveEditorAdapter::OnInteractiveChange, this, boost::placeholders::_1));
    fEditor->NotifyWhenSelectionChanged(boost::bind(&CurveEditorAdapter::Publish, this));
}

void CurveEditorAdapter::SetAttribute(int row, const any_regular_t& value) {
    const auto index = static_cast<std::size_t>(row);
    if (index < Table::kSettingCount) {
        kCurveAttributes[index].set(fSettings, value);
    } else {
        Table::kAttributes[index - Table::kSettingCount].set(*this, value);
    }
    if (IsComplete()) ShowSettings();
}

void CurveEditorAdapter::Complete() {
    ShowSettings();
    ShowPoints();
    ShowSelection();
    ControlAdapter::Complete();
}

WidgetExtent CurveEditorAdapter::Measure(std::optional<float> /*width*/) {
    WidgetExtent extent;
    extent.size = fEditor->SizeForContent({fSettings.contentWidth, fSettings.contentHeight});
    return extent;
}

void CurveEditorAdapter::SetArray(const any_regular_t& array) {
    if (fEcho) return fEcho->SetArray(array);
    fCurve.SetArray(array);
    if (!IsComplete()) return;
    ShowPoints();
    ShowSelection();
}

void CurveEditorAdapter::SetCount(const any_regular_t& count) {
    if (fEcho) return fEcho->SetCount(count);
    fCurve.SetCount(count);
    if (!IsComplete()) return;
    ShowPoints();
    ShowSelection();
}

void CurveEditorAdapter::SetSelected(const any_regular_t& index) {
    fSelected = WholeNumberWithin(index, -1, kMostCurvePoints - 1);
    if (IsComplete()) ShowSelection();
}

void CurveEditorAdapter::ShowSettings() {
    if (fSettings == fShownSettings) return;
    const bool isOtherSize = fSettings.contentWidth != fShownSettings.contentWidth ||
                             fSettings.contentHeight != fShownSettings.contentHeight ||
                             fSettings.horizontal.label != fShownSettings.horizontal.label ||
                             fSettings.vertical.label != fShownSettings.vertical.label;
    fSettings.ApplyTo(*fEditor);
    fShownSettings = fSettings;
    ShowPoints();
    if (isOtherSize) LayoutChanged();
}

void CurveEditorAdapter::ShowPoints() {
    fEditor->SetMaxPointCount(fCurve.Capacity(static_cast<std::size_t>(fSettings.maxPointCount)));
    fEditor->SetCurvePoints(fCurve.All());
    std::vector<bool> visible = fCurve.Flags("visible");
    for (std::size_t i = 0; i < std::min(visible.size(), fSettings.visiblePoints.size()); ++i)
        visible[i] = visible[i] && fSettings.visiblePoints[i];
    fEditor->SetVisiblePoints(visible);
    fEditor->SetMoveablePoints(fCurve.Flags("movable_x"), true);
    fEditor->SetMoveablePoints(fCurve.Flags("movable_y"), false);
    fEditor->SetDeletablePoints(fCurve.Flags("deletable"));
}

// Several selected points stay so if it is the last one of them.
void CurveEditorAdapter::ShowSelection() {
    if (fSelected != fEditor->GetSelectedNode()) fEditor->SetSelectedNode(fSelected);
}

void CurveEditorAdapter::OnInteractiveChange(Message* message) {
    if (message->GetChangeMessage() != Message::kStarted) Publish();
}

// A new point is there before the selection names it; one that goes is not selected any more then.
void CurveEditorAdapter::Publish() {
    const bool hasFewer = fEditor->GetCurvePoints().size() < fCurve.All().size();
    if (hasFewer && !WriteSelection()) return;
    if (WritePoints()) WriteSelection();
}

bool CurveEditorAdapter::WritePoints() {
    if (fEditor->GetCurvePoints() == fCurve.All()) return true;
    const double countBefore = fCurve.Count();
    fCurve.Take(fEditor->GetCurvePoints());
    fEcho = fCurve;
    if (!WriteCurve(countBefore)) return false;
    fCurve = *std::exchange(fEcho, {});
    ShowPoints();
    return true;
}

// In an order in which the count never reaches points that are none of the curve. Who hears of it may end the gesture,
// which writes another curve, echo and all: then this one is none any more.
bool CurveEditorAdapter::WriteCurve(double countBefore) {
    const double count = fCurve.Count();
    const any_regular_t array = fCurve.Array();
    const auto write = [this](std::string_view row, const any_regular_t& value) {
        return WriteAndLive(Table::Row(row), value) && fEcho;
    };
    if (fCurve.HasCount() && count < countBefore && !write("bind_point_count", count)) return false;
    if (!write("bind", array)) return false;
    return !fCurve.HasCount() || count <= countBefore || write("bind_point_count", count);
}

bool CurveEditorAdapter::WriteSelection() {
    const int selected = fEditor->GetSelectedNode();
    return std::exchange(fSelected, selected) == selected || WriteAndLive(Table::Row("selected_node"), selected);
}

// Whether this is still there afterwards.
bool CurveEditorAdapter::WriteAndLive(int row, const any_regular_t& value) {
    const std::weak_ptr<const bool> life = fLife;
    Write(row, value);
    return !life.expired();
}

} // namespace uit::lio
