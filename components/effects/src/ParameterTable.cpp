#include "qoc/components/ParameterTable.h"

#include <string_view>

namespace qoc::components {

ParameterTable& ParameterTable::Add(std::span<const ParameterRow> rows) {
    for (const ParameterRow& row : rows)
        AddRow(row, 0);
    return *this;
}

ParameterTable& ParameterTable::AddNumbered(std::span<const ParameterRow> rows) {
    int number = 0;
    for (const ParameterRow& row : rows)
        AddRow(row, ++number);
    return *this;
}

ParameterTable& ParameterTable::AddRepeated(std::span<const ParameterRow> rows, int count, int first) {
    for (int number = first; number < first + count; ++number) {
        for (const ParameterRow& row : rows)
            AddRow(row, number);
    }
    return *this;
}

GenericParameterInfo* ParameterTable::Find(int index) const noexcept {
    return index >= 0 && index < Size() ? fInfos[static_cast<std::size_t>(index)].get() : nullptr;
}

void ParameterTable::AddRow(const ParameterRow& row, int number) {
    const bool isFree = std::string_view(row.id).empty();
    fInfos.push_back(isFree ? nullptr : std::make_unique<GenericParameterInfo>(row, number));
}

} // namespace qoc::components
