#include "qocui/ui/StereoExpanderEditorView.h"

#include "kroui/utility/RulerBase.h"
#include "qoc/components/GenericParameterInfo.h"
#include "qocui/module/Module.h"
#include "uit/controls/UI_EditNumber.h"

#include <boost/bind/bind.hpp>

namespace qocui::ui {

using kroui::controls::UI_InteractiveControlChangedMessage;
using qoc::components::kStereoExpanderExpand;
using qoc::components::kStereoExpanderPan;
using uit::controls::UI_EditNumber;

namespace {

constexpr double kIncrement = 0.1; // percent
constexpr float kRulerStart = 0.001F;
constexpr int kLinearScale = 0;
constexpr int kAlignLeft = 0;

} // namespace

StereoExpanderEditorView::StereoExpanderEditorView(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter)
    : AudioComponentEditorXMLView("StereoExpander", std::move(filter)) {
    for (const ParameterIndex index : {kStereoExpanderPan, kStereoExpanderExpand})
        AddParameterObserver(
            index, boost::bind(&StereoExpanderEditorView::UpdateControlFromParameterValueChange, this, index));
}

StereoExpanderEditorView::~StereoExpanderEditorView() = default;

const kroui::limner::SupplierInterface* StereoExpanderEditorView::UI_GetDrawSupplier() const {
    return module::GetDrawSupplier();
}

void StereoExpanderEditorView::ConnectControls() {
    AudioComponentEditorXMLView::ConnectControls();
    fPan = FindNamed<UI_EditNumber>("SE_Slider_Pan");
    InitEditNumber(fPan, kStereoExpanderPan, false);
    if (fPan) fPan->SetIncrement(kIncrement);
    fExpand = FindNamed<UI_EditNumber>("SE_Slider_Expand");
    InitEditNumber(fExpand, kStereoExpanderExpand, false);
    if (fExpand) fExpand->SetIncrement(kIncrement);
}

void StereoExpanderEditorView::InitEditNumber(boost::intrusive_ptr<UI_EditNumber> slider, ParameterIndex index,
                                              bool invert) {
    if (!slider) return;
    slider->SetHotTextScale(kLinearScale);
    slider->SetHotTextNumberAlignment(kAlignLeft);
    if (const auto* const generic = GetGenericInfo(index)) {
        const float lo = generic->GetLoBound();
        const float hi = generic->GetHiBound();
        slider->SetMinValue(lo);
        slider->SetMaxValue(hi);
        const float rulerLo = lo == 0 ? kRulerStart : lo;
        slider->GetRuler()->SetValueRange(invert ? hi : rulerLo, invert ? rulerLo : hi);
    }
    if (const auto natural = GetNatural(index)) slider->SetValue(*natural);
    ResetToDefaultOf(index, *slider);
    slider->NotifyWhenChangedInteractively(
        boost::bind(&StereoExpanderEditorView::OnEditNumberChangedInteractively, this, boost::placeholders::_1));
    if (invert) slider->SetInvertSlider(true);
    slider->RecalcLayout();
}

void StereoExpanderEditorView::UpdateControlFromParameterValueChange(ParameterIndex index) {
    if (fIsSettingParameter) return;
    const auto natural = GetNatural(index);
    if (!natural) return;
    if (index == kStereoExpanderPan && fPan) fPan->SetValue(*natural);
    if (index == kStereoExpanderExpand && fExpand) fExpand->SetValue(*natural);
}

void StereoExpanderEditorView::SetParameter(ParameterIndex index, float normalised) {
    fIsSettingParameter = true;
    GetAudioComponent()->SetParameterValue(index, normalised);
    fIsSettingParameter = false;
}

void StereoExpanderEditorView::OnEditNumberChangedInteractively(UI_InteractiveControlChangedMessage* message) {
    const auto* const sender = dynamic_cast<UI_EditNumber*>(message->GetControl());
    switch (message->GetChangeMessage()) {
    case UI_InteractiveControlChangedMessage::kChanged:
    case UI_InteractiveControlChangedMessage::kEnded:
    case UI_InteractiveControlChangedMessage::kAbandoned: break;
    default: return;
    }
    if (!sender || (sender != fPan.get() && sender != fExpand.get())) return;
    const ParameterIndex index = sender == fPan.get() ? kStereoExpanderPan : kStereoExpanderExpand;
    if (const auto stored = ToNormalised(index, sender->GetValue())) SetParameter(index, *stored);
}

} // namespace qocui::ui
