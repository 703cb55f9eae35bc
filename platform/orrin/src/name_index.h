#pragma once

#include "adjacency.h"

#include "orrin/name.h"

#include <bit>
#include <utility>
#include <vector>

namespace orrin {

// Numbers by name: a hash table in one vector, filled once, at most half full.
class name_index_t {
public:
    explicit name_index_t(std::size_t names = 0)
        : fSlots(std::bit_ceil(2 * names + 2), {name_t(), kNone}), fMask(fSlots.size() - 1) {}

    // The number of the name, which is `number` if it is new.
    index_t add(name_t name, index_t number) {
        slot_t& slot = fSlots[place(name)];
        if (slot.second == kNone) slot = {name, number};
        return slot.second;
    }
    // kNone if there is none.
    index_t find(name_t name) const { return fSlots[place(name)].second; }

private:
    using slot_t = std::pair<name_t, index_t>;

    std::size_t place(name_t name) const {
        std::size_t at = name.hash() & fMask;
        while (fSlots[at].second != kNone && fSlots[at].first != name)
            at = (at + 1) & fMask;
        return at;
    }

    std::vector<slot_t> fSlots;
    std::size_t fMask;
};

} // namespace orrin
