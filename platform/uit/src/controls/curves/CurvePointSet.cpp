#include "uit/controls/CurvePointSet.h"

#include <algorithm>

namespace uit::controls {

void CurvePointSet::SetPoints(Points points) {
    fPoints = std::move(points);
    std::erase_if(fSelection, [this](int index) { return !Has(index); });
    if (!Has(fLastSelected)) fLastSelected = fSelection.empty() ? -1 : fSelection.back();
}

void CurvePointSet::Insert(int index, const CurvePoint& point) {
    const auto at = std::clamp(index, 0, static_cast<int>(Count()));
    fPoints.insert(fPoints.begin() + at, point);
    for (Flags& flags : fFlags)
        if (static_cast<std::size_t>(at) < flags.size()) flags.insert(flags.begin() + at, true);
    Select(at);
}

int CurvePointSet::IndexFor(double horizontal) const {
    const auto isBehind = [&](const CurvePoint& point) { return point.coordinates.horizontal > horizontal; };
    return static_cast<int>(std::ranges::find_if(fPoints, isBehind) - fPoints.begin());
}

std::uint32_t CurvePointSet::NewIdentifier() const {
    std::uint32_t identifier = 0;
    for (const CurvePoint& point : fPoints)
        identifier = std::max(identifier, point.identifier + 1);
    return identifier;
}

bool CurvePointSet::EraseSelected() {
    bool isErased = false;
    for (auto index = fSelection.rbegin(); index != fSelection.rend(); ++index) {
        if (!May(kVisible, *index) || !May(kDeletable, *index)) continue;
        fPoints.erase(fPoints.begin() + *index);
        for (Flags& flags : fFlags)
            if (static_cast<std::size_t>(*index) < flags.size()) flags.erase(flags.begin() + *index);
        isErased = true;
    }
    if (isErased) Select(-1);
    return isErased;
}

bool CurvePointSet::SetFlags(Permission permission, const Flags& flags) {
    if (flags == fFlags[permission]) return false;
    fFlags[permission] = flags;
    return true;
}

bool CurvePointSet::May(Permission permission, int index) const {
    const Flags& flags = fFlags[permission];
    return Has(index) && (static_cast<std::size_t>(index) >= flags.size() || flags[static_cast<std::size_t>(index)]);
}

bool CurvePointSet::IsSelected(int index) const {
    return std::binary_search(fSelection.begin(), fSelection.end(), index);
}

void CurvePointSet::Select(int index) {
    fSelection.clear();
    fLastSelected = Has(index) ? index : -1;
    if (fLastSelected >= 0) fSelection.push_back(index);
}

void CurvePointSet::SetLastSelected(int index) {
    if (IsSelected(index)) fLastSelected = index;
}

void CurvePointSet::Toggle(int index) {
    if (!Has(index)) return;
    const auto at = std::lower_bound(fSelection.begin(), fSelection.end(), index);
    if (at != fSelection.end() && *at == index) {
        fSelection.erase(at);
        if (fLastSelected == index) fLastSelected = fSelection.empty() ? -1 : fSelection.back();
    } else {
        fSelection.insert(at, index);
        fLastSelected = index;
    }
}

void CurvePointSet::SelectOnly(std::vector<int> ascending) {
    std::erase_if(ascending, [this](int index) { return !Has(index); });
    fSelection = std::move(ascending);
    if (!IsSelected(fLastSelected)) fLastSelected = fSelection.empty() ? -1 : fSelection.back();
}

void CurvePointSet::SelectAllVisible() {
    std::vector<int> all;
    for (int index = NextVisible(-1, true); index >= 0; index = NextVisible(index, true))
        all.push_back(index);
    SelectOnly(std::move(all));
}

int CurvePointSet::NextVisible(int index, bool forward) const {
    const int count = static_cast<int>(Count());
    if (index < 0) index = forward ? -1 : count;
    for (index += forward ? 1 : -1; index >= 0 && index < count; index += forward ? 1 : -1)
        if (May(kVisible, index)) return index;
    return -1;
}

} // namespace uit::controls
