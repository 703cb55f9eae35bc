#include "kroui/controls/ScrollView.h"
#include "ControlsFixture.h"
#include "kroui/controls/UI_TextButton.h"

using namespace kroui;
using namespace kroui::controls;
using ui::Key;

namespace {

// A place of 100 x 80 that shows a document of 300 x 400 with three buttons under each other.
class ScrollViewTest : public test::ControlsTest {
protected:
    ScrollViewTest() {
        fScroll = Add<ScrollView>({20, 10, 100, 80});
        fDocument->UI_SetFrame({0, 0, 300, 400});
        for (const float top : {0.0F, 200.0F, 370.0F})
            fButtons.push_back(Add<UI_TextButton>({150, top, 60, 24}, fDocument.get()));
        fScroll->SetDocument(fDocument);
    }
    bool IsSeen(const ui::UI_Node& node) const {
        const Point corner = node.UI_LocalToWindow({});
        const Rect frame{corner.x, corner.y, node.UI_GetFrame().width, node.UI_GetFrame().height};
        return Intersection(frame, fScroll->UI_GetFrame()) == frame;
    }

    boost::intrusive_ptr<ScrollView> fScroll;
    boost::intrusive_ptr<ui::UI_SubView> fDocument{new ui::UI_SubView};
    std::vector<boost::intrusive_ptr<UI_TextButton>> fButtons;
};

TEST_F(ScrollViewTest, WhatGetsTheFocusByKeysComesIntoSight) {
    for (const auto& button : fButtons) {
        EXPECT_FALSE(IsSeen(*button));
        fWindow.PressKey(Key::kTab);
        EXPECT_TRUE(button->UI_HasFocus());
        EXPECT_TRUE(IsSeen(*button));
    }
    fWindow.PressKey(Key::kTab); // around the end
    EXPECT_TRUE(IsSeen(*fButtons.front()));
}

TEST_F(ScrollViewTest, AViewInAnotherComesIntoSightWithWhatItShows) {
    const auto outer = Add<ScrollView>({0, 0, 200, 60});
    boost::intrusive_ptr<ui::UI_SubView> page(new ui::UI_SubView);
    page->UI_SetFrame({0, 0, 200, 1000});
    fRoot->ChildRemove(fScroll.get());
    fScroll->UI_SetFrame({20, 600, 100, 80});
    page->ChildPushBack(fScroll);
    outer->SetDocument(page);
    fButtons[1]->UI_Reveal(fButtons[1]->UI_GetLocalRect());
    const Point corner = fButtons[1]->UI_LocalToWindow({});
    EXPECT_GE(corner.y, 0);
    EXPECT_LE(corner.y + 24, 60);
    EXPECT_GE(corner.x, 0);
    EXPECT_LE(corner.x + 60, 120);
}

TEST_F(ScrollViewTest, TheWheelScrollsToTheEndsAndNoFurther) {
    for (int i = 0; i < 20; ++i)
        fWindow.Wheel({30, 50}, -1);
    EXPECT_EQ(fScroll->Offset().y, 400 - 80);
    fWindow.Wheel({30, 50}, -1, ui::kShift);
    EXPECT_GT(fScroll->Offset().x, 0);
    for (int i = 0; i < 20; ++i)
        fWindow.Wheel({30, 50}, 1);
    EXPECT_EQ(fScroll->Offset().y, 0);
}

} // namespace
