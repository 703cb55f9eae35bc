#pragma once

#include "krotarnlio/ScriptChecker.h"

#include <map>

namespace krotarnlio {

// Runs a sheet with its inputs "in0", "in1", ... at their initial values, all at 0, at the middle and at 1, and each
// alone at these, and tells what its outputs, clauses and ranges show to be wrong. Used once.
class SheetTrial {
public:
    using Report = boost::function<void(orrin::position_t position, std::string message, bool isOnlyWarning)>;
    using Values = std::vector<orrin::any_regular_t>;

    SheetTrial(orrin::sheet_t& sheet, Report report);

    void Run();
    // Whether the cells that show a parameter run over the effect's range.
    void CompareRanges(const ScriptEffect& effect);

    // What a cell was seen to have, each value once, but not more than a choice has.
    const Values& ValuesOf(orrin::name_t cell) const { return fSeen.at(cell); }

private:
    struct Clause {
        int trials = 0;
        int contradictions = 0;
        std::string message; // the first one
    };
    using Numbers = std::map<orrin::name_t, double>;

    void FindPairs();
    void TryAll(double value);
    void TryEach(orrin::name_t input);
    void Set(orrin::name_t input, const orrin::any_regular_t& value);
    void Settle();
    void Look(const std::string& where);
    void LookAtOutput(const orrin::cell_info_t& output, const std::string& where);
    void LookAtClauses();
    void TellContradictions();
    Numbers NumbersWith(orrin::name_t input, double value);
    void CompareRange(const ScriptParameter& parameter);

    orrin::sheet_t& fSheet;
    Report fReport;
    std::vector<orrin::cell_info_t> fCells;
    std::vector<orrin::name_t> fInputs;
    std::map<orrin::name_t, orrin::any_regular_t> fInitial;
    std::map<orrin::name_t, Values> fSeen;
    std::map<std::pair<std::uint32_t, std::uint32_t>, Clause> fClauses; // by line and column
};

} // namespace krotarnlio
