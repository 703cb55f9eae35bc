#pragma once

#include "qocui/module/Export.h"
#include "qocui/ui/FrequencyGraph.h"

#include <boost/function.hpp>

#include <array>
#include <utility>

namespace qocui::ui {

// The response of the notch filter, with a handle for each of its six sections: across for the frequency, up and down
// for the gain; linked gains move together. Sections that are off have no handle. The axes zoom. Made by the notch
// filter's editor and owned by its control tree.
class QOCUI_API NotchFilterGraph : public FrequencyGraph {
public:
    explicit NotchFilterGraph(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter);

    // Widens what is shown so that the section that has this frequency or gain parameter lies in it; nothing for other
    // parameters.
    void EnsureSectionVisible(int parameterIndex);

    // While it is to be seen, the graph follows the filter's sample rate; the listener is told each time, afterwards.
    void NotifyWhenSampleRateChanges(boost::function<void()> listener) { fSampleRateListener = std::move(listener); }

    void UI_NodeChanged(NodeChange change) override;
    bool UI_DoTimerNotify(long timerID) override;

protected:
    ~NotchFilterGraph() override;

    void UpdateRulers() override;
    void UpdateCurvePointsFromComponent() override;
    // Writes what differs from the start of the drag.
    void CurvePointsToComponent(const CurvePoints& points) override;
    void UpdateResponseData() override;
    void OnInteractiveChange(kroui::controls::UI_InteractiveControlChangedMessage* message) override;

private:
    static constexpr int kSections = 6;

    bool AreGainsLinked() const;
    // The parameter that the gain of a section comes from.
    int GainIndex(int section) const;
    bool HasMoved(const CurvePoint& point, std::size_t index, double CoordinatePair::*axis);
    // The section whose handle is selected; -1 if none is.
    int SelectedSection() const;
    void UpdateCurvePointLocationsFromComponent();
    void BeginEdit();
    void EndEdit();

    boost::function<void()> fSampleRateListener;
    bool fEditOpen = false;                     // brackets were opened for the latest drag
    CurvePoints fPreviousPoints;                // from the start of the drag
    std::array<bool, kSections> fMovedAcross{}; // since then
    std::array<bool, kSections> fMovedUpDown{};
};

} // namespace qocui::ui
