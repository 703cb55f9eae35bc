#include "CurveValue.h"

#include "uit/lio/AttributeValues.h"

#include <algorithm>
#include <stdexcept>

namespace uit::lio {

using controls::CurvePoint;
using orrin::any_regular_t;
using orrin::array_t;
using orrin::dictionary_t;
using orrin::name_t;

namespace {

constexpr std::size_t kMostPoints = 4096;
constexpr std::string_view kFlags[] = {"visible", "movable_x", "movable_y", "deletable"};

// The coordinates of an array's element.
CurvePoint PointOf(const any_regular_t& element) {
    const auto& dictionary = element.get<dictionary_t>();
    if (!dictionary.contains(name_t("x")) || !dictionary.contains(name_t("y")))
        throw std::invalid_argument("needs points with x and y");
    CurvePoint point;
    ReadEntry(dictionary, "x", [&](const any_regular_t& x) { point.coordinates.horizontal = FiniteNumberOf(x); });
    ReadEntry(dictionary, "y", [&](const any_regular_t& y) { point.coordinates.vertical = FiniteNumberOf(y); });
    for (const std::string_view flag : kFlags)
        ReadEntry(dictionary, flag, [](const any_regular_t& value) { BoolOf(value); });
    return point;
}

any_regular_t Moved(dictionary_t dictionary, const CurvePoint& point) {
    dictionary[name_t("x")] = point.coordinates.horizontal;
    dictionary[name_t("y")] = point.coordinates.vertical;
    return dictionary;
}

} // namespace

void CurveValue::SetArray(const any_regular_t& array) {
    const auto& elements = array.get<array_t>();
    if (elements.size() > kMostPoints) throw std::invalid_argument("needs an array with at most 4096 points");
    Points entries;
    entries.reserve(elements.size());
    for (const any_regular_t& element : elements) {
        entries.push_back(PointOf(element));
        const std::size_t index = entries.size() - 1;
        const bool isKnown = elements.size() == fEntries.size();
        entries.back().identifier = isKnown ? fEntries[index].identifier : static_cast<std::uint32_t>(index);
    }
    fArray = array;
    fEntries = std::move(entries);
    UpdatePoints();
}

void CurveValue::SetCount(const any_regular_t& count) {
    fCount = static_cast<std::size_t>(WholeNumberWithin(count, 0, static_cast<int>(kMostPoints)));
    UpdatePoints();
}

std::vector<bool> CurveValue::Flags(std::string_view entry) const {
    const name_t key(entry);
    std::vector<bool> flags;
    const auto& elements = fArray.get<array_t>();
    for (std::size_t i = 0; i < fPoints.size(); ++i) {
        const any_regular_t* const flag = elements[i].get<dictionary_t>().find(key);
        flags.push_back(!flag || flag->get_or(true));
    }
    return flags;
}

void CurveValue::Take(const Points& points) {
    const auto& elements = fArray.get<array_t>();
    array_t taken;
    Points entries = points;
    std::uint32_t unused = 0;
    for (const CurvePoint& point : points) {
        const auto known = std::ranges::find(fPoints, point.identifier, &CurvePoint::identifier);
        const auto index = static_cast<std::size_t>(known - fPoints.begin());
        taken.push_back(Moved(known != fPoints.end() ? elements[index].get<dictionary_t>() : dictionary_t(), point));
        unused = std::max(unused, point.identifier + 1);
    }
    // What lies ready behind the curve stays where it is.
    for (std::size_t i = points.size(); fCount && i < elements.size(); ++i) {
        taken.push_back(elements[i]);
        entries.push_back({unused++, fEntries[i].coordinates});
    }
    if (fCount) fCount = points.size();
    fArray = any_regular_t(std::move(taken));
    fEntries = std::move(entries);
    UpdatePoints();
}

void CurveValue::UpdatePoints() {
    const std::size_t used = std::min(fCount.value_or(fEntries.size()), fEntries.size());
    fPoints.assign(fEntries.begin(), fEntries.begin() + static_cast<std::ptrdiff_t>(used));
}

} // namespace uit::lio
