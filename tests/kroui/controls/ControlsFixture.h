#pragma once

#include "kroui/controls/UI_InteractiveControlView.h"
#include "kroui/limner/CairoSupplier.h"
#include "kroui/ui/HeadlessWindow.h"

#include <gmock/gmock.h>

#include <string>

namespace kroui::test {

// A window with an empty content, to which tests add controls; hears what they send.
class ControlsTest : public testing::Test {
protected:
    ControlsTest() {
        fRoot->UI_SetFrame({0, 0, 400, 300});
        fWindow.Window().SetContent(fRoot);
    }

    template <class Control>
    boost::intrusive_ptr<Control> Add(const Rect& frame, ui::UI_Node* parent = nullptr) {
        boost::intrusive_ptr<Control> control(new Control);
        control->UI_SetFrame(frame);
        (parent ? parent : fRoot.get())->ChildPushBack(control);
        return control;
    }

    // From now on the control's messages go to fHeard: digits for a gesture's steps, "c" for a committed change.
    void Listen(controls::UI_InteractiveControlView& control) {
        control.NotifyWhenChangedInteractively([this](controls::UI_InteractiveControlChangedMessage* message) {
            fHeard += static_cast<char>('0' + message->GetChangeMessage());
        });
        control.NotifyWhenChanged([this](controls::UI_ControlChangedMessage*) { fHeard += 'c'; });
    }
    std::string Heard() { return std::exchange(fHeard, {}); }

    static Point Middle(const ui::UI_Node& node) { return ui::HeadlessWindow::CentreOf(node); }

    limner::CairoSupplier fSupplier;
    ui::HeadlessWindow fWindow{fSupplier, {400, 300}};
    boost::intrusive_ptr<ui::UI_SubView> fRoot{new ui::UI_SubView};
    std::string fHeard;
};

} // namespace kroui::test
