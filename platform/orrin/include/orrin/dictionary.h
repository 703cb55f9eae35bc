#pragma once

#include "orrin/any_regular.h"

#include <cstddef>
#include <initializer_list>
#include <utility>

namespace orrin {

// Values by name, in the order of the names' text. A sorted vector: looking up takes logarithmic time, adding a name in
// the middle moves those behind it, so make a big dictionary from all its entries at once.
class dictionary_t {
public:
    using value_type = std::pair<name_t, any_regular_t>;
    using const_iterator = vector<value_type>::const_iterator;

    dictionary_t() noexcept = default;
    // In any order; of entries with the same name the last one holds.
    explicit dictionary_t(vector<value_type> entries);
    dictionary_t(std::initializer_list<value_type> entries) : dictionary_t(vector<value_type>(entries)) {}

    const_iterator begin() const noexcept { return fEntries.begin(); }
    const_iterator end() const noexcept { return fEntries.end(); }
    std::size_t size() const noexcept { return fEntries.size(); }
    bool empty() const noexcept { return fEntries.empty(); }

    // The value, or null if there is none; it stays where it is until the dictionary changes.
    const any_regular_t* find(name_t key) const noexcept;
    bool contains(name_t key) const noexcept { return find(key) != nullptr; }
    // The value to assign to; an empty one is added if there is none.
    any_regular_t& operator[](name_t key);
    void erase(name_t key);
    void clear() noexcept { fEntries.clear(); }

    friend bool operator==(const dictionary_t&, const dictionary_t&) noexcept = default;

private:
    vector<value_type> fEntries;
};

} // namespace orrin
