#pragma once

#include "qocui/controls/AudioComponentEditorXMLView.h"

namespace kroui::controls {
class UI_Checkbox;
class UI_ControlChangedMessage;
class UI_DisclosureTriangleButton;
class UI_InteractiveControlChangedMessage;
class UI_PictureButton;
class UI_Popup;
} // namespace kroui::controls

namespace qocui::ui {

class FFTFilterGraph;

// The FFT filter's panel: the curve, its frequency scale and smoothness, and, in a section that can be opened, the size
// and the window of the analysis.
class QOCUI_API FFTFilterEditorView : public qocui::controls::AudioComponentEditorXMLView {
public:
    explicit FFTFilterEditorView(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter);

    const kroui::limner::SupplierInterface* UI_GetDrawSupplier() const override;

protected:
    ~FFTFilterEditorView() override;

    boost::intrusive_ptr<kroui::ui::UI_Node> CreateCustomNode(const krocore::string16& className) const override;
    void ConnectControls() override;
    // The graph looks for itself what has changed.
    void SyncParameters() override;

private:
    using ChangedMessage = kroui::controls::UI_ControlChangedMessage;

    void FindControls();
    void FillFFTSizePopup();
    void ListenToControls();
    void ObserveParameters();

    void UpdateModePopup();
    void UpdateSplinesCheckBox();
    void UpdateFFTSizePopup();
    void UpdateWindowTypePopup();
    // What can't be automated can be changed only while the section is open and the filter lets it.
    void UpdateAdvancedControlsEnabement();
    // Shows or hides the advanced section as its button says; the panel takes the height of what is shown.
    void UpdateAdvancedSection();
    // Size and window change the response without changing the curve.
    void UpdateGraph();

    void OnLinearLogPopupChanged(ChangedMessage* message);
    void OnSplinesCheckboxChanged(ChangedMessage* message);
    void OnFFTSizePopupChanged(ChangedMessage* message);
    void OnWindowTypePopupChanged(ChangedMessage* message);
    void OnResetButtonChanged(ChangedMessage* message);
    void OnAdvancedButtonChangedInteractively(kroui::controls::UI_InteractiveControlChangedMessage* message);

    FFTFilterGraph* fGraph = nullptr;
    kroui::controls::UI_Popup* fMode = nullptr;
    kroui::controls::UI_Checkbox* fSplines = nullptr;
    kroui::controls::UI_DisclosureTriangleButton* fAdvanced = nullptr;
    kroui::controls::UI_Popup* fFFTSize = nullptr;
    kroui::controls::UI_Popup* fWindowType = nullptr;
    kroui::controls::UI_PictureButton* fReset = nullptr;
    kroui::ui::UI_Node* fAdvancedSection = nullptr;
    bool fIsAdvancedOpen = false;
};

} // namespace qocui::ui
