#include "sheet_errors.h"

#include <algorithm>
#include <utility>

namespace orrin {

void sheet_errors_t::fail(index_t expression, const error_t& error) {
    const auto [known, isNew] = fFailures.try_emplace(expression, error);
    if (!isNew && known->second.message() == error.message()) return;
    known->second = error;
    fNew.push_back(error);
}

const error_t* sheet_errors_t::failure(index_t expression) const {
    if (fFailures.empty()) return nullptr;
    const auto found = fFailures.find(expression);
    return found == fFailures.end() ? nullptr : &found->second;
}

void sheet_errors_t::set_conflicts(index_t stage, std::vector<error_t> conflicts) {
    const std::vector<error_t> known = std::exchange(fConflicts[stage], std::move(conflicts));
    for (const error_t& error : fConflicts[stage]) {
        const auto isSame = [&](const error_t& other) { return other.message() == error.message(); };
        if (std::ranges::none_of(known, isSame)) fNew.push_back(error);
    }
}

const error_t* sheet_errors_t::conflict() const {
    for (const std::vector<error_t>& conflicts : fConflicts)
        if (!conflicts.empty()) return &conflicts.front();
    return nullptr;
}

void sheet_errors_t::set_endless(const error_t& error) {
    fEndless = error;
    fNew.push_back(error);
}

std::vector<error_t> sheet_errors_t::all() const {
    std::vector<error_t> errors;
    if (fEndless) errors.push_back(*fEndless);
    for (const std::vector<error_t>& conflicts : fConflicts)
        errors.insert(errors.end(), conflicts.begin(), conflicts.end());
    for (const auto& failure : fFailures)
        errors.push_back(failure.second);
    return errors;
}

std::vector<error_t> sheet_errors_t::take_new() {
    return std::exchange(fNew, {});
}

} // namespace orrin
