#pragma once

#include "qocui/controls/AudioComponentEditorXMLView.h"

#include <set>
#include <vector>

namespace kroui::controls {
class UI_Checkbox;
class UI_ControlChangedMessage;
class UI_InteractiveControlChangedMessage;
} // namespace kroui::controls
namespace uit::controls {
class UI_EditNumber;
}

namespace qocui::ui {

// The amplify effect's panel: a gain slider for each channel, in decibels, and a check box that makes moving one slider
// move them all. The sliders are made in code inside the archive's container.
class QOCUI_API AmplifyEditorView : public qocui::controls::AudioComponentEditorXMLView {
public:
    explicit AmplifyEditorView(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter);

    const kroui::limner::SupplierInterface* UI_GetDrawSupplier() const override;

protected:
    ~AmplifyEditorView() override;

    void ConnectControls() override;

private:
    void CreateSliders();
    boost::intrusive_ptr<uit::controls::UI_EditNumber> CreateSlider(unsigned long channel);
    // Gives all sliders the widest label's width, so that they begin at one line.
    void AlignLabels();
    void UpdateLinkChannelsCheckBox();
    void OnLinkChannelsCheckboxChanged(kroui::controls::UI_ControlChangedMessage* message);
    void OnAudioFilterGainChanged(unsigned long channel);
    void OnEditNumberChangedInteractively(kroui::controls::UI_InteractiveControlChangedMessage* message,
                                          unsigned long channel);
    // At the end of a gesture, for the sliders outside first...end - 1: they show what the filter got meanwhile, and
    // edits that a gesture opened while the channels were linked are closed.
    void LeaveOtherChannels(unsigned long first, unsigned long end, bool wereLinked);
    // The channel's name in the layout of the filter's first input, or output, bus.
    krocore::string16 GetChannelName(unsigned long channel, bool abbreviated, bool inputBuses);

    unsigned long GetChannelCount();
    bool AreChannelsLinked();

    kroui::controls::UI_Checkbox* fLinkChannels = nullptr;
    std::vector<boost::intrusive_ptr<uit::controls::UI_EditNumber>> fSliders; // in channel order
    kroui::ui::UI_Node* fGainContainer = nullptr;
    bool fIsSetting = false;                 // a drag is under way: the filter's gains don't move the sliders
    std::set<unsigned long> fLinkedGestures; // channels whose gesture has opened an edit of every gain
};

} // namespace qocui::ui
