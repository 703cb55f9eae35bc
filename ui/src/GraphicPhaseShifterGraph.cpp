#include "qocui/ui/GraphicPhaseShifterGraph.h"

#include "krocore/Localizer.h"
#include "qoc/components/ParameterIndices.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qocui::ui {

using kroui::limner::Limner;

namespace {

constexpr double kNarrowReach = 180; // degrees
constexpr double kWideReach = 360;
constexpr float kShiftOpacity = 0.12F; // of the area between the curve and 0 degrees

} // namespace

GraphicPhaseShifterGraph::GraphicPhaseShifterGraph(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter)
    : FreeCurveGraph(std::move(filter),
                     {qoc::components::kPhaseShifterViewStart, qoc::components::kPhaseShifterViewEnd, 0},
                     {.splineCurves = qoc::components::kPhaseShifterSplineCurves,
                      .updating = qoc::components::kPhaseShifterUpdating,
                      .scale = qoc::components::kPhaseShifterScale,
                      .pointCount = qoc::components::kPhaseShifterPointCount,
                      .firstPoint = qoc::components::kPhaseShifterFirstPoint},
                     MakeLinearRuler(true, kNarrowReach, -kNarrowReach)),
      fIsWide(IsOn(qoc::components::kPhaseShifterRange)) {
    const auto text = [](const char* key) { return krocore::Localize(key); };
    SetHorizontalEditDialogLabel(text("$$$/GraphicPhaseShifter/GraphicPhaseShifterGraph/Frequency=Frequency:"));
    SetVerticalEditDialogLabel(text("$$$/GraphicPhaseShifter/GraphicPhaseShifterGraph/Phase=Phase:"));
    SetHorizontalEditDialogUnit(text("$$$/GraphicPhaseShifter/GraphicPhaseShifterGraph/Hz=Hz"));
    SetVerticalEditDialogUnit(text("$$$/GraphicPhaseShifter/GraphicPhaseShifterGraph/deg=#{deg}"));
    UpdateRulers();
    UpdateCurvePointsFromComponent();
}

GraphicPhaseShifterGraph::~GraphicPhaseShifterGraph() = default;

void GraphicPhaseShifterGraph::DrawCurvePoints(Limner& limner) {
    const float unshifted = GetPixelForCoordinatePair({kLowestFrequency, 0}).y;
    limner.FillFunction(GetCurveLine(), unshifted, {GetCurveColor().WithAlpha(kShiftOpacity)});
    limner.StrokeFunction(GetCurveLine(), {.color = GetCurveColor(), .width = GetContentLineThickness()});
}

void GraphicPhaseShifterGraph::UpdateRulers() {
    SetRulers(MakeHorizontalRuler(), MakePhaseRuler());
    SetRanges(kLowestFrequency, Nyquist(), GetReach(), -GetReach());
}

GraphicPhaseShifterGraph::RulerPtr GraphicPhaseShifterGraph::MakePhaseRuler() const {
    const RulerPtr ruler = MakeLinearRuler(true, GetReach(), -GetReach());
    const char* const top = fIsWide ? "$$$/GraphicPhaseShifter/GraphicPhaseShifterGraph/deg360=360#{deg}"
                                    : "$$$/GraphicPhaseShifter/GraphicPhaseShifterGraph/deg180=180#{deg}";
    const char* const bottom = fIsWide ? "$$$/GraphicPhaseShifter/GraphicPhaseShifterGraph/minusdeg360=-360#{deg}"
                                       : "$$$/GraphicPhaseShifter/GraphicPhaseShifterGraph/minusdeg180=-180#{deg}";
    ruler->SetLabel1(krocore::Localize(top));
    ruler->SetLabel2(krocore::Localize(bottom));
    return ruler;
}

void GraphicPhaseShifterGraph::CurvePointsToComponent(const CurvePoints& points) {
    if (GetContentRect().width > 0) FreeCurveGraph::CurvePointsToComponent(points);
}

void GraphicPhaseShifterGraph::UpdateResponseData() {
    UI_Invalidate();
}

GraphicPhaseShifterGraph::CoordinatePair GraphicPhaseShifterGraph::ToCoordinates(const StoredPoint& stored) const {
    const double reach = GetReach();
    const double hertz = ToHertz(stored.position);
    return {std::min(std::max(hertz, kLowestFrequency), static_cast<double>(Nyquist())),
            stored.level * reach * 2 - reach};
}

GraphicPhaseShifterGraph::StoredPoint
GraphicPhaseShifterGraph::FromCoordinates(const CoordinatePair& coordinates) const {
    const double reach = GetReach();
    return {static_cast<float>(ToPosition(coordinates.horizontal)),
            static_cast<float>((coordinates.vertical + reach) / (2 * reach))};
}

double GraphicPhaseShifterGraph::GetFlatLevel() const {
    return 0;
}

bool GraphicPhaseShifterGraph::FollowAxes() {
    const bool hasScaleChanged = FreeCurveGraph::FollowAxes();
    const bool before = std::exchange(fIsWide, IsOn(qoc::components::kPhaseShifterRange));
    return hasScaleChanged || fIsWide != before;
}

double GraphicPhaseShifterGraph::GetReach() const {
    return fIsWide ? kWideReach : kNarrowReach;
}

double GraphicPhaseShifterGraph::ToHertz(double position) const {
    const double nyquist = Nyquist();
    if (!IsLogarithmic()) return (nyquist - kLowestFrequency) * position + kLowestFrequency;
    const double start = std::log10(kLowestFrequency);
    return std::pow(10, position * (std::log10(nyquist) - start) + start);
}

double GraphicPhaseShifterGraph::ToPosition(double hertz) const {
    const double nyquist = Nyquist();
    if (!IsLogarithmic()) return (hertz - kLowestFrequency) / (nyquist - kLowestFrequency);
    const double start = std::log10(kLowestFrequency);
    return (std::log10(hertz) - start) / (std::log10(nyquist) - start);
}

} // namespace qocui::ui
