#include "qoc/components/ParameterTable.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <string_view>

namespace qoc::components {

ParameterTable& ParameterTable::Add(std::span<const ParameterRow> rows) {
    for (const ParameterRow& row : rows)
        AddRow(row, 0, row.index);
    return *this;
}

ParameterTable& ParameterTable::AddNumbered(std::span<const ParameterRow> rows) {
    int number = 0;
    for (const ParameterRow& row : rows)
        AddRow(row, ++number, row.index);
    return *this;
}

ParameterTable& ParameterTable::AddRepeated(std::span<const ParameterRow> rows, int count, int first) {
    for (int i = 0; i < count; ++i) {
        for (const ParameterRow& row : rows) {
            const bool isNext = row.index == ParameterRow::kNext;
            AddRow(row, first + i, isNext ? row.index : row.index + i * static_cast<int>(rows.size()));
        }
    }
    return *this;
}

GenericParameterInfo* ParameterTable::Find(int index) const noexcept {
    return index >= 0 && index < Size() ? fInfos[static_cast<std::size_t>(index)].get() : nullptr;
}

void ParameterTable::AddRow(const ParameterRow& row, int number, int index) {
    while (index > Size())
        fInfos.push_back(nullptr);
    if (index != ParameterRow::kNext && index != Size())
        throw std::logic_error("the row of parameter \"" + std::string(row.id) + "\" comes at " +
                               std::to_string(Size()) + ", not at " + std::to_string(index));
    const std::string_view curve = row.curve;
    if (!curve.empty()) AddToCurve(curve);
    fInfos.push_back(std::make_unique<GenericParameterInfo>(row, number));
}

// Of two parameters a point the second one completes it.
void ParameterTable::AddToCurve(std::string_view curve) {
    const auto known = std::ranges::find(fCurves, curve, &kroaudiofilterhost::AudioFilterCurve::id);
    if (known == fCurves.end()) {
        fCurves.push_back({.id = std::string(curve), .countIndex = Size()});
        return;
    }
    if (known->firstPoint == 0) known->firstPoint = Size();
    known->mostPoints = (Size() - known->firstPoint + 1) / 2;
}

} // namespace qoc::components
