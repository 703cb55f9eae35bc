#pragma once

#include "controls/curves/PointDrag.h"
#include "uit/controls/CurvePointSet.h"

#include <vector>

namespace uit::controls {

// A press on a curve editor until its release: the way of the pointer, and what it drags.
struct CurvePress {
    PointDrag drag;
    int point = -1; // the one under the press, -1: a marquee is drawn
    bool togglesOnRelease = false;
    std::vector<int> selectionBefore = {};                    // of a marquee, to which it adds
    std::vector<UI_RulerGridBase::CoordinatePair> bases = {}; // of the selected points when the drag counted nothing
    unsigned axes = 0;                                        // the version of the axes that the bases belong to

    bool IsMarquee() const { return point < 0; }
    // Between the press and the pointer; empty unless a marquee is being drawn.
    kroui::Rect Marquee() const;
};

} // namespace uit::controls
