#pragma once

#include <cstddef>
#include <span>

namespace kromediatypes {

// A piece of sound on its way through a process: a pointer a channel, `frames` samples each, nominally -1...1. Who
// takes one says how its buffers may overlap. Owns nothing.
struct AudioBlock {
    std::span<const float* const> inputs;
    std::span<float* const> outputs;
    std::size_t frames = 0;
};

} // namespace kromediatypes
