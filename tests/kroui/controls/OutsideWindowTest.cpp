#include "ControlsFixture.h"
#include "kroui/controls/UI_Menu.h"
#include "kroui/controls/UI_Popup.h"

#include <algorithm>

using namespace kroui;
using namespace kroui::controls;

namespace {

// A window of 120 x 30 at 300, 200 of a screen of 800 x 600, filled by a popup with many items.
class OutsideWindowTest : public test::ControlsTest {
protected:
    OutsideWindowTest() {
        fWindow.Window().SetSize({120, 30});
        fWindow.SetScreen({-300, -200, 800, 600});
        fPopup = Add<UI_Popup>({0, 0, 120, 24});
        for (int i = 0; i < 12; ++i)
            fPopup->AddItem(krocore::ToUTF16("Item " + std::to_string(i)));
        fPopup->SetValue(1);
        fPopup->UI_SetTooltip(u"What it is for");
        fWindow.Paint();
    }
    Point ItemPoint(int item) const { return fPopup->Menu()->ItemRectInWindow(item).Centre(); }
    Rect MenuFrame() const { return fPopup->Menu()->UI_GetFrame().Inset(UI_Menu::kShadow, UI_Menu::kShadow); }

    boost::intrusive_ptr<UI_Popup> fPopup;
};

long DifferentPixels(const limner::Image& a, const limner::Image& b) {
    EXPECT_EQ(a.Pixels().size(), b.Pixels().size());
    long count = 0;
    for (std::size_t i = 0; i < std::min(a.Pixels().size(), b.Pixels().size()); ++i)
        count += a.Pixels()[i] != b.Pixels()[i] ? 1 : 0;
    return count;
}

TEST_F(OutsideWindowTest, AMenuIsWholeOutsideTheWindowAndChoosesThere) {
    fWindow.Click(Middle(*fPopup));
    fWindow.Paint();
    ASSERT_EQ(fWindow.ShownOutside().size(), 1U);
    const auto shown = fWindow.ShownOutside().front();
    EXPECT_TRUE(shown.takesEvents);
    EXPECT_EQ(shown.place, MenuFrame());
    EXPECT_GT(shown.place.height, 12 * 20) << "every item";
    ASSERT_NE(shown.picture, nullptr);
    EXPECT_EQ(shown.picture->PixelHeight(), shown.place.height);

    // A place that the window does not have.
    fWindow.MoveTo(ItemPoint(9));
    EXPECT_GT(ItemPoint(9).y, 30);
    EXPECT_EQ(fPopup->Menu()->HighlightedItem(), 9);
    fWindow.Paint();
    const long changed = DifferentPixels(*shown.picture, *fWindow.ShownOutside().front().picture);
    EXPECT_GT(changed, 1000) << "the highlight is painted";
    EXPECT_LT(changed, 2 * 120 * 24) << "and nothing else";
    fWindow.Click(ItemPoint(9));
    EXPECT_EQ(fPopup->GetValue(), 9);
    EXPECT_TRUE(fWindow.ShownOutside().empty());
}

TEST_F(OutsideWindowTest, APressElsewhereOnTheScreenClosesIt) {
    fWindow.Click(Middle(*fPopup));
    fWindow.Click({-250, 350});
    EXPECT_FALSE(fPopup->IsOpen());
    EXPECT_TRUE(fWindow.ShownOutside().empty());
    EXPECT_EQ(fPopup->GetValue(), 1);
}

TEST_F(OutsideWindowTest, AMenuStaysOnTheScreen) {
    fWindow.SetScreen({-700, -400, 800, 430}); // the window is in the corner at the right bottom
    fWindow.Click(Middle(*fPopup));
    const Rect screen{-700, -400, 800, 430};
    EXPECT_EQ(Intersection(MenuFrame(), screen), MenuFrame());
    EXPECT_GT(MenuFrame().height, 12 * 20);
}

TEST_F(OutsideWindowTest, ATipIsShownWholeAndLetsThePointerThrough) {
    fWindow.MoveTo(Middle(*fPopup));
    fWindow.Advance(1);
    ASSERT_EQ(fWindow.ShownOutside().size(), 1U);
    const auto tip = fWindow.ShownOutside().front();
    EXPECT_FALSE(tip.takesEvents);
    EXPECT_GT(tip.place.Bottom(), 30);
    ASSERT_NE(tip.picture, nullptr);
}

TEST_F(OutsideWindowTest, AnotherThemeIsPaintedOutsideToo) {
    fWindow.MoveTo(Middle(*fPopup));
    fWindow.Advance(1);
    const auto dark = fWindow.ShownOutside().front();
    fWindow.Window().SetTheme(ui::Theme::Light());
    fWindow.Paint();
    const long pixels = static_cast<long>(dark.place.width * dark.place.height);
    EXPECT_GT(DifferentPixels(*dark.picture, *fWindow.ShownOutside().front().picture), pixels / 2);
}

TEST_F(OutsideWindowTest, WhatHasRoomInTheWindowStaysInIt) {
    fWindow.Window().SetSize({400, 400});
    fRoot->UI_SetFrame({0, 0, 400, 400});
    fPopup->UI_SetFrame({100, 30, 120, 24});
    fWindow.Click(Middle(*fPopup));
    ASSERT_TRUE(fPopup->IsOpen());
    EXPECT_TRUE(fWindow.ShownOutside().empty());
}

} // namespace
