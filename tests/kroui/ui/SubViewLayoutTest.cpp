#include "kroui/limner/CairoSupplier.h"
#include "kroui/ui/DamageRegion.h"
#include "kroui/ui/HeadlessWindow.h"
#include "kroui/ui/UI_SubView.h"

#include <gmock/gmock.h>

#include <random>

using namespace kroui;
using namespace kroui::ui;

namespace {

using View = boost::intrusive_ptr<UI_SubView>;

View MakeView(Rect frame) {
    const View view(new UI_SubView);
    view->UI_SetFrame(frame);
    return view;
}

// A child at (10, 20) of 30 x 40 in a parent of 100 x 100 that becomes 160 x 140.
TEST(SubViewLayout, ConstraintsKeepEdgesWhenTheParentIsResized) {
    const struct {
        std::uint32_t mask;
        Rect expected;
    } cases[] = {
        {0, {10, 20, 30, 40}},     // stays
        {4, {10, 20, 30, 40}},     // top
        {5, {10, 20, 30, 40}},     // left, top
        {2 | 4, {70, 20, 30, 40}}, // right
        {12, {10, 20, 30, 80}},    // top and bottom: stretched
        {1 | 2, {10, 20, 90, 40}}, // left and right: stretched
        {8, {10, 60, 30, 40}},     // bottom
        {16, {40, 20, 30, 40}},    // horizontal centre
        {20, {40, 20, 30, 40}},    // horizontal centre, top
        {14, {70, 20, 30, 80}},    // right, top, bottom
    };
    for (const auto& [mask, expected] : cases) {
        const View parent = MakeView({0, 0, 100, 100});
        const View child = MakeView({10, 20, 30, 40});
        child->SetConstraints(mask);
        parent->ChildPushBack(child);
        parent->UI_SetFrame({0, 0, 160, 140});
        EXPECT_EQ(child->UI_GetFrame(), expected) << "mask " << mask;
        parent->UI_SetFrame({0, 0, 100, 100});
        EXPECT_EQ(child->UI_GetFrame(), (Rect{10, 20, 30, 40})) << "back again, mask " << mask;

        parent->SetLayoutChildren(false);
        parent->UI_SetFrame({0, 0, 500, 500});
        EXPECT_EQ(child->UI_GetFrame(), (Rect{10, 20, 30, 40})) << "layout is off";
    }
}

class AutoLayoutTest : public testing::Test {
protected:
    AutoLayoutTest() {
        fStack->SetAutoLayout(true);
        fStack->SetAutoLayoutMaintainMargins(true);
        fStack->SetAutoLayoutScaleChildren(true);
        for (const auto& child : {fFirst, fSecond, fThird})
            fStack->ChildPushBack(child);
    }

    limner::CairoSupplier fSupplier;
    View fStack = MakeView({0, 0, 100, 140});
    View fFirst = MakeView({0, 16, 50, 24});
    View fSecond = MakeView({0, 48, 50, 24}); // 8 below the first
    View fThird = MakeView({0, 88, 50, 36});  // 16 below the second, 16 above the end
    HeadlessWindow fWindow{fSupplier, {200, 200}};
};

TEST_F(AutoLayoutTest, HiddenChildrenTakeNoRoomAndTheOthersKeepTheirMargins) {
    fWindow.Window().SetContent(fStack);
    EXPECT_EQ(fThird->UI_GetFrame(), (Rect{0, 88, 100, 36})) << "as the archive had it, as wide as the stack";
    EXPECT_EQ(fStack->UI_GetFrame().height, 140);

    fSecond->UI_Show(false);
    EXPECT_EQ(fThird->UI_GetFrame().top, 56);
    EXPECT_EQ(fStack->UI_GetFrame().height, 108);
    fSecond->UI_Show(true);
    EXPECT_EQ(fThird->UI_GetFrame().top, 88);
}

TEST_F(AutoLayoutTest, AStackInAStackPassesItsGrowthOn) {
    const View rows = MakeView({0, 16, 50, 24});
    rows->SetAutoLayout(true);
    fStack->ChildRemove(fFirst.get());
    fStack->ChildInsert(0, rows);
    fWindow.Window().SetContent(fStack);
    for (int i = 0; i < 3; ++i)
        rows->ChildPushBack(MakeView({0, 0, 10, 24}));
    EXPECT_EQ(rows->UI_GetFrame(), (Rect{0, 16, 100, 72}));
    EXPECT_EQ(fSecond->UI_GetFrame().top, 96);
    EXPECT_EQ(fStack->UI_GetFrame().height, 188);
}

// The list covers every added pixel, stays short and does not overlap.
TEST(DamageRegion, CoversWhatWasAddedInFewDisjointRectangles) {
    std::mt19937 random(1);
    std::uniform_int_distribution<int> position(0, 390);
    std::uniform_int_distribution<int> length(1, 60);
    for (int round = 0; round < 50; ++round) {
        DamageRegion region;
        std::vector<Rect> added;
        for (int i = 0; i < 40; ++i) {
            added.push_back({static_cast<float>(position(random)), static_cast<float>(position(random)),
                             static_cast<float>(length(random)), static_cast<float>(length(random))});
            region.Add(added.back());
        }
        const auto rects = region.Rects();
        EXPECT_LE(rects.size(), DamageRegion::kMostRects);
        for (std::size_t i = 0; i < rects.size(); ++i)
            for (std::size_t j = i + 1; j < rects.size(); ++j)
                EXPECT_FALSE(rects[i].Intersects(rects[j]));
        for (const Rect& rect : added)
            EXPECT_TRUE(std::any_of(rects.begin(), rects.end(), [&](const Rect& r) { return Union(r, rect) == r; }));
    }
}

TEST(DamageRegion, FarApartRectanglesStayApart) {
    DamageRegion region;
    region.Add({0, 0, 20, 20});
    region.Add({300, 300, 20, 20});
    region.Add({});
    EXPECT_EQ(region.Rects().size(), 2U);
    region.Add({15, 0, 20, 20});
    EXPECT_EQ(region.Rects().size(), 2U);
}

} // namespace
