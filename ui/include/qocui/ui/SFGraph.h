#pragma once

#include "kroaudiofilterhost/AudioFilter.h"
#include "qocui/module/Export.h"
#include "uit/controls/UI_RulerGridBase.h"

#include <array>
#include <optional>
#include <vector>

namespace qocui::ui {

// The response of the scientific filter over frequency: its magnitude, phase or group delay, as the filter's view
// parameters say. Nothing in it can be edited; the rulers zoom, which moves the view parameters, and the response under
// the pointer is read out. A child of its editor, which calls UpdateGraph when parameters change; holds the filter as
// long as it lives. User-interface thread.
class QOCUI_API SFGraph : public uit::controls::UI_RulerGridBase {
public:
    // As the view parameter counts them.
    enum class View : std::uint8_t { kMagnitude, kPhase, kGroupDelay };
    static constexpr std::size_t kViewCount = 3;

    explicit SFGraph(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter);

    // Reads the filter again: what is to be shown, over what, and the response. A filter that has no response leaves
    // the one that is shown.
    void UpdateGraph();
    // Each view's curve has its colour.
    void SetCurveColor(View view, const kroui::limner::Color& color);
    const kroui::limner::Color& GetCurveColor(View view) const { return fColors[static_cast<std::size_t>(view)]; }
    View GetView() const { return fView; }
    // The response as it is shown, evenly spaced along the axis: dB, degrees or milliseconds.
    const std::vector<float>& GetResponse() const { return fResponse; }

    // Stores the frequencies shown in the filter, quietly, and asks for the response anew.
    void SetCurrentRange(double horizontalStart, double horizontalEnd, double verticalStart,
                         double verticalEnd) override;
    bool UI_DoMouseEvent(UI_Node* node, const kroui::ui::MouseEvent& event) override;
    void UI_SizeChanged(const kroui::RectT<float>& rect) override;
    kroui::ui::AccessibleInfo UI_GetAccessibleInfo() const override;
    // The response at each frequency that is written along the axis.
    int UI_GetAccessiblePartCount() const override;
    kroui::ui::AccessiblePart UI_GetAccessiblePart(int part) const override;

protected:
    ~SFGraph() override;

    void DrawContent(kroui::limner::Limner& limner) override;
    void DrawOverContent(kroui::limner::Limner& limner) override;

private:
    // The vertical axis of a view.
    struct Levels {
        View view = View::kMagnitude;
        double top = 0;
        double bottom = 0;
        friend bool operator==(const Levels&, const Levels&) = default;
    };

    void TakeView();
    void UpdateRulers(bool isLogarithmic);
    void UpdateResponse();
    void UpdateLevels();
    Levels WantedLevels() const;
    double LevelInSight(double range) const;
    void UpdatePoints();
    void SetPointer(std::optional<kroui::Point> pointer);
    kroui::Rect ReadoutRect() const;
    krocore::string16 ReadoutText() const;
    // The response at a horizontal pixel, and as text with its frequency; there must be one.
    float ResponseAt(float x) const;
    struct Readout {
        krocore::string16 frequency;
        krocore::string16 value;
    };
    Readout ReadoutAt(kroui::Point pixel) const;
    std::vector<kroui::utility::RulerTick> LabelledTicks() const;
    krocore::string16 Unit() const;

    float Parameter(int index) const { return fFilter->GetParameterValue(index); }
    // In the parameter's own unit; `otherwise` from a filter that does not describe it.
    float Natural(int index, float otherwise) const;
    double Nyquist() const { return fFilter->GetSampleRate() * 0.5; }

    boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> fFilter;
    std::array<kroui::limner::Color, kViewCount> fColors;
    View fView = View::kMagnitude;
    bool fIsLogarithmic = true;
    double fNyquist = 0; // that the axis ends at
    Levels fLevels;
    std::vector<float> fResponse;
    std::vector<kroui::Point> fPoints; // of the response, in pixels; a point that is no number interrupts it
    std::optional<kroui::Point> fPointer;
};

} // namespace qocui::ui
