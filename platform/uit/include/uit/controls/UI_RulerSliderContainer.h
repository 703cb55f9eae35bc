#pragma once

#include "kroui/controls/UI_Slider.h"
#include "kroui/utility/RulerBase.h"

namespace uit::controls {

// A slider with a ruler along its track: marks with their labels at one side of it or at both. A ruler with another
// scale than the slider's (a logarithmic one) decides where values lie. One with the greater value first beside a track
// that lies turns the slider round: its first value stands at the left. Upright, greater values stand above.
class UI_RulerSliderContainer : public kroui::controls::UI_Slider {
public:
    enum RulerPlacement : int { kRulerLeftTop = 0, kRulerRightBottom = 1 };
    enum RulerTextPlacement : int { kTextLeftTop = 0, kTextRightBottom = 1, kTextBoth = 2 };

    // Null takes the ruler away. Where it stands follows from the texts, so the placement says no more than that there
    // is a ruler. Its direction, value range and labels are the caller's; its pixels are set here.
    void SetRuler(boost::intrusive_ptr<kroui::utility::RulerBase> ruler, RulerPlacement placement,
                  RulerTextPlacement textPlacement);
    const boost::intrusive_ptr<kroui::utility::RulerBase>& GetRuler() const { return fRuler; }

    void UI_Draw(kroui::limner::Limner* context) override;

protected:
    ~UI_RulerSliderContainer() override = default;

    kroui::Rect TrackRect() const override;
    bool RunsBackwards() const override;
    double GesturePosition(double value) const override;
    double GestureValueAt(double position) const override;

private:
    boost::intrusive_ptr<kroui::utility::RulerBase> fRuler;
    RulerTextPlacement fTextPlacement = kTextRightBottom;
};

} // namespace uit::controls
