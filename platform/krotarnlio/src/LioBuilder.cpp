#include "LioBuilder.h"

#include "krocore/Localizer.h"
#include "krocore/debug/Trace.h"
#include "orrin/error.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace krotarnlio {

using orrin::any_regular_t;
using orrin::cell_kind_t;
using orrin::in_quotes;
using orrin::name_t;
using orrin::named_expression_t;
using uit::lio::AttributeKind;
using uit::lio::AttributeRow;
using uit::lio::WidgetClass;

namespace {

// A cell holds what its widget can't show: the widget goes on showing what it did.
void TraceRefusal(const std::exception& refusal) {
    static constexpr const char* kCategory = "krotarnlio::LioBuilder";
    if (krocore::debug::TraceEnabled(kCategory, 1, true))
        krocore::debug::Trace(std::string("a widget cannot show its cell: ") + refusal.what() + "\n");
}

} // namespace

LioBuilder::LioBuilder(const LioScript& script, Environment environment, UI_LioViewHolder& holder,
                       Connections& connections)
    : fScript(script), fEnvironment(std::move(environment)), fHolder(holder), fConnections(connections) {
    if (!fEnvironment.sheet) return;
    for (const orrin::cell_info_t& cell : fEnvironment.sheet->cells())
        fKinds.emplace(cell.name, cell.kind);
}

std::unique_ptr<LioWidget> LioBuilder::Build() {
    auto widget = Make(fScript.view);
    *fIsBuilding = false;
    return widget;
}

std::unique_ptr<LioWidget> LioBuilder::Make(const LioElement& element) {
    const WidgetClass* const widgetClass = FindClass(element);
    if (!widgetClass) {
        CheckInside(element);
        return {};
    }
    auto widget = std::make_unique<LioWidget>();
    widget->adapter = widgetClass->create(*fEnvironment.context);
    widget->container = dynamic_cast<ContainerAdapter*>(widget->adapter.get());
    for (const Given& given : SortAttributes(element, *widgetClass, *widget))
        SetAttribute(*widget, widgetClass->attributes[given.row], given);
    widget->cells.assign(fBoundCells.begin(), fBoundCells.end());
    BindWriter(*widget, std::exchange(fBoundCells, {}));
    widget->adapter->Complete();
    for (const int row : std::exchange(fReadOnlyRows, {}))
        widget->adapter->SetWritable(row, false);
    Register(*widget, element);
    AddChildren(*widget, element);
    return widget;
}

void LioBuilder::AddChildren(LioWidget& widget, const LioElement& element) {
    if (element.children.empty()) return;
    if (!widget.container) {
        Fail(element.children.front().offset, in_quotes(element.widget) + " takes no widgets inside");
        return CheckInside(element);
    }
    for (const LioElement& child : element.children)
        if (std::unique_ptr<LioWidget> made = Make(child))
            widget.container->ChildMade(*widget.children.emplace_back(std::move(made))->adapter);
}

// What is inside a widget that can't be made is looked at all the same.
void LioBuilder::CheckInside(const LioElement& element) {
    for (const LioElement& child : element.children)
        Make(child);
}

const WidgetClass* LioBuilder::FindClass(const LioElement& element) const {
    const WidgetClass* found = FindWidgetClass(element.widget);
    if (!found && fEnvironment.clientWidgets) found = fEnvironment.clientWidgets(element.widget);
    if (!found) Fail(element.offset, "there is no widget " + in_quotes(element.widget));
    return found;
}

std::vector<LioBuilder::Given> LioBuilder::SortAttributes(const LioElement& element, const WidgetClass& widgetClass,
                                                          LioWidget& widget) {
    std::vector<Given> given;
    given.reserve(element.attributes.size());
    for (const named_expression_t& said : element.attributes) {
        const auto row = std::ranges::find(widgetClass.attributes, said.name.text(), &AttributeRow::name);
        const bool isOfClass = row != widgetClass.attributes.end();
        if (TakesForLayout(said, isOfClass, widget)) continue;
        if (isOfClass)
            given.push_back({static_cast<std::size_t>(row - widgetClass.attributes.begin()), &said});
        else
            Fail(said.offset, in_quotes(element.widget) + " has no attribute " + in_quotes(said.name.text()));
    }
    std::ranges::sort(given, {}, &Given::row);
    return given;
}

