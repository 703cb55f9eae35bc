#pragma once

#include "LioScript.h"
#include "LioWidget.h"
#include "WidgetTable.h"

#include "krotarnlio/UI_LioViewHolder.h"
#include "orrin/sheet.h"

#include <boost/signals2/connection.hpp>

#include <map>
#include <optional>

namespace krotarnlio {

// Makes the widgets of a layout script and binds them to the cells of a sheet. Used once.
class LioBuilder {
public:
    struct Environment {
        orrin::virtual_machine_t* machine = nullptr; // evaluates the attributes
        orrin::sheet_t* sheet = nullptr;             // null when checking: any name may be a cell, and none is followed
        uit::lio::AdapterFactoryProc clientWidgets;
        const uit::lio::WidgetContext* context = nullptr; // lives as long as the widgets
        // The user has changed a widget, and so the cell; no name if it shows none that may be written.
        boost::function<void(orrin::name_t cell, const orrin::any_regular_t& value)> write;
        // Takes all that is wrong, the building going on without it. Empty: the first fault is thrown.
        boost::function<void(const orrin::error_t& fault)> report;
    };
    using Connections = std::vector<boost::signals2::scoped_connection>;

    LioBuilder(const LioScript& script, Environment environment, UI_LioViewHolder& holder, Connections& connections);

    // Throws orrin::error_t, unless faults are reported; null then if the top widget is not known.
    std::unique_ptr<LioWidget> Build();

private:
    // An attribute of a widget that is being made: which of the class's rows it is, and what the script says.
    struct Given {
        std::size_t row;
        const orrin::named_expression_t* said;
    };

    std::unique_ptr<LioWidget> Make(const LioElement& element);
    void AddChildren(LioWidget& widget, const LioElement& element);
    void CheckInside(const LioElement& element);
    // Null if there is none and that has been reported.
    const uit::lio::WidgetClass* FindClass(const LioElement& element) const;
    std::vector<Given> SortAttributes(const LioElement& element, const uit::lio::WidgetClass& widgetClass,
                                      LioWidget& widget);
    bool TakesForLayout(const orrin::named_expression_t& said, bool isOfClass, LioWidget& widget);
    void SetAttribute(LioWidget& widget, const uit::lio::AttributeRow& row, const Given& given);
    void Follow(LioWidget& widget, std::size_t row, orrin::name_t cell);
    void Bind(LioWidget& widget, std::size_t row, orrin::name_t cell);
    void BindWriter(LioWidget& widget, std::map<int, orrin::name_t> cells);
    void Register(const LioWidget& widget, const LioElement& element);
    // Nothing for an expression that fails, when that has been reported.
    std::optional<orrin::any_regular_t> Evaluate(const orrin::named_expression_t& said) const;
    bool IsWritable(orrin::name_t cell) const;
    void Fail(std::uint32_t offset, const std::string& message) const;
    // Throws unless faults are reported.
    void Fail(const orrin::error_t& fault) const;

    const LioScript& fScript;
    Environment fEnvironment;
    UI_LioViewHolder& fHolder;
    Connections& fConnections;
    std::map<orrin::name_t, orrin::cell_kind_t> fKinds;
    // Of the widget that is being made: the cells that it writes, by row, and the rows whose cells can't be written.
    std::map<int, orrin::name_t> fBoundCells;
    std::vector<int> fReadOnlyRows;
    std::shared_ptr<bool> fIsBuilding = std::make_shared<bool>(true);
};

} // namespace krotarnlio
