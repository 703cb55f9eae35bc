#pragma once

#include "qocui/controls/TarnLioAudioComponentEditorView.h"

namespace kroui::controls {
class UI_Button;
class UI_ControlChangedMessage;
} // namespace kroui::controls
namespace uit::controls {
class UI_CurveEditor;
}

namespace qocui::ui {

// The dynamics effect's panel: the scripts "DynamicsUI", and three buttons of theirs that add a point to the transfer
// curve, delete points and invert it. The changed curve goes to the effect the same way as one that the user drags:
// through the cells that the layout binds the curve to. Set up when constructed; owned by reference count;
// user-interface thread.
class QOCUI_API DynamicsEditorView : public qocui::controls::TarnLioAudioComponentEditorView {
public:
    // Throws orrin::error_t for scripts that can't be read.
    explicit DynamicsEditorView(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter);

protected:
    ~DynamicsEditorView() override;

private:
    void OnAddPointButtonChanged(kroui::controls::UI_ControlChangedMessage* message);
    void OnDeletePointButtonChanged(kroui::controls::UI_ControlChangedMessage* message);
    void OnInvertButtonChanged(kroui::controls::UI_ControlChangedMessage* message);

    // Null where the layout has no such control.
    boost::intrusive_ptr<uit::controls::UI_CurveEditor> fCurveEditor;
    boost::intrusive_ptr<kroui::controls::UI_Button> fAddPointButton;
    boost::intrusive_ptr<kroui::controls::UI_Button> fDeletePointButton;
    boost::intrusive_ptr<kroui::controls::UI_Button> fInvertButton;
};

} // namespace qocui::ui
