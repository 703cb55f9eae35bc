#include "qocui/ui/NotchFilterGraph.h"

#include "krocore/Localizer.h"
#include "kroui/ui/UI_NodeManager.h"
#include "qoc/components/ParameterIndices.h"

#include <boost/bind/bind.hpp>

#include <algorithm>
#include <cmath>
#include <sstream>

namespace qocui::ui {

using kroui::controls::UI_InteractiveControlChangedMessage;
using qoc::components::kNotchFirstEnable;
using qoc::components::kNotchFirstFrequency;
using qoc::components::kNotchFirstGain;
using qoc::components::kNotchFixGain;
using qoc::components::kNotchFixGainEnable;
using qoc::components::kNotchViewEnd;
using qoc::components::kNotchViewStart;

namespace {

constexpr double kLargestGain = 96;      // dB, either way
constexpr double kFrequencyOffset = 0.5; // hertz, of stored frequencies
constexpr float kWatchSeconds = 0.1F;    // from one look at the sample rate to the next
constexpr double kValuesPerPixel = 4;    // of the response: narrow notches keep their shape

long WatchTimerID() {
    static const long sTimerID = kroui::ui::UI_NodeManager::Get().GetUniqueTimerID();
    return sTimerID;
}

double ToDecibels(float stored) {
    return (static_cast<double>(stored) - 0.5) * kLargestGain * 2;
}

float StoredGain(double decibels) {
    return static_cast<float>(decibels) / static_cast<float>(kLargestGain) * 0.5F + 0.5F;
}

std::vector<krocore::string16> NumbersTo(int count) {
    std::vector<krocore::string16> numbers;
    for (int number = 1; number <= count; ++number) {
        std::wostringstream stream;
        stream << number;
        const std::wstring text = stream.str();
        numbers.emplace_back(text.begin(), text.end());
    }
    return numbers;
}

} // namespace

NotchFilterGraph::NotchFilterGraph(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter)
    : FrequencyGraph(filter, {kNotchViewStart, kNotchViewEnd, kFrequencyOffset},
                     MakeLogRuler(false, kLowestFrequency, NyquistOf(*filter)),
                     MakeLinearRuler(true, -kLargestGain, kLargestGain)) {
    SetWantsKeyboardFocus(true);
    SetRulersSupportZooming(true);
    SetMaxPointCount(kSections);
    SetUniqueHorizontalPositions(false);
    SetDrawCurve(false);
    UpdateRulers();
    SetHorizontalLabel1(krocore::Localize("$$$/NotchFilter/NotchFilterGraph/Hz=Hz"));
    SetVerticalLabel1(krocore::Localize("$$$/NotchFilter/NotchFilterGraph/dB=dB"));
    UpdateCurvePointsFromComponent();
    NotifyWhenChangedInteractively(boost::bind(&NotchFilterGraph::OnInteractiveChange, this, boost::placeholders::_1));
    SetPointLabels(NumbersTo(kSections));
    SetEnableDeletePoints(false);
    SetDrawPointLabelsAtBottom(true);
}

NotchFilterGraph::~NotchFilterGraph() = default;

void NotchFilterGraph::EnsureSectionVisible(int parameterIndex) {
    int section = 0;
    while (section < kSections && parameterIndex != kNotchFirstGain + section &&
           parameterIndex != kNotchFirstFrequency + section)
        ++section;
    if (section == kSections) return;
    // The section's own gain, linked or not. The half hertz of stored frequencies is left out: it is less than a pixel.
    const double decibels = ToDecibels(Parameter(kNotchFirstGain + section));
    const double hertz =
        Parameter(kNotchFirstFrequency + section) * static_cast<double>(Filter().GetSampleRate()) * 0.5;
    SetCurrentRange(std::min(GetHorizontalStart(), hertz), std::max(GetHorizontalEnd(), hertz),
                    std::max(GetVerticalStart(), decibels), std::min(GetVerticalEnd(), decibels));
}

void NotchFilterGraph::UI_NodeChanged(NodeChange change) {
    if (change == kAttached) UI_InstallTimer(kWatchSeconds, WatchTimerID());
    if (change == kDetaching) UI_RemoveTimer(WatchTimerID(), false);
    FrequencyGraph::UI_NodeChanged(change);
}

bool NotchFilterGraph::UI_DoTimerNotify(long timerID) {
    if (timerID != WatchTimerID()) return FrequencyGraph::UI_DoTimerNotify(timerID);
    if (FollowSampleRate() && fSampleRateListener) fSampleRateListener();
    return true;
}

void NotchFilterGraph::UpdateRulers() {
    const double nyquist = Nyquist();
    SetRulers(MakeLogRuler(false, kLowestFrequency, nyquist), MakeLinearRuler(true, -kLargestGain, kLargestGain));
    SetRanges(kLowestFrequency, nyquist, kLargestGain, -kLargestGain);
}

// During a drag the points are the user's: the one under the pointer must not jump.
void NotchFilterGraph::UpdateCurvePointsFromComponent() {
    if (!IsInteracting()) {
        UpdateCurvePointLocationsFromComponent();
        Flags enabled(kSections);
        for (int i = 0; i < kSections; ++i)
            enabled[static_cast<std::size_t>(i)] = Parameter(kNotchFirstEnable + i) > controls::kSwitchThreshold;
        SetVisiblePoints(enabled);
        SetMoveablePoints(enabled, false);
        SetMoveablePoints(enabled, true);
    }
    UpdateResponseData();
}

void NotchFilterGraph::CurvePointsToComponent(const CurvePoints& points) {
    if (points.size() != kSections) return;
    const bool linked = AreGainsLinked();
    const double nyquist = Nyquist();
    const int selected = SelectedSection();
    const float sharedGain =
        linked && selected >= 0 ? StoredGain(points[static_cast<std::size_t>(selected)].coordinates.vertical) : 0.0F;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const CurvePoint& point = points[i];
        const int section = static_cast<int>(i);
        if (HasMoved(point, i, &CoordinatePair::horizontal)) {
            const double stored = (point.coordinates.horizontal - kFrequencyOffset) / nyquist;
            Filter().SetParameterValue(kNotchFirstFrequency + section, static_cast<float>(stored));
        }
        if (linked)
            Filter().SetParameterValue(kNotchFixGain, sharedGain);
        else if (HasMoved(point, i, &CoordinatePair::vertical))
            Filter().SetParameterValue(kNotchFirstGain + section, StoredGain(point.coordinates.vertical));
    }
    if (linked) UpdateCurvePointLocationsFromComponent();
    UpdateResponseData();
}

