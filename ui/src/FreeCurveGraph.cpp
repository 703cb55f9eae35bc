#include "qocui/ui/FreeCurveGraph.h"

#include "krocore/WholeNumber.h"

#include <boost/bind/bind.hpp>

#include <algorithm>
#include <utility>

namespace qocui::ui {

using kroaudiofilterhost::AudioFilter;

namespace {

constexpr double kCountScale = 128; // the number of points is stored in 128ths
constexpr double kStoredPerPoint = 1 / kCountScale;

} // namespace

FreeCurveGraph::FreeCurveGraph(boost::intrusive_ptr<AudioFilter> filter, const ViewRange& viewRange,
                               const Indices& indices, RulerPtr vertical)
    : FrequencyGraph(filter, viewRange, MakeLogRuler(false, kLowestFrequency, NyquistOf(*filter)), std::move(vertical)),
      fIndices(indices), fIsLogarithmic(!IsOn(indices.scale)) {
    SetWantsKeyboardFocus(true);
    SetRulersSupportZooming(false);
    SetMaxPointCount(kMostPoints);
    SetUniqueHorizontalPositions(true);
    SetUseSplines(IsOn(indices.splineCurves));
    NotifyWhenChangedInteractively(boost::bind(&FreeCurveGraph::OnInteractiveChange, this, boost::placeholders::_1));
}

FreeCurveGraph::~FreeCurveGraph() = default;

void FreeCurveGraph::SyncParameters() {
    if (IsInteracting()) return;
    const bool haveAxesChanged = FollowAxes();
    if (haveAxesChanged) UpdateRulers();
    // Positions and levels count in parts of the axes, so other axes give other points.
    if (haveAxesChanged || HaveStoredPointsChanged()) UpdateCurvePointsFromComponent();
    if (FollowSplines()) UpdateCurvePointsFromComponent();
}

void FreeCurveGraph::ResetPoints() {
    const double level = GetFlatLevel();
    StorePoints({{0, {kLowestFrequency, level}}, {1, {Nyquist(), level}}});
}

FreeCurveGraph::RulerPtr FreeCurveGraph::MakeHorizontalRuler() const {
    return fIsLogarithmic ? MakeLogRuler(false, kLowestFrequency, Nyquist())
                          : MakeLinearRuler(false, kLowestFrequency, Nyquist());
}

bool FreeCurveGraph::FollowAxes() {
    const bool before = std::exchange(fIsLogarithmic, !IsOn(fIndices.scale));
    return fIsLogarithmic != before;
}

bool FreeCurveGraph::FollowSplines() {
    const bool splines = IsOn(fIndices.splineCurves);
    if (splines == UsesSplines()) return false;
    SetUseSplines(splines);
    UI_Invalidate();
    return true;
}

void FreeCurveGraph::UpdateCurvePointsFromComponent() {
    const std::size_t count = StoredCount();
    fLaidOut.resize(count);
    CurvePoints points(count);
    for (std::size_t i = 0; i < count; ++i) {
        fLaidOut[i] = Stored(i);
        points[i] = {static_cast<std::uint32_t>(i), ToCoordinates(fLaidOut[i])};
    }
    SetCurvePoints(points);
    if (count >= 2) SetPointFlags(count);
    UpdateResponseData();
}

void FreeCurveGraph::SetPointFlags(std::size_t count) {
    Flags flags(count, true);
    SetVisiblePoints(flags);
    SetMoveablePoints(flags, false);
    flags.front() = false;
    flags.back() = false;
    SetDeletablePoints(flags);
    SetMoveablePoints(flags, true);
}

void FreeCurveGraph::CurvePointsToComponent(const CurvePoints& points) {
    AudioFilter& filter = Filter();
    const std::size_t count = std::min(points.size(), kMostPoints);
    filter.SetParameterValueQuietly(fIndices.updating, 1);
    filter.SetParameterValueQuietly(fIndices.pointCount,
                                    static_cast<float>(static_cast<double>(count) * kStoredPerPoint));
    for (std::size_t i = 0; i < count; ++i) {
        const StoredPoint stored = FromCoordinates(points[i].coordinates);
        filter.SetParameterValue(PositionIndex(i), stored.position);
        filter.SetParameterValue(PositionIndex(i) + 1, stored.level);
    }
    filter.SetParameterValueQuietly(fIndices.updating, 0);
    UpdateResponseData();
}

std::size_t FreeCurveGraph::StoredCount() const {
    const double count = Parameter(fIndices.pointCount) * kCountScale;
    return krocore::TruncatedWithin<std::size_t>(count, 0, kMostPoints);
}

FreeCurveGraph::StoredPoint FreeCurveGraph::Stored(std::size_t point) const {
    return {Parameter(PositionIndex(point)), Parameter(PositionIndex(point) + 1)};
}

int FreeCurveGraph::PositionIndex(std::size_t point) const {
    return fIndices.firstPoint + 2 * static_cast<int>(point);
}

bool FreeCurveGraph::HaveStoredPointsChanged() const {
    if (StoredCount() != fLaidOut.size()) return true;
    for (std::size_t i = 0; i < fLaidOut.size(); ++i)
        if (fLaidOut[i] != Stored(i)) return true;
    return false;
}

} // namespace qocui::ui
