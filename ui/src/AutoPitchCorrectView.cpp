#include "qocui/ui/AutoPitchCorrectView.h"

#include "krocore/Localizer.h"
#include "krocore/NumberFormat.h"
#include "krocore/WholeNumber.h"
#include "krocore/utility/NoteString.h"
#include "kroui/controls/UI_HotTextNumber.h"
#include "kroui/controls/UI_Popup.h"
#include "kroui/controls/UI_StaticText.h"
#include "qoc/components/GenericParameterInfo.h"
#include "qoc/components/ParameterIndices.h"
#include "qocui/ui/CorrectionMeterView.h"
#include "uit/controls/UI_EditNumber.h"

#include <boost/bind/bind.hpp>

#include <cmath>

namespace qocui::ui {

using boost::placeholders::_1;
using kroui::controls::UI_ControlChangedMessage;
using kroui::controls::UI_InteractiveControlChangedMessage;
using kroui::controls::UI_Popup;
using qoc::components::GenericParameterInfo;
using qoc::components::kPitchCorrectAttack;
using qoc::components::kPitchCorrectCalibration;
using qoc::components::kPitchCorrectChannel;
using qoc::components::kPitchCorrectCorrection;
using qoc::components::kPitchCorrectFFTSize;
using qoc::components::kPitchCorrectKey;
using qoc::components::kPitchCorrectScale;
using qoc::components::kPitchCorrectSensitivity;
using uit::controls::UI_EditNumber;

namespace {

constexpr int kScaleCount = 3;
constexpr int kFFTSizeCount = 3;
constexpr std::int32_t kMostChannels = kroaudiofilterhost::AudioFilter::kMaximumChannels;
constexpr int kChromatic = 2; // scale item

constexpr int kKeyCount = 12;
// Notes, counted from C, in the order of the items: downwards from D. The stored key counts items, not notes.
constexpr int kKeyNotes[kKeyCount] = {2, 1, 0, 11, 10, 9, 8, 7, 6, 5, 4, 3};
constexpr float kHalfKey = 0.041666668F; // half of an item's twelfth

constexpr float kStoredThirds[] = {0.0F, 0.5F, 1.0F}; // of three items

constexpr double kCentsPerOctave = 1200;
constexpr int kLinearScale = 0;

// The item of `count` whose equal part of 0...1 the stored value lies in. Below 0 it may be none, and it is none for
// what is no number.
int ItemAt(float stored, std::int32_t count) {
    return krocore::TruncatedWithin(stored * static_cast<float>(count), -1, count - 1);
}

} // namespace

AutoPitchCorrectView::AutoPitchCorrectView(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter)
    : AudioComponentEditorXMLView("AutoPitchCorrect", std::move(filter)) {
    using View = AutoPitchCorrectView;
    AddParameterObserver(kPitchCorrectScale, boost::bind(&View::UpdateScalePopup, this));
    AddParameterObserver(kPitchCorrectKey, boost::bind(&View::UpdateKeyPopup, this));
    AddParameterObserver(kPitchCorrectChannel, boost::bind(&View::UpdateChannelPopup, this));
    AddParameterObserver(kPitchCorrectFFTSize, boost::bind(&View::UpdateFFTSizePopup, this));
    AddParameterObserver(kPitchCorrectCalibration, boost::bind(&View::UpdateCalibrationHotText, this));
    AddParameterObserver(kPitchCorrectAttack, boost::bind(&View::UpdateAttackSlider, this));
    AddParameterObserver(kPitchCorrectSensitivity, boost::bind(&View::UpdateSensitivitySlider, this));
    AddParameterObserver(kPitchCorrectCorrection, boost::bind(&View::UpdateCorrectionValue, this));
}

AutoPitchCorrectView::~AutoPitchCorrectView() = default;

boost::intrusive_ptr<kroui::ui::UI_Node>
AutoPitchCorrectView::CreateCustomNode(const krocore::string16& className) const {
    if (auto node = AudioComponentEditorXMLView::CreateCustomNode(className)) return node;
    if (className == u"CorrectionMeter") return new CorrectionMeterView;
    return nullptr;
}

void AutoPitchCorrectView::ConnectControls() {
    AudioComponentEditorXMLView::ConnectControls();
    FindControls();
    FillKeyPopup();
    FillFFTSizePopup();
    FillChannelPopup();
    InitCalibrationHotText();

    UpdateScalePopup();
    UpdateKeyPopup();
    UpdateChannelPopup();
    UpdateFFTSizePopup();
    UpdateCalibrationHotText();
    UpdateAttackSlider();
    UpdateSensitivitySlider();
    UpdateCorrectionValue();

    ConnectHandlers();
    InitEditNumber(fAttack.get(), kPitchCorrectAttack, false);
    if (fAttack) {
        // The same words as the automatic phase correction's.
        fAttack->GetRuler()->SetLabel1(krocore::Localize("$$$/AutoPhaseCorrection/Responsiveness/Slow=Slow"));
        fAttack->GetRuler()->SetLabel2(krocore::Localize("$$$/AutoPhaseCorrection/Responsiveness/Fast=Fast"));
    }
    InitEditNumber(fSensitivity.get(), kPitchCorrectSensitivity, false);
}

void AutoPitchCorrectView::SyncParameters() {
    AudioComponentEditorXMLView::SyncParameters();
    FollowChannels();
    const bool canChange = GetAudioComponent()->CanChangeNonAutomatableParameters();
    if (canChange == fCanChangeNonAutomatable) return;
    fCanChangeNonAutomatable = canChange;
    if (fChannel) fChannel->SetEnabled(canChange);
    if (fFFTSize) fFFTSize->SetEnabled(canChange);
    if (fCalibration) fCalibration->SetEnabled(canChange);
}

void AutoPitchCorrectView::FindControls() {
    fScale = FindNamed<UI_Popup>("ScaleID");
    fKey = FindNamed<UI_Popup>("KeyID");
    fKeyLabel = FindNamed<kroui::controls::UI_StaticText>("KeyLabelID");
    fChannel = FindNamed<UI_Popup>("ChannelID");
    fFFTSize = FindNamed<UI_Popup>("ResolutionID");
    fAttack = FindNamed<UI_EditNumber>("AttackID");
    fSensitivity = FindNamed<UI_EditNumber>("SensitivityID");
    fCalibration = FindNamed<kroui::controls::UI_HotTextNumber>("CalibrationID");
    fCorrection = FindNamed<kroui::controls::UI_StaticText>("CorrectionID");
    fMeter = FindNamed<CorrectionMeterView>("MeterID");
}

void AutoPitchCorrectView::FillKeyPopup() {
    if (!fKey) return;
    fKey->DeleteAllItems();
    for (const int note : kKeyNotes) {
        krocore::string16 name;
        qocore::utility::GetNoteString(name, note, qocore::utility::kNoOctave, false);
        fKey->AddItem(name);
    }
}

void AutoPitchCorrectView::FillFFTSizePopup() {
    if (!fFFTSize) return;
    fFFTSize->DeleteAllItems();
    for (const char16_t* const size : {u"1024", u"2048", u"4096"})
        fFFTSize->AddItem(size);
}

void AutoPitchCorrectView::FillChannelPopup() {
    if (!fChannel) return;
    fChannel->DeleteAllItems();
    const GenericParameterInfo* const info = GetGenericInfo(kPitchCorrectChannel);
    const auto& buses = GetAudioComponent()->GetInputBuses();
    if (!info || buses.empty()) return;
    fChannelLayout = buses.front().GetLayout();
    fChannelCount = krocore::TruncatedWithin<std::int32_t>(info->GetHiBound(), 0, kMostChannels);
    for (std::int32_t channel = 0; channel < fChannelCount; ++channel)
        fChannel->AddItem(fChannelLayout.ChannelName(static_cast<std::size_t>(channel), false));
}

void AutoPitchCorrectView::FollowChannels() {
    const auto& buses = GetAudioComponent()->GetInputBuses();
    if (fChannelCount == 0 || buses.empty() || buses.front().GetLayout() == fChannelLayout) return;
    FillChannelPopup();
    UpdateChannelPopup();
}

void AutoPitchCorrectView::InitCalibrationHotText() {
    const GenericParameterInfo* const info = GetGenericInfo(kPitchCorrectCalibration);
    if (!fCalibration || !info) return;
    fCalibration->SetMinValue(info->GetLoBound());
    fCalibration->SetMaxValue(info->GetHiBound());
    ResetToDefaultOf(kPitchCorrectCalibration, *fCalibration);
}

void AutoPitchCorrectView::ConnectHandlers() {
    using View = AutoPitchCorrectView;
    if (fScale) fScale->NotifyWhenChanged(boost::bind(&View::OnScalePopupChanged, this, _1));
    if (fKey) fKey->NotifyWhenChanged(boost::bind(&View::OnKeyPopupChanged, this, _1));
    if (fChannel) fChannel->NotifyWhenChanged(boost::bind(&View::OnChannelPopupChanged, this, _1));
    if (fFFTSize) fFFTSize->NotifyWhenChanged(boost::bind(&View::OnFFTSizePopupChanged, this, _1));
    if (fCalibration)
        fCalibration->NotifyWhenChangedInteractively(boost::bind(&View::OnCalibrationChangedInteractively, this, _1));
}

void AutoPitchCorrectView::InitEditNumber(UI_EditNumber* slider, int index, bool invert) {
    if (!slider) return;
    slider->SetHotTextScale(kLinearScale);
    if (const GenericParameterInfo* const info = GetGenericInfo(index)) {
        const float low = info->GetLoBound();
        const float high = info->GetHiBound();
        slider->SetMinValue(low);
        slider->SetMaxValue(high);
        slider->GetRuler()->SetValueRange(invert ? high : low, invert ? low : high);
    }
    ResetToDefaultOf(index, *slider);
    ShowNatural(slider, index);
    slider->NotifyWhenChangedInteractively(
        boost::bind(&AutoPitchCorrectView::OnEditNumberChangedInteractively, this, _1));
    if (invert) slider->SetInvertSlider(true);
    slider->RecalcLayout();
}

void AutoPitchCorrectView::UpdateScalePopup() {
    ShowItem(fScale.get(), kPitchCorrectScale, kScaleCount);
    EnableKey(ItemAt(GetAudioComponent()->GetParameterValue(kPitchCorrectScale), kScaleCount));
}

void AutoPitchCorrectView::UpdateKeyPopup() {
    ShowItem(fKey.get(), kPitchCorrectKey, kKeyCount);
}

void AutoPitchCorrectView::UpdateChannelPopup() {
    ShowItem(fChannel.get(), kPitchCorrectChannel, fChannelCount);
}

void AutoPitchCorrectView::UpdateFFTSizePopup() {
    ShowItem(fFFTSize.get(), kPitchCorrectFFTSize, kFFTSizeCount);
}

void AutoPitchCorrectView::UpdateCalibrationHotText() {
    if (const auto natural = GetNatural(kPitchCorrectCalibration); fCalibration && natural)
        fCalibration->SetValue(*natural);
}

void AutoPitchCorrectView::UpdateAttackSlider() {
    if (!fIsDraggingSlider) ShowNatural(fAttack.get(), kPitchCorrectAttack);
}

void AutoPitchCorrectView::UpdateSensitivitySlider() {
    if (!fIsDraggingSlider) ShowNatural(fSensitivity.get(), kPitchCorrectSensitivity);
}

void AutoPitchCorrectView::UpdateCorrectionValue() {
    const std::optional<float> ratio = GetNatural(kPitchCorrectCorrection);
    if (!ratio) return;
    const double cents = std::log(static_cast<double>(*ratio)) / std::log(2.0) * kCentsPerOctave;
    if (fCorrection) {
        krocore::string16 text = krocore::FormatNumber(cents, 1);
        text += krocore::Localize("$$$/qocui/AutoPitchCorrectView/CentsSuffix= cents");
        fCorrection->SetText(text);
    }
    if (fMeter) fMeter->SetValue(static_cast<float>(cents));
}

void AutoPitchCorrectView::OnScalePopupChanged(UI_ControlChangedMessage* /*message*/) {
    const int item = fScale->GetValue();
    const bool isKeyed = item >= 0 && item < kChromatic;
    GetAudioComponent()->SetParameterValue(kPitchCorrectScale, kStoredThirds[isKeyed ? item : kChromatic]);
    EnableKey(item);
}

void AutoPitchCorrectView::OnKeyPopupChanged(UI_ControlChangedMessage* /*message*/) {
    const float part = static_cast<float>(fKey->GetValue()) / static_cast<float>(kKeyCount);
    GetAudioComponent()->SetParameterValue(kPitchCorrectKey, part + kHalfKey);
}

void AutoPitchCorrectView::OnChannelPopupChanged(UI_ControlChangedMessage* /*message*/) {
    const int item = fChannel->GetValue();
    if (item >= fChannelCount) return;
    const auto count = static_cast<float>(fChannelCount);
    GetAudioComponent()->SetParameterValue(kPitchCorrectChannel, 1 / (2 * count) + static_cast<float>(item) / count);
}

void AutoPitchCorrectView::OnFFTSizePopupChanged(UI_ControlChangedMessage* /*message*/) {
    const int item = fFFTSize->GetValue();
    if (item >= 0 && item < kFFTSizeCount)
        GetAudioComponent()->SetParameterValue(kPitchCorrectFFTSize, kStoredThirds[item]);
}

void AutoPitchCorrectView::OnCalibrationChangedInteractively(UI_InteractiveControlChangedMessage* message) {
    if (message->GetChangeMessage() == UI_InteractiveControlChangedMessage::kStarted) return;
    if (const auto stored = ToNormalised(kPitchCorrectCalibration, fCalibration->GetValue()))
        GetAudioComponent()->SetParameterValue(kPitchCorrectCalibration, *stored);
}

void AutoPitchCorrectView::OnEditNumberChangedInteractively(UI_InteractiveControlChangedMessage* message) {
    const bool isAttack = fAttack && message->GetControl() == fAttack.get();
    if (!isAttack && (!fSensitivity || message->GetControl() != fSensitivity.get())) return;
    const int index = isAttack ? kPitchCorrectAttack : kPitchCorrectSensitivity;
    const auto stored = ToNormalised(index, (isAttack ? fAttack : fSensitivity)->GetValue());
    if (!stored) return;

    const boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter = GetAudioComponent();
    switch (message->GetChangeMessage()) {
    case UI_InteractiveControlChangedMessage::kStarted:
        fIsDraggingSlider = true;
        filter->BeginParameterEdit(index);
        filter->SetParameterValue(index, *stored);
        break;
    case UI_InteractiveControlChangedMessage::kChanged: filter->SetParameterValue(index, *stored); break;
    case UI_InteractiveControlChangedMessage::kEnded:
    case UI_InteractiveControlChangedMessage::kAbandoned:
        filter->SetParameterValue(index, *stored);
        filter->EndParameterEdit(index);
        fIsDraggingSlider = false;
        break;
    }
}

void AutoPitchCorrectView::ShowItem(UI_Popup* popup, int index, std::int32_t itemCount) {
    if (popup) popup->SetValue(ItemAt(GetAudioComponent()->GetParameterValue(index), itemCount));
}

void AutoPitchCorrectView::ShowNatural(UI_EditNumber* slider, int index) {
    if (const auto natural = GetNatural(index); slider && natural) slider->SetValue(*natural);
}

void AutoPitchCorrectView::EnableKey(int scaleItem) {
    const bool enabled = scaleItem != kChromatic;
    if (fKey) fKey->SetEnabled(enabled);
    if (fKeyLabel) fKeyLabel->SetEnabled(enabled);
}

} // namespace qocui::ui
