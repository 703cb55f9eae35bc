#pragma once

#include "orrin/any_regular.h"
#include "uit/controls/CurvePointSet.h"

#include <optional>
#include <string_view>
#include <vector>

namespace uit::lio {

// The points of a curve as cells hold them: an array of dictionaries { x, y }. What else a point's dictionary has stays
// with the point, wherever it is moved to. With a count, points beyond it lie ready in the array but do not belong to
// the curve; the array then keeps its length. A value.
class CurveValue {
public:
    using Points = std::vector<controls::CurvePoint>;

    // What cells hold. Points keep their identifiers as long as there are as many as before. Each throws for a value
    // that is no such array or count, and has changed nothing then.
    void SetArray(const orrin::any_regular_t& array);
    void SetCount(const orrin::any_regular_t& count);

    // Those of the curve.
    const Points& All() const { return fPoints; }
    // What the points say under the name, one a point: "visible: false". True for those that say nothing.
    std::vector<bool> Flags(std::string_view entry) const;
    bool HasCount() const { return fCount.has_value(); }
    // The most points that there is room for.
    std::size_t Capacity(std::size_t most) const { return fCount ? fEntries.size() : most; }

    // What an editor has made of the points; each is found again by its identifier.
    void Take(const Points& points);
    // To be written into the cells.
    const orrin::any_regular_t& Array() const { return fArray; }
    double Count() const { return static_cast<double>(fPoints.size()); }

private:
    void UpdatePoints();

    orrin::any_regular_t fArray{orrin::array_t{}};
    Points fEntries; // of the whole array
    std::optional<std::size_t> fCount;
    Points fPoints;
};

} // namespace uit::lio
