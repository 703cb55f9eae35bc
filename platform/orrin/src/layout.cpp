#include "orrin/layout.h"

#include <algorithm>
#include <stdexcept>

namespace orrin {

namespace {

constexpr int kNoGuide = layout_extents_t::kNoGuide;

// Shares a length between takers, the first ones getting what does not divide.
class share_t {
public:
    share_t(int length, int takers) : fLength(length), fTakers(takers) {}

    int next() {
        if (fTakers == 0) return 0;
        const int part = (fLength + fTakers - 1) / fTakers;
        fLength -= part;
        --fTakers;
        return part;
    }

private:
    int fLength;
    int fTakers;
};

int before(const layout_attributes_t& box, bool horizontal) {
    return horizontal ? box.margins.left : box.margins.top;
}

int behind(const layout_attributes_t& box, bool horizontal) {
    return horizontal ? box.margins.right : box.margins.bottom;
}

int indent(const layout_attributes_t& box, bool horizontal) {
    return horizontal ? box.indent : 0;
}

bool masks(const layout_attributes_t& box, bool horizontal) {
    return horizontal ? box.masksLabel : box.masksBaseline;
}

} // namespace

layout_t::index_t layout_t::add(index_t parent, const layout_attributes_t& attributes) {
    if ((parent == kNone) != fBoxes.empty()) throw std::invalid_argument("a layout has one root");
    if (parent != kNone && (parent >= fBoxes.size() || fBoxes[parent].attributes.placement == placement_t::leaf))
        throw std::invalid_argument("the parent has no children");
    const auto index = static_cast<index_t>(fBoxes.size());
    box_t box;
    box.attributes = attributes;
    box.parent = parent;
    fBoxes.push_back(box);
    if (parent == kNone) return index;
    box_t& owner = fBoxes[parent];
    (owner.firstChild == kNone ? owner.firstChild : fBoxes[owner.lastChild].nextSibling) = index;
    owner.lastChild = index;
    return index;
}

void layout_t::set_extents(index_t leaf, const layout_extents_t& extents) {
    fBoxes[leaf].extents = extents;
    fBoxes[leaf].extents.width = std::max(extents.width, 0);
    fBoxes[leaf].extents.height = std::max(extents.height, 0);
}

bool layout_t::is_present(index_t box) const {
    for (; box != kNone; box = fBoxes[box].parent)
        if (!fBoxes[box].isPresent) return false;
    return true;
}

void layout_t::place(int width, int height) {
    if (fBoxes.empty()) return;
    show_present();
    measure(kHorizontal);
    place_all(kHorizontal, width);
    if (fHeightForWidth) ask_heights();
    measure(kVertical);
    place_all(kVertical, height);
}

layout_rect_t layout_t::frame(index_t index) const {
    const box_t& box = fBoxes[index];
    if (!box.isShown) return {};
    return {box.axes[kHorizontal].position, box.axes[kVertical].position, box.axes[kHorizontal].length,
            box.axes[kVertical].length};
}

void layout_t::show_present() {
    for (box_t& box : fBoxes)
        box.isShown = box.isPresent && (box.parent == kNone || fBoxes[box.parent].isShown);
}

void layout_t::measure(std::size_t direction) {
    for (auto box = fBoxes.rbegin(); box != fBoxes.rend(); ++box) {
        box->axes[direction] = axis_t{};
        if (!box->isShown) continue;
        if (box->attributes.placement == placement_t::leaf)
            measure_leaf(*box, direction);
        else if (is_along(*box, direction))
            measure_along(*box, direction);
        else
            measure_across(*box, direction);
    }
}

void layout_t::measure_leaf(box_t& box, std::size_t direction) {
    const bool horizontal = direction == kHorizontal;
    axis_t& axis = box.axes[direction];
    const int margins = before(box.attributes, horizontal) + behind(box.attributes, horizontal);
    const int guide = horizontal ? box.extents.label : box.extents.baseline;
    axis.needed = (horizontal ? box.extents.width : box.extents.height) + margins;
    if (guide >= 0 && !masks(box.attributes, horizontal)) axis.guide = guide + before(box.attributes, horizontal);
}

void layout_t::measure_along(box_t& box, std::size_t direction) {
    const bool horizontal = direction == kHorizontal;
    axis_t& axis = box.axes[direction];
    const index_t first = shown(box.firstChild);
    int end = before(box.attributes, horizontal);
    for (index_t index = first; index != kNone; index = shown(fBoxes[index].nextSibling)) {
        const box_t& child = fBoxes[index];
        const bool isFirst = index == first;
        end += (isFirst ? 0 : box.attributes.spacing) + indent(child.attributes, horizontal);
        if (isFirst && is_guided(child, direction)) axis.contentGuide = end + child.axes[direction].guide;
        end += child.axes[direction].needed;
    }
    axis.needed = std::max(end + behind(box.attributes, horizontal), 0);
    if (!masks(box.attributes, horizontal)) axis.guide = axis.contentGuide;
}

void layout_t::measure_across(box_t& box, std::size_t direction) {
    const bool horizontal = direction == kHorizontal;
    axis_t& axis = box.axes[direction];
    int guide = kNoGuide;
    int tail = 0; // behind the guide
    int inner = 0;
    for (index_t index = shown(box.firstChild); index != kNone; index = shown(fBoxes[index].nextSibling)) {
        const box_t& child = fBoxes[index];
        const axis_t& its = child.axes[direction];
        const int shift = indent(child.attributes, horizontal);
        inner = std::max(inner, shift + its.needed);
        if (!is_guided(child, direction)) continue;
        guide = std::max(guide, shift + its.guide);
        tail = std::max(tail, its.needed - its.guide);
    }
    if (guide != kNoGuide) inner = std::max(inner, guide + tail);
    axis.needed = std::max(before(box.attributes, horizontal) + inner + behind(box.attributes, horizontal), 0);
    if (guide != kNoGuide) axis.contentGuide = before(box.attributes, horizontal) + guide;
    if (!masks(box.attributes, horizontal)) axis.guide = axis.contentGuide;
}

void layout_t::place_all(std::size_t direction, int length) {
    axis_t& root = fBoxes.front().axes[direction];
    root.length = std::max(root.needed, length);
    for (const box_t& box : fBoxes) {
        if (!box.isShown || box.firstChild == kNone) continue;
        if (is_along(box, direction))
            place_along(box, direction);
        else
            place_across(box, direction);
    }
}

layout_t::along_t layout_t::survey(const box_t& box, std::size_t direction) const {
    along_t along;
    const axis_t& axis = box.axes[direction];
    along.first = shown(box.firstChild);
    if (axis.placedGuide != kNoGuide) along.guideShift = axis.placedGuide - axis.contentGuide;
    along.room = std::max(axis.length - axis.needed - along.guideShift, 0);
    for (index_t index = along.first; index != kNone; index = shown(fBoxes[index].nextSibling)) {
        ++along.children;
        const alignment_t aligned = alignment(fBoxes[index], direction);
        if (aligned == alignment_t::fill) ++along.filling;
        if (aligned == alignment_t::proportional) along.isProportional = true;
        if (aligned == alignment_t::center) along.lastCentered = index;
        if (aligned == alignment_t::center && along.firstCentered == kNone) along.firstCentered = index;
        if (aligned == alignment_t::end && along.firstAtEnd == kNone) along.firstAtEnd = index;
    }
    return along;
}

// Room left over goes to the children that fill; without any, between all of them if one is proportional; otherwise
// half in front of the first that wants the centre and half behind the last such, or in front of the first that wants
// to stand at the end.
int layout_t::along_t::room_before(index_t child) const {
    if (filling > 0 || isProportional) return 0;
    if (child == firstCentered) return room / 2;
    return child == firstAtEnd && firstCentered == kNone ? room : 0;
}

int layout_t::along_t::room_behind(index_t child) const {
    return filling == 0 && !isProportional && child == lastCentered ? room - room / 2 : 0;
}

void layout_t::place_along(const box_t& box, std::size_t direction) {
    const bool horizontal = direction == kHorizontal;
    const along_t along = survey(box, direction);
    share_t fills(along.room, along.filling);
    share_t gaps(along.room, along.filling == 0 && along.isProportional ? along.children - 1 : 0);
    int end = box.axes[direction].position + before(box.attributes, horizontal);
    if (along.isProportional && along.filling == 0 && along.children == 1) end += along.room / 2;
    for (index_t index = along.first; index != kNone; index = shown(fBoxes[index].nextSibling)) {
        box_t& child = fBoxes[index];
        axis_t& its = child.axes[direction];
        if (index != along.first) end += box.attributes.spacing + gaps.next();
        end += indent(child.attributes, horizontal) + along.room_before(index);
        its.length = its.needed;
        if (index == along.first && along.guideShift > 0)
            end += guide_shift(child, direction, its.guide + along.guideShift);
        if (alignment(child, direction) == alignment_t::fill) its.length += fills.next();
        its.position = end;
        end += its.length + along.room_behind(index);
    }
}

void layout_t::place_across(const box_t& box, std::size_t direction) {
    const bool horizontal = direction == kHorizontal;
    const axis_t& axis = box.axes[direction];
    const int begin = before(box.attributes, horizontal);
    const int room = axis.length - begin - behind(box.attributes, horizontal);
    const int guide = axis.placedGuide == kNoGuide ? axis.contentGuide : axis.placedGuide;
    for (index_t index = shown(box.firstChild); index != kNone; index = shown(fBoxes[index].nextSibling)) {
        box_t& child = fBoxes[index];
        axis_t& its = child.axes[direction];
        const alignment_t aligned = alignment(child, direction);
        int offset = indent(child.attributes, horizontal);
        its.length = its.needed;
        if (is_guided(child, direction)) offset += guide_shift(child, direction, guide - begin - offset);
        const int extra = std::max(room - offset - its.length, 0);
        if (aligned == alignment_t::fill) its.length += extra;
        if (aligned == alignment_t::end) offset += extra;
        if (aligned == alignment_t::center || aligned == alignment_t::proportional) offset += extra / 2;
        its.position = axis.position + begin + offset;
    }
}

// Brings the child's guide to `guide`, measured from where the child would stand: by making a box longer, which moves
// its own children, or by the returned shift of a leaf.
int layout_t::guide_shift(box_t& child, std::size_t direction, int guide) const {
    axis_t& its = child.axes[direction];
    const int shift = std::max(guide - its.guide, 0);
    if (child.attributes.placement == placement_t::leaf) return shift;
    its.placedGuide = its.guide + shift;
    its.length += shift;
    return 0;
}

void layout_t::ask_heights() {
    for (index_t index = 0; index < fBoxes.size(); ++index) {
        box_t& box = fBoxes[index];
        if (!box.isShown || box.attributes.placement != placement_t::leaf) continue;
        const layout_margins_t& margins = box.attributes.margins;
        const int height = fHeightForWidth(index, box.axes[kHorizontal].length - margins.left - margins.right);
        if (height >= 0) box.extents.height = height;
    }
}

bool layout_t::is_along(const box_t& box, std::size_t direction) const {
    return box.attributes.placement == (direction == kHorizontal ? placement_t::row : placement_t::column);
}

alignment_t layout_t::alignment(const box_t& box, std::size_t direction) const {
    const bool horizontal = direction == kHorizontal;
    alignment_t own = horizontal ? box.attributes.horizontal : box.attributes.vertical;
    if (own == alignment_t::inherit && box.parent != kNone) {
        const layout_attributes_t& parent = fBoxes[box.parent].attributes;
        own = horizontal ? parent.childHorizontal : parent.childVertical;
    }
    return own == alignment_t::inherit ? alignment_t::start : own;
}

bool layout_t::is_guided(const box_t& box, std::size_t direction) const {
    if (box.axes[direction].guide == kNoGuide) return false;
    const alignment_t aligned = alignment(box, direction);
    return aligned == alignment_t::start || aligned == alignment_t::fill;
}

layout_t::index_t layout_t::shown(index_t box) const {
    while (box != kNone && !fBoxes[box].isShown)
        box = fBoxes[box].nextSibling;
    return box;
}

} // namespace orrin
