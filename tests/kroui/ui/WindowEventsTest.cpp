#include "ProbeNode.h"
#include "kroui/controls/UI_Checkbox.h"
#include "kroui/limner/CairoSupplier.h"
#include "kroui/ui/HeadlessWindow.h"

#include <gmock/gmock.h>

using namespace kroui;
using namespace kroui::ui;
using test::ProbeNode;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Probe = boost::intrusive_ptr<ProbeNode>;

// A root with two children side by side and one inside the left one.
class WindowEventsTest : public testing::Test {
protected:
    WindowEventsTest() {
        fLeft->ChildPushBack(fInner);
        fRoot->ChildPushBack(fLeft);
        fRoot->ChildPushBack(fRight);
        fWindow.Window().SetContent(fRoot);
        fLog.clear();
    }
    static Probe WantingFocus(Probe probe) {
        probe->UI_SetStateFlags(UI_Node::kStateWantsKeyboardFocus);
        return probe;
    }
    std::vector<std::string> TakeLog() { return std::exchange(fLog, {}); }

    std::vector<std::string> fLog;
    limner::CairoSupplier fSupplier;
    Probe fRoot{new ProbeNode("root", fLog, {0, 0, 200, 100})};
    Probe fLeft{WantingFocus(new ProbeNode("left", fLog, {0, 0, 100, 100}))};
    Probe fInner{WantingFocus(new ProbeNode("inner", fLog, {20, 30, 40, 40}))};
    Probe fRight{WantingFocus(new ProbeNode("right", fLog, {100, 0, 100, 100}))};
    HeadlessWindow fWindow{fSupplier, {200, 100}};
};

TEST_F(WindowEventsTest, UnhandledEventsGoUpAndTellWhereTheyBegan) {
    fWindow.MoveTo({30, 50});
    TakeLog();
    fWindow.Window().MousePressed({30, 50}, 1, 1, 0);
    EXPECT_THAT(TakeLog(), ElementsAre("inner:pressed", "left:pressed from inner", "root:pressed from inner"));
    EXPECT_EQ(fInner->lastPosition, (Point{10, 20}));
    EXPECT_EQ(fLeft->lastPosition, (Point{30, 50}));

    fLeft->handlesMouse = true;
    fWindow.Window().MouseWheel({30, 50}, 0, 1, 0);
    EXPECT_THAT(TakeLog(), ElementsAre("inner:wheel", "left:wheel from inner"));
}

TEST_F(WindowEventsTest, APressOnTheGroundIsAimedAtTheNodeThatWantsToBeToldOfThose) {
    fRoot->UI_SetStateFlags(UI_Node::kStateTellBackgroundPresses);
    const boost::intrusive_ptr<controls::UI_Checkbox> disabled(new controls::UI_Checkbox);
    disabled->UI_SetFrame({0, 0, 40, 20});
    disabled->SetEnabled(false);
    fRight->ChildPushBack(disabled);
    const struct {
        Point press;
        const char* told;
    } cases[] = {{{30, 50}, "root:pressed"}, {{150, 50}, "root:pressed"}, {{110, 10}, "root:pressed from "}};
    for (const auto& c : cases) {
        fWindow.Window().MousePressed(c.press, 1, 1, 0);
        EXPECT_EQ(TakeLog().back(), c.told);
        fWindow.Release();
        fWindow.Window().MouseWheel(c.press, 0, 1, 0);
        EXPECT_THAT(TakeLog().back(), testing::StartsWith("root:wheel from ")) << "only presses";
    }
}

TEST_F(WindowEventsTest, ClicksCountOnTheNodeThatTheyMeet) {
    const struct {
        float x;
        int counted; // by the window system
        int told;
    } clicks[] = {{90, 1, 1}, {110, 2, 1}, {110, 3, 2}, {110, 4, 3}, {90, 1, 1}, {90, 2, 2}};
    for (const auto& click : clicks) {
        fWindow.Window().MousePressed({click.x, 10}, 1, click.counted, 0);
        EXPECT_EQ((click.x < 100 ? fLeft : fRight)->lastClickCount, click.told);
        fWindow.Release();
    }
}

TEST_F(WindowEventsTest, WhoTakesThePressGetsTheDragAndTheReleaseWhereverThePointerIs) {
    fInner->handlesMouse = true;
    fWindow.Press({30, 50});
    EXPECT_EQ(fWindow.Window().CaptureNode(), fInner.get());
    TakeLog();
    fWindow.MoveTo({150, 50});
    fWindow.MoveTo({-500, 5000});
    fWindow.Window().MouseWheel({150, 50}, 0, 1, 0);
    fWindow.Release();
    EXPECT_THAT(TakeLog(),
                ElementsAre("inner:dragged", "inner:dragged", "inner:wheel", "inner:released", "inner:left"));
    EXPECT_EQ(fWindow.Window().CaptureNode(), nullptr);
}

