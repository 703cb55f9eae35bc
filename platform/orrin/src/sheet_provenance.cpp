#include "sheet_provenance.h"

#include <algorithm>
#include <utility>

namespace orrin {

namespace {

std::vector<index_t> numbers_of(const std::vector<char>& flags) {
    std::vector<index_t> numbers;
    for (index_t number = 0; number < flags.size(); ++number)
        if (flags[number]) numbers.push_back(number);
    return numbers;
}

} // namespace

std::vector<index_t> sheet_provenance_t::contributing(index_t cell) const {
    return numbers_of(walk(cell).sources);
}

std::vector<index_t> sheet_provenance_t::at_fault() const {
    return numbers_of(faults());
}

bool sheet_provenance_t::is_valid(index_t cell) const {
    const flags_t fault = faults();
    const walk_t walked = walk(cell);
    for (index_t reached = 0; reached < fProgram.cells.size(); ++reached)
        if (walked.reached[reached] && (fault[reached] || is_false_invariant(reached))) return false;
    return true;
}

sheet_provenance_t::walk_t sheet_provenance_t::walk(index_t cell) const {
    walk_t result{flags_t(fProgram.cells.size()), flags_t(fProgram.cells.size())};
    std::vector<index_t> waiting;
    const auto reach = [&](index_t reached) {
        if (!std::exchange(result.reached[reached], true)) waiting.push_back(reached);
    };
    reach(cell);
    while (!waiting.empty()) {
        const index_t reached = waiting.back();
        waiting.pop_back();
        if (fWriters[reached] == kNone) {
            result.sources[reached] = fProgram.cells[reached].can_be_set();
            continue;
        }
        const index_t expression = fProgram.clauses[fWriters[reached]].expression;
        for (const auto& variable : fProgram.expressions[expression].variables.of(fProgram.variables)) {
            if (variable.cell == kNone) continue;
            if (variable.contributed) result.sources[variable.cell] = true;
            reach(variable.cell);
        }
    }
    return result;
}

bool sheet_provenance_t::is_false_invariant(index_t cell) const {
    return fProgram.cells[cell].kind == cell_kind_t::invariant && fValues[cell] == any_regular_t(false);
}

sheet_provenance_t::flags_t sheet_provenance_t::faults() const {
    flags_t faults(fProgram.cells.size());
    const auto isInterface = [this](index_t cell) { return fProgram.cells[cell].kind == cell_kind_t::interface; };
    for (index_t cell = 0; cell < fProgram.cells.size(); ++cell) {
        if (!is_false_invariant(cell)) continue;
        const std::vector<index_t> sources = contributing(cell);
        const bool someInterface = std::ranges::any_of(sources, isInterface);
        for (const index_t source : sources)
            if (!someInterface || isInterface(source)) faults[source] = true;
    }
    return faults;
}

} // namespace orrin
