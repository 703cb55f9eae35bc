#pragma once

#include "uit/controls/UI_RulerGridBase.h"

#include <cstdint>
#include <span>
#include <vector>

namespace uit::controls {

// A handle of a curve. The identifier is its owner's business and stays with the point.
struct CurvePoint {
    std::uint32_t identifier = 0;
    UI_RulerGridBase::CoordinatePair coordinates;
    friend bool operator==(const CurvePoint&, const CurvePoint&) = default;
};

// The points of a curve in their order, what may be done with each, and which are selected. Points for which a flag was
// never given are visible, movable and deletable. A value; indices that do not exist change nothing.
class CurvePointSet {
public:
    using Points = std::vector<CurvePoint>;
    using Flags = std::vector<bool>;
    enum Permission : int { kVisible, kHorizontal, kVertical, kDeletable };

    const Points& All() const { return fPoints; }
    std::size_t Count() const { return fPoints.size(); }
    const CurvePoint& At(int index) const { return fPoints[static_cast<std::size_t>(index)]; }
    bool Has(int index) const { return index >= 0 && static_cast<std::size_t>(index) < fPoints.size(); }

    // Other points; flags and selection stay with the indices that are still there.
    void SetPoints(Points points);
    // A new point before the one at `index`, visible and free; the flags of those behind it move along. Selects it.
    void Insert(int index, const CurvePoint& point);
    // The index behind all points that lie left of or at a place.
    int IndexFor(double horizontal) const;
    // One that no point has.
    std::uint32_t NewIdentifier() const;
    // Takes out the selected points that can be deleted; whether there were any. Nothing is selected then.
    bool EraseSelected();

    // Whether the flags are others now.
    bool SetFlags(Permission permission, const Flags& flags);
    bool May(Permission permission, int index) const;

    // Ascending.
    const std::vector<int>& Selection() const { return fSelection; }
    bool IsSelected(int index) const;
    // The one that was selected last, or -1.
    int LastSelected() const { return fLastSelected; }
    void Select(int index); // alone; -1 for none
    // A point that is selected counts as the one selected last.
    void SetLastSelected(int index);
    void Toggle(int index);
    void SelectOnly(std::vector<int> ascending);
    void SelectAllVisible();
    // The visible point before or behind `index`, or -1; from -1 the last or the first.
    int NextVisible(int index, bool forward) const;

private:
    Points fPoints;
    Flags fFlags[4];
    std::vector<int> fSelection;
    int fLastSelected = -1;
};

} // namespace uit::controls
