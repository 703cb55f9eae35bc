#pragma once

#include "qoc/components/GenericParameterInfo.h"

#include <memory>
#include <span>
#include <vector>

namespace qoc::components {

// The parameter descriptions of one effect instance, built from its rows in the order of the indices. Owned by the
// effect. A row with an empty id keeps an index free: it has no description and stores 0.
class ParameterTable {
public:
    // Rows that stand once.
    ParameterTable& Add(std::span<const ParameterRow> rows);
    // Rows that number their parameters from 1, each with its own default.
    ParameterTable& AddNumbered(std::span<const ParameterRow> rows);
    // The whole group of rows `count` times in a row, numbered from `first`.
    ParameterTable& AddRepeated(std::span<const ParameterRow> rows, int count, int first = 1);

    int Size() const noexcept { return static_cast<int>(fInfos.size()); }
    // Null for a free index and for one that is none.
    GenericParameterInfo* Find(int index) const noexcept;

private:
    void AddRow(const ParameterRow& row, int number);

    std::vector<std::unique_ptr<GenericParameterInfo>> fInfos;
};

} // namespace qoc::components
