#include "LayoutAttributes.h"

#include "orrin/error.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace krotarnlio {

using orrin::any_regular_t;
using orrin::array_t;
using orrin::name_t;
using uit::lio::AttributeRow;

namespace {

enum Row : std::size_t {
    kIdentifier,
    kAlt,
    kHorizontal,
    kVertical,
    kChildHorizontal,
    kChildVertical,
    kPlacement,
    kSpacing,
    kMargin,
    kIndent,
    kGuideMask,
};

constexpr AttributeRow kRows[] = {
    {"identifier"}, {"alt"},     {"horizontal"}, {"vertical"}, {"child_horizontal"}, {"child_vertical"},
    {"placement"},  {"spacing"}, {"margin"},     {"indent"},   {"guide_mask"},
};

constexpr std::pair<std::string_view, Alignment> kAlignments[] = {
    {"align_left", Alignment::kStart},    {"align_top", Alignment::kStart},
    {"align_right", Alignment::kEnd},     {"align_bottom", Alignment::kEnd},
    {"align_center", Alignment::kCentre}, {"align_proportional", Alignment::kProportional},
    {"align_fill", Alignment::kFill},
};

constexpr std::pair<std::string_view, Placement> kPlacements[] = {
    {"place_row", Placement::kRow},
    {"place_column", Placement::kColumn},
    {"place_overlay", Placement::kOverlay},
};

template <class Meaning, std::size_t N>
std::optional<Meaning> Find(const std::pair<std::string_view, Meaning> (&table)[N], const any_regular_t& value) {
    const name_t* const name = value.get_if<name_t>();
    if (!name) return {};
    const auto row = std::ranges::find(table, name->text(), &std::pair<std::string_view, Meaning>::first);
    if (row == std::end(table)) return {};
    return row->second;
}

Alignment NeededAlignment(const any_regular_t& value) {
    if (const auto alignment = AlignmentOf(value)) return *alignment;
    throw std::invalid_argument("needs an alignment such as align_left or align_fill");
}

Placement NeededPlacement(const any_regular_t& value) {
    if (const auto placement = Find(kPlacements, value)) return *placement;
    throw std::invalid_argument("needs place_row, place_column or place_overlay");
}

float Length(const any_regular_t& value) {
    constexpr double kLongest = 100000;
    const double length = value.get<double>();
    if (!(length >= 0 && length <= kLongest)) throw std::invalid_argument("needs a length from 0 to 100000");
    return static_cast<float>(length);
}

// One number for all sides, or [top, left, bottom, right].
Margins MarginsOf(const any_regular_t& value) {
    const array_t* const sides = value.get_if<array_t>();
    if (!sides) {
        const float all = Length(value);
        return {all, all, all, all};
    }
    if (sides->size() != 4) throw std::invalid_argument("needs a length or [top, left, bottom, right]");
    return {Length((*sides)[1]), Length((*sides)[0]), Length((*sides)[3]), Length((*sides)[2])};
}

} // namespace

std::optional<Alignment> AlignmentOf(const any_regular_t& value) {
    return Find(kAlignments, value);
}

std::span<const AttributeRow> LayoutAttributes::Rows() {
    return kRows;
}

void LayoutAttributes::Set(std::size_t row, const any_regular_t& value) {
    switch (row) {
    case kIdentifier: identifier = value.get<std::string>(); break;
    case kAlt: tooltip = value.get<std::string>(); break;
    case kHorizontal: horizontal = NeededAlignment(value); break;
    case kVertical: vertical = NeededAlignment(value); break;
    case kChildHorizontal: childHorizontal = NeededAlignment(value); break;
    case kChildVertical: childVertical = NeededAlignment(value); break;
    case kPlacement: placement = NeededPlacement(value); break;
    case kSpacing: spacing = Length(value); break;
    case kMargin: margins = MarginsOf(value); break;
    case kIndent: indent = Length(value); break;
    case kGuideMask: guideMask = static_cast<unsigned>(Length(value)); break;
    default: break;
    }
}

} // namespace krotarnlio
