#pragma once

#include "orrin/any_regular.h"

#include <algorithm>
#include <cstdint>
#include <unordered_map>

namespace orrin {

// Gives every name of a growing list its index. Looks through short lists and keeps a table for long ones.
class slot_numbers_t {
public:
    explicit slot_numbers_t(vector<name_t>& names) : fNames(names) {}

    std::uint32_t index_of(name_t name) {
        if (fNames.size() <= kLongestSearched) return searched(name);
        const auto [entry, added] = fTable.try_emplace(name, fNames.size());
        if (added) fNames.push_back(name);
        return entry->second;
    }

private:
    static constexpr std::size_t kLongestSearched = 16;

    std::uint32_t searched(name_t name) {
        const auto found = std::ranges::find(fNames, name);
        const auto index = static_cast<std::uint32_t>(found - fNames.begin());
        if (found == fNames.end()) fNames.push_back(name);
        if (fNames.size() > kLongestSearched) fill_table();
        return index;
    }
    void fill_table() {
        for (const name_t name : fNames)
            fTable.try_emplace(name, fTable.size());
    }

    vector<name_t>& fNames;
    std::unordered_map<name_t, std::uint32_t> fTable;
};

} // namespace orrin
