// What the controls of a panel open over the window, and what the user holds in them, goes when the panel is hidden.

#include "PanelWalk.h"

using kroui::Point;
using kroui::ui::HeadlessWindow;
using kroui::ui::Key;

namespace {

class HiddenPanelTest : public test::PanelWalk {
protected:
    kroui::limner::ImagePtr Picture() {
        fWindow.Window().InvalidateAll();
        return fWindow.Snapshot();
    }
};

TEST_P(HiddenPanelTest, NothingOfItsControlsStays) {
    using Opener = void (*)(HeadlessWindow&, Point);
    static constexpr Opener kOpeners[] = {
        [](HeadlessWindow& window, Point) { window.PressKey(Key::kSpace); },
        [](HeadlessWindow& window, Point) { window.PressKey(Key::kF2); },
        [](HeadlessWindow& window, Point middle) { window.DoubleClick(middle); },
        [](HeadlessWindow& window, Point middle) { window.Press(middle); },
    };
    Open();
    fView->UI_Show(false);
    const kroui::limner::ImagePtr empty = Picture();
    fView->UI_Show(true);
    for (kroui::controls::UI_ControlView* const control : Controls()) {
        for (const Opener& open : kOpeners) {
            if (!control->UI_IsVisibleInWindow()) continue; // one before has turned the page
            control->UI_TakeFocus();
            open(fWindow, HeadlessWindow::CentreOf(*control));
            fView->UI_Show(false);
            fWindow.MoveTo({1199, 899});
            const std::string name = krocore::ToStdString(control->UI_GetAccessibleInfo().name);
            EXPECT_FALSE(fWindow.Window().HasModalOverlay()) << name;
            EXPECT_EQ(fWindow.Window().FocusNode(), nullptr) << name;
            EXPECT_EQ(fWindow.Window().CaptureNode(), nullptr) << name;
            if (&open == &kOpeners[1]) { // the number's field, which stands over its neighbours
                EXPECT_TRUE(std::ranges::equal(Picture()->Pixels(), empty->Pixels())) << name;
            }
            fWindow.Release();
            fView->UI_Show(true);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Effects, HiddenPanelTest, testing::ValuesIn(qoc::components::AllEffects()),
                         test::EffectName());

} // namespace
