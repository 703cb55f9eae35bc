#pragma once

#include "TemporaryFolder.h"
#include "kroui/ui/HeadlessWindow.h"
#include "workbench/session/EffectNames.h"
#include "workbench/sound/SilentOutput.h"
#include "workbench/window/WorkbenchView.h"

#include <gtest/gtest.h>

namespace workbench {

// The whole workbench in a window without a screen, with the Amplify effect, on a clock that the test moves.
class WorkbenchFixture : public testing::Test {
protected:
    WorkbenchFixture()
        : fWindow(fLibrary.Supplier(), WorkbenchView::kDefaultSize),
          fSession(fOutput, Amplify(),
                   {.filter = {},
                    .presets = qohost::UserPresets(fFolder.Path() / "presets"),
                    .peaks = PeaksCache(fFolder.Path() / "peaks"),
                    .file = {}}) {
        fView = new WorkbenchView(fSession, Effects());
        fView->UI_SetFrame({0, 0, WorkbenchView::kDefaultSize.width, WorkbenchView::kDefaultSize.height});
        fWindow.Window().SetContent(fView);
        fWindow.Advance(kMoment);
    }
    ~WorkbenchFixture() override { fWindow.Window().SetContent(nullptr); }

    // Long enough for everything to have looked at everything.
    static constexpr double kMoment = 0.1;

    static const qoc::components::EffectDescription& Amplify() { return EffectFromName("amplify"); }
    static EffectList::Effects Effects() { return AvailableEffects(); }

    kroui::ui::UI_Node& Node(std::string_view id) {
        kroui::ui::UI_Node* const node = fView->UI_FindNode(id);
        if (!node) throw std::runtime_error("no node " + std::string(id));
        return *node;
    }
    void Click(std::string_view id) {
        fWindow.Click(kroui::ui::HeadlessWindow::CentreOf(Node(id)));
        fWindow.Advance(kMoment);
    }
    std::string TextOf(std::string_view id) {
        const auto info = Node(id).UI_GetAccessibleInfo();
        return krocore::ToStdString(info.name);
    }
    bool PressKey(kroui::ui::Key key, std::uint8_t modifiers = kroui::ui::kNoModifier, char16_t character = 0) {
        const bool isHandled = fWindow.PressKey(key, modifiers, character);
        fWindow.Advance(kMoment);
        return isHandled;
    }
    bool PressLetter(char16_t letter, std::uint8_t modifiers) {
        return PressKey(kroui::ui::Key::kCharacter, modifiers, letter);
    }
    std::string ValueOf(std::string_view id) { return krocore::ToStdString(Node(id).UI_GetAccessibleInfo().value); }
    // Opens the menu of a button and goes to the item in that place by keys, lines and greyed ones not counted.
    void ChooseFromMenu(std::string_view button, int item) {
        Click(button);
        for (int i = 0; i <= item; ++i)
            PressKey(kroui::ui::Key::kDown);
        PressKey(kroui::ui::Key::kEnter);
    }
    // The left channel's gain, normalised.
    float Gain() const { return fSession.Filter()->GetParameterValue(kLeftGain); }
    // Drags the left channel's slider from its knob at 0 dB.
    void DragGain(float distance) {
        const kroui::Point knob = GainKnob();
        fWindow.Drag(knob, {knob.x + distance, knob.y});
        fWindow.Advance(kMoment);
    }
    kroui::Point GainKnob() {
        // -96 ... 48 dB along the slider in the first row of the panel.
        kroui::ui::UI_Node* const row = Node("GainControlsContainer").Child(0);
        const kroui::Point place = row->UI_LocalToWindow({});
        return {place.x + 245, place.y + 14};
    }

    static constexpr int kLeftGain = 2;

    TemporaryFolder fFolder;
    PanelsLibrary fLibrary;
    kroui::ui::HeadlessWindow fWindow;
    SilentOutput fOutput;
    Session fSession;
    boost::intrusive_ptr<WorkbenchView> fView;
};

} // namespace workbench
