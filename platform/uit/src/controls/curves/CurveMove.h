#pragma once

#include "uit/controls/CurvePointSet.h"

namespace uit::controls {

// Moves points of a curve by pixels on their axes: none leaves what is shown, none moves in a direction that is not
// its, and on a curve of unique horizontal positions none passes a neighbour.
class CurveMove {
public:
    // A stretch of an axis in its own unit, in either order.
    struct Range {
        double first;
        double last;
    };
    struct Axes {
        const kroui::utility::RulerBase& horizontal;
        const kroui::utility::RulerBase& vertical;
        kroui::Size content;   // pixels from end to end
        Range shownHorizontal; // where points may come to lie
        Range shownVertical;
        double distance; // horizontally to a neighbour, at least; below 0 neighbours don't matter
    };

    explicit CurveMove(const Axes& axes) : fAxes(axes) {}

    // The points of `set` with those selected moved by (dx, dy) from `bases`, one a selected point. Along an axis on
    // which nothing moves a coordinate stays exactly what it is there.
    CurvePointSet::Points Moved(const CurvePointSet& set, const std::vector<UI_RulerGridBase::CoordinatePair>& bases,
                                double dx, double dy) const;
    // The points with one put to a place as near to the wanted one as it may go.
    CurvePointSet::Points Placed(const CurvePointSet& set, int index,
                                 const UI_RulerGridBase::CoordinatePair& wanted) const;

    // The distance that keeps positions apart even when they are stored as 32-bit floats, as they are, as part of the
    // axis, or as part of its logarithm.
    static double LeastDistance(double first, double last);

private:
    static double Shifted(const kroui::utility::RulerBase& ruler, double base, double pixels, float length);
    static double Held(double value, const Range& range, double base);
    double BetweenNeighbours(const CurvePointSet& set, const CurvePointSet::Points& placed, int index,
                             double wanted) const;
    bool IsFixed(const CurvePointSet& set, int index) const;

    Axes fAxes;
};

} // namespace uit::controls
