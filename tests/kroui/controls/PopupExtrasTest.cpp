// What pop-ups of scripts add: searching, the custom item, pictures, their natural size.

#include "ControlsFixture.h"
#include "kroui/controls/UI_Menu.h"
#include "kroui/controls/UI_Popup.h"
#include "kroui/limner/RecordingLimner.h"

using namespace kroui;
using namespace kroui::controls;
using testing::Contains;
using testing::StartsWith;
using ui::Key;

namespace {

class PopupExtrasTest : public test::ControlsTest {
protected:
    PopupExtrasTest() {
        fPopup = Add<UI_Popup>({100, 20, 140, 24});
        for (const char16_t* text : {u"Small Hall", u"Great Hall", u"Plate", u"Chamber", u"Small Chamber"})
            fPopup->AddItem(text);
        fPopup->SetValue(2);
        Listen(*fPopup);
    }
    bool IsSeen(int item) const { return !fPopup->Menu()->ItemRectInWindow(item).IsEmpty(); }
    std::vector<std::string> Drawn() {
        limner::RecordingLimner limner;
        fPopup->UI_Draw(&limner);
        return limner.Operations();
    }

    boost::intrusive_ptr<UI_Popup> fPopup;
};

TEST_F(PopupExtrasTest, SearchLeavesTheItemsThatHoldWhatIsTyped) {
    fPopup->SetSearchable(true);
    fWindow.Click(Middle(*fPopup));
    ASSERT_TRUE(fPopup->IsOpen());
    EXPECT_TRUE(fPopup->Menu()->SearchField()->UI_HasFocus());
    EXPECT_EQ(fPopup->Menu()->HighlightedItem(), 2);
    fWindow.Type(u"HALL");
    for (int item = 0; item < 5; ++item)
        EXPECT_EQ(IsSeen(item), item < 2) << item;
    EXPECT_EQ(fPopup->Menu()->HighlightedItem(), 0);
    fWindow.PressKey(Key::kDown);
    EXPECT_EQ(fPopup->Menu()->HighlightedItem(), 1);
    fWindow.PressKey(Key::kDown);
    EXPECT_EQ(fPopup->Menu()->HighlightedItem(), 1) << "none further down";
    fWindow.PressKey(Key::kEnter);
    EXPECT_FALSE(fPopup->IsOpen());
    EXPECT_EQ(fPopup->GetValue(), 1);
    EXPECT_EQ(Heard(), "012c");
    EXPECT_TRUE(fPopup->UI_HasFocus()) << "the focus comes back";
}

TEST_F(PopupExtrasTest, SearchFieldIsEditedAndAClickChoosesBelowIt) {
    fPopup->SetSearchable(true);
    fWindow.Click(Middle(*fPopup));
    fWindow.Type(u"small x");
    EXPECT_EQ(fPopup->Menu()->HighlightedItem(), -1);
    fWindow.PressKey(Key::kEnter);
    EXPECT_TRUE(fPopup->IsOpen()) << "nothing to choose";
    fWindow.PressKey(Key::kBackspace);
    fWindow.PressKey(Key::kBackspace);
    EXPECT_TRUE(IsSeen(0));
    EXPECT_FALSE(IsSeen(3));
    const Rect field = fPopup->Menu()->SearchField()->UI_GetFrame();
    const Point inField = fPopup->Menu()->UI_LocalToWindow(field.Centre());
    fWindow.Click(inField);
    EXPECT_TRUE(fPopup->IsOpen());
    fWindow.Click(fPopup->Menu()->ItemRectInWindow(4).Centre());
    EXPECT_EQ(fPopup->GetValue(), 4);
}

TEST_F(PopupExtrasTest, SearchEveryWayOutGivesTheFocusBack) {
    fPopup->SetSearchable(true);
    const std::pair<const char*, std::function<void()>> ends[] = {
        {"Escape", [&] { fWindow.PressKey(Key::kEscape); }},
        {"press elsewhere",
         [&] {
             fWindow.Click({390, 290});
         }},
        {"deactivated", [&] { fWindow.Window().Deactivated(); }},
        {"overlay taken away", [&] { fWindow.Window().HideOverlay(fPopup->Menu()); }},
    };
    for (const auto& [name, end] : ends) {
        fWindow.Click(Middle(*fPopup));
        fWindow.Type(u"pl");
        end();
        EXPECT_FALSE(fPopup->IsOpen()) << name;
        EXPECT_TRUE(fPopup->UI_HasFocus()) << name;
    }
    fWindow.Click(Middle(*fPopup));
    EXPECT_TRUE(fPopup->Menu()->SearchField()->GetText().empty()) << "each opening begins anew";
    EXPECT_EQ(Heard(), "");
}

TEST_F(PopupExtrasTest, CustomItemStandsForNoItemAndCannotBeChosen) {
    fPopup->SetIncludesCustomItem(true);
    EXPECT_THAT(Drawn(), Contains(StartsWith("Text \"Plate\"")));
    fPopup->SetValue(-1);
    EXPECT_THAT(Drawn(), Contains(StartsWith("Text \"Custom\"")));
    EXPECT_EQ(fPopup->UI_GetAccessibleInfo().value, u"Custom");
    EXPECT_EQ(fPopup->GetItemCount(), 5);
    fWindow.Click(Middle(*fPopup));
    EXPECT_EQ(fPopup->Menu()->HighlightedItem(), 0) << "the custom item is marked";
    fWindow.PressKey(Key::kEnter);
    EXPECT_EQ(fPopup->GetValue(), -1);
    EXPECT_EQ(Heard(), "");
    fWindow.Click(Middle(*fPopup));
    fWindow.Click(fPopup->Menu()->ItemRectInWindow(1).Centre());
    EXPECT_EQ(fPopup->GetValue(), 0);
    fWindow.Click(Middle(*fPopup));
    fWindow.Click(fPopup->Menu()->ItemRectInWindow(0).Centre());
    EXPECT_EQ(fPopup->GetValue(), 0) << "no going to it";
    EXPECT_EQ(Heard(), "012c");
}

TEST_F(PopupExtrasTest, PicturesStandBeforeTheTextInControlAndMenu) {
    std::vector<std::string> asked;
    const auto picture = [&](const krocore::string8& name, bool, float) {
        asked.emplace_back(name);
        return fSupplier.DrawImage({20, 10}, 1, [](limner::Limner&) {});
    };
    fPopup->SetItemImage(2, "plate");
    fPopup->SetImages(picture, {20, 10});
    EXPECT_THAT(Drawn(), Contains("Image 20x10 10 7 20 10 1"));
    EXPECT_THAT(asked, testing::ElementsAre("plate"));
    fWindow.Click(Middle(*fPopup));
    fWindow.Paint();
    limner::RecordingLimner limner;
    fPopup->Menu()->UI_Draw(&limner);
    EXPECT_THAT(limner.Operations(), Contains(StartsWith("Image 20x10")).Times(1)) << "others have none";
}

TEST_F(PopupExtrasTest, NaturalSizeHoldsTheWidestItemUpToAMaximum) {
    const Size whole = fPopup->UI_GetNaturalSize();
    fPopup->UI_SetFrame({0, 0, whole.width, whole.height});
    const float text = fSupplier.MeasureText(u"Small Chamber", {}).width;
    EXPECT_GE(whole.width, text + 10 + 26) << "text, its inset, the arrow's room";
    fPopup->SetMaximumWidthCharacters(6);
    EXPECT_LT(fPopup->UI_GetNaturalSize().width, whole.width);
    EXPECT_EQ(whole.height, 24);
    const limner::TextExtent line = fSupplier.MeasureText(u"0", {});
    EXPECT_FLOAT_EQ(fPopup->UI_GetBaseline(), 12 - line.height / 2 + line.ascent);
}

} // namespace
