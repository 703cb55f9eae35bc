#include "orrin/layout.h"

#include <gtest/gtest.h>

#include <ostream>
#include <stdexcept>
#include <vector>

namespace orrin {

void PrintTo(const layout_rect_t& rect, std::ostream* out) {
    *out << "(" << rect.left << ", " << rect.top << ", " << rect.width << " x " << rect.height << ")";
}

namespace {

using index_t = layout_t::index_t;

layout_attributes_t Box(placement_t placement, int spacing = 0, int margin = 0) {
    layout_attributes_t attributes;
    attributes.placement = placement;
    attributes.spacing = spacing;
    attributes.margins = {margin, margin, margin, margin};
    return attributes;
}

layout_attributes_t Aligned(alignment_t horizontal, alignment_t vertical = alignment_t::inherit) {
    layout_attributes_t attributes;
    attributes.horizontal = horizontal;
    attributes.vertical = vertical;
    return attributes;
}

index_t AddLeaf(layout_t& layout, index_t parent, const layout_extents_t& extents,
                const layout_attributes_t& attributes = {}) {
    const index_t leaf = layout.add(parent, attributes);
    layout.set_extents(leaf, extents);
    return leaf;
}

TEST(Layout, RowChildrenStandSideBySideWithSpacingInsideTheMargins) {
    layout_t layout;
    const index_t root = layout.add(layout_t::kNone, Box(placement_t::row, 8, 16));
    const index_t a = AddLeaf(layout, root, {30, 24});
    const index_t b = AddLeaf(layout, root, {50, 10});
    layout.place();
    EXPECT_EQ(layout.frame(root), (layout_rect_t{0, 0, 120, 56})); // 16 + 30 + 8 + 50 + 16, 16 + 24 + 16
    EXPECT_EQ(layout.frame(a), (layout_rect_t{16, 16, 30, 24}));
    EXPECT_EQ(layout.frame(b), (layout_rect_t{54, 16, 50, 10}));
}

TEST(Layout, ColumnIndentShiftsAndWidens) {
    layout_t layout;
    const index_t root = layout.add(layout_t::kNone, Box(placement_t::column, 8));
    layout_attributes_t indented;
    indented.indent = 20;
    const index_t a = AddLeaf(layout, root, {30, 24});
    const index_t b = AddLeaf(layout, root, {40, 24}, indented);
    layout.place();
    EXPECT_EQ(layout.frame(root), (layout_rect_t{0, 0, 60, 56}));
    EXPECT_EQ(layout.frame(a), (layout_rect_t{0, 0, 30, 24}));
    EXPECT_EQ(layout.frame(b), (layout_rect_t{20, 32, 40, 24}));
}

TEST(Layout, OverlayChildrenShareTheRoom) {
    layout_t layout;
    layout_attributes_t attributes = Box(placement_t::overlay, 99, 5);
    attributes.childHorizontal = alignment_t::center;
    attributes.childVertical = alignment_t::end;
    const index_t root = layout.add(layout_t::kNone, attributes);
    const index_t a = AddLeaf(layout, root, {100, 10});
    const index_t b = AddLeaf(layout, root, {31, 40});
    layout.place();
    EXPECT_EQ(layout.frame(root), (layout_rect_t{0, 0, 110, 50}));
    EXPECT_EQ(layout.frame(a), (layout_rect_t{5, 35, 100, 10}));
    EXPECT_EQ(layout.frame(b), (layout_rect_t{39, 5, 31, 40})); // 5 + (100 - 31) / 2
}

struct AcrossCase {
    alignment_t alignment;
    int left;
    int width;
};

TEST(Layout, AcrossAColumnEachAlignmentHasItsPlace) {
    const AcrossCase cases[] = {
        {alignment_t::inherit, 160, 40}, // what the column says: end
        {alignment_t::start, 0, 40},         {alignment_t::end, 160, 40}, {alignment_t::center, 80, 40},
        {alignment_t::proportional, 80, 40}, {alignment_t::fill, 0, 200},
    };
    for (const AcrossCase& across : cases) {
        layout_t layout;
        layout_attributes_t attributes = Box(placement_t::column);
        attributes.childHorizontal = alignment_t::end;
        const index_t root = layout.add(layout_t::kNone, attributes);
        AddLeaf(layout, root, {200, 24});
        const index_t child = AddLeaf(layout, root, {40, 24}, Aligned(across.alignment));
        layout.place();
        EXPECT_EQ(layout.frame(child), (layout_rect_t{across.left, 24, across.width, 24}))
            << static_cast<int>(across.alignment);
    }
}

struct AlongCase {
    std::vector<alignment_t> alignments;
    std::vector<int> lefts;
    std::vector<int> widths;
};

TEST(Layout, AlongARowRoomLeftOverGoesWhereTheChildrenWantIt) {
    using enum alignment_t;
    // Three children of 20 with a spacing of 10 need 80; the row has 111, so 31 are left over.
    const AlongCase cases[] = {
        {{start, start, start}, {0, 30, 60}, {20, 20, 20}},
        {{start, start, end}, {0, 30, 91}, {20, 20, 20}},
        {{end, end, end}, {31, 61, 91}, {20, 20, 20}},
        {{center, center, center}, {15, 45, 75}, {20, 20, 20}},
        {{start, center, end}, {0, 45, 91}, {20, 20, 20}},
        {{proportional, proportional, proportional}, {0, 46, 91}, {20, 20, 20}}, // 16 and 15 between them
        {{start, fill, start}, {0, 30, 91}, {20, 51, 20}},
        {{fill, end, fill}, {0, 46, 76}, {36, 20, 35}},
    };
    for (const AlongCase& along : cases) {
        layout_t layout;
        const index_t root = layout.add(layout_t::kNone, Box(placement_t::row, 10));
        std::vector<index_t> children;
        for (const alignment_t alignment : along.alignments)
            children.push_back(AddLeaf(layout, root, {20, 5}, Aligned(alignment)));
        layout.place(111);
        for (std::size_t i = 0; i < children.size(); ++i)
            EXPECT_EQ(layout.frame(children[i]), (layout_rect_t{along.lefts[i], 0, along.widths[i], 5}))
                << "case " << &along - cases << ", child " << i;
    }
}

TEST(Layout, FillReachesThroughNestedBoxes) {
    layout_t layout;
    const index_t root = layout.add(layout_t::kNone, Box(placement_t::column, 8, 16));
    AddLeaf(layout, root, {300, 24});
    layout_attributes_t row = Box(placement_t::row, 8);
    row.horizontal = alignment_t::fill;
    const index_t line = layout.add(root, row);
    AddLeaf(layout, line, {50, 24});
    const index_t slider = AddLeaf(layout, line, {60, 24}, Aligned(alignment_t::fill));
    layout.place();
    EXPECT_EQ(layout.frame(slider), (layout_rect_t{74, 48, 242, 24})); // from 16 + 50 + 8 to 16 + 300
    EXPECT_EQ(layout.needed_width(root), 332);
}

TEST(Layout, PlaceNeverGivesLessThanIsNeeded) {
    layout_t layout;
    const index_t root = layout.add(layout_t::kNone, Box(placement_t::row));
    const index_t leaf = AddLeaf(layout, root, {50, 20});
    layout.place(10, 10);
    EXPECT_EQ(layout.frame(root), (layout_rect_t{0, 0, 50, 20}));
    layout.place(80, 30);
    EXPECT_EQ(layout.frame(root), (layout_rect_t{0, 0, 80, 30}));
    EXPECT_EQ(layout.frame(leaf), (layout_rect_t{0, 0, 50, 20}));
}

TEST(Layout, ColumnLabelColonsStandInOneLine) {
    layout_t layout;
    const index_t root = layout.add(layout_t::kNone, Box(placement_t::column, 8));
    const index_t gain = AddLeaf(layout, root, {100, 24, 40});
    const index_t frequency = AddLeaf(layout, root, {150, 24, 90});
    const index_t fill = AddLeaf(layout, root, {80, 24, 30}, Aligned(alignment_t::fill));
    const index_t centered = AddLeaf(layout, root, {20, 24, 5}, Aligned(alignment_t::center));
    const index_t plain = AddLeaf(layout, root, {10, 24});
    layout.place();
    EXPECT_EQ(layout.frame(root).width, 150); // 90 and the longest part behind a colon, 60
    EXPECT_EQ(layout.frame(gain), (layout_rect_t{50, 0, 100, 24}));
    EXPECT_EQ(layout.frame(frequency), (layout_rect_t{0, 32, 150, 24}));
    EXPECT_EQ(layout.frame(fill), (layout_rect_t{60, 64, 90, 24}));
    EXPECT_EQ(layout.frame(centered), (layout_rect_t{65, 96, 20, 24}));
    EXPECT_EQ(layout.frame(plain), (layout_rect_t{0, 128, 10, 24}));
}

TEST(Layout, RowBaselinesStandInOneLine) {
    layout_t layout;
    const index_t root = layout.add(layout_t::kNone, Box(placement_t::row, 8));
    const index_t text = AddLeaf(layout, root, {30, 14, -1, 11});
    const index_t button = AddLeaf(layout, root, {60, 24, -1, 16});
    const index_t picture = AddLeaf(layout, root, {10, 12}, Aligned(alignment_t::inherit, alignment_t::center));
    layout.place();
    EXPECT_EQ(layout.frame(text).top, 5);
    EXPECT_EQ(layout.frame(button).top, 0);
    EXPECT_EQ(layout.frame(picture).top, 6);
    EXPECT_EQ(layout.frame(root).height, 24);
}

TEST(Layout, GroupsColonsAlignAcrossThemWhileTheirEdgesStay) {
    layout_t layout;
    const index_t root = layout.add(layout_t::kNone, Box(placement_t::column, 8));
    const index_t first = layout.add(root, Box(placement_t::column, 8, 10));
    const index_t a = AddLeaf(layout, first, {100, 24, 40});
    const index_t second = layout.add(root, Box(placement_t::column, 8, 10));
    const index_t line = layout.add(second, Box(placement_t::row, 8));
    const index_t b = AddLeaf(layout, line, {150, 24, 90});
    const index_t unit = AddLeaf(layout, line, {20, 24});
    const index_t c = AddLeaf(layout, root, {60, 24, 30});
    layout.place();
    // The farthest colon is b's, at 10 + 90; a moves inside its group, which stays at the left edge.
    EXPECT_EQ(layout.frame(first), (layout_rect_t{0, 0, 170, 44})); // 10 + 50 + 100 + 10
    EXPECT_EQ(layout.frame(a), (layout_rect_t{60, 10, 100, 24}));
    EXPECT_EQ(layout.frame(b), (layout_rect_t{10, 62, 150, 24}));
    EXPECT_EQ(layout.frame(unit), (layout_rect_t{168, 62, 20, 24}));
    EXPECT_EQ(layout.frame(c), (layout_rect_t{70, 104, 60, 24}));
}

TEST(Layout, RowMovesWhatStandsBehindAShiftedLabel) {
    layout_t layout;
    const index_t root = layout.add(layout_t::kNone, Box(placement_t::column));
    AddLeaf(layout, root, {200, 24, 100});
    const index_t line = layout.add(root, Box(placement_t::row, 8));
    const index_t a = AddLeaf(layout, line, {50, 24, 20});
    const index_t b = AddLeaf(layout, line, {30, 24, 25}); // not the first: its label is its own affair
    layout.place();
    EXPECT_EQ(layout.frame(line), (layout_rect_t{0, 24, 168, 24}));
    EXPECT_EQ(layout.frame(a), (layout_rect_t{80, 24, 50, 24}));
    EXPECT_EQ(layout.frame(b), (layout_rect_t{138, 24, 30, 24}));
}

TEST(Layout, MaskedGuidesDoNotLeaveTheirBox) {
    layout_t layout;
    const index_t root = layout.add(layout_t::kNone, Box(placement_t::column));
    layout_attributes_t masking = Box(placement_t::column);
    masking.masksLabel = true;
    const index_t group = layout.add(root, masking);
    const index_t inside = AddLeaf(layout, group, {50, 24, 20});
    const index_t other = AddLeaf(layout, group, {50, 24, 30});
    const index_t outside = AddLeaf(layout, root, {200, 24, 100});
    layout.place();
    EXPECT_EQ(layout.frame(inside).left, 10);
    EXPECT_EQ(layout.frame(other).left, 0);
    EXPECT_EQ(layout.frame(outside).left, 0);
}

TEST(Layout, AbsentBoxesTakeNoRoomAndAlignNothing) {
    layout_t layout;
    const index_t root = layout.add(layout_t::kNone, Box(placement_t::column, 8));
    const index_t first = layout.add(root, Box(placement_t::row));
    const index_t wide = AddLeaf(layout, first, {300, 24, 200});
    const index_t gain = AddLeaf(layout, root, {100, 24, 40});
    layout.set_present(first, false);
    layout.place();
    EXPECT_EQ(layout.frame(root), (layout_rect_t{0, 0, 100, 24}));
    EXPECT_EQ(layout.frame(gain), (layout_rect_t{0, 0, 100, 24}));
    EXPECT_EQ(layout.frame(wide), layout_rect_t{});
    EXPECT_FALSE(layout.is_present(wide));
    layout.set_present(first, true);
    layout.place();
    EXPECT_EQ(layout.frame(wide), (layout_rect_t{0, 0, 300, 24}));
    EXPECT_EQ(layout.frame(gain), (layout_rect_t{160, 32, 100, 24}));
}

TEST(Layout, WrappedTextTakesItsHeightFromTheWidthThatItGot) {
    layout_t layout;
    const index_t root = layout.add(layout_t::kNone, Box(placement_t::column));
    AddLeaf(layout, root, {100, 24});
    const index_t text = AddLeaf(layout, root, {40, 14}, Aligned(alignment_t::fill));
    const index_t below = AddLeaf(layout, root, {40, 14});
    layout.set_height_for_width([&](index_t leaf, int width) { return leaf == text ? 1400 / width : -1; });
    layout.place(140);
    EXPECT_EQ(layout.frame(text), (layout_rect_t{0, 24, 140, 10}));
    EXPECT_EQ(layout.frame(below), (layout_rect_t{0, 34, 40, 14}));
}

TEST(Layout, DeepNestingAndManyChildrenNeedNoStack) {
    constexpr int kBoxes = 100'000;
    layout_t layout;
    index_t deepest = layout.add(layout_t::kNone, Box(placement_t::column, 0, 1));
    for (int i = 1; i < kBoxes; ++i)
        deepest = layout.add(deepest, Box(i % 2 ? placement_t::row : placement_t::column, 0, 1));
    const index_t leaf = AddLeaf(layout, deepest, {10, 10, 5, 5});
    for (int i = 0; i < kBoxes; ++i)
        layout.set_present(AddLeaf(layout, deepest, {1, 1}), false);
    layout.place();
    EXPECT_EQ(layout.frame(leaf), (layout_rect_t{kBoxes, kBoxes, 10, 10}));
}

TEST(Layout, SecondRootAndChildrenOfLeavesAreRefused) {
    layout_t layout;
    layout.place();
    EXPECT_THROW(layout.add(0, {}), std::invalid_argument);
    const index_t root = layout.add(layout_t::kNone, Box(placement_t::row));
    const index_t leaf = layout.add(root, {});
    EXPECT_THROW(layout.add(layout_t::kNone, {}), std::invalid_argument);
    EXPECT_THROW(layout.add(leaf, {}), std::invalid_argument);
}

} // namespace
} // namespace orrin
