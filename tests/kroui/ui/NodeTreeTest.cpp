#include "ProbeNode.h"
#include "kroui/limner/CairoSupplier.h"
#include "kroui/ui/HeadlessWindow.h"

#include <gmock/gmock.h>

using namespace kroui;
using namespace kroui::ui;
using test::ProbeNode;
using testing::ElementsAre;

namespace {

using Probe = boost::intrusive_ptr<ProbeNode>;

class NodeTreeTest : public testing::Test {
protected:
    Probe Make(const char* name, Rect frame = {0, 0, 10, 10}) { return new ProbeNode(name, fLog, frame); }

    std::vector<std::string> fLog;
    limner::CairoSupplier fSupplier;
    HeadlessWindow fWindow{fSupplier, {200, 100}};
};

TEST_F(NodeTreeTest, AttachingAndDetachingReachEveryNodeOnceParentsFirst) {
    const Probe root = Make("root");
    const Probe child = Make("child");
    const Probe grandchild = Make("grandchild");
    child->ChildPushBack(grandchild);
    root->ChildPushBack(child);
    EXPECT_EQ(root->UI_GetParentEventRecipientNode(), nullptr);
    EXPECT_EQ(child->UI_GetParentEventRecipientNode(), nullptr);

    fWindow.Window().SetContent(root);
    EXPECT_THAT(fLog, ElementsAre("root:change 0", "child:change 0", "grandchild:change 0"));
    EXPECT_EQ(child->UI_GetParentEventRecipientNode(), root.get());
    EXPECT_EQ(root->UI_GetParentEventRecipientNode(), root.get());

    fLog.clear();
    root->ChildRemove(child.get());
    EXPECT_THAT(fLog, ElementsAre("child:change 4 with parent", "grandchild:change 4 with parent"));
    EXPECT_FALSE(grandchild->UI_IsAttached());

    fLog.clear();
    root->ChildPushBack(child);
    EXPECT_THAT(fLog, ElementsAre("child:change 0", "grandchild:change 0"));
}

TEST_F(NodeTreeTest, ANodeMovesBetweenParentsAndNeverIntoItself) {
    const Probe a = Make("a");
    const Probe b = Make("b");
    const Probe child = Make("child");
    a->ChildPushBack(child);
    b->ChildPushBack(child);
    EXPECT_EQ(a->ChildCount(), 0U);
    EXPECT_EQ(child->UI_GetParent(), b.get());

    child->ChildPushBack(b);
    child->ChildPushBack(child);
    child->ChildPushBack(nullptr);
    EXPECT_EQ(child->ChildCount(), 0U);
    a->ChildRemove(child.get());
    EXPECT_EQ(child->UI_GetParent(), b.get());
}

TEST_F(NodeTreeTest, HitTestingTakesTheFrontmostVisibleNode) {
    const Probe root = Make("root", {0, 0, 100, 100});
    const Probe back = Make("back", {10, 10, 50, 50});
    const Probe front = Make("front", {30, 30, 50, 50});
    root->ChildPushBack(back);
    root->ChildPushBack(front);
    EXPECT_EQ(root->UI_HitTest({15, 15}), back.get());
    EXPECT_EQ(root->UI_HitTest({40, 40}), front.get());
    EXPECT_EQ(root->UI_HitTest({5, 5}), root.get());
    EXPECT_EQ(root->UI_HitTest({100, 5}), nullptr);
    front->UI_Show(false);
    EXPECT_EQ(root->UI_HitTest({40, 40}), back.get());
}

TEST_F(NodeTreeTest, OnlyTheDamagedPartIsPainted) {
    const Probe root = Make("root", {0, 0, 200, 100});
    const Probe left = Make("left", {10, 10, 20, 20});
    const Probe right = Make("right", {150, 60, 30, 20});
    root->ChildPushBack(left);
    root->ChildPushBack(right);
    fWindow.Window().SetContent(root);
    EXPECT_EQ(fWindow.Paint(), 200 * 100);
    EXPECT_EQ(fWindow.Paint(), 0);

    fLog.clear();
    right->UI_InvalidateRect({5, 5, 10, 4});
    EXPECT_EQ(fWindow.Paint(), 10 * 4);
    EXPECT_THAT(fLog, ElementsAre("root:draw", "right:draw"));
    EXPECT_THAT(fWindow.LastDamage(), ElementsAre(Rect{155, 65, 10, 4}));

    left->UI_Show(false);
    left->UI_Invalidate();
    EXPECT_EQ(fWindow.Paint(), 20 * 20) << "where it was";
}

TEST_F(NodeTreeTest, DamageIsRoundedOutToPixelsAtFractionalScales) {
    const Probe root = Make("root", {0, 0, 200, 100});
    fWindow.Window().SetContent(root);
    fWindow.Window().SetHostScale(1.5F);
    EXPECT_EQ(fWindow.Paint(), 300 * 150);
    root->UI_InvalidateRect({1, 1, 1, 1}); // pixels 1.5 to 3
    EXPECT_EQ(fWindow.Paint(), 2 * 2);
}

TEST_F(NodeTreeTest, ThemesAreInheritedAndCanBeOverriddenBelow) {
    const Probe root = Make("root");
    const Probe child = Make("child");
    root->ChildPushBack(child);
    fWindow.Window().SetTheme(Theme::Light());
    fWindow.Window().SetContent(root);
    EXPECT_EQ(&child->GetTheme(), &Theme::Light());
    root->SetTheme(&Theme::Dark());
    EXPECT_EQ(&child->GetTheme(), &Theme::Dark());
}

} // namespace