// An attribute that the widget has under the same name is the widget's, unless its value is an alignment.
bool LioBuilder::TakesForLayout(const named_expression_t& said, bool isOfClass, LioWidget& widget) {
    const auto rows = LayoutAttributes::Rows();
    const auto row = std::ranges::find(rows, said.name.text(), &AttributeRow::name);
    if (row == rows.end()) return false;
    const std::optional<any_regular_t> value = Evaluate(said);
    if (!value) return true;
    if (isOfClass && !AlignmentOf(*value)) return false;
    try {
        widget.layout.Set(static_cast<std::size_t>(row - rows.begin()), *value);
    } catch (const std::exception& refusal) {
        Fail(said.offset, in_quotes(said.name.text()) + " " + refusal.what());
    }
    return true;
}

void LioBuilder::SetAttribute(LioWidget& widget, const AttributeRow& row, const Given& given) {
    const std::optional<any_regular_t> value = Evaluate(*given.said);
    if (!value) return;
    const name_t* const name = value->get_if<name_t>();
    const bool mayBeCell = row.kind != AttributeKind::kConstant && name;
    if (mayBeCell && !fEnvironment.sheet) return;
    const bool isCell = mayBeCell && fKinds.contains(*name);
    if (row.kind == AttributeKind::kBound && !isCell)
        return Fail(given.said->offset,
                    in_quotes(row.name) + " needs the name of a cell" +
                        (name ? "; the sheet has no " + in_quotes(name->text()) : ", such as @gain"));
    try {
        if (row.kind == AttributeKind::kBound) Bind(widget, given.row, *name);
        if (isCell)
            Follow(widget, given.row, *name);
        else
            widget.adapter->SetAttribute(static_cast<int>(given.row), *value);
    } catch (const std::exception& refusal) {
        Fail(given.said->offset, in_quotes(row.name) + " " + refusal.what());
    }
}

void LioBuilder::Bind(LioWidget& widget, std::size_t row, name_t cell) {
    const int index = static_cast<int>(row);
    widget.adapter->SetCell(index, cell);
    if (IsWritable(cell))
        fBoundCells.emplace(index, cell);
    else
        fReadOnlyRows.push_back(index);
}

void LioBuilder::Follow(LioWidget& widget, std::size_t row, name_t cell) {
    uit::lio::WidgetAdapter* const adapter = widget.adapter.get();
    const int index = static_cast<int>(row);
    adapter->SetAttribute(index, fEnvironment.sheet->get(cell));
    // The call on subscribing would hide a refusal, which the one above has not.
    fConnections.emplace_back(
        fEnvironment.sheet->subscribe(cell, [adapter, index, isBuilding = fIsBuilding](const any_regular_t& value) {
            if (*isBuilding) return;
            try {
                adapter->SetAttribute(index, value);
            } catch (const std::exception& refusal) {
                TraceRefusal(refusal);
            }
        }));
}

void LioBuilder::BindWriter(LioWidget& widget, std::map<int, name_t> cells) {
    widget.adapter->SetWriter(
        [cells = std::move(cells), write = fEnvironment.write](int row, const any_regular_t& value) {
            const auto cell = cells.find(row);
            write(cell != cells.end() ? cell->second : name_t(), value);
        });
}

void LioBuilder::Register(const LioWidget& widget, const LioElement& element) {
    const auto node = widget.adapter->GetNode();
    if (!node) return;
    if (!widget.layout.tooltip.empty()) node->UI_SetTooltip(krocore::Localize(widget.layout.tooltip));
    if (widget.layout.identifier.empty()) return;
    node->UI_SetID(widget.layout.identifier);
    if (!fHolder.AddControl(widget.layout.identifier, *node))
        Fail(element.offset, "the identifier " + in_quotes(widget.layout.identifier) + " is taken already");
}

std::optional<any_regular_t> LioBuilder::Evaluate(const named_expression_t& said) const {
    if (const any_regular_t* const constant = said.expression.constant()) return *constant;
    try {
        return fEnvironment.machine->evaluate(said.expression);
    } catch (const orrin::error_t& fault) {
        Fail(fault);
        return {};
    }
}

bool LioBuilder::IsWritable(name_t cell) const {
    const cell_kind_t kind = fKinds.at(cell);
    return kind == cell_kind_t::interface || kind == cell_kind_t::input;
}

void LioBuilder::Fail(std::uint32_t offset, const std::string& message) const {
    Fail(fScript.source->error(offset, message));
}

void LioBuilder::Fail(const orrin::error_t& fault) const {
    if (!fEnvironment.report) throw fault;
    fEnvironment.report(fault);
}

} // namespace krotarnlio
