#include "orrin/dictionary.h"

#include <algorithm>

namespace orrin {
namespace {

bool before(const dictionary_t::value_type& entry, name_t key) {
    return entry.first < key;
}

template <class Entries>
auto place_of(Entries& entries, name_t key) {
    return std::lower_bound(entries.begin(), entries.end(), key, before);
}

} // namespace

dictionary_t::dictionary_t(vector<value_type> entries) : fEntries(std::move(entries)) {
    std::ranges::stable_sort(fEntries, {}, &value_type::first);
    // Of equals keeps the last: unique keeps the first it meets, here from the back.
    const auto kept = std::unique(fEntries.rbegin(), fEntries.rend(),
                                  [](const auto& left, const auto& right) { return left.first == right.first; });
    fEntries.erase(fEntries.begin(), kept.base());
}

const any_regular_t* dictionary_t::find(name_t key) const noexcept {
    const auto place = place_of(fEntries, key);
    return place != fEntries.end() && place->first == key ? &place->second : nullptr;
}

any_regular_t& dictionary_t::operator[](name_t key) {
    auto place = place_of(fEntries, key);
    if (place == fEntries.end() || place->first != key) place = fEntries.emplace(place, key, any_regular_t());
    return place->second;
}

void dictionary_t::erase(name_t key) {
    const auto place = place_of(fEntries, key);
    if (place != fEntries.end() && place->first == key) fEntries.erase(place);
}

} // namespace orrin
