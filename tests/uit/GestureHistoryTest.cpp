// What the user did to a control before has no say in what a gesture does now.

#include "kroui/controls/UI_HotTextNumber.h"
#include "kroui/limner/CairoSupplier.h"
#include "kroui/limner/Image.h"
#include "kroui/ui/HeadlessWindow.h"
#include "uit/controls/UI_EditNumber.h"

#include <gmock/gmock.h>

namespace uit::controls {
namespace {

using kroui::Point;
using kroui::controls::UI_HotTextNumber;
using kroui::controls::UI_InteractiveControlView;
using kroui::controls::ValueControl;
using kroui::ui::HeadlessWindow;
using kroui::ui::kCommand;
using kroui::ui::Key;

// A number of 0...100 at 40, alone in a window.
struct Stage {
    explicit Stage(boost::intrusive_ptr<UI_InteractiveControlView> made, bool atSlider) : control(std::move(made)) {
        auto& number = dynamic_cast<ValueControl&>(*control);
        number.SetMinMaxValue(0, 100, 25);
        number.SetDecimalPlaces(2);
        control->UI_SetFrame({20, 20, 300, 40});
        window.Window().SetContent(control);
        control->NotifyWhenChangedInteractively([this](const auto* message) {
            heard += std::to_string(message->GetChangeMessage()) + ":" +
                     std::to_string(dynamic_cast<ValueControl&>(*control).GetValue()) + " ";
        });
        window.Paint();
        grip = HeadlessWindow::CentreOf(*control);
        if (const auto* const edit = dynamic_cast<const UI_EditNumber*>(control.get()))
            grip = edit->UI_LocalToWindow((atSlider ? edit->Layout().track : edit->Layout().number).Centre());
        Settle();
    }
    void Settle() {
        window.Advance(1);
        dynamic_cast<ValueControl&>(*control).SetValue(40);
        window.Window().SetFocus(nullptr);
        window.MoveTo({400, 70});
        heard.clear();
    }

    std::vector<std::uint32_t> Picture() {
        const kroui::limner::ImagePtr picture = window.Snapshot();
        return {picture->Pixels().begin(), picture->Pixels().end()};
    }

    kroui::limner::CairoSupplier supplier;
    HeadlessWindow window{supplier, {420, 80}};
    boost::intrusive_ptr<UI_InteractiveControlView> control;
    Point grip;
    std::string heard;
};

using Gesture = void (*)(HeadlessWindow& window, Point grip);

constexpr Gesture kGestures[] = {
    [](HeadlessWindow& window, Point grip) { window.Click(grip); },
    [](HeadlessWindow& window, Point grip) { window.Click(grip, kCommand); },
    [](HeadlessWindow& window, Point grip) { window.DoubleClick(grip), window.PressKey(Key::kEscape); },
    [](HeadlessWindow& window, Point grip) {
        window.Drag(grip, {grip.x + 30, grip.y});
    },
    [](HeadlessWindow& window, Point grip) {
        window.Drag(grip, {grip.x - 900, grip.y});
    },
    [](HeadlessWindow& window, Point grip) {
        window.Drag(grip, {grip.x + 30, grip.y}, 8, kCommand);
    },
    [](HeadlessWindow& window, Point grip) {
        window.Press(grip);
        window.MoveTo({grip.x + 40, grip.y}, kroui::ui::kShift);
        window.PressKey(Key::kEscape);
        window.Release();
    },
    [](HeadlessWindow& window, Point grip) {
        window.Press(grip);
        window.MoveTo({grip.x + 40, grip.y});
        window.Window().Deactivated();
        window.Release();
    },
    [](HeadlessWindow& window, Point grip) { window.Wheel(grip, 1); },
    [](HeadlessWindow& window, Point grip) { window.Wheel(grip, -0.6F); },
    [](HeadlessWindow& window, Point grip) { window.Click(grip), window.PressKey(Key::kEnd); },
};

TEST(GestureHistoryTest, AGestureDoesWhatItDoesToANewControl) {
    struct Kind {
        boost::intrusive_ptr<UI_InteractiveControlView> (*make)();
        bool atSlider;
    };
    const Kind kinds[] = {
        {[]() -> boost::intrusive_ptr<UI_InteractiveControlView> { return new UI_HotTextNumber; }, false},
        {[]() -> boost::intrusive_ptr<UI_InteractiveControlView> { return new UI_EditNumber; }, true},
        {[]() -> boost::intrusive_ptr<UI_InteractiveControlView> { return new UI_EditNumber; }, false},
    };
    for (const Kind& kind : kinds) {
        for (const Gesture& gesture : kGestures) {
            Stage fresh(kind.make(), kind.atSlider);
            gesture(fresh.window, fresh.grip);
            fresh.window.Advance(1);
            for (const Gesture& before : kGestures) {
                Stage used(kind.make(), kind.atSlider);
                before(used.window, used.grip);
                used.Settle();
                gesture(used.window, used.grip);
                used.window.Advance(1);
                const std::string which = "kind " + std::to_string(&kind - kinds) + ", gesture " +
                                          std::to_string(&gesture - kGestures) + " after " +
                                          std::to_string(&before - kGestures);
                EXPECT_EQ(used.heard, fresh.heard) << which;
                EXPECT_EQ(used.Picture(), fresh.Picture()) << which;
            }
        }
    }
}

} // namespace
} // namespace uit::controls
