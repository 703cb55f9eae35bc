#include "qocui/ui/FFTFilterGraph.h"

#include "krocore/Localizer.h"
#include "kroui/utility/DecibelRuler.h"
#include "qoc/components/ParameterIndices.h"

#include <boost/bind/bind.hpp>

namespace qocui::ui {

using boost::placeholders::_1;
using kroui::utility::DecibelRuler;

namespace {

constexpr std::size_t kResponsePlaces = 4096;
constexpr double kTop = 1; // of the fader's travel
constexpr double kBottom = 0;

boost::intrusive_ptr<DecibelRuler> MakeLevelRuler() {
    constexpr float kFontSize = 9;
    boost::intrusive_ptr<DecibelRuler> ruler(new DecibelRuler);
    ruler->SetStyle(DecibelRuler::kFader);
    ruler->SetVertical(true);
    ruler->SetStepFactor(1);
    ruler->SetValueRange(kTop, kBottom);
    ruler->SetAbbreviateNumbers(true);
    ruler->SetFontSize(kFontSize);
    ruler->HideTruncatedStrings(true);
    return ruler;
}

} // namespace

FFTFilterGraph::FFTFilterGraph(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter)
    : FreeCurveGraph(std::move(filter), {qoc::components::kFFTFilterViewStart, qoc::components::kFFTFilterViewEnd, 0},
                     {.splineCurves = qoc::components::kFFTFilterSplineCurves,
                      .updating = qoc::components::kFFTFilterUpdating,
                      .scale = qoc::components::kFFTFilterScale,
                      .pointCount = qoc::components::kFFTFilterPointCount,
                      .firstPoint = qoc::components::kFFTFilterFirstPoint},
                     MakeLevelRuler()) {
    const Translator toTravel = boost::bind(&krocore::FaderTranslator<double>::GetNormalizedValue, &fFader, _1);
    const Translator toDecibels = boost::bind(&krocore::FaderTranslator<double>::GetDecibelValue, &fFader, _1);
    SetHorizontalEditDialogLabel(krocore::Localize("$$$/FFTFilter/FFTFilterGraph/Frequency=Frequency:"));
    SetVerticalEditDialogLabel(krocore::Localize("$$$/FFTFilter/FFTFilterGraph/Level=Level:"));
    SetHorizontalEditDialogUnit(krocore::Localize("$$$/FFTFilter/FFTFilterGraph/Hz=Hz"));
    SetVerticalEditDialogUnit(krocore::Localize("$$$/FFTFilter/FFTFilterGraph/dB=dB"));
    SetVerticalEditDialogTranslators(toTravel, toDecibels);
    SetResponseTranslator(toTravel);
    UpdateRulers();
    UpdateCurvePointsFromComponent();
}

FFTFilterGraph::~FFTFilterGraph() = default;

void FFTFilterGraph::UpdateRulers() {
    SetRulers(MakeHorizontalRuler(), MakeLevelRuler());
    SetRanges(kLowestFrequency, Nyquist(), kTop, kBottom);
}

void FFTFilterGraph::UpdateResponseData() {
    RequestResponse(kResponsePlaces, IsLogarithmic());
}

FFTFilterGraph::CoordinatePair FFTFilterGraph::ToCoordinates(const StoredPoint& stored) const {
    return {static_cast<double>(stored.position) * Nyquist(), stored.level};
}

FFTFilterGraph::StoredPoint FFTFilterGraph::FromCoordinates(const CoordinatePair& coordinates) const {
    return {static_cast<float>(coordinates.horizontal / Nyquist()), static_cast<float>(coordinates.vertical)};
}

double FFTFilterGraph::GetFlatLevel() const {
    return fFader.GetNormalizedValue(0);
}

} // namespace qocui::ui
