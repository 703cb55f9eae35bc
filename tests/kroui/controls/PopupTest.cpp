#include "ControlsFixture.h"
#include "kroui/controls/UI_Menu.h"
#include "kroui/controls/UI_Popup.h"
#include "kroui/controls/UI_TextButton.h"

using namespace kroui;
using namespace kroui::controls;
using ui::Key;

namespace {

class PopupTest : public test::ControlsTest {
protected:
    PopupTest() {
        fPopup = Add<UI_Popup>({100, 140, 120, 24});
        for (const char16_t* text : {u"Narrow", u"Very Narrow", u"Super Narrow"})
            fPopup->AddItem(text);
        fPopup->SetValue(1);
        Listen(*fPopup);
    }

    void FillWithNumbers(int count) {
        fPopup->DeleteAllItems();
        for (int i = 0; i < count; ++i)
            fPopup->AddItem(krocore::ToUTF16(std::to_string(i)));
    }
    Point ItemPoint(int item) const { return fPopup->Menu()->ItemRectInWindow(item).Centre(); }
    Rect MenuFrame() const { return fPopup->Menu()->UI_GetFrame(); }

    boost::intrusive_ptr<UI_Popup> fPopup;
};

TEST_F(PopupTest, MenuOpensAtThePressWithTheShownItemUnderThePointer) {
    fWindow.Press(Middle(*fPopup));
    ASSERT_TRUE(fPopup->IsOpen());
    EXPECT_EQ(fPopup->Menu()->HighlightedItem(), 1);
    EXPECT_NEAR(ItemPoint(1).y, Middle(*fPopup).y, 0.5);
    EXPECT_TRUE(fPopup->Menu()->ItemRectInWindow(1).Contains(Middle(*fPopup)));
}

TEST_F(PopupTest, ClosedPopupKeysReachEveryItemThatCanBeChosenAndNoOther) {
    // Of the items 0 to 5, 0 can't be chosen, nor can the separator, 3.
    fPopup->AddSeparator();
    fPopup->AddItem(u"Wide");
    fPopup->AddItem(u"Very Wide");
    fPopup->SetItemEnabled(0, false);
    fPopup->UI_TakeFocus();
    const struct {
        Key key;
        int reached[6]; // from each item
    } cases[] = {{Key::kHome, {1, 1, 1, 1, 1, 1}},
                 {Key::kEnd, {5, 5, 5, 5, 5, 5}},
                 {Key::kDown, {1, 2, 4, 1, 5, 5}},
                 {Key::kUp, {0, 1, 1, -1, 2, 4}}};
    for (const auto& c : cases) {
        for (int from = 0; from < 6; ++from) {
            fPopup->SetValue(from);
            fWindow.PressKey(c.key);
            EXPECT_EQ(fPopup->GetValue(), c.reached[from]) << static_cast<int>(c.key) << " from " << from;
        }
    }
}

TEST_F(PopupTest, MenuChoosesByDragAndReleaseOrByASecondPress) {
    fWindow.Press(Middle(*fPopup));
    fWindow.MoveTo(ItemPoint(2));
    EXPECT_EQ(fPopup->Menu()->HighlightedItem(), 2);
    fWindow.Release();
    EXPECT_FALSE(fPopup->IsOpen());
    EXPECT_EQ(fPopup->GetValue(), 2);
    EXPECT_EQ(Heard(), "012c");

    fWindow.Click(Middle(*fPopup));
    ASSERT_TRUE(fPopup->IsOpen()) << "a click leaves the menu open";
    fWindow.Click(ItemPoint(0));
    EXPECT_FALSE(fPopup->IsOpen());
    EXPECT_EQ(fPopup->GetValue(), 0);
    EXPECT_EQ(Heard(), "012c");
}

TEST_F(PopupTest, MenuALateReleaseInPlaceCloses) {
    fWindow.Press(Middle(*fPopup));
    fWindow.Advance(1);
    fWindow.Release();
    EXPECT_FALSE(fPopup->IsOpen());
    EXPECT_EQ(Heard(), "");
}

TEST_F(PopupTest, MenuClosesWithoutAChange) {
    const auto button = Add<UI_TextButton>({10, 260, 80, 24});
    Listen(*button);
    const std::pair<const char*, std::function<void()>> ends[] = {
        {"Escape", [&] { fWindow.PressKey(Key::kEscape); }},
        {"press elsewhere", [&] { fWindow.Click(Middle(*button)); }},
        {"disabled", [&] { fPopup->SetEnabled(false); }},
        {"hidden", [&] { fPopup->UI_Show(false); }},
        {"hidden with all around it", [&] { fRoot->UI_Show(false); }},
        {"taken out", [&] { fRoot->ChildRemove(fPopup.get()); }},
        {"deactivated", [&] { fWindow.Window().Deactivated(); }},
        {"overlay taken away", [&] { fWindow.Window().HideOverlay(fPopup->Menu()); }},
        {"new items", [&] { fPopup->AddItem(u"More"); }},
    };
    for (const auto& [name, end] : ends) {
        fWindow.Click(Middle(*fPopup));
        ASSERT_TRUE(fPopup->IsOpen()) << name;
        end();
        EXPECT_FALSE(fPopup->IsOpen()) << name;
        EXPECT_FALSE(fWindow.Window().HasModalOverlay()) << name;
        EXPECT_EQ(fPopup->GetValue(), 1) << name;
        EXPECT_EQ(Heard(), "") << name;
        fPopup->SetEnabled(true);
        fPopup->UI_Show(true);
        fRoot->UI_Show(true);
        if (!fPopup->UI_GetParent()) fRoot->ChildPushBack(fPopup);
    }
    fWindow.Press(Middle(*fPopup));
    fWindow.MoveTo({5, 5});
    fWindow.Release();
    EXPECT_FALSE(fPopup->IsOpen()) << "released outside";
    EXPECT_EQ(Heard(), "");
}

TEST_F(PopupTest, MenuFollowsKeysAndTypedLetters) {
    struct Case {
        const char* name;
        std::vector<Key> keys;
        std::u16string typed;
        int highlighted;
    };
    fPopup->SetItemEnabled(0, false);
    fPopup->AddSeparator();
    fPopup->AddItem(u"Custom");
    fPopup->AddItem(u"Super Wide");
    const Case cases[] = {
        {"down", {Key::kDown}, u"", 2},
        {"over a separator", {Key::kDown, Key::kDown}, u"", 4},
        {"a disabled item is no goal", {Key::kUp}, u"", 1},
        {"home", {Key::kHome}, u"", 1},
        {"end and on", {Key::kEnd, Key::kDown}, u"", 5},
        {"letter", {}, u"c", 4},
        {"a letter again goes round", {}, u"sss", 2},
        {"several letters", {}, u"super w", 5},
        {"a disabled item is not found", {}, u"n", 1},
        {"nothing begins so", {}, u"x", 1},
    };
    fPopup->UI_TakeFocus();
    for (const Case& c : cases) {
        fWindow.PressKey(Key::kEnter);
        ASSERT_TRUE(fPopup->IsOpen()) << c.name;
        for (const Key key : c.keys)
            fWindow.PressKey(key);
        for (const char16_t letter : c.typed) {
            if (letter == u' ') fWindow.PressKey(Key::kSpace);
            fWindow.Type({&letter, 1});
        }
        ASSERT_TRUE(fPopup->IsOpen()) << c.name;
        EXPECT_EQ(fPopup->Menu()->HighlightedItem(), c.highlighted) << c.name;
        fWindow.PressKey(Key::kEscape);
    }
    EXPECT_EQ(Heard(), "");
    fWindow.PressKey(Key::kSpace);
    fWindow.PressKey(Key::kDown);
    fWindow.PressKey(Key::kEnter);
    EXPECT_EQ(fPopup->GetValue(), 2);
    EXPECT_EQ(Heard(), "012c");
}

TEST_F(PopupTest, MenuPressOnAnItemThatCannotBeChosenLeavesItOpen) {
    fPopup->SetItemEnabled(2, false);
    fPopup->AddSeparator();
    fWindow.Click(Middle(*fPopup));
    for (const int item : {2, 3})
        fWindow.Click(ItemPoint(item));
    EXPECT_TRUE(fPopup->IsOpen());
    EXPECT_EQ(Heard(), "");
}

TEST_F(PopupTest, MenuStaysInsideTheWindow) {
    // The content of the menu: its rows between two paddings of 4, inside a shadow of 8.
    const Rect window{0, 0, 400, 300};
    for (const Rect& frame : {Rect{0, 0, 60, 24}, Rect{340, 276, 60, 24}, Rect{100, 290, 500, 24}}) {
        for (const int value : {-1, 0, 2}) {
            fPopup->UI_SetFrame(frame);
            fPopup->SetValue(value);
            fPopup->Open();
            ASSERT_TRUE(fPopup->IsOpen());
            const Rect panel = MenuFrame().Inset(8, 8);
            EXPECT_EQ(Intersection(panel, window), panel);
            EXPECT_EQ(panel.height, 3 * 22 + 8);
            fPopup->Close();
        }
    }
}

TEST_F(PopupTest, MenuWithNothingShownOpensBelowOrAbove) {
    fPopup->SetValue(-1);
    fPopup->Open();
    EXPECT_EQ(MenuFrame().Inset(8, 8).top, 140 + 24 + 2);
    fPopup->Close();
    fPopup->UI_SetFrame({100, 260, 120, 24});
    fPopup->Open();
    EXPECT_EQ(MenuFrame().Inset(8, 8).Bottom(), 260 - 2);
}

TEST_F(PopupTest, LongMenuScrollsToItemsByKeyWheelAndDrag) {
    FillWithNumbers(100);
    fPopup->SetValue(50);
    fWindow.Press(Middle(*fPopup));
    EXPECT_NEAR(ItemPoint(50).y, Middle(*fPopup).y, 0.5);
    EXPECT_TRUE(fPopup->Menu()->ItemRectInWindow(0).IsEmpty());

    // Held below the list it goes on to the end and shows the last item whole.
    fWindow.MoveTo({150, 299});
    fWindow.Advance(30);
    EXPECT_EQ(fPopup->Menu()->ItemRectInWindow(99).height, 22);
    fWindow.MoveTo(ItemPoint(98));
    fWindow.Release();
    EXPECT_EQ(fPopup->GetValue(), 98);

    fPopup->Open();
    fWindow.PressKey(Key::kHome);
    EXPECT_EQ(fPopup->Menu()->HighlightedItem(), 0);
    EXPECT_EQ(fPopup->Menu()->ItemRectInWindow(0).height, 22);
    const float before = fPopup->Menu()->ItemRectInWindow(5).top;
    fWindow.Wheel(ItemPoint(5), -1);
    EXPECT_EQ(fPopup->Menu()->ItemRectInWindow(5).top, before - 44);
    fWindow.PressKey(Key::kEnd);
    fWindow.PressKey(Key::kEnter);
    EXPECT_EQ(fPopup->GetValue(), 99);
}

TEST_F(PopupTest, ClosedPopupStepsByWheelAndKeys) {
    fPopup->SetItemEnabled(1, false);
    fPopup->SetValue(0);
    fPopup->UI_TakeFocus();
    fWindow.Wheel(Middle(*fPopup), -0.5F);
    EXPECT_EQ(fPopup->GetValue(), 0) << "half a notch waits";
    fWindow.Wheel(Middle(*fPopup), -0.5F);
    EXPECT_EQ(fPopup->GetValue(), 2) << "the disabled item is passed over";
    fWindow.Wheel(Middle(*fPopup), -1);
    EXPECT_EQ(Heard(), "012c") << "at the end nothing is told";
    fWindow.PressKey(Key::kUp);
    EXPECT_EQ(fPopup->GetValue(), 0);
    fWindow.Type(u"s");
    EXPECT_EQ(fPopup->GetValue(), 2);
    EXPECT_FALSE(fWindow.PressKey(Key::kLeft));
    EXPECT_FALSE(fWindow.PressKey(Key::kCharacter, 0, u'x')) << "a shortcut of the program";
    EXPECT_TRUE(fWindow.PressKey(Key::kCharacter, 0, u's'));
    EXPECT_TRUE(fWindow.PressKey(Key::kDown, ui::kAlt));
    EXPECT_TRUE(fPopup->IsOpen());
}

TEST_F(PopupTest, ValuesThatDoNotExistShowNothing) {
    for (const int item : {-1, -7, 3, 1 << 30}) {
        fPopup->SetValue(2);
        fPopup->SetValue(item);
        EXPECT_EQ(fPopup->GetValue(), -1) << item;
        EXPECT_EQ(fPopup->UI_GetAccessibleInfo().value, u"") << item;
    }
    EXPECT_EQ(fPopup->SetValueString(u"Super Narrow", false), 2);
    EXPECT_EQ(fPopup->GetValue(), -1);
    EXPECT_EQ(fPopup->SetValueString(u"Super Narrow", true), 2);
    EXPECT_EQ(fPopup->UI_GetAccessibleInfo().value, u"Super Narrow");
    EXPECT_EQ(fPopup->SetValueString(u"Wide", true), -1);
    EXPECT_EQ(fPopup->GetValue(), -1);
    fWindow.Click(Middle(*fPopup));
    fWindow.Click(ItemPoint(0));
    EXPECT_EQ(fPopup->GetValue(), 0) << "it keeps working";
    fPopup->DeleteAllItems();
    EXPECT_EQ(fPopup->GetValue(), -1);
    fWindow.Click(Middle(*fPopup));
    EXPECT_FALSE(fPopup->IsOpen()) << "nothing to choose";
}

TEST_F(PopupTest, AlwaysNotifyTellsTheSameChoiceAgain) {
    for (const bool always : {false, true}) {
        fPopup->SetAlwaysNotify(always);
        fWindow.Click(Middle(*fPopup));
        fWindow.PressKey(Key::kEnter);
        EXPECT_EQ(Heard(), always ? "012c" : "");
    }
}

TEST_F(PopupTest, PopupListenerMayRemoveItAndFillItAgain) {
    fPopup->NotifyWhenChanged([this](UI_ControlChangedMessage*) {
        FillWithNumbers(5);
        fRoot->ChildRemoveAll();
    });
    fWindow.Click(Middle(*fPopup));
    fWindow.Click(ItemPoint(2));
    EXPECT_EQ(fPopup->GetItemCount(), 5);
    EXPECT_FALSE(fPopup->IsOpen());
}

TEST_F(PopupTest, ItemReferencesKeepTheirKeysAndSeparators) {
    const std::vector<krocore::string8> references{"($$$/Test/A=Alpha)", "-", "Beta"};
    fPopup->SetItemReferences(references);
    EXPECT_EQ(fPopup->GetValue(), -1);
    EXPECT_EQ(fPopup->GetItemText(0), u"Alpha");
    fPopup->SetValue(1);
    EXPECT_EQ(fPopup->GetValue(), -1) << "a separator";
    EXPECT_EQ(fPopup->ItemReferences(), references);
}

} // namespace
