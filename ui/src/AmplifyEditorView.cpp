#include "qocui/ui/AmplifyEditorView.h"

#include "kromediatypes/AudioChannelLabel.h"
#include "kroui/controls/UI_Checkbox.h"
#include "kroui/utility/LinearRuler.h"
#include "qoc/components/ParameterIndices.h"
#include "qocui/module/Module.h"
#include "uit/controls/UI_EditNumber.h"

#include <boost/bind/bind.hpp>

#include <algorithm>

namespace qocui::ui {

using kroui::controls::UI_ControlChangedMessage;
using kroui::controls::UI_InteractiveControlChangedMessage;
using kroui::utility::LinearRuler;
using qoc::components::kAmplifyChannelCount;
using qoc::components::kAmplifyFirstGain;
using qoc::components::kAmplifyLinkChannels;
using uit::controls::UI_EditNumber;

namespace {

constexpr float kMostChannels = 32;
constexpr double kLowestGain = -96; // dB
constexpr double kHighestGain = 48;
constexpr float kGainRange = 144; // dB

constexpr unsigned kNoTrailingZeros = 4;
constexpr int kAlignRight = 2;
constexpr float kNarrowestLabels = 100; // the archive's check box stands where the sliders then begin

int GainIndex(unsigned long channel) {
    return kAmplifyFirstGain + static_cast<int>(channel);
}

} // namespace

AmplifyEditorView::AmplifyEditorView(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter)
    : AudioComponentEditorXMLView("Amplify", std::move(filter)) {
    AddParameterObserver(kAmplifyLinkChannels, boost::bind(&AmplifyEditorView::UpdateLinkChannelsCheckBox, this));
}

AmplifyEditorView::~AmplifyEditorView() = default;

const kroui::limner::SupplierInterface* AmplifyEditorView::UI_GetDrawSupplier() const {
    return module::GetDrawSupplier();
}

void AmplifyEditorView::ConnectControls() {
    AudioComponentEditorXMLView::ConnectControls();
    fLinkChannels = FindNamed<kroui::controls::UI_Checkbox>("LinkChannels");
    fGainContainer = FindNamedNode("GainControlsContainer");
    CreateSliders();
    UpdateLinkChannelsCheckBox();
    if (fLinkChannels)
        fLinkChannels->NotifyWhenChanged(
            boost::bind(&AmplifyEditorView::OnLinkChannelsCheckboxChanged, this, boost::placeholders::_1));
}

void AmplifyEditorView::CreateSliders() {
    if (!fGainContainer) return;
    const unsigned long count = GetChannelCount();
    for (unsigned long c = 0; c < count; ++c) {
        const boost::intrusive_ptr<UI_EditNumber> slider = CreateSlider(c);
        slider->UI_Show(true);
        fGainContainer->ChildPushBack(slider);
        fSliders.push_back(slider);
        slider->NotifyWhenChangedInteractively(
            boost::bind(&AmplifyEditorView::OnEditNumberChangedInteractively, this, boost::placeholders::_1, c));
        AddParameterObserver(GainIndex(c), boost::bind(&AmplifyEditorView::OnAudioFilterGainChanged, this, c));
        OnAudioFilterGainChanged(c);
    }
    AlignLabels();
}

void AmplifyEditorView::AlignLabels() {
    float width = kNarrowestLabels;
    for (const auto& slider : fSliders)
        width = std::max(width, slider->MeasureLabelWidth());
    for (const auto& slider : fSliders)
        slider->SetLabelWidth(width);
}

boost::intrusive_ptr<UI_EditNumber> AmplifyEditorView::CreateSlider(unsigned long channel) {
    const boost::intrusive_ptr<UI_EditNumber> slider(new UI_EditNumber);
    const boost::intrusive_ptr<LinearRuler> ruler(new LinearRuler);
    ruler->SetVertical(false);
    ruler->SetStepFactor(20.0);
    ruler->SetValueRange(kLowestGain, kHighestGain);
    ruler->SetTextNearTickStart(true);
    ruler->HideTruncatedStrings(true);
    ruler->SetFontSize(9.0);

    slider->SetDigits(5);
    slider->SetDecimalPlaces(2);
    slider->SetSliderLength(200);
    slider->SetMinMaxValue(kLowestGain, kHighestGain, 0.0);
    slider->SetUnitLabel(u"dB");
    slider->SetIncrement(1.0);
    slider->SetSliderStretches(false);
    slider->SetHotTextNumberAlignment(kAlignRight);
    slider->SetLabel(GetChannelName(channel, false, true));
    slider->SetFormatFlags(kNoTrailingZeros);
    slider->SetRuler(ruler, UI_EditNumber::RulerPlacement{0}, UI_EditNumber::RulerTextPlacement{1}, {});
    return slider;
}

void AmplifyEditorView::UpdateLinkChannelsCheckBox() {
    if (fLinkChannels) fLinkChannels->SetValue(AreChannelsLinked());
}

void AmplifyEditorView::OnLinkChannelsCheckboxChanged(UI_ControlChangedMessage* /*message*/) {
    GetAudioComponent()->SetParameterValue(kAmplifyLinkChannels, fLinkChannels->IsChecked() ? 1.0F : 0.0F);
}

void AmplifyEditorView::OnAudioFilterGainChanged(unsigned long channel) {
    if (fIsSetting || channel >= fSliders.size()) return;
    const float gain = kGainRange * GetAudioComponent()->GetParameterValue(GainIndex(channel));
    fSliders[channel]->SetValue(gain + kLowestGain);
}

void AmplifyEditorView::OnEditNumberChangedInteractively(UI_InteractiveControlChangedMessage* message,
                                                         unsigned long channel) {
    if (channel >= fSliders.size()) return;
    const boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter = GetAudioComponent();
    const auto gain = static_cast<float>(fSliders[channel]->GetValue());
    const bool linked = AreChannelsLinked();
    if (linked)
        for (unsigned long i = 0; i < fSliders.size(); ++i)
            if (i != channel) fSliders[i]->SetValue(gain);

    const auto normalised = static_cast<float>((fSliders[channel]->GetValue() - kLowestGain) / kGainRange);
    const unsigned long first = linked ? 0 : channel;
    const unsigned long end = linked ? fSliders.size() : channel + 1;
    switch (message->GetChangeMessage()) {
    case UI_InteractiveControlChangedMessage::kStarted:
        fIsSetting = true;
        if (linked) fLinkedGestures.insert(channel);
        for (unsigned long i = first; i < end; ++i) {
            filter->BeginParameterEdit(GainIndex(i));
            filter->SetParameterValue(GainIndex(i), normalised);
        }
        break;
    case UI_InteractiveControlChangedMessage::kChanged:
        for (unsigned long i = first; i < end; ++i)
            filter->SetParameterValue(GainIndex(i), normalised);
        break;
    case UI_InteractiveControlChangedMessage::kEnded:
    case UI_InteractiveControlChangedMessage::kAbandoned:
        for (unsigned long i = first; i < end; ++i)
            filter->SetParameterValue(GainIndex(i), normalised);
        fIsSetting = false;
        for (unsigned long i = first; i < end; ++i)
            filter->EndParameterEdit(GainIndex(i));
        LeaveOtherChannels(first, end, fLinkedGestures.erase(channel) > 0);
        break;
    }
}

void AmplifyEditorView::LeaveOtherChannels(unsigned long first, unsigned long end, bool wereLinked) {
    for (unsigned long i = 0; i < fSliders.size(); ++i) {
        if (i >= first && i < end) continue;
        if (wereLinked) GetAudioComponent()->EndParameterEdit(GainIndex(i));
        OnAudioFilterGainChanged(i);
    }
}

krocore::string16 AmplifyEditorView::GetChannelName(unsigned long channel, bool abbreviated, bool inputBuses) {
    const boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter = GetAudioComponent();
    const auto& buses = inputBuses ? filter->GetInputBuses() : filter->GetOutputBuses();
    return buses.empty() ? krocore::string16() : buses.front().GetLayout().ChannelName(channel, abbreviated);
}

unsigned long AmplifyEditorView::GetChannelCount() {
    const float count = GetAudioComponent()->GetParameterValue(kAmplifyChannelCount) * kMostChannels;
    return count > 0 ? static_cast<unsigned long>(std::min(count, kMostChannels)) : 0;
}

bool AmplifyEditorView::AreChannelsLinked() {
    return IsOn(kAmplifyLinkChannels);
}

} // namespace qocui::ui
