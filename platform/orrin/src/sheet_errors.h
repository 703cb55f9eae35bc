#pragma once

#include "adjacency.h"

#include "orrin/error.h"

#include <array>
#include <map>
#include <optional>
#include <vector>

namespace orrin {

// What is wrong in a running sheet at present, and what of it has not been told yet.
class sheet_errors_t {
public:
    void fail(index_t expression, const error_t& error);
    void succeed(index_t expression) {
        if (!fFailures.empty()) fFailures.erase(expression);
    }
    const error_t* failure(index_t expression) const; // null if it does not fail

    void set_conflicts(index_t stage, std::vector<error_t> conflicts);
    const error_t* conflict() const; // the first one or null

    // Of subscribers that update again and again.
    void set_endless(const error_t& error);
    void clear_endless() { fEndless.reset(); }

    std::vector<error_t> all() const;
    std::vector<error_t> take_new();

private:
    std::map<index_t, error_t> fFailures; // by expression
    std::array<std::vector<error_t>, 2> fConflicts;
    std::optional<error_t> fEndless;
    std::vector<error_t> fNew;
};

} // namespace orrin
