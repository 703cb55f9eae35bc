#include "controls/curves/CurveMove.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace uit::controls {

using Pair = UI_RulerGridBase::CoordinatePair;

double CurveMove::LeastDistance(double first, double last) {
    constexpr double kPartOfAxis = 1e-6;
    constexpr double kFloatSteps = 4;
    const double greatest = std::max(std::abs(first), std::abs(last));
    return std::max(std::abs(last - first) * kPartOfAxis,
                    greatest * kFloatSteps * std::numeric_limits<float>::epsilon());
}

CurvePointSet::Points CurveMove::Moved(const CurvePointSet& set, const std::vector<Pair>& bases, double dx,
                                       double dy) const {
    CurvePointSet::Points points = set.All();
    const std::vector<int>& selection = set.Selection();
    for (std::size_t i = 0; i < std::min(selection.size(), bases.size()); ++i) {
        const int index = selection[i];
        Pair& place = points[static_cast<std::size_t>(index)].coordinates;
        const Pair& base = bases[i];
        place = base;
        if (!set.May(CurvePointSet::kVisible, index)) continue;
        if (dx != 0 && set.May(CurvePointSet::kHorizontal, index)) {
            const double wanted = Shifted(fAxes.horizontal, base.horizontal, dx, fAxes.content.width);
            place.horizontal =
                BetweenNeighbours(set, points, index, Held(wanted, fAxes.shownHorizontal, base.horizontal));
        }
        if (dy != 0 && set.May(CurvePointSet::kVertical, index)) {
            const double wanted = Shifted(fAxes.vertical, base.vertical, dy, fAxes.content.height);
            place.vertical = Held(wanted, fAxes.shownVertical, base.vertical);
        }
    }
    return points;
}

CurvePointSet::Points CurveMove::Placed(const CurvePointSet& set, int index, const Pair& wanted) const {
    CurvePointSet one = set;
    one.Select(index);
    CurvePointSet::Points points = set.All();
    Pair& place = points[static_cast<std::size_t>(index)].coordinates;
    if (std::isfinite(wanted.horizontal) && wanted.horizontal != place.horizontal &&
        set.May(CurvePointSet::kHorizontal, index))
        place.horizontal = BetweenNeighbours(
            one, points, index, Held(wanted.horizontal, fAxes.shownHorizontal, fAxes.shownHorizontal.first));
    if (std::isfinite(wanted.vertical) && set.May(CurvePointSet::kVertical, index))
        place.vertical = Held(wanted.vertical, fAxes.shownVertical, fAxes.shownVertical.first);
    return points;
}

double CurveMove::Shifted(const kroui::utility::RulerBase& ruler, double base, double pixels, float length) {
    if (!(length > 0) || ruler.IsDegenerate()) return base;
    return ruler.GetValueAt(ruler.GetFraction(base) + pixels / length);
}

// What lies outside the range already may stay there.
double CurveMove::Held(double value, const Range& range, double base) {
    return std::clamp(value, std::min({range.first, range.last, base}), std::max({range.first, range.last, base}));
}

bool CurveMove::IsFixed(const CurvePointSet& set, int index) const {
    return !set.IsSelected(index) || !set.May(CurvePointSet::kHorizontal, index) ||
           !set.May(CurvePointSet::kVisible, index);
}

// Points before `index` stand where they will be; those behind it that are going to move need only room.
double CurveMove::BetweenNeighbours(const CurvePointSet& set, const CurvePointSet::Points& placed, int index,
                                    double wanted) const {
    if (fAxes.distance < 0) return wanted;
    constexpr double kFar = std::numeric_limits<double>::infinity();
    const auto position = [&](int i) { return placed[static_cast<std::size_t>(i)].coordinates.horizontal; };
    const double low = index > 0 ? position(index - 1) + fAxes.distance : -kFar;
    int next = index + 1;
    while (set.Has(next) && !IsFixed(set, next))
        ++next;
    double high = kFar;
    if (set.Has(next)) high = position(next) - fAxes.distance * (next - index);
    return low <= high ? std::clamp(wanted, low, high) : position(index);
}

} // namespace uit::controls
