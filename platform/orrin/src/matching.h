#pragma once

#include "adjacency.h"

#include <unordered_map>
#include <vector>

namespace orrin {

// Finds out whether each of a number of relations can have an output of its own: bipartite matching by augmenting
// paths, found breadth first.
class matching_t {
public:
    using outputs_t = std::vector<std::vector<index_t>>; // those that a relation can have, each once

    // The outputs must outlive this.
    explicit matching_t(const outputs_t& outputs) : fOutputs(outputs), fGives(outputs.size(), kNone) {}

    bool matches_all();

private:
    bool augment(index_t start);
    void turn(index_t output, index_t start);

    const outputs_t& fOutputs;
    std::unordered_map<index_t, index_t> fOwners; // of outputs
    std::unordered_map<index_t, index_t> fFrom;   // the relation from which an output was reached
    std::vector<index_t> fGives;                  // the output that a relation on the path gives away
};

} // namespace orrin
