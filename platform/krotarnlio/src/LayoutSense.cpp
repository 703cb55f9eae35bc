#include "LayoutSense.h"

#include "orrin/error.h"
#include "orrin/serialization.h"

#include <algorithm>
#include <array>
#include <exception>
#include <utility>

namespace krotarnlio {

using orrin::any_regular_t;
using orrin::cell_info_t;
using orrin::cell_kind_t;
using orrin::in_quotes;
using orrin::name_t;
using orrin::named_expression_t;

namespace {

template <std::size_t N>
bool IsOneOf(const LioElement& element, const std::array<std::string_view, N>& widgets) {
    return std::ranges::find(widgets, std::string_view(element.widget)) != widgets.end();
}

constexpr std::array<std::string_view, 2> kNumberFields{"aud_edit_number", "aud_timecode_edit"};
constexpr std::array<std::string_view, 3> kWithValue{"radio_button", "toggle_button", "button"};
// They only look at their cell.
constexpr std::array<std::string_view, 3> kReaders{"optional", "panel", "aud_timecode_display"};

} // namespace

LayoutSense::LayoutSense(const LioScript& script, orrin::virtual_machine_t& machine, const orrin::sheet_t& sheet,
                         const SheetTrial& trial, SheetTrial::Report report)
    : fScript(script), fMachine(machine), fSheet(sheet), fTrial(trial), fReport(std::move(report)) {
    for (const cell_info_t& cell : sheet.cells())
        fCells.emplace(cell.name, cell);
}

void LayoutSense::Check() {
    CollectWriters(fScript.view);
    CheckElement(fScript.view, nullptr);
}

void LayoutSense::CollectWriters(const LioElement& element) {
    if (const cell_info_t* const cell = BoundCell(element); cell && !IsOneOf(element, kReaders)) {
        Writers& writers = fWriters[cell->name];
        const std::optional<any_regular_t> value = ValueOf(element, "value");
        const SheetTrial::Values items = ItemValues(element);
        if (!items.empty())
            writers.values.insert(writers.values.end(), items.begin(), items.end());
        else if (IsOneOf(element, kWithValue) && value)
            writers.values.push_back(*value);
        else if (element.widget == "radio_button")
            writers.values.emplace_back(true);
        else
            writers.setAnything = true;
    }
    for (const LioElement& child : element.children)
        CollectWriters(child);
}

void LayoutSense::CheckElement(const LioElement& element, const LioElement* tabs) {
    if (IsOneOf(element, kNumberFields)) CheckNumberField(element);
    if (element.widget == "optional" || element.widget == "panel") CheckValue(element);
    if (element.widget == "panel" && tabs) CheckPage(element, *tabs);
    for (const LioElement& child : element.children)
        CheckElement(child, element.widget == "tab_group" ? &element : nullptr);
}

void LayoutSense::CheckNumberField(const LioElement& element) {
    const cell_info_t* const cell = BoundCell(element);
    if (!cell) return;
    const bool canBeSet = cell->kind == cell_kind_t::interface || cell->kind == cell_kind_t::input;
    if (canBeSet && !cell->computed) return;
    Warn(Find(element, "bind")->offset, in_quotes(cell->name.text()) +
                                            (cell->kind == cell_kind_t::constant ? " is constant" : " is computed") +
                                            ", so that the user can't change the number");
}

void LayoutSense::CheckValue(const LioElement& element) {
    const cell_info_t* const cell = BoundCell(element);
    if (!cell) return;
    const named_expression_t* said = Find(element, "value");
    if (!said) said = Find(element, "value_on");
    const std::optional<any_regular_t> value = said ? ValueOf(element, said->name.text()) : any_regular_t(true);
    if (!value || CanHave(cell->name, *value)) return;
    Warn((said ? said : Find(element, "bind"))->offset, in_quotes(cell->name.text()) + " never is " +
                                                            orrin::serialize_regular(*value) +
                                                            ", so that this part never comes up");
}

void LayoutSense::CheckPage(const LioElement& page, const LioElement& tabs) {
    const named_expression_t* const said = Find(page, "value");
    if (!said || Find(page, "bind")) return;
    const SheetTrial::Values values = ItemValues(tabs);
    const std::optional<any_regular_t> value = ValueOf(page, "value");
    if (!value || values.empty() || std::ranges::find(values, *value) != values.end()) return;
    Warn(said->offset,
         "no tab has the value " + orrin::serialize_regular(*value) + ", so that this page never comes up");
}

// Values that only the sheet decides on are known in part: a value of the type will do.
bool LayoutSense::CanHave(name_t cell, const any_regular_t& value) const {
    const SheetTrial::Values& seen = fTrial.ValuesOf(cell);
    const auto isOfItsType = [&](const any_regular_t& one) { return one.type() == value.type() || one.empty(); };
    if (std::ranges::find(seen, value) != seen.end()) return true;
    const auto writers = fWriters.find(cell);
    const bool isChoice = writers != fWriters.end() && !writers->second.setAnything;
    if (isChoice && !fCells.at(cell).computed)
        return std::ranges::find(writers->second.values, value) != writers->second.values.end();
    return std::ranges::any_of(seen, isOfItsType);
}

const named_expression_t* LayoutSense::Find(const LioElement& element, std::string_view attribute) const {
    const auto found = std::ranges::find(element.attributes, attribute,
                                         [](const named_expression_t& said) { return said.name.text(); });
    return found != element.attributes.end() ? &*found : nullptr;
}

std::optional<any_regular_t> LayoutSense::ValueOf(const LioElement& element, std::string_view attribute) const {
    const named_expression_t* const said = Find(element, attribute);
    if (!said) return {};
    try {
        return fMachine.evaluate(said->expression);
    } catch (const std::exception&) {
        return {}; // told by those who make the widget
    }
}

const cell_info_t* LayoutSense::BoundCell(const LioElement& element) const {
    const std::optional<any_regular_t> bound = ValueOf(element, "bind");
    const name_t* const name = bound ? bound->get_if<name_t>() : nullptr;
    const auto cell = name ? fCells.find(*name) : fCells.end();
    return cell != fCells.end() ? &cell->second : nullptr;
}

// Of a pop-up or a row of tabs; none if they can't be known, such as those that depend on the host.
SheetTrial::Values LayoutSense::ItemValues(const LioElement& element) const {
    std::optional<any_regular_t> items = ValueOf(element, "items");
    if (!items) return {};
    if (const name_t* const name = items->get_if<name_t>()) {
        const auto cell = fCells.find(*name);
        if (cell == fCells.end() || cell->second.kind != cell_kind_t::constant) return {};
        items = fSheet.get(*name);
    }
    SheetTrial::Values values;
    try {
        for (const WidgetItem& item : ItemsOf(*items))
            if (!item.isSeparator) values.push_back(item.value);
    } catch (const std::exception&) {
        values.clear(); // told by those who make the widget
    }
    return values;
}

void LayoutSense::Warn(std::uint32_t offset, std::string message) const {
    fReport(fScript.source->position(offset), std::move(message), true);
}

} // namespace krotarnlio
