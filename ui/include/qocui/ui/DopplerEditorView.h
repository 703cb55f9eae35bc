#pragma once

#include "qocui/controls/AudioComponentEditorXMLView.h"

namespace kroui::controls {
class UI_Checkbox;
class UI_ControlChangedMessage;
class UI_HotTextNumber;
class UI_InteractiveControlChangedMessage;
class UI_Popup;
class UI_RadioButton;
class UI_StaticImage;
class UI_StaticText;
} // namespace kroui::controls
namespace uit::controls {
class UI_OptionalView;
}

namespace qocui::ui {

class DopplerGraph;

// The doppler effect's panel: a choice of the path's kind, five numbers that place the path and whose names depend on
// the kind, a picture of the path, two volume switches, the quality, and a line that tells how fast a circle is.
class QOCUI_API DopplerEditorView : public qocui::controls::AudioComponentEditorXMLView {
public:
    explicit DopplerEditorView(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter);

    const kroui::limner::SupplierInterface* UI_GetDrawSupplier() const override;

protected:
    ~DopplerEditorView() override;

    void ConnectControls() override;
    boost::intrusive_ptr<kroui::ui::UI_Node> CreateCustomNode(const krocore::string16& className) const override;
    void SyncParameters() override;

private:
    using HotText = kroui::controls::UI_HotTextNumber;
    using ChangedMessage = kroui::controls::UI_ControlChangedMessage;
    using InteractiveMessage = kroui::controls::UI_InteractiveControlChangedMessage;

    void FindControls();
    void FillQualityPopup();
    void UpdateControls();
    void ListenToControls();
    void ListenToHotText(HotText* field, int parameterIndex);
    void ProvideImages();
    void ObserveParameters();

    void UpdateStraightLineCircularButtons();
    void UpdateHotText(HotText* field, int parameterIndex);
    void UpdateDistanceCheckBox();
    void UpdateDirectionCheckBox();
    void UpdateQualityPopup();
    void UpdateDescriptionText();
    // Names the fields as the labels beside them do, for who asks a control for its name.
    void NameFields(int labelSet);
    // Puts the ends of the numbers, which their units follow, at one line.
    void AlignNumbers();
    void ShowInGraph(int parameterIndex, float value);

    void OnStraightLineButtonChanged(ChangedMessage* message);
    void OnCircularButtonChanged(ChangedMessage* message);
    void OnDistanceCheckboxChanged(ChangedMessage* message);
    void OnDirectionCheckboxChanged(ChangedMessage* message);
    void OnQualityPopupChanged(ChangedMessage* message);
    void OnHotTextChanged(InteractiveMessage* message, int parameterIndex);

    // The field of one of the five natural parameters; null if the archive lacks it.
    HotText* FieldOf(int parameterIndex) const;

    DopplerGraph* fGraph = nullptr;
    kroui::controls::UI_RadioButton* fStraightLine = nullptr;
    kroui::controls::UI_RadioButton* fCircular = nullptr;
    kroui::controls::UI_StaticImage* fStraightLineImage = nullptr;
    kroui::controls::UI_StaticImage* fCircularImage = nullptr;
    HotText* fRadius = nullptr;
    HotText* fVelocity = nullptr;
    HotText* fStartingAngle = nullptr;
    HotText* fCenterFront = nullptr;
    HotText* fCenterRight = nullptr;
    kroui::controls::UI_Checkbox* fDistance = nullptr;
    kroui::controls::UI_Checkbox* fDirection = nullptr;
    kroui::controls::UI_Popup* fQuality = nullptr;
    kroui::controls::UI_StaticText* fDescription = nullptr;
    uit::controls::UI_OptionalView* fOptionalLabels = nullptr;
    bool fInteractiveChange = false; // a drag on a hot text is under way
    bool fQualityEnabled = false;    // as the filter was last seen to allow
};

} // namespace qocui::ui
