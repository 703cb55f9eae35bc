#pragma once

#include "LioScript.h"
#include "SheetTrial.h"
#include "widgets/WidgetItems.h"

#include <optional>
#include <set>

namespace krotarnlio {

// Finds what a layout can be made with but that makes no sense on its sheet: parts that never come up, since their cell
// never has the value, and numbers that the user can't change. Used once.
class LayoutSense {
public:
    // `trial` has been run on the sheet; all live longer.
    LayoutSense(const LioScript& script, orrin::virtual_machine_t& machine, const orrin::sheet_t& sheet,
                const SheetTrial& trial, SheetTrial::Report report);

    void Check();

private:
    // What the controls that show a cell can set it to.
    struct Writers {
        SheetTrial::Values values;
        bool setAnything = false;
    };

    void CollectWriters(const LioElement& element);
    void CheckElement(const LioElement& element, const LioElement* tabs);
    void CheckNumberField(const LioElement& element);
    void CheckValue(const LioElement& element);
    void CheckPage(const LioElement& page, const LioElement& tabs);
    bool CanHave(orrin::name_t cell, const orrin::any_regular_t& value) const;

    const orrin::named_expression_t* Find(const LioElement& element, std::string_view attribute) const;
    std::optional<orrin::any_regular_t> ValueOf(const LioElement& element, std::string_view attribute) const;
    const orrin::cell_info_t* BoundCell(const LioElement& element) const;
    SheetTrial::Values ItemValues(const LioElement& element) const;
    void Warn(std::uint32_t offset, std::string message) const;

    const LioScript& fScript;
    orrin::virtual_machine_t& fMachine;
    const orrin::sheet_t& fSheet;
    const SheetTrial& fTrial;
    SheetTrial::Report fReport;
    std::map<orrin::name_t, orrin::cell_info_t> fCells;
    std::map<orrin::name_t, Writers> fWriters;
};

} // namespace krotarnlio
