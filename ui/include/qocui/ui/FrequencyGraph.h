#pragma once

#include "kroaudiofilterhost/AudioFilter.h"
#include "qocui/controls/StoredSwitch.h"
#include "uit/controls/UI_CurveEditor.h"

#include <boost/signals2/trackable.hpp>

#include <cmath>

namespace qocui::ui {

// What the curve graphs over frequency share: the axis from 20 Hz to the Nyquist frequency, the look of the grid, the
// part shown stored in two parameters of the effect, and the protocol of a drag. A child of its editor, which calls
// UpdateGraph when parameters change; holds the filter as long as it lives. User-interface thread.
class FrequencyGraph : public uit::controls::UI_CurveEditor, public boost::signals2::trackable {
public:
    // Reads the filter again and redraws.
    void UpdateGraph() { UpdateCurvePointsFromComponent(); }
    // Follows a sample rate that has become another while the graph is open: rulers and points are made anew.
    // Returns whether it has.
    bool FollowSampleRate();

    // Stores the frequencies shown in the filter, quietly, and asks for the response anew.
    void SetCurrentRange(double horizontalStart, double horizontalEnd, double verticalStart,
                         double verticalEnd) override;
    void UI_SizeChanged(const kroui::RectT<float>& rect) override;

protected:
    // Where the effect keeps the frequencies shown: hertz = value * Nyquist + offset.
    struct ViewRange {
        int startParameter;
        int endParameter;
        double offset;
    };
    static constexpr double kLowestFrequency = 20; // hertz
    static constexpr std::size_t kMostPoints = 128;

    FrequencyGraph(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter, const ViewRange& viewRange,
                   RulerPtr horizontal, RulerPtr vertical);
    ~FrequencyGraph() override;

    static RulerPtr MakeLinearRuler(bool vertical, double minimum, double maximum);
    static RulerPtr MakeLogRuler(bool vertical, double minimum, double maximum);

    // Half of the filter's sample rate, read at the moment of the call.
    static float NyquistOf(const kroaudiofilterhost::AudioFilter& filter) { return filter.GetSampleRate() * 0.5F; }
    float Nyquist() const { return NyquistOf(*fFilter); }
    // Whether the sample rate leaves an axis to draw and edit on; without one nothing is written.
    bool HasFrequencies() const { return std::isfinite(Nyquist()) && Nyquist() > kLowestFrequency; }
    kroaudiofilterhost::AudioFilter& Filter() const { return *fFilter; }
    float Parameter(int index) const { return fFilter->GetParameterValue(index); }
    bool IsOn(int index) const { return controls::IsSwitchOn(Parameter(index)); }

    bool IsInteracting() const { return fInteracting; }
    void SetInteracting(bool interacting) { fInteracting = interacting; }

    // Asks the filter for `count` values over the frequencies shown and shows them; without an answer the curve stays
    // as it is.
    void RequestResponse(std::size_t count, bool logarithmic);

    virtual void UpdateRulers() = 0;
    virtual void UpdateCurvePointsFromComponent() = 0;
    // Writes the points, unless there is no axis to tell where they are.
    void StorePoints(const CurvePoints& points);
    // Converts the points to parameter values and writes them. For StorePoints.
    virtual void CurvePointsToComponent(const CurvePoints& points) = 0;
    virtual void UpdateResponseData() = 0;
    // 0 sets the interacting flag, 2 and 3 clear it, 1 and 2 write the points.
    virtual void OnInteractiveChange(kroui::controls::UI_InteractiveControlChangedMessage* message);

private:
    boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> fFilter;
    ViewRange fViewRange;
    bool fInteracting = false; // from the start of a drag to its end
};

} // namespace qocui::ui
