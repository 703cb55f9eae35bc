#pragma once

#include "uit/lio/WidgetAdapter.h"

#include <array>
#include <cstddef>

namespace uit::lio {

// An attribute of a widget: the row that the engine reads, and what its adapter does with a value. A widget is a table
// of these.
template <class Adapter>
struct Attribute {
    AttributeRow row;
    void (*set)(Adapter& adapter, const orrin::any_regular_t& value);
};

template <class Adapter, std::size_t N>
constexpr std::array<AttributeRow, N> RowsOf(const Attribute<Adapter> (&table)[N]) {
    std::array<AttributeRow, N> rows;
    for (std::size_t i = 0; i < N; ++i)
        rows[i] = table[i].row;
    return rows;
}

// The number of an attribute that the table has.
template <class Adapter, std::size_t N>
constexpr int RowOf(const Attribute<Adapter> (&table)[N], std::string_view name) {
    std::size_t row = 0;
    while (table[row].row.name != name)
        ++row;
    return static_cast<int>(row);
}

template <class Adapter>
std::unique_ptr<WidgetAdapter> CreateAdapter(const WidgetContext& context) {
    return std::make_unique<Adapter>(context);
}

} // namespace uit::lio
