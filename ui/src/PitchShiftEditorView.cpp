#include "qocui/ui/PitchShiftEditorView.h"

#include "krocore/Localizer.h"
#include "krocore/WholeNumber.h"
#include "kroui/controls/UI_Checkbox.h"
#include "kroui/controls/UI_HotTextNumber.h"
#include "kroui/controls/UI_RadioButton.h"
#include "kroui/utility/RulerBase.h"
#include "qoc/components/GenericParameterInfo.h"
#include "qocui/module/Module.h"
#include "uit/controls/UI_EditNumber.h"
#include "uit/controls/UI_OutlineBoxWithLabel.h"

#include <boost/bind/bind.hpp>

#include <cmath>
#include <limits>

namespace qocui::ui {

using kroui::controls::UI_Checkbox;
using kroui::controls::UI_ControlChangedMessage;
using kroui::controls::UI_HotTextNumber;
using kroui::controls::UI_InteractiveControlChangedMessage;
using kroui::controls::UI_RadioButton;
using qoc::components::kPitchShiftOverlapping;
using qoc::components::kPitchShiftPrecision;
using qoc::components::kPitchShiftRatio;
using qoc::components::kPitchShiftSplicingFrequency;
using qoc::components::kPitchShiftUseDefaultSettings;
using uit::controls::UI_EditNumber;

namespace {

constexpr double kSemitonesInOctave = 12;
constexpr double kCentsInSemitone = 100;
constexpr double kMostSemitones = 12; // of the field, either way
constexpr double kMostCents = 100;
constexpr double kFieldIncrement = 1;
constexpr double kRatioIncrement = 0.0001;
constexpr double kSplicingFrequencyIncrement = 1; // hertz
constexpr double kOverlappingIncrement = 0.1;     // percent
// A ratio this near to the one that semitones and cents show leaves them alone.
constexpr double kRatioTolerance = 0.01;
constexpr double kFarthestKeptSemitone = 2;
constexpr int kLinearScale = 0;
constexpr unsigned kNoTrailingZeros = 4;

enum Precision : std::int64_t { kLow, kMedium, kHigh };

double RoundedHalfAway(double x) {
    return x > 0 ? std::floor(x + 0.5) : -std::floor(std::abs(x) + 0.5);
}

double ToSemitones(double ratio) {
    return std::log(ratio) * kSemitonesInOctave / std::log(2.0);
}

// What no integer holds counts as 0.
std::int64_t Truncated(float value) {
    constexpr float kBeyondIntegers = 0x1p63F;
    return std::abs(value) < kBeyondIntegers ? static_cast<std::int64_t>(value) : 0;
}

// What is no number becomes 0, what the type cannot hold the nearest that it can.
template <class Integer>
Integer Held(double x) {
    using Limits = std::numeric_limits<Integer>;
    return std::isnan(x) ? Integer{0} : krocore::TruncatedWithin(x, Limits::min(), Limits::max());
}

bool EndsOrChanges(const UI_InteractiveControlChangedMessage& message) {
    return message.GetChangeMessage() >= UI_InteractiveControlChangedMessage::kChanged &&
           message.GetChangeMessage() <= UI_InteractiveControlChangedMessage::kAbandoned;
}

} // namespace

PitchShiftEditorView::PitchShiftEditorView(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter)
    : AudioComponentEditorXMLView("PitchShift", std::move(filter)) {
    for (const ParameterIndex index : {kPitchShiftRatio, kPitchShiftPrecision, kPitchShiftSplicingFrequency,
                                       kPitchShiftOverlapping, kPitchShiftUseDefaultSettings})
        AddParameterObserver(index,
                             boost::bind(&PitchShiftEditorView::UpdateControlFromParameterValueChange, this, index));
}

PitchShiftEditorView::~PitchShiftEditorView() = default;

const kroui::limner::SupplierInterface* PitchShiftEditorView::UI_GetDrawSupplier() const {
    return module::GetDrawSupplier();
}

void PitchShiftEditorView::ConnectControls() {
    AudioComponentEditorXMLView::ConnectControls();
    SetBoxLabel(fRatioBox, "PS_OutlineBox_Ratio",
                "$$$/QoAudioComponentsUI/PitchShifterXML/PitchTranspose=Pitch Transpose");
    fRatio = FindNamed<UI_HotTextNumber>("PS_Ratio");
    if (fRatio) fRatio->SetIncrement(kRatioIncrement);
    InitHotTextNumber(fRatio, kPitchShiftRatio, false);
    fSemitones = FindNamed<UI_EditNumber>("PS_SemiTones");
    InitEditNumber(fSemitones, false);
    fCents = FindNamed<UI_EditNumber>("PS_Cents");
    InitEditNumber(fCents, false);
    UpdateSemitoneAndCentsFromRatio();
    SetBoxLabel(fPrecisionBox, "PS_OutlineBox_Precision",
                "$$$/QoAudioComponentsUI/PitchShifterXML/Precision=Precision");
    fPrecisionLow = FindNamed<UI_RadioButton>("PS_PrecisionLow");
    fPrecisionMedium = FindNamed<UI_RadioButton>("PS_PrecisionMedium");
    fPrecisionHigh = FindNamed<UI_RadioButton>("PS_PrecisionHigh");
    InitRadioButtonGroup(kPitchShiftPrecision);
    SetBoxLabel(fSettingsBox, "PS_OutlineBox_Settings",
                "$$$/QoAudioComponentsUI/PitchShifterXML/PitchSettings=Pitch Settings");
    fSplicingFrequency = FindNamed<UI_HotTextNumber>("PS_SplicingFrequency");
    InitHotTextNumber(fSplicingFrequency, kPitchShiftSplicingFrequency, true);
    if (fSplicingFrequency) fSplicingFrequency->SetIncrement(kSplicingFrequencyIncrement);
    fOverlapping = FindNamed<UI_HotTextNumber>("PS_Overlapping");
    InitHotTextNumber(fOverlapping, kPitchShiftOverlapping, true);
    if (fOverlapping) fOverlapping->SetIncrement(kOverlappingIncrement);
    fUseDefaultSettings = FindNamed<UI_Checkbox>("PS_UseDefaultSetting");
    InitCheckBox(fUseDefaultSettings, kPitchShiftUseDefaultSettings);
}

std::int32_t PitchShiftEditorView::MakeWhole(double x) {
    return Held<std::int32_t>(RoundedHalfAway(x));
}

double PitchShiftEditorView::MakeHundredths(double x) {
    constexpr double kHundred = 100;
    return RoundedHalfAway(x * kHundred) / kHundred;
}

double PitchShiftEditorView::ConvertSemitoneAndCentsToRatio(double semitones, double cents) {
    return std::pow(2.0, (cents / kCentsInSemitone + semitones) / kSemitonesInOctave);
}

double PitchShiftEditorView::ConvertRatioToCents(double ratio) {
    const double semitones = ToSemitones(ratio);
    return MakeHundredths(semitones - std::floor(semitones)) * kCentsInSemitone;
}

double PitchShiftEditorView::ConvertRatioToSemitone(double ratio) {
    return std::floor(ToSemitones(ratio));
}

std::int16_t PitchShiftEditorView::MakesureSemitonesIsInteger(double x) {
    const auto whole = Held<std::int16_t>(x);
    return x > whole + 0.5 && whole < std::numeric_limits<std::int16_t>::max() ? static_cast<std::int16_t>(whole + 1)
                                                                               : whole;
}

void PitchShiftEditorView::ConvertRatioToSemitoneAndCents(double ratio, double& semitones, double& cents) {
    const double below = std::floor(ToSemitones(ratio));
    const double above = ConvertRatioToCents(ratio);
    if (below != semitones && above != cents) {
        const double distance = semitones - below;
        const double kept = above - kCentsInSemitone * distance;
        if (std::abs(distance) <= kFarthestKeptSemitone && std::abs(kept) <= kMostCents) {
            cents = kept;
            return;
        }
    }
    semitones = below;
    cents = above;
}

void PitchShiftEditorView::UpdateRatioFromSemitoneAndCents() {
    if (fRatio && fSemitones && fCents) fRatio->SetValue(GetRatioOfFields());
}

void PitchShiftEditorView::UpdateSemitoneAndCentsFromRatio() {
    if (!fRatio || !fSemitones || !fCents) return;
    double semitones = MakeWhole(fSemitones->GetValue());
    double cents = MakeHundredths(fCents->GetValue());
    ConvertRatioToSemitoneAndCents(fRatio->GetValue(), semitones, cents);
    fSemitones->SetValue(semitones);
    fCents->SetValue(cents);
}

void PitchShiftEditorView::UpdatePrecisionRadioGroupState(std::int64_t precision) {
    const bool isKnown = precision >= kLow && precision <= kHigh;
    const std::int64_t chosen = isKnown ? precision : kLow;
    if (fPrecisionLow) fPrecisionLow->SetValue(chosen == kLow);
    if (fPrecisionMedium) fPrecisionMedium->SetValue(chosen == kMedium);
    if (fPrecisionHigh) fPrecisionHigh->SetValue(chosen == kHigh);
}

void PitchShiftEditorView::UpdateSettingsControlStatus() {
    if (fUseDefaultSettings) EnableSettings(!fUseDefaultSettings->IsChecked());
}

void PitchShiftEditorView::UpdateControlFromParameterValueChange(ParameterIndex index) {
    if (fIsSettingParameter) return;
    const float value = GetNaturalOrStored(index);
    switch (index) {
    case kPitchShiftRatio:
        if (fRatio) fRatio->SetValue(value);
        if (std::abs(value - GetRatioOfFields()) > kRatioTolerance) UpdateSemitoneAndCentsFromRatio();
        break;
    case kPitchShiftPrecision: UpdatePrecisionRadioGroupState(static_cast<std::int16_t>(Truncated(value))); break;
    case kPitchShiftSplicingFrequency:
        if (fSplicingFrequency) fSplicingFrequency->SetValue(value);
        break;
    case kPitchShiftOverlapping:
        if (fOverlapping) fOverlapping->SetValue(value);
        break;
    case kPitchShiftUseDefaultSettings:
        if (fUseDefaultSettings) fUseDefaultSettings->SetValue(controls::IsSwitchOn(value));
        UpdateSettingsControlStatus();
        break;
    default: break;
    }
}

void PitchShiftEditorView::SetParameter(ParameterIndex index, float value) {
    fIsSettingParameter = true;
    GetAudioComponent()->SetParameterValue(index, value);
    fIsSettingParameter = false;
}

// Only the end of a gesture writes: in a drag the ratio of each step is not worth a splice of the sound.
void PitchShiftEditorView::OnEditNumberChangedInteractively(UI_InteractiveControlChangedMessage* message) {
    const auto* const sender = dynamic_cast<UI_EditNumber*>(message->GetControl());
    if (message->GetChangeMessage() != UI_InteractiveControlChangedMessage::kEnded) return;
    if (!sender || (sender != fSemitones.get() && sender != fCents.get())) return;
    if (fSemitones) fSemitones->SetValue(fSemitones->GetValue());
    UpdateRatioFromSemitoneAndCents();
    if (fRatio) SetNaturalParameter(kPitchShiftRatio, fRatio->GetValue());
}

void PitchShiftEditorView::OnHotTextNumberChangedInteractively(UI_InteractiveControlChangedMessage* message) {
    const auto* const sender = dynamic_cast<UI_HotTextNumber*>(message->GetControl());
    if (!sender || !EndsOrChanges(*message)) return;
    if (sender == fRatio.get()) {
        UpdateSemitoneAndCentsFromRatio();
        SetNaturalParameter(kPitchShiftRatio, sender->GetValue());
    } else if (sender == fSplicingFrequency.get()) {
        SetNaturalParameter(kPitchShiftSplicingFrequency, sender->GetValue());
    } else if (sender == fOverlapping.get()) {
        SetNaturalParameter(kPitchShiftOverlapping, sender->GetValue());
    }
}

void PitchShiftEditorView::OnLinkRadioButtonChanged(UI_ControlChangedMessage* message) {
    const auto* const sender = dynamic_cast<UI_RadioButton*>(message->GetControl());
    if (!sender) return;
    Precision precision = kLow;
    if (sender == fPrecisionMedium.get())
        precision = kMedium;
    else if (sender == fPrecisionHigh.get())
        precision = kHigh;
    else if (sender != fPrecisionLow.get())
        return;
    UpdatePrecisionRadioGroupState(precision);
    SetNaturalParameter(kPitchShiftPrecision, static_cast<double>(precision));
}

void PitchShiftEditorView::OnLinkCheckboxChanged(UI_ControlChangedMessage* message) {
    const auto* const sender = dynamic_cast<UI_Checkbox*>(message->GetControl());
    if (!sender || sender != fUseDefaultSettings.get()) return;
    UpdateSettingsControlStatus();
    SetNaturalParameter(kPitchShiftUseDefaultSettings, sender->IsChecked() ? 1 : 0);
}

void PitchShiftEditorView::InitEditNumber(EditNumberPtr field, bool invert) {
    if (!field || (field != fSemitones && field != fCents)) return;
    const double reach = field == fSemitones ? kMostSemitones : kMostCents;
    field->SetHotTextScale(kLinearScale);
    field->GetRuler()->SetValueRange(invert ? reach : -reach, invert ? -reach : reach);
    field->SetValue(0);
    field->SetIncrement(kFieldIncrement);
    field->NotifyWhenChangedInteractively(
        boost::bind(&PitchShiftEditorView::OnEditNumberChangedInteractively, this, boost::placeholders::_1));
    if (invert) field->SetInvertSlider(true);
    field->RecalcLayout();
}

void PitchShiftEditorView::InitHotTextNumber(HotTextNumberPtr field, ParameterIndex index, bool flag) {
    if (!field) return;
    if (const auto* const generic = GetGenericInfo(index)) {
        field->SetMinValue(generic->GetLoBound());
        field->SetMaxValue(generic->GetHiBound());
    }
    ResetToDefaultOf(index, *field);
    const double value = GetNaturalOrStored(index);
    const bool isInside = value >= field->GetMinValue() && value <= field->GetMaxValue();
    field->SetValue(isInside ? value : field->GetMinValue());
    field->NotifyWhenChangedInteractively(
        boost::bind(&PitchShiftEditorView::OnHotTextNumberChangedInteractively, this, boost::placeholders::_1));
    if (flag) field->SetFormatFlags(kNoTrailingZeros);
}

void PitchShiftEditorView::InitRadioButtonGroup(ParameterIndex index) {
    const std::int64_t value = Truncated(GetNaturalOrStored(index));
    if (index != kPitchShiftPrecision) return;
    UpdatePrecisionRadioGroupState(value);
    for (const RadioButtonPtr& button : {fPrecisionLow, fPrecisionMedium, fPrecisionHigh})
        if (button)
            button->NotifyWhenChanged(
                boost::bind(&PitchShiftEditorView::OnLinkRadioButtonChanged, this, boost::placeholders::_1));
}

// Takes the stored value as it is.
void PitchShiftEditorView::InitCheckBox(CheckboxPtr box, ParameterIndex index) {
    if (!box) return;
    box->SetValue(IsOn(index));
    EnableSettings(!box->IsChecked());
    box->NotifyWhenChanged(boost::bind(&PitchShiftEditorView::OnLinkCheckboxChanged, this, boost::placeholders::_1));
}

void PitchShiftEditorView::SetBoxLabel(OutlineBoxPtr& box, std::string_view id, std::string_view key) {
    box = FindNamed<uit::controls::UI_OutlineBoxWithLabel>(id);
    if (box) box->SetLabel(krocore::Localize(key));
}

void PitchShiftEditorView::SetNaturalParameter(ParameterIndex index, double natural) {
    SetParameter(index, ToNormalised(index, natural).value_or(static_cast<float>(natural)));
}

double PitchShiftEditorView::GetRatioOfFields() const {
    if (!fSemitones || !fCents) return 1;
    const double semitones = MakeWhole(fSemitones->GetValue());
    return std::pow(2.0, (semitones + MakeHundredths(fCents->GetValue()) / kCentsInSemitone) / kSemitonesInOctave);
}

void PitchShiftEditorView::EnableSettings(bool enable) {
    if (fSplicingFrequency) fSplicingFrequency->SetEnabled(enable);
    if (fOverlapping) fOverlapping->SetEnabled(enable);
}

} // namespace qocui::ui
