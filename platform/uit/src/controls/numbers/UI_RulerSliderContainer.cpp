#include "uit/controls/UI_RulerSliderContainer.h"

#include "uit/controls/SliderRuler.h"

namespace uit::controls {

using kroui::Rect;
using kroui::controls::SliderLook;

void UI_RulerSliderContainer::SetRuler(boost::intrusive_ptr<kroui::utility::RulerBase> ruler,
                                       RulerPlacement /*placement*/, RulerTextPlacement textPlacement) {
    fRuler = std::move(ruler);
    fTextPlacement = textPlacement;
    UI_Invalidate();
}

void UI_RulerSliderContainer::UI_Draw(kroui::limner::Limner* context) {
    const SliderLook look = Look();
    if (fRuler) {
        fRuler->SetVertical(IsVertical());
        fRuler->SetPixelRange(look.PixelAt(GesturePosition(fRuler->GetFirstValue())),
                              look.PixelAt(GesturePosition(fRuler->GetLastValue())));
        SliderRuler{fRuler.get(), fTextPlacement}.Draw(*context, *this, look, UI_GetLocalRect());
    }
    look.Draw(*context, *this);
}

Rect UI_RulerSliderContainer::TrackRect() const {
    const SliderRuler ruler{fRuler.get(), fTextPlacement};
    const float margin = fRuler ? SliderRuler::kOverhang : SliderLook::kKnobReach;
    const float shift = std::round((ruler.ReachBefore() - ruler.ReachBehind()) / 2);
    const Rect all = UI_GetLocalRect();
    return IsVertical() ? all.Inset(0, margin).Offset(shift, 0) : all.Inset(margin, 0).Offset(0, shift);
}

bool UI_RulerSliderContainer::RunsBackwards() const {
    return UI_Slider::RunsBackwards() || SliderRuler{fRuler.get(), fTextPlacement}.RunsBackwards(IsVertical());
}

double UI_RulerSliderContainer::GesturePosition(double value) const {
    if (!fRuler || fRuler->IsDegenerate()) return UI_Slider::GesturePosition(value);
    return SliderRuler{fRuler.get(), fTextPlacement}.Position(value);
}

double UI_RulerSliderContainer::GestureValueAt(double position) const {
    if (!fRuler || fRuler->IsDegenerate()) return UI_Slider::GestureValueAt(position);
    return SliderRuler{fRuler.get(), fTextPlacement}.ValueAt(position);
}

} // namespace uit::controls