TEST_F(WindowEventsTest, OnlyTheButtonThatBeganADragEndsIt) {
    fInner->handlesMouse = fRight->handlesMouse = true;
    for (const int first : {1, 2, 3}) {
        const int other = first % 3 + 1;
        fWindow.Press({30, 50}, kNoModifier, first);
        TakeLog();
        EXPECT_TRUE(fWindow.Window().MousePressed({150, 50}, other, 1, 0)) << "swallowed";
        EXPECT_FALSE(fWindow.Window().MouseReleased({150, 50}, other, 0));
        EXPECT_THAT(TakeLog(), IsEmpty());
        fWindow.MoveTo({31, 50});
        EXPECT_THAT(TakeLog(), ElementsAre("inner:dragged"));
        fWindow.Release(kNoModifier, first);
        EXPECT_THAT(TakeLog(), ElementsAre("inner:released")) << first;
    }
}

TEST_F(WindowEventsTest, ACaptureThatEndsWithoutReleaseIsTold) {
    fInner->handlesMouse = true;
    fWindow.Press({30, 50});
    TakeLog();
    fLeft->UI_Show(false);
    EXPECT_EQ(fWindow.Window().CaptureNode(), nullptr);
    EXPECT_THAT(TakeLog(), ElementsAre("inner:left", "inner:lost", "left:change 2", "inner:change 2"));
    fWindow.Release();
    EXPECT_THAT(TakeLog(), testing::Not(testing::Contains("inner:released")));
}

TEST_F(WindowEventsTest, FocusWalksInTreeOrderSkipsWhatCannotTakeItAndComesAround) {
    std::vector<std::string> order;
    for (int i = 0; i < 4; ++i) {
        fWindow.PressKey(Key::kTab);
        order.emplace_back(fWindow.Window().FocusNode()->UI_GetID());
    }
    EXPECT_THAT(order, ElementsAre("left", "inner", "right", "left"));
    fWindow.PressKey(Key::kTab, kShift);
    EXPECT_EQ(fWindow.Window().FocusNode(), fRight.get());
    fInner->UI_Show(false);
    fWindow.PressKey(Key::kTab);
    fWindow.PressKey(Key::kTab);
    EXPECT_EQ(fWindow.Window().FocusNode(), fRight.get());
    fRoot->ChildRemove(fRight.get());
    EXPECT_EQ(fWindow.Window().FocusNode(), nullptr);
}

TEST_F(WindowEventsTest, KeysGoUpFromTheFocusAndThenToTheProgram) {
    int unhandled = 0;
    fWindow.Window().SetUnhandledKeyHandler([&](const KeyEvent&) { return ++unhandled > 0; });
    fInner->UI_TakeFocus();
    TakeLog();
    fWindow.PressKey(Key::kSpace);
    EXPECT_THAT(TakeLog(), ElementsAre("inner:key", "left:key", "root:key"));
    EXPECT_EQ(unhandled, 1);
    fLeft->handlesKeys = true;
    fWindow.PressKey(Key::kSpace);
    EXPECT_THAT(TakeLog(), ElementsAre("inner:key", "left:key"));
    EXPECT_EQ(unhandled, 1);
}

TEST_F(WindowEventsTest, AModalOverlayTakesAllEventsUntilItIsHidden) {
    const Probe menu(new ProbeNode("menu", fLog));
    menu->handlesMouse = true;
    fWindow.Window().ShowOverlay(menu, {10, 10, 50, 50}, true);
    TakeLog();
    fWindow.Window().MousePressed({150, 50}, 1, 1, 0);
    EXPECT_THAT(TakeLog(), ElementsAre("menu:entered", "menu:pressed"));
    EXPECT_EQ(menu->lastPosition, (Point{140, 40}));
    fWindow.Release();
    TakeLog();
    fWindow.PressKey(Key::kTab);
    EXPECT_THAT(TakeLog(), ElementsAre("menu:key"));
    fWindow.Window().Deactivated();
    EXPECT_THAT(TakeLog(), testing::Contains("menu:lost"));

    fWindow.Window().HideOverlay(menu.get());
    TakeLog();
    fRight->handlesMouse = true;
    fWindow.Click({150, 50});
    EXPECT_THAT(TakeLog(), testing::Contains("right:pressed"));
}

// A press that opens a menu goes on into it: the drag and the release choose the item.
TEST_F(WindowEventsTest, ADragThatOpenedAModalOverlayContinuesInIt) {
    const Probe menu(new ProbeNode("menu", fLog));
    menu->handlesMouse = true;
    fInner->handlesMouse = true;
    fWindow.Press({30, 50});
    fWindow.Window().ShowOverlay(menu, {20, 70, 60, 30}, true);
    TakeLog();
    fWindow.MoveTo({40, 80});
    fWindow.Release();
    const auto log = TakeLog();
    EXPECT_THAT(log, testing::Contains("menu:dragged"));
    EXPECT_THAT(log, testing::Contains("menu:released"));
}

