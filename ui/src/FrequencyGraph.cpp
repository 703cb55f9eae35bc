#include "qocui/ui/FrequencyGraph.h"

#include "GraphRulers.h"

namespace qocui::ui {

using kroui::controls::UI_InteractiveControlChangedMessage;

namespace {

constexpr kroui::limner::Color kBlack{0, 0, 0, 1};
constexpr kroui::limner::Color kGridColor{0.25F, 0.25F, 0.25F, 1};

} // namespace

FrequencyGraph::FrequencyGraph(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter, const ViewRange& viewRange,
                               RulerPtr horizontal, RulerPtr vertical)
    : UI_CurveEditor(std::move(horizontal), std::move(vertical)), fFilter(std::move(filter)), fViewRange(viewRange) {
    SetBackgroundColor(kBlack);
    SetGridColor(kGridColor);
    SetDrawLinearReference(false);
    SetDrawHorizontalMinorTicks(true);
    SetDrawVerticalMinorTicks(true);
}

FrequencyGraph::~FrequencyGraph() = default;

FrequencyGraph::RulerPtr FrequencyGraph::MakeLinearRuler(bool vertical, double minimum, double maximum) {
    return ui::MakeLinearRuler(vertical, minimum, maximum);
}

FrequencyGraph::RulerPtr FrequencyGraph::MakeLogRuler(bool vertical, double minimum, double maximum) {
    return ui::MakeLogRuler(vertical, minimum, maximum);
}

bool FrequencyGraph::FollowSampleRate() {
    constexpr int kRight = 1;
    const float nyquist = Nyquist();
    if (!HasFrequencies() || GetBound(kRight) == nyquist) return false;
    UpdateRulers();
    UpdateCurvePointsFromComponent();
    return true;
}

void FrequencyGraph::SetCurrentRange(double horizontalStart, double horizontalEnd, double verticalStart,
                                     double verticalEnd) {
    UI_CurveEditor::SetCurrentRange(horizontalStart, horizontalEnd, verticalStart, verticalEnd);
    if (const float nyquist = Nyquist(); HasFrequencies()) {
        const auto stored = [&](double hertz) { return static_cast<float>((hertz - fViewRange.offset) / nyquist); };
        fFilter->SetParameterValueQuietly(fViewRange.startParameter, stored(GetHorizontalStart()));
        fFilter->SetParameterValueQuietly(fViewRange.endParameter, stored(GetHorizontalEnd()));
    }
    UpdateResponseData();
}

void FrequencyGraph::UI_SizeChanged(const kroui::RectT<float>& rect) {
    UI_CurveEditor::UI_SizeChanged(rect);
    UpdateCurvePointsFromComponent();
}

void FrequencyGraph::RequestResponse(std::size_t count, bool logarithmic) {
    std::vector<float> response;
    const kroaudiofilterhost::FrequencyAxis axis{GetHorizontalStart(), GetHorizontalEnd(), logarithmic};
    if (count == 0 || !fFilter->GetMagnitudeResponse(count, axis, response)) return;
    SetResponseData({response.begin(), response.end()}, 0);
}

void FrequencyGraph::StorePoints(const CurvePoints& points) {
    if (HasFrequencies()) CurvePointsToComponent(points);
}

void FrequencyGraph::OnInteractiveChange(UI_InteractiveControlChangedMessage* message) {
    using Message = UI_InteractiveControlChangedMessage;
    const auto change = message->GetChangeMessage();
    if (change == Message::kStarted) fInteracting = true;
    if (change == Message::kEnded || change == Message::kAbandoned) fInteracting = false;
    if (change == Message::kChanged || change == Message::kEnded) StorePoints(GetCurvePoints());
}

} // namespace qocui::ui
