#pragma once

#include "qoc/components/ScientificFilterSettings.h"
#include "qocui/controls/AudioComponentEditorXMLView.h"
#include "qocui/ui/SFGraph.h"

#include <array>
#include <vector>

namespace kroui::controls {
class UI_Popup;
class UI_RadioButton;
class ValueControl;
} // namespace kroui::controls
namespace uit::controls {
class ColorField;
}

namespace qocui::ui {

// The scientific filter's panel: the filter's type, mode, order and edges, its ripple and attenuation, the master gain,
// and the response with a choice of what to see of it. What a type or mode does not use is disabled.
//
// Some numbers move others. The cutoffs of a band filter keep their order: the one that is dragged pushes the other one
// along, which comes back with it. The transition bandwidth is measured by the filter; dragging it chooses the lowest
// order that is that narrow, and what the filter then has is shown when the drag ends. While such a gesture lasts, the
// view tells its base not to notify observers during SyncParameters: the gesture's own writes would come back as
// changes from elsewhere, one by one, and set the number under the user's hand to what became of it. The handler shows
// what depends on the number itself, and at the gesture's end, with the observers back on, everything is read again, so
// that what came from elsewhere meanwhile is not missed. An abandoned gesture gives all that it has moved back.
class QOCUI_API ScientificFilterEditorView : public qocui::controls::AudioComponentEditorXMLView {
public:
    explicit ScientificFilterEditorView(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter);

    const kroui::limner::SupplierInterface* UI_GetDrawSupplier() const override;

protected:
    ~ScientificFilterEditorView() override;

    void ConnectControls() override;
    boost::intrusive_ptr<kroui::ui::UI_Node> CreateCustomNode(const krocore::string16& className) const override;
    // Updates the controls once, however many parameters have changed, and follows the sample rate, too.
    void SyncParameters() override;

private:
    using ChangedMessage = kroui::controls::UI_ControlChangedMessage;
    using InteractiveMessage = kroui::controls::UI_InteractiveControlChangedMessage;
    using View = SFGraph::View;

    using ValueControl = kroui::controls::ValueControl;

    // A number of the panel and its parameter.
    struct Number {
        int parameterIndex;
        const char* id;
    };
    static const std::array<Number, 8> kNumbers;
    static constexpr int kSoundParameterCount = 9; // type to master gain

    void FindControls();
    void InitNumbers();
    void LimitFrequencies();
    void ListenToControls();
    void ObserveParameters();

    void UpdateControls();
    void UpdateNumbers();
    void UpdateEnablement();
    void UpdateView();

    void OnTypeChanged(ChangedMessage* message);
    void OnModeChanged(ChangedMessage* message);
    std::vector<kroaudiofilterhost::AudioFilterParameterValue> ValuesForMode(int item);
    void OnViewChanged(ChangedMessage* message, View view);
    void OnAxisChanged(ChangedMessage* message);
    void OnColorChanged(InteractiveMessage* message, View view);
    void OnNumberChanged(InteractiveMessage* message, int parameterIndex);

    void BeginGesture(int parameterIndex);
    void EndGesture(int parameterIndex);
    void TakeBack();
    void WriteNumber(int parameterIndex);
    void WriteCutoff(int parameterIndex, double hertz);
    void SetNatural(int parameterIndex, double value);

    ValueControl* ControlOf(int parameterIndex) const;
    int Item(int parameterIndex);
    qoc::components::ScientificFilterSettings Settings();

    SFGraph* fGraph = nullptr;
    kroui::controls::UI_Popup* fType = nullptr;
    kroui::controls::UI_Popup* fMode = nullptr;
    std::array<ValueControl*, 8> fNumbers{}; // as kNumbers
    std::array<kroui::controls::UI_RadioButton*, SFGraph::kViewCount> fViews{};
    std::array<uit::controls::ColorField*, SFGraph::kViewCount> fColors{};
    kroui::controls::UI_RadioButton* fLinearAxis = nullptr;
    kroui::controls::UI_RadioButton* fLogarithmicAxis = nullptr;

    int fGestureIndex = -1;                                   // of the number that is being changed; -1 for none
    std::array<float, kSoundParameterCount> fBeforeGesture{}; // stored values
    bool fIsStale = false;                                    // a parameter has changed since the controls were updated
    float fSampleRate = 0;                                    // that the controls were set up for
};

} // namespace qocui::ui
