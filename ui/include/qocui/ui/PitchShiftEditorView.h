#pragma once

#include "qoc/components/ParameterIndices.h"
#include "qocui/controls/AudioComponentEditorXMLView.h"

#include <cstdint>

namespace kroui::controls {
class UI_Checkbox;
class UI_ControlChangedMessage;
class UI_HotTextNumber;
class UI_InteractiveControlChangedMessage;
class UI_RadioButton;
} // namespace kroui::controls
namespace uit::controls {
class UI_EditNumber;
class UI_OutlineBoxWithLabel;
} // namespace uit::controls

namespace qocui::ui {

// The pitch shifter's panel. The pitch is one parameter, a frequency ratio; the user sets it as such or as semitones
// and cents, and the view keeps the three fields together. Besides: a choice of precision, and two expert settings that
// are out of use while the effect chooses them itself.
class QOCUI_API PitchShiftEditorView : public qocui::controls::AudioComponentEditorXMLView {
public:
    explicit PitchShiftEditorView(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter);

    const kroui::limner::SupplierInterface* UI_GetDrawSupplier() const override;

protected:
    ~PitchShiftEditorView() override;

    void ConnectControls() override;

private:
    friend class PitchShiftEditorAccess; // of the tests

    using ParameterIndex = qoc::components::ParameterIndex;
    using EditNumberPtr = boost::intrusive_ptr<uit::controls::UI_EditNumber>;
    using HotTextNumberPtr = boost::intrusive_ptr<kroui::controls::UI_HotTextNumber>;
    using RadioButtonPtr = boost::intrusive_ptr<kroui::controls::UI_RadioButton>;
    using CheckboxPtr = boost::intrusive_ptr<kroui::controls::UI_Checkbox>;
    using OutlineBoxPtr = boost::intrusive_ptr<uit::controls::UI_OutlineBoxWithLabel>;

    // To whole numbers and to two decimals, halves away from zero.
    static std::int32_t MakeWhole(double x);
    static double MakeHundredths(double x);
    static double ConvertSemitoneAndCentsToRatio(double semitones, double cents);
    // Whole cents, 0...100, above the semitone below.
    static double ConvertRatioToCents(double ratio);
    // The semitone at or below the ratio.
    static double ConvertRatioToSemitone(double ratio);
    // Rounds positive numbers, halves down; cuts negative ones off towards zero.
    static std::int16_t MakesureSemitonesIsInteger(double x);
    // In: what the fields show, out: what they shall show. Keeps the semitones where the cents can express the ratio
    // from there and they are no more than two away.
    static void ConvertRatioToSemitoneAndCents(double ratio, double& semitones, double& cents);

    // None of these writes a parameter.
    void UpdateRatioFromSemitoneAndCents();
    void UpdateSemitoneAndCentsFromRatio();
    void UpdatePrecisionRadioGroupState(std::int64_t precision);
    void UpdateSettingsControlStatus();
    void UpdateControlFromParameterValueChange(ParameterIndex index);

    // The only writer. `value`: normalised.
    void SetParameter(ParameterIndex index, float value);

    void OnEditNumberChangedInteractively(kroui::controls::UI_InteractiveControlChangedMessage* message);
    void OnHotTextNumberChangedInteractively(kroui::controls::UI_InteractiveControlChangedMessage* message);
    void OnLinkRadioButtonChanged(kroui::controls::UI_ControlChangedMessage* message);
    void OnLinkCheckboxChanged(kroui::controls::UI_ControlChangedMessage* message);

    // `invert`: greater values to the left.
    void InitEditNumber(EditNumberPtr field, bool invert);
    // `flag`: without trailing zeros.
    void InitHotTextNumber(HotTextNumberPtr field, ParameterIndex index, bool flag);
    void InitRadioButtonGroup(ParameterIndex index);
    void InitCheckBox(CheckboxPtr box, ParameterIndex index);
    void SetBoxLabel(OutlineBoxPtr& box, std::string_view id, std::string_view key);

    void SetNaturalParameter(ParameterIndex index, double natural);
    double GetRatioOfFields() const;
    void EnableSettings(bool enable);

    bool fIsSettingParameter = false; // the view itself writes: no observer answers
    EditNumberPtr fSemitones;
    EditNumberPtr fCents;
    OutlineBoxPtr fRatioBox;
    HotTextNumberPtr fRatio;
    RadioButtonPtr fPrecisionLow;
    RadioButtonPtr fPrecisionMedium;
    RadioButtonPtr fPrecisionHigh;
    OutlineBoxPtr fPrecisionBox;
    HotTextNumberPtr fSplicingFrequency;
    HotTextNumberPtr fOverlapping;
    CheckboxPtr fUseDefaultSettings;
    OutlineBoxPtr fSettingsBox;
};

} // namespace qocui::ui
