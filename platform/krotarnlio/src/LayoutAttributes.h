#pragma once

#include "orrin/any_regular.h"
#include "uit/lio/WidgetAdapter.h"

#include <optional>
#include <span>
#include <string>

namespace krotarnlio {

enum class Alignment : std::uint8_t { kDefault, kStart, kEnd, kCentre, kProportional, kFill };
enum class Placement : std::uint8_t { kLeaf, kRow, kColumn, kOverlay };

// The space around the children of a widget, in view units.
struct Margins {
    float left = 0;
    float top = 0;
    float right = 0;
    float bottom = 0;
};

// What every widget can say of its place, and every container of its children's. What a script leaves open is empty and
// falls to the widget's own defaults.
struct LayoutAttributes {
    std::string identifier;
    std::string tooltip; // as the script has it, perhaps a localisation key
    Alignment horizontal = Alignment::kDefault;
    Alignment vertical = Alignment::kDefault;
    Alignment childHorizontal = Alignment::kDefault;
    Alignment childVertical = Alignment::kDefault;
    std::optional<Placement> placement;
    std::optional<float> spacing;
    std::optional<Margins> margins;
    float indent = 0;
    // Which guides of its text a widget keeps to itself: 1 colons, 2 baselines.
    unsigned guideMask = 0;

    static constexpr unsigned kColonGuide = 1;
    static constexpr unsigned kBaselineGuide = 2;

    static std::span<const uit::lio::AttributeRow> Rows();
    // `row`: of Rows(). Throws a standard exception for a value that the attribute can't have.
    void Set(std::size_t row, const orrin::any_regular_t& value);
};

// A name that stands for an alignment ("align_left", ...).
std::optional<Alignment> AlignmentOf(const orrin::any_regular_t& value);

} // namespace krotarnlio
