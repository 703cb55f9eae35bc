#include "FakeFilter.h"
#include "kroui/limner/CairoSupplier.h"
#include "kroui/ui/HeadlessWindow.h"
#include "kroui/ui/UI_NodeManager.h"
#include "qocui/controls/AudioComponentEditorViewBase.h"

#include <gmock/gmock.h>

using namespace kroui;
using qocui::controls::AudioComponentEditorViewBase;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class ObservingView : public AudioComponentEditorViewBase {
public:
    using AudioComponentEditorViewBase::AddParameterObserver;
    using AudioComponentEditorViewBase::AudioComponentEditorViewBase;
    using AudioComponentEditorViewBase::SetAllowObserverNotificationDuringSyncParameters;
    using AudioComponentEditorViewBase::SyncParameters;
};

class EditorViewBaseTest : public testing::Test {
protected:
    void Observe(int index, const char* name) {
        fView->AddParameterObserver(index, [this, name] { fCalled.emplace_back(name); });
    }
    std::vector<std::string> Poll() {
        fCalled.clear();
        fView->SyncParameters();
        return fCalled;
    }

    boost::intrusive_ptr<test::FakeFilter> fFilter{new test::FakeFilter(8)};
    boost::intrusive_ptr<ObservingView> fView{new ObservingView(fFilter)};
    std::vector<std::string> fCalled;
};

TEST_F(EditorViewBaseTest, ObserversAreCalledOncePerChangeInTheirOrder) {
    fFilter->Store(1, 0.25F);
    Observe(1, "first");
    Observe(0, "other");
    Observe(1, "second");
    EXPECT_THAT(Poll(), IsEmpty()) << "the value at registration is no change";
    fFilter->Store(1, 0.5F);
    EXPECT_THAT(Poll(), ElementsAre("first", "second"));
    EXPECT_THAT(Poll(), IsEmpty());
    EXPECT_THAT(fFilter->TakeLog(), ElementsAre("quiet 1 0.5", "quiet 1 0.5"));
}

TEST_F(EditorViewBaseTest, TheValueThatAComponentWantsShownIsWrittenBackQuietlyOnce) {
    fFilter->displayIndex = 3;
    fFilter->displayValue = 0.75F;
    Observe(3, "three");
    EXPECT_THAT(Poll(), ElementsAre("three"));
    EXPECT_THAT(fFilter->TakeLog(), ElementsAre("quiet 3 0.75"));
    EXPECT_EQ(fFilter->GetParameterValue(3), 0.75F);
    EXPECT_THAT(Poll(), IsEmpty());
}

TEST_F(EditorViewBaseTest, WhileNotificationIsOffChangesAreFollowedSilently) {
    Observe(2, "two");
    fView->SetAllowObserverNotificationDuringSyncParameters(false);
    fFilter->Store(2, 0.5F);
    EXPECT_THAT(Poll(), IsEmpty());
    fView->SetAllowObserverNotificationDuringSyncParameters(true);
    EXPECT_THAT(Poll(), IsEmpty());
}

TEST_F(EditorViewBaseTest, AnObserverMayAddObservers) {
    fView->AddParameterObserver(0, [this] {
        for (int i = 0; i < 100; ++i)
            Observe(1, "added");
    });
    fFilter->Store(0, 1);
    EXPECT_THAT(Poll(), IsEmpty());
    fFilter->Store(1, 1);
    EXPECT_EQ(Poll().size(), 100U);
}

TEST_F(EditorViewBaseTest, AnEmptyObserverThrowsWhenItWouldBeCalled) {
    fView->AddParameterObserver(0, {});
    fView->SyncParameters();
    fFilter->Store(0, 1);
    EXPECT_THROW(fView->SyncParameters(), boost::bad_function_call);
}

TEST_F(EditorViewBaseTest, ItPollsEveryTenMillisecondsWhileAttached) {
    limner::CairoSupplier supplier;
    ui::HeadlessWindow window(supplier, {100, 100});
    int polls = 0;
    fView->AddParameterObserver(0, [&] { ++polls; });
    fView->AddParameterObserver(0, [&] { fFilter->Store(0, fFilter->GetParameterValue(0) + 1); });
    fFilter->Store(0, 1);
    window.Advance(0.1);
    EXPECT_EQ(polls, 0);

    window.Window().SetContent(fView);
    window.Advance(0.1001);
    EXPECT_EQ(polls, 10);
    EXPECT_EQ(ui::UI_NodeManager::Get().TimerCount(), 1U);
    EXPECT_TRUE(fView->UI_DoTimerNotify(-12345)) << "a foreign timer is taken";
    EXPECT_EQ(polls, 10);

    window.Window().SetContent(nullptr);
    EXPECT_EQ(ui::UI_NodeManager::Get().TimerCount(), 0U);
    window.Window().SetContent(fView);
    window.Advance(0.0101);
    EXPECT_EQ(polls, 11);
    fView.reset();
    window.Window().SetContent(nullptr);
    EXPECT_EQ(ui::UI_NodeManager::Get().TimerCount(), 0U);
}

TEST_F(EditorViewBaseTest, AnObserverMayTakeTheViewOutAndLetGoOfIt) {
    limner::CairoSupplier supplier;
    ui::HeadlessWindow window(supplier, {100, 100});
    const auto change = [&](float value) {
        fCalled.clear();
        fFilter->Store(0, value);
        window.Advance(0.05);
        return fCalled;
    };
    fView->AddParameterObserver(0, [&] {
        window.Window().SetContent(nullptr);
        if (fFilter->GetParameterValue(0) < 1) return window.Window().SetContent(fView);
        fView.reset();
    });
    Observe(0, "behind it");
    window.Window().SetContent(fView);
    EXPECT_THAT(change(0.5F), ElementsAre("behind it"));
    EXPECT_EQ(ui::UI_NodeManager::Get().TimerCount(), 1U) << "attached again";
    EXPECT_THAT(change(1), ElementsAre("behind it"));
    EXPECT_EQ(ui::UI_NodeManager::Get().TimerCount(), 0U);
    EXPECT_EQ(fFilter->ReferenceCount(), 1);
}

} // namespace