TEST_F(WindowEventsTest, ATipComesAfterHalfASecondAndGoesAtThePress) {
    fLeft->UI_SetTooltip(u"The left one of two sides");
    fWindow.MoveTo({30, 50});
    fWindow.Advance(0.4);
    fWindow.MoveTo({32, 50}); // not at rest yet
    fWindow.Advance(0.4);
    fWindow.Paint();
    EXPECT_EQ(fWindow.Paint(), 0);
    fWindow.Advance(0.2);
    EXPECT_GT(fWindow.LastDamage().size(), 0U) << "the tip of the node above the one that is hit";
    fWindow.Window().MousePressed({32, 50}, 1, 1, 0);
    EXPECT_GT(fWindow.Paint(), 0) << "the tip is gone";
    fWindow.Release();
    fWindow.MoveTo({34, 50});
    fWindow.Paint();
    fWindow.Advance(1);
    EXPECT_THAT(fWindow.LastDamage(), IsEmpty()) << "and does not come back over the same node";
    fWindow.MoveTo({150, 50});
    fWindow.MoveTo({34, 50});
    fWindow.Advance(1);
    EXPECT_EQ(fWindow.LastDamage().size(), 1U);
    fRoot->ChildRemove(fLeft.get());
    fWindow.Paint();
    ASSERT_EQ(fWindow.LastDamage().size(), 1U);
    EXPECT_GT(fWindow.LastDamage()[0].Right(), 100) << "a tip goes with its node";
}

// A listener may take nodes out of the tree, or let them die, while their event is under way.
class SelfRemoving : public UI_SubView {
public:
    bool UI_DoMouseEvent(UI_Node*, const MouseEvent& event) override {
        if (!event.IsAction(MouseEvent::Action::kPressed)) return false;
        UI_GetParent()->ChildRemove(this);
        return true;
    }
};

TEST_F(WindowEventsTest, ANodeMayRemoveItselfInItsOwnEvent) {
    boost::intrusive_ptr<SelfRemoving> node(new SelfRemoving);
    node->UI_SetFrame({120, 20, 40, 40});
    fRoot->ChildPushBack(node);
    node.reset();
    fWindow.Click({130, 30});
    EXPECT_EQ(fRoot->ChildCount(), 2U);
    EXPECT_EQ(fWindow.Window().CaptureNode(), nullptr);
}

// Tells when it dies.
class Mortal : public UI_SubView {
public:
    explicit Mortal(bool& isAlive) : fIsAlive(isAlive) { fIsAlive = true; }
    bool UI_DoTimerNotify(long) override { return Act(); }
    bool UI_DoKeyEvent(const KeyEvent&) override { return Act(); }
    bool UI_DoMouseEvent(UI_Node*, const MouseEvent&) override { return Act(); }
    void UI_NodeChanged(NodeChange change) override {
        if (change == kHidden) Act();
    }

    boost::function<void()> act;

protected:
    ~Mortal() override { fIsAlive = false; }

private:
    bool Act() {
        if (act) act();
        return true;
    }

    bool& fIsAlive;
};

TEST_F(WindowEventsTest, WhatIsLetGoWhileAMessageIsHandledDiesWhenAllAreDone) {
    const boost::function<void(Mortal&)> messages[] = {
        [this](Mortal&) {
            fWindow.Press({130, 30});
        },
        [this](Mortal&) {
            fWindow.MoveTo({131, 31});
        },
        [this](Mortal&) {
            fWindow.Wheel({130, 30}, 1);
        },
        [this](Mortal& view) {
            view.UI_TakeFocus();
            fWindow.PressKey(Key::kSpace);
        },
        [this](Mortal& view) {
            view.UI_InstallTimer(0.01F, 1);
            fWindow.Advance(0.02);
        },
        [](Mortal& view) { view.UI_Show(false); },
    };
    for (const auto& send : messages) {
        bool isAlive = false;
        bool wasAlive = false;
        boost::intrusive_ptr<Mortal> view(new Mortal(isAlive));
        view->UI_SetFrame({120, 20, 40, 40});
        view->UI_SetStateFlags(UI_Node::kStateWantsKeyboardFocus);
        fRoot->ChildPushBack(view);
        Mortal& sent = *view;
        view->act = [&] {
            if (view) fRoot->ChildRemove(view.get());
            view.reset();
            wasAlive = isAlive;
        };
        send(sent);
        EXPECT_TRUE(wasAlive);
        EXPECT_FALSE(isAlive);
        fWindow.Release();
    }
}

} // namespace
