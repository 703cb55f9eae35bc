#pragma once

#include "qocui/controls/AudioComponentEditorXMLView.h"

namespace kroui::controls {
class UI_Checkbox;
class UI_ControlChangedMessage;
class UI_HotTextNumber;
class UI_InteractiveControlChangedMessage;
class UI_Popup;
class UI_TextButton;
} // namespace kroui::controls

namespace qocui::ui {

class NotchFilterGraph;

// The notch filter's panel: the graph, and for each of the six sections frequency, gain and switch; below them the
// width of the notches, the ultra quiet mode, and one gain for all sections.
class QOCUI_API NotchFilterEditorView : public qocui::controls::AudioComponentEditorXMLView {
public:
    explicit NotchFilterEditorView(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter);

    const kroui::limner::SupplierInterface* UI_GetDrawSupplier() const override;

protected:
    ~NotchFilterEditorView() override;

    boost::intrusive_ptr<kroui::ui::UI_Node> CreateCustomNode(const krocore::string16& className) const override;
    void ConnectControls() override;

private:
    static constexpr std::size_t kSections = 6;

    using HotTextPtr = boost::intrusive_ptr<kroui::controls::UI_HotTextNumber>;
    using TextButtonPtr = boost::intrusive_ptr<kroui::controls::UI_TextButton>;
    using CheckboxPtr = boost::intrusive_ptr<kroui::controls::UI_Checkbox>;
    using PopupPtr = boost::intrusive_ptr<kroui::controls::UI_Popup>;

    struct Section {
        HotTextPtr frequency;
        HotTextPtr gain;
        TextButtonPtr enable;
    };

    // Each finds its control, connects it with the parameter and shows the parameter in it.
    HotTextPtr ConnectHotText(const std::string& id, int parameterIndex);
    TextButtonPtr ConnectTextButton(const std::string& id, int parameterIndex);
    CheckboxPtr ConnectCheckbox(const std::string& id, int parameterIndex);
    void ConnectNotchWidthPopup();
    // Runs the refresher now and whenever the parameter changes.
    void Refresh(int parameterIndex, const boost::function<void()>& refresher);
    // Bounds, default and name as the effect describes the parameter.
    void DescribeHotText(kroui::controls::UI_HotTextNumber& field, int parameterIndex);
    // Sets the room for the unit, so that the numbers of a column end at one line.
    void AlignNumber(kroui::controls::UI_HotTextNumber& field);

    void UpdateHotText(const HotTextPtr& field, int parameterIndex);
    void UpdateTextButton(const TextButtonPtr& button, int parameterIndex);
    void UpdateCheckbox(const CheckboxPtr& box, int parameterIndex);
    void UpdateNotchWidthPopup();
    void UpdateSectionControlsEnablement();
    void UpdateGraph();
    void FollowSampleRate();

    void OnHotTextChanged(kroui::controls::UI_InteractiveControlChangedMessage* message, int parameterIndex);
    void OnTextButtonChanged(kroui::controls::UI_ControlChangedMessage* message, int parameterIndex);
    void OnCheckboxChanged(kroui::controls::UI_ControlChangedMessage* message, int parameterIndex);
    void OnNotchWidthPopupChanged(kroui::controls::UI_ControlChangedMessage* message);

    void WriteSwitch(kroui::controls::UI_ControlChangedMessage* message, int parameterIndex);

    boost::intrusive_ptr<NotchFilterGraph> fGraph;
    Section fSections[kSections];
    PopupPtr fNotchWidth;
    CheckboxPtr fUltraQuiet;
    CheckboxPtr fFixGain;
    HotTextPtr fFixedGain;
};

} // namespace qocui::ui
