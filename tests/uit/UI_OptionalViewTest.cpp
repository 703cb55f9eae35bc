#include "uit/controls/UI_OptionalView.h"

#include <gmock/gmock.h>

namespace uit::controls {

namespace {

// "010": which children are visible.
std::string Shown(const UI_OptionalView& view) {
    std::string shown;
    for (const auto& child : view.Children()) {
        shown += child->UI_IsVisible() ? '1' : '0';
    }
    return shown;
}

} // namespace

TEST(UI_OptionalView, ShowsExactlyTheActiveChild) {
    const boost::intrusive_ptr<UI_OptionalView> view(new UI_OptionalView);
    for (int i = 0; i < 3; ++i) {
        view->ChildPushBack(new kroui::ui::UI_SubView);
    }
    const struct {
        int index;
        std::string_view shown;
    } cases[] = {{1, "010"}, {2, "001"}, {3, "000"}, {-1, "000"}, {0, "100"}};
    for (const auto& c : cases) {
        view->ShowChild(c.index);
        EXPECT_EQ(Shown(*view), c.shown) << c.index;
    }
}

TEST(UI_OptionalView, ChildrenThatComeLaterFollowTheIndex) {
    const boost::intrusive_ptr<UI_OptionalView> view(new UI_OptionalView);
    view->SetActiveIndex(1);
    view->ChildPushBack(new kroui::ui::UI_SubView);
    EXPECT_EQ(Shown(*view), "0");
    view->ChildPushBack(new kroui::ui::UI_SubView);
    EXPECT_EQ(Shown(*view), "01");
    view->ChildRemove(view->Child(0));
    EXPECT_EQ(Shown(*view), "0");
}

} // namespace uit::controls
