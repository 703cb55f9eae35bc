#include "matching.h"

namespace orrin {

bool matching_t::matches_all() {
    for (index_t relation = 0; relation < fOutputs.size(); ++relation)
        if (!augment(relation)) return false;
    return true;
}

bool matching_t::augment(index_t start) {
    fFrom.clear();
    std::vector<index_t> queue{start};
    for (std::size_t next = 0; next < queue.size(); ++next) {
        const index_t relation = queue[next];
        for (const index_t output : fOutputs[relation]) {
            if (!fFrom.emplace(output, relation).second) continue;
            const auto owner = fOwners.find(output);
            if (owner == fOwners.end()) {
                turn(output, start);
                return true;
            }
            fGives[owner->second] = output;
            queue.push_back(owner->second);
        }
    }
    return false;
}

// Hands the outputs on along the path that ends at a free one.
void matching_t::turn(index_t output, index_t start) {
    for (;;) {
        const index_t relation = fFrom.at(output);
        fOwners[output] = relation;
        if (relation == start) return;
        output = fGives[relation];
    }
}

} // namespace orrin
