#include "kroui/ui/UI_NodeManager.h"

#include "krocore/debug/Trace.h"
#include "kroui/ui/UI_Node.h"

#include <gmock/gmock.h>

using namespace kroui::ui;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class TimerNode : public UI_Node {
public:
    explicit TimerNode(std::vector<long>& fired) : fFired(fired) {}
    bool UI_DoTimerNotify(long id) override {
        fFired.push_back(id);
        if (onTimer) onTimer();
        return true;
    }
    std::function<void()> onTimer;

private:
    std::vector<long>& fFired;
};

class NodeManagerTest : public testing::Test {
protected:
    NodeManagerTest() {
        fManager.SetClock([this] { return fTime; });
    }
    ~NodeManagerTest() override { fManager.SetClock({}); }
    std::vector<long> RunAt(double time) {
        fTime = time;
        fFired.clear();
        fManager.RunTimers();
        return fFired;
    }

    UI_NodeManager& fManager = UI_NodeManager::Get();
    double fTime = 0;
    std::vector<long> fFired;
    boost::intrusive_ptr<TimerNode> fNode{new TimerNode(fFired)};
};

TEST_F(NodeManagerTest, ALateTimerFiresOnceAndKeepsItsPace) {
    fNode->UI_InstallTimer(0.25F, 7);
    EXPECT_DOUBLE_EQ(fManager.SecondsToNextTimer(), 0.25);
    EXPECT_THAT(RunAt(0.2), IsEmpty());
    EXPECT_THAT(RunAt(0.3), ElementsAre(7));
    EXPECT_NEAR(fManager.SecondsToNextTimer(), 0.2, 1e-9) << "due at 0.5, not at 0.55";
    EXPECT_THAT(RunAt(10), ElementsAre(7)) << "no burst";
    EXPECT_THAT(RunAt(10.2), IsEmpty());
    EXPECT_THAT(RunAt(10.25), ElementsAre(7));
}

TEST_F(NodeManagerTest, NotificationsMayInstallRemoveAndDestroy) {
    std::vector<long> otherFired;
    boost::intrusive_ptr<TimerNode> other(new TimerNode(otherFired));
    fNode->UI_InstallTimer(0.125F, 1);
    other->UI_InstallTimer(0.125F, 2);
    fNode->onTimer = [&] {
        other.reset();
        fNode->UI_RemoveTimer(1, true);
        fNode->UI_InstallTimer(0.125F, 3);
        fManager.RunTimers(); // from inside: nothing
    };
    EXPECT_THAT(RunAt(0.125), ElementsAre(1));
    EXPECT_THAT(otherFired, IsEmpty());
    EXPECT_EQ(fManager.TimerCount(), 1U);
    fNode->onTimer = {};
    EXPECT_THAT(RunAt(0.25), ElementsAre(3));
}

TEST_F(NodeManagerTest, AnotherClockKeepsTheTimeLeft) {
    fNode->UI_InstallTimer(0.5F, 1);
    fTime = 0.2;
    double other = 1000;
    fManager.SetClock([&] { return other; });
    EXPECT_NEAR(fManager.SecondsToNextTimer(), 0.3, 1e-9);
    fManager.SetClock([this] { return fTime; }); // the other one ends here
}

TEST_F(NodeManagerTest, TimersOfADeadNodeAreGone) {
    fNode->UI_InstallTimer(0.125F, 1);
    fNode.reset();
    EXPECT_EQ(fManager.TimerCount(), 0U);
    EXPECT_LT(fManager.SecondsToNextTimer(), 0);
}

TEST_F(NodeManagerTest, AHostThatForgetsTheLoopIsToldOnceAfterASecond) {
    std::string traced;
    krocore::debug::SetTraceSink([&traced](std::string_view text) { traced += text; });
    fNode->UI_InstallTimer(0.25F, 7);
    fTime = 1.2;
    fManager.TellIfLoopIsMissing();
    EXPECT_EQ(traced, "");
    fTime = 1.25;
    fManager.TellIfLoopIsMissing();
    EXPECT_THAT(traced, HasSubstr("RunTimers"));
    traced.clear();
    fManager.TellIfLoopIsMissing();
    EXPECT_EQ(traced, "");

    fManager.SetClock([this] { return fTime; });
    RunAt(1.5);
    fTime = 100; // a loop that stands still for once
    fManager.TellIfLoopIsMissing();
    EXPECT_EQ(traced, "");
    krocore::debug::SetTraceSink({});
}

} // namespace
