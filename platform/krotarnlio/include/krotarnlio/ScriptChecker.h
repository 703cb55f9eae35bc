#pragma once

#include "orrin/sheet.h"
#include "orrin/virtual_machine.h"
#include "uit/lio/WidgetAdapter.h"

#include <memory>
#include <string>
#include <vector>

namespace krotarnlio {

struct LioScript;

// A script as its author has it.
struct Script {
    std::string file; // stands in front of messages
    std::string text;
};

// Something wrong in a script, or in an archive, for its author.
struct ScriptProblem {
    std::string file;
    orrin::position_t position;
    std::string message;        // what is wrong, and what was expected
    bool isOnlyWarning = false; // suspicious, but it runs

    std::string ToString() const; // "file:line:column: message"
};

// A number among an effect's parameters.
struct ScriptParameter {
    int index = 0;
    std::string name;
    double low = 0; // natural values of 0 and 1
    double high = 1;
};

// The effect whose panel the scripts are.
struct ScriptEffect {
    double sampleRate = 44100; // at which the ranges are these
    std::vector<ScriptParameter> parameters;
};

// Finds what is wrong in a sheet and in a layout, all of it and not only the first fault; what follows from a fault is
// not told again. Text that can't be read at all ends the reading of its script. Keeps nothing; user-interface thread.
class ScriptChecker {
public:
    // What the scripts find where they run.
    struct Surroundings {
        // Installs what expressions can call and name; the sheet is null for the machine of a layout.
        boost::function<void(orrin::virtual_machine_t& machine, orrin::sheet_t* sheet)> setUp;
        std::vector<orrin::name_t> functions; // all that they can call
        uit::lio::AdapterFactoryProc clientWidgets;
        const kroui::limner::SupplierInterface* supplier = nullptr; // may be null
    };

    explicit ScriptChecker(Surroundings surroundings);

    // The sheet is run with its inputs "in0", "in1", ... at their initial values, at 0, the middle and 1, all together
    // and each alone. `effect`: null if it is not known.
    std::vector<ScriptProblem> CheckSheet(const Script& sheet, const ScriptEffect* effect = nullptr) const;
    // Makes the layout's widgets on the sheet, of which nothing is told here. A sheet that can't be read has any cell.
    std::vector<ScriptProblem> CheckLayout(const Script& layout, const Script& sheet) const;

private:
    class Findings;

    std::shared_ptr<orrin::sheet_t> Load(const Script& sheet, Findings& findings) const;
    void Build(const LioScript& script, orrin::sheet_t* sheet, Findings& findings) const;
    void CheckSense(const LioScript& script, orrin::sheet_t& sheet, Findings& findings) const;
    bool IsFunction(orrin::name_t name) const;

    Surroundings fSurroundings;
};

} // namespace krotarnlio
