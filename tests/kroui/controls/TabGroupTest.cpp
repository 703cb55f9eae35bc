#include "ControlsFixture.h"
#include "kroui/controls/UI_TabGroup.h"
#include "kroui/controls/UI_TextButton.h"
#include "kroui/limner/RecordingLimner.h"

using namespace kroui;
using namespace kroui::controls;
using testing::Contains;
using testing::StartsWith;
using ui::Key;

namespace {

class TabGroupTest : public test::ControlsTest {
protected:
    TabGroupTest() {
        fTabs = Add<UI_TabGroup>({10, 10, 300, 200});
        for (const char16_t* text : {u"Low", u"Middle", u"High"}) {
            fTabs->AddTab(text);
            fPages.push_back(Add<ui::UI_SubView>({}, fTabs.get()));
        }
        Listen(*fTabs);
    }
    Point InTab(int tab) const { return fTabs->UI_LocalToWindow(fTabs->TabRect(tab).Centre()); }
    std::string Shown() const {
        std::string shown;
        for (const auto& page : fPages)
            shown += page->UI_IsVisible() ? '1' : '0';
        return shown;
    }

    boost::intrusive_ptr<UI_TabGroup> fTabs;
    std::vector<boost::intrusive_ptr<ui::UI_SubView>> fPages;
};

TEST_F(TabGroupTest, PressShowsThePageInOneGesture) {
    EXPECT_EQ(Shown(), "100");
    fWindow.Click(InTab(2));
    EXPECT_EQ(fTabs->GetValue(), 2);
    EXPECT_EQ(Shown(), "001");
    EXPECT_EQ(Heard(), "012c");
    fWindow.Click(InTab(2));
    fWindow.Click({300, 20}); // behind the last tab
    EXPECT_EQ(Heard(), "");
}

TEST_F(TabGroupTest, SetValueSendsNothingAndTakesOnlyTabsThatExist) {
    fTabs->SetValue(1);
    EXPECT_EQ(Shown(), "010");
    fTabs->SetValue(3);
    EXPECT_EQ(fTabs->GetValue(), -1);
    EXPECT_EQ(Shown(), "000");
    EXPECT_EQ(Heard(), "");
}

TEST_F(TabGroupTest, KeysGoAlongTheRowAndStopAtItsEnds) {
    fTabs->UI_TakeFocus();
    const std::pair<Key, int> steps[] = {{Key::kRight, 1}, {Key::kEnd, 2},  {Key::kRight, 2},
                                         {Key::kLeft, 1},  {Key::kHome, 0}, {Key::kLeft, 0}};
    for (const auto& [key, value] : steps) {
        EXPECT_TRUE(fWindow.PressKey(key));
        EXPECT_EQ(fTabs->GetValue(), value);
    }
}

TEST_F(TabGroupTest, CtrlTabGoesRoundFromAControlOfAPageArrowsDoNot) {
    const auto button = Add<UI_TextButton>({10, 10, 80, 24}, fPages[0].get());
    button->UI_TakeFocus();
    fWindow.PressKey(Key::kRight);
    EXPECT_EQ(fTabs->GetValue(), 0);
    fWindow.PressKey(Key::kTab, ui::kCommand | ui::kShift);
    EXPECT_EQ(fTabs->GetValue(), 2);
    EXPECT_TRUE(fTabs->UI_HasFocus()) << "the button can't be seen any more";
    fWindow.PressKey(Key::kTab, ui::kCommand);
    EXPECT_EQ(fTabs->GetValue(), 0);
    EXPECT_EQ(Heard(), "012c012c");
}

TEST_F(TabGroupTest, PagesFillTheRoomBelowTheTabs) {
    const Rect page{0, UI_TabGroup::kTabHeight + UI_TabGroup::kPageGap, 300, 164};
    EXPECT_EQ(fPages[1]->UI_GetFrame(), page);
    fTabs->UI_SetFrame({10, 10, 350, 210});
    EXPECT_EQ(fPages[1]->UI_GetFrame(), (Rect{0, page.top, 350, 174}));
    fTabs->SetArrangesPages(false);
    fPages[1]->UI_SetFrame({5, 50, 20, 20});
    fTabs->UI_SetFrame({10, 10, 300, 200});
    EXPECT_EQ(fPages[1]->UI_GetFrame(), (Rect{5, 50, 20, 20}));
}

TEST_F(TabGroupTest, TooNarrowTabsStayInsideAndShortenTheirTexts) {
    const float natural = fTabs->UI_GetNaturalSize().width;
    fTabs->UI_SetFrame({0, 0, 90, 100});
    EXPECT_LE(fTabs->TabRect(2).Right(), 90);
    EXPECT_GT(fTabs->TabRect(1).width, fTabs->TabRect(0).width) << "in proportion";
    fTabs->UI_SetFrame({0, 0, natural, 100});
    limner::RecordingLimner limner;
    fTabs->UI_Draw(&limner);
    for (int tab = 0; tab < 3; ++tab) {
        const float needed = fSupplier.MeasureText(fTabs->GetTabText(tab), {}).width;
        EXPECT_GE(fTabs->TabRect(tab).width, needed);
    }
    EXPECT_THAT(limner.Operations(), Contains(StartsWith("Text \"Middle\" 12")));
}

TEST_F(TabGroupTest, DisabledTakesNothing) {
    fTabs->SetEnabled(false);
    fWindow.Click(InTab(1));
    EXPECT_EQ(fTabs->GetValue(), 0);
    const ui::AccessibleInfo info = fTabs->UI_GetAccessibleInfo();
    EXPECT_EQ(info.role, ui::Role::kTabGroup);
    EXPECT_EQ(info.value, u"Low");
    EXPECT_FALSE(info.enabled);
}

} // namespace
