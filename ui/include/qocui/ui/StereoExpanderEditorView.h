#pragma once

#include "qoc/components/ParameterIndices.h"
#include "qocui/controls/AudioComponentEditorXMLView.h"

namespace kroui::controls {
class UI_InteractiveControlChangedMessage;
}
namespace uit::controls {
class UI_EditNumber;
}

namespace qocui::ui {

// The stereo expander's panel: a slider for where the centre stands and one for the stereo expansion. Their ranges are
// what the effect says of its parameters.
class QOCUI_API StereoExpanderEditorView : public qocui::controls::AudioComponentEditorXMLView {
public:
    explicit StereoExpanderEditorView(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter);

    const kroui::limner::SupplierInterface* UI_GetDrawSupplier() const override;

protected:
    ~StereoExpanderEditorView() override;

    void ConnectControls() override;

private:
    using ParameterIndex = qoc::components::ParameterIndex;

    // `invert`: greater values to the left.
    void InitEditNumber(boost::intrusive_ptr<uit::controls::UI_EditNumber> slider, ParameterIndex index, bool invert);
    void UpdateControlFromParameterValueChange(ParameterIndex index);
    void SetParameter(ParameterIndex index, float normalised);
    void OnEditNumberChangedInteractively(kroui::controls::UI_InteractiveControlChangedMessage* message);

    bool fIsSettingParameter = false; // the view itself writes: no observer answers
    boost::intrusive_ptr<uit::controls::UI_EditNumber> fPan;
    boost::intrusive_ptr<uit::controls::UI_EditNumber> fExpand;
};

} // namespace qocui::ui