void NotchFilterGraph::UpdateResponseData() {
    RequestResponse(static_cast<std::size_t>(std::ceil(UI_GetFrame().width) * kValuesPerPixel), true);
}

void NotchFilterGraph::OnInteractiveChange(UI_InteractiveControlChangedMessage* message) {
    switch (message->GetChangeMessage()) {
    case UI_InteractiveControlChangedMessage::kStarted:
        fPreviousPoints = GetCurvePoints();
        fMovedAcross.fill(false);
        fMovedUpDown.fill(false);
        SetInteracting(true);
        BeginEdit();
        break;
    case UI_InteractiveControlChangedMessage::kChanged: StorePoints(CurvePoints(GetCurvePoints())); break;
    case UI_InteractiveControlChangedMessage::kEnded:
        if (fEditOpen) StorePoints(CurvePoints(GetCurvePoints()));
        [[fallthrough]];
    case UI_InteractiveControlChangedMessage::kAbandoned:
        EndEdit();
        SetInteracting(false);
        fPreviousPoints.clear();
        break;
    }
}

bool NotchFilterGraph::AreGainsLinked() const {
    return IsOn(kNotchFixGainEnable);
}

int NotchFilterGraph::GainIndex(int section) const {
    return AreGainsLinked() ? static_cast<int>(kNotchFixGain) : kNotchFirstGain + section;
}

// A value that has been elsewhere in this drag counts as moved even when it is back: the filter still has the other
// one.
bool NotchFilterGraph::HasMoved(const CurvePoint& point, std::size_t index, double CoordinatePair::*axis) {
    const bool differs =
        index >= fPreviousPoints.size() || point.coordinates.*axis != fPreviousPoints[index].coordinates.*axis;
    bool& hasMoved = (axis == &CoordinatePair::horizontal ? fMovedAcross : fMovedUpDown)[index];
    hasMoved = hasMoved || differs;
    return hasMoved;
}

int NotchFilterGraph::SelectedSection() const {
    const int selected = GetSelectedNode();
    return selected < kSections ? selected : -1;
}

void NotchFilterGraph::UpdateCurvePointLocationsFromComponent() {
    const double nyquist = Nyquist();
    CurvePoints points(kSections);
    for (int i = 0; i < kSections; ++i) {
        const double hertz = Parameter(kNotchFirstFrequency + i) * nyquist + kFrequencyOffset;
        points[static_cast<std::size_t>(i)] = {static_cast<std::uint32_t>(i),
                                               {hertz, ToDecibels(Parameter(GainIndex(i)))}};
    }
    SetCurvePoints(points);
}

void NotchFilterGraph::BeginEdit() {
    fEditOpen = false;
    const int section = SelectedSection();
    if (section < 0) return;
    Filter().BeginParameterEdit(kNotchFirstFrequency + section);
    Filter().BeginParameterEdit(GainIndex(section));
    fEditOpen = true;
}

void NotchFilterGraph::EndEdit() {
    const int section = SelectedSection();
    if (section < 0) return;
    Filter().EndParameterEdit(kNotchFirstFrequency + section);
    Filter().EndParameterEdit(GainIndex(section));
}

} // namespace qocui::ui
