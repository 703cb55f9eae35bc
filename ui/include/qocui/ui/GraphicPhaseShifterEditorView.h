#pragma once

#include "kromediatypes/AudioChannelLayout.h"
#include "qocui/controls/AudioComponentEditorXMLView.h"

namespace kroui::controls {
class UI_Checkbox;
class UI_ControlChangedMessage;
class UI_PictureButton;
class UI_Popup;
class UI_RadioButton;
} // namespace kroui::controls

namespace qocui::ui {

class GraphicPhaseShifterGraph;

// The graphic phase shifter's panel: the phase curve, the scale and the range of its axes, its smoothness, the channels
// that it goes for and the size of the analysis.
class QOCUI_API GraphicPhaseShifterEditorView : public qocui::controls::AudioComponentEditorXMLView {
public:
    explicit GraphicPhaseShifterEditorView(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter);

    const kroui::limner::SupplierInterface* UI_GetDrawSupplier() const override;

protected:
    ~GraphicPhaseShifterEditorView() override;

    boost::intrusive_ptr<kroui::ui::UI_Node> CreateCustomNode(const krocore::string16& className) const override;
    void ConnectControls() override;
    // The graph looks for itself what has changed.
    void SyncParameters() override;

private:
    using ChangedMessage = kroui::controls::UI_ControlChangedMessage;

    void FindControls();
    void FillChannelPopup();
    // Fills it again when the channels have become others.
    void FollowChannels();
    void ListenToControls();
    void ProvideImages();
    void ObserveParameters();

    void UpdateScaleButtons();
    void UpdateRangeButtons();
    void UpdateSplinesCheckBox();
    void UpdateFFTSizePopup();
    void UpdateChannelPopup();
    // The FFT size can be changed only while the filter lets it.
    void UpdateAdvancedControlsEnabement();

    void OnScaleButtonChanged(ChangedMessage* message, bool linear);
    void OnRangeButtonChanged(ChangedMessage* message, bool wide);
    void OnSplinesCheckboxChanged(ChangedMessage* message);
    void OnFFTSizePopupChanged(ChangedMessage* message);
    void OnChannelPopupChanged(ChangedMessage* message);
    void OnResetButtonChanged(ChangedMessage* message);

    // The name of an input channel, its number counted from 1 if it has none.
    krocore::string16 GetChannelName(std::size_t index) const;
    void SyncGraph();

    GraphicPhaseShifterGraph* fGraph = nullptr;
    kroui::controls::UI_RadioButton* fLinear = nullptr;
    kroui::controls::UI_RadioButton* fLogarithmic = nullptr;
    kroui::controls::UI_RadioButton* fRange180 = nullptr;
    kroui::controls::UI_RadioButton* fRange360 = nullptr;
    kroui::controls::UI_Checkbox* fSplines = nullptr;
    kroui::controls::UI_Popup* fFFTSize = nullptr;
    kroui::controls::UI_Popup* fChannel = nullptr;
    kroui::controls::UI_PictureButton* fReset = nullptr;
    kromediatypes::AudioChannelLayout fChannelLayout; // that the pop-up names
};

} // namespace qocui::ui
