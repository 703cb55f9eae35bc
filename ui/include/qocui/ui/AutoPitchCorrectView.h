#pragma once

#include "kromediatypes/AudioChannelLayout.h"
#include "qocui/controls/AudioComponentEditorXMLView.h"

#include <cstdint>

namespace kroui::controls {
class UI_ControlChangedMessage;
class UI_ControlView;
class UI_HotTextNumber;
class UI_InteractiveControlChangedMessage;
class UI_Popup;
class UI_StaticText;
} // namespace kroui::controls
namespace uit::controls {
class UI_EditNumber;
}

namespace qocui::ui {

class CorrectionMeterView;

// The automatic pitch correction's panel: the scale and key to correct to, what to analyse, how fast and from what
// deviation on to correct, and, as a number and on a meter, what is being corrected now.
class QOCUI_API AutoPitchCorrectView : public qocui::controls::AudioComponentEditorXMLView {
public:
    explicit AutoPitchCorrectView(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter);

    // Nothing to be done: SyncParameters follows the filter's flag itself.
    void UpdateNonAutomatableControls() {}

protected:
    ~AutoPitchCorrectView() override;

    boost::intrusive_ptr<kroui::ui::UI_Node> CreateCustomNode(const krocore::string16& className) const override;
    void ConnectControls() override;
    // Follows the channels, and enables what can't be automated only while the filter lets it be changed.
    void SyncParameters() override;

private:
    void FindControls();
    void FillKeyPopup();
    void FillFFTSizePopup();
    void FillChannelPopup();
    void FollowChannels();
    void InitCalibrationHotText();
    void ConnectHandlers();
    // `invert`: greater values to the left.
    void InitEditNumber(uit::controls::UI_EditNumber* slider, int index, bool invert);

    void UpdateScalePopup();
    void UpdateKeyPopup();
    void UpdateChannelPopup();
    void UpdateFFTSizePopup();
    void UpdateCalibrationHotText();
    void UpdateAttackSlider();
    void UpdateSensitivitySlider();
    void UpdateCorrectionValue();

    void OnScalePopupChanged(kroui::controls::UI_ControlChangedMessage* message);
    void OnKeyPopupChanged(kroui::controls::UI_ControlChangedMessage* message);
    void OnChannelPopupChanged(kroui::controls::UI_ControlChangedMessage* message);
    void OnFFTSizePopupChanged(kroui::controls::UI_ControlChangedMessage* message);
    void OnCalibrationChangedInteractively(kroui::controls::UI_InteractiveControlChangedMessage* message);
    void OnEditNumberChangedInteractively(kroui::controls::UI_InteractiveControlChangedMessage* message);

    void ShowItem(kroui::controls::UI_Popup* popup, int index, std::int32_t itemCount);
    void ShowNatural(uit::controls::UI_EditNumber* slider, int index);
    // Notes of all keys are the same in the chromatic scale.
    void EnableKey(int scaleItem);

    boost::intrusive_ptr<kroui::controls::UI_Popup> fScale;
    boost::intrusive_ptr<kroui::controls::UI_Popup> fKey;
    boost::intrusive_ptr<kroui::controls::UI_ControlView> fKeyLabel;
    boost::intrusive_ptr<kroui::controls::UI_Popup> fChannel;
    boost::intrusive_ptr<kroui::controls::UI_Popup> fFFTSize;
    boost::intrusive_ptr<uit::controls::UI_EditNumber> fAttack;
    boost::intrusive_ptr<uit::controls::UI_EditNumber> fSensitivity;
    boost::intrusive_ptr<kroui::controls::UI_HotTextNumber> fCalibration;
    boost::intrusive_ptr<kroui::controls::UI_StaticText> fCorrection;
    bool fCanChangeNonAutomatable = false; // as the controls are enabled; the archive has them disabled
    std::int32_t fChannelCount = 0;
    kromediatypes::AudioChannelLayout fChannelLayout; // whose channels the pop-up names
    boost::intrusive_ptr<CorrectionMeterView> fMeter;
    bool fIsDraggingSlider = false; // what the filter tells meanwhile does not move the sliders
};

} // namespace qocui::ui
