#pragma once

#include "kroaudiofilterhost/AudioFilterCurve.h"
#include "qoc/components/GenericParameterInfo.h"

#include <memory>
#include <span>
#include <string_view>
#include <vector>

namespace qoc::components {

// The parameter descriptions of one effect instance, built from its rows, which come in the order of the indices. Owned
// by the effect. Indices that no row names are free: they have no description and store 0. A row whose index is taken
// already, or that would stand elsewhere when repeated, is the programmer's mistake: std::logic_error names it.
class ParameterTable {
public:
    // Rows that stand once.
    ParameterTable& Add(std::span<const ParameterRow> rows);
    // Rows that number their parameters from 1, each with its own default.
    ParameterTable& AddNumbered(std::span<const ParameterRow> rows);
    // The whole group of rows `count` times in a row, numbered from `first`.
    ParameterTable& AddRepeated(std::span<const ParameterRow> rows, int count, int first = 1);

    // The curves that rows name, in order: the first parameter of each is its number of points, all others are x and y
    // of a point by turns.
    std::span<const kroaudiofilterhost::AudioFilterCurve> Curves() const noexcept { return fCurves; }

    int Size() const noexcept { return static_cast<int>(fInfos.size()); }
    // Null for a free index and for one that is none.
    GenericParameterInfo* Find(int index) const noexcept;

private:
    void AddRow(const ParameterRow& row, int number, int index);
    void AddToCurve(std::string_view curve);

    std::vector<std::unique_ptr<GenericParameterInfo>> fInfos;
    std::vector<kroaudiofilterhost::AudioFilterCurve> fCurves;
};

} // namespace qoc::components
