#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace workbench {

enum class TableFormat : std::uint8_t {
    kAligned, // columns that line up in a terminal
    kTabbed,  // a head of keys, then a line a row, with a tab between cells
    kJSON,    // a list of objects
};

// A list that people and programs read.
class Table {
public:
    // Nothing, or a value. A number stands as it is: without a unit, with "." whatever the language.
    using Cell = std::variant<std::monostate, bool, double, std::string, std::vector<std::string>>;
    using Row = std::vector<Cell>;

    struct Column {
        std::string key;     // for programs; empty: not for them
        std::string heading; // for people; empty: not for them
    };

    explicit Table(std::vector<Column> columns) : fColumns(std::move(columns)) {}

    // As many cells as there are columns.
    void Add(Row row) { fRows.push_back(std::move(row)); }
    // People see a plain list without its heading.
    void HideHeadings() { fHasHeadings = false; }

    // In kTabbed, truth is "true" or "false", the items of a list stand with "|" between them, nothing is empty, and a
    // tab or line break within a text is a space.
    std::string ToText(TableFormat format) const;

private:
    std::string ToAlignedText() const;
    std::string ToTabbedText() const;
    std::string ToJSON() const;

    std::vector<Column> fColumns;
    std::vector<Row> fRows;
    bool fHasHeadings = true;
};

} // namespace workbench
