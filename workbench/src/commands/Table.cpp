#include "workbench/commands/Table.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <type_traits>

namespace workbench {

namespace {

using Line = std::vector<std::string>;

constexpr std::size_t kColumnGap = 2;

// Characters as a terminal counts them: UTF-8 without its continuation bytes.
std::size_t Width(const std::string& text) {
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

struct ToWord {
    std::string operator()(std::monostate /*nothing*/) const { return {}; }
    std::string operator()(bool is) const { return is ? "true" : "false"; }
    std::string operator()(double number) const { return fmt::format("{}", number); }
    std::string operator()(const std::string& text) const { return text; }
    std::string operator()(const std::vector<std::string>& items) const {
        return fmt::format("{}", fmt::join(items, "|"));
    }
};

struct ToJSONValue {
    nlohmann::ordered_json operator()(std::monostate /*nothing*/) const { return nullptr; }
    nlohmann::ordered_json operator()(double number) const {
        // 3, not 3.0.
        constexpr double kLargestWhole = 1e15;
        if (number == std::trunc(number) && std::abs(number) < kLargestWhole) return static_cast<std::int64_t>(number);
        return number;
    }
    template <class Value>
    nlohmann::ordered_json operator()(const Value& value) const {
        return value;
    }
};

std::string WithoutTabs(std::string text) {
    std::ranges::replace_if(
        text, [](char c) { return c == '\t' || c == '\n' || c == '\r'; }, ' ');
    return text;
}

// Columns as wide as their widest cell.
std::string Align(const std::vector<Line>& lines) {
    std::vector<std::size_t> widths;
    for (const Line& line : lines) {
        widths.resize(std::max(widths.size(), line.size()));
        for (std::size_t column = 0; column < line.size(); ++column)
            widths[column] = std::max(widths[column], Width(line[column]));
    }
    std::string text;
    for (const Line& line : lines) {
        for (std::size_t column = 0; column < line.size(); ++column) {
            text += line[column];
            const bool isLast = column + 1 == line.size();
            if (!isLast) text.append(widths[column] - Width(line[column]) + kColumnGap, ' ');
        }
        text += '\n';
    }
    return text;
}

} // namespace

std::string Table::ToText(TableFormat format) const {
    switch (format) {
    case TableFormat::kTabbed: return ToTabbedText();
    case TableFormat::kJSON: return ToJSON();
    case TableFormat::kAligned: break;
    }
    return ToAlignedText();
}

std::string Table::ToAlignedText() const {
    std::vector<Line> lines;
    const auto addLine = [&](const auto& textOf) {
        Line& line = lines.emplace_back();
        for (std::size_t column = 0; column < fColumns.size(); ++column)
            if (!fColumns[column].heading.empty()) line.push_back(textOf(column));
    };
    if (fHasHeadings) addLine([&](std::size_t column) { return fColumns[column].heading; });
    for (const Row& row : fRows)
        addLine([&](std::size_t column) { return std::visit(ToWord(), row[column]); });
    return Align(lines);
}

std::string Table::ToTabbedText() const {
    std::string text;
    const auto addLine = [&](const auto& textOf) {
        Line line;
        for (std::size_t column = 0; column < fColumns.size(); ++column)
            if (!fColumns[column].key.empty()) line.push_back(WithoutTabs(textOf(column)));
        text += fmt::format("{}\n", fmt::join(line, "\t"));
    };
    addLine([&](std::size_t column) { return fColumns[column].key; });
    for (const Row& row : fRows)
        addLine([&](std::size_t column) { return std::visit(ToWord(), row[column]); });
    return text;
}

std::string Table::ToJSON() const {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const Row& row : fRows) {
        nlohmann::ordered_json object = nlohmann::ordered_json::object();
        for (std::size_t column = 0; column < fColumns.size(); ++column)
            if (!fColumns[column].key.empty()) object[fColumns[column].key] = std::visit(ToJSONValue(), row[column]);
        list.push_back(std::move(object));
    }
    constexpr int kIndent = 2;
    return list.dump(kIndent, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

} // namespace workbench
