#pragma once

#include "sheet_program.h"

#include <vector>

namespace orrin {

// Where the values of a sheet come from at present, and who is to blame for false invariants. A view of a running
// sheet, for one question.
class sheet_provenance_t {
public:
    // `writers`: by cell, the clause that computes it, kNone if none does.
    sheet_provenance_t(const sheet_program_t& program, const std::vector<index_t>& writers,
                       const std::vector<any_regular_t>& values)
        : fProgram(program), fWriters(writers), fValues(values) {}

    std::vector<index_t> contributing(index_t cell) const;
    std::vector<index_t> at_fault() const;
    bool is_valid(index_t cell) const;

private:
    using flags_t = std::vector<char>;
    struct walk_t {
        flags_t reached; // cells that the value is computed from, itself included
        flags_t sources; // of these, the ones that are set from outside
    };

    walk_t walk(index_t cell) const;
    bool is_false_invariant(index_t cell) const;
    flags_t faults() const;

    const sheet_program_t& fProgram;
    const std::vector<index_t>& fWriters;
    const std::vector<any_regular_t>& fValues;
};

} // namespace orrin
