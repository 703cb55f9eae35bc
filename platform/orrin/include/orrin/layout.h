#pragma once

#include <boost/function.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace orrin {

// How a box arranges its children.
enum class placement_t : std::uint8_t {
    leaf,    // has none
    row,     // from left to right
    column,  // from top to bottom
    overlay, // on top of each other
};

// Where a box stands in the room that its parent has for it, per direction.
enum class alignment_t : std::uint8_t {
    inherit,      // what the parent says for its children
    start,        // left or top
    end,          // right or bottom
    center,       //
    proportional, // room left over in a row's or column's direction goes between its children; else as center
    fill,         // takes all the room
};

struct layout_margins_t {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
};

struct layout_rect_t {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    friend bool operator==(const layout_rect_t&, const layout_rect_t&) = default;
};

// What a leaf needs. A guide is a line that is aligned with those of other boxes: the right end of a label's colon,
// measured from the left edge; the baseline of a text, from the top edge.
struct layout_extents_t {
    static constexpr int kNoGuide = -1;

    int width = 0;
    int height = 0;
    int label = kNoGuide;
    int baseline = kNoGuide;
};

struct layout_attributes_t {
    placement_t placement = placement_t::leaf;
    alignment_t horizontal = alignment_t::inherit;
    alignment_t vertical = alignment_t::inherit;
    alignment_t childHorizontal = alignment_t::start; // for children that inherit; inherit means start
    alignment_t childVertical = alignment_t::start;
    int spacing = 0; // between neighbours
    int indent = 0;  // of this box from the left
    layout_margins_t margins;
    // Guides that do not pass from the children out of this box, which aligns them all the same.
    bool masksLabel = false;
    bool masksBaseline = false;
};

// Places nested boxes: each as big as it needs, rows and columns with their labels and baselines aligned, room left
// over where it is wanted. Whole units (one pixel at scale 1), so that edges are sharp. Pure geometry; whoever builds
// widgets owns one, tells it what the leaves need and takes the frames.
//
// In a column the labels of the children are aligned, in a row their baselines, in an overlay both: the child's guide
// moves to where the farthest one stands. A leaf is shifted for that, a box moves its own children that carry the
// guide, so that its edges stay. A row also passes on the label of its first child, and a column the baseline of its
// first child. Guides count for children that stand at the start or fill. Children without a guide stand as they are.
//
// Measuring goes from the leaves up, placing from the root down, each in one pass: time is linear in the number of
// boxes, whatever their nesting. The same input gives the same result.
class layout_t {
public:
    using index_t = std::uint32_t;
    static constexpr index_t kNone = ~index_t{0};

    // Adds a box behind the other children of its parent; the first box is the root and has the parent kNone. Throws
    // std::invalid_argument for a second root or a leaf as parent.
    index_t add(index_t parent, const layout_attributes_t& attributes);

    // Of a leaf. Negative sizes count as 0.
    void set_extents(index_t leaf, const layout_extents_t& extents);
    // A box that is not present takes no room, nor do its children.
    void set_present(index_t box, bool present) { fBoxes[box].isPresent = present; }
    // Present itself, and so are all boxes around it.
    bool is_present(index_t box) const;

    // For leaves whose height depends on their width, such as wrapped text: tells the height once the width is known.
    // Returns a negative number for other leaves.
    using height_for_width_t = boost::function<int(index_t leaf, int width)>;
    void set_height_for_width(height_for_width_t heightForWidth) { fHeightForWidth = std::move(heightForWidth); }

    // Computes all frames. The root becomes as big as it needs, or as given if that is more.
    void place(int width = 0, int height = 0);

    // Relative to the root's left top corner; empty for a box that is not present.
    layout_rect_t frame(index_t box) const;
    // What the box needs, as of the last place().
    int needed_width(index_t box) const { return fBoxes[box].axes[kHorizontal].needed; }

private:
    static constexpr std::size_t kHorizontal = 0;
    static constexpr std::size_t kVertical = 1;

    // One direction of a box.
    struct axis_t {
        int needed = 0;
        int guide = layout_extents_t::kNoGuide;        // that it passes on, measured from its edge
        int contentGuide = layout_extents_t::kNoGuide; // where its children's guides are aligned
        int position = 0;                              // from the root's edge
        int length = 0;
        int placedGuide = layout_extents_t::kNoGuide; // where the guide has to stand, from the box's edge
    };
    struct box_t {
        layout_attributes_t attributes;
        layout_extents_t extents;
        index_t parent = kNone;
        index_t firstChild = kNone;
        index_t lastChild = kNone;
        index_t nextSibling = kNone;
        bool isPresent = true;
        bool isShown = true; // with all around it; while placing
        std::array<axis_t, 2> axes;
    };

    // What there is to know of the children in a row or column before placing them in its direction.
    struct along_t {
        index_t first = kNone;
        index_t firstCentered = kNone;
        index_t lastCentered = kNone;
        index_t firstAtEnd = kNone;
        int children = 0;
        int filling = 0;
        bool isProportional = false;
        int guideShift = 0; // of the first child
        int room = 0;       // left over

        int room_before(index_t child) const;
        int room_behind(index_t child) const;
    };

    void show_present();
    void measure(std::size_t direction);
    void measure_leaf(box_t& box, std::size_t direction);
    void measure_along(box_t& box, std::size_t direction);
    void measure_across(box_t& box, std::size_t direction);
    void place_all(std::size_t direction, int length);
    along_t survey(const box_t& box, std::size_t direction) const;
    void place_along(const box_t& box, std::size_t direction);
    void place_across(const box_t& box, std::size_t direction);
    void ask_heights();

    bool is_along(const box_t& box, std::size_t direction) const;
    alignment_t alignment(const box_t& box, std::size_t direction) const;
    bool is_guided(const box_t& box, std::size_t direction) const;
    int guide_shift(box_t& child, std::size_t direction, int guide) const;
    index_t shown(index_t box) const; // this box or the next sibling that is shown

    std::vector<box_t> fBoxes; // parents before their children
    height_for_width_t fHeightForWidth;
};

} // namespace orrin
