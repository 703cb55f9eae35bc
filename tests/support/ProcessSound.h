#pragma once

#include "kroaudiofilterhost/AudioFilter.h"

#include <algorithm>
#include <vector>

namespace test {

using Channels = std::vector<std::vector<float>>;

// Processes frames from `begin` to `end` in blocks.
inline void Process(kroaudiofilterhost::AudioFilter& filter, const Channels& input, Channels& output, std::size_t begin,
                    std::size_t end, std::size_t block) {
    std::vector<const float*> inputs(input.size());
    std::vector<float*> outputs(output.size());
    for (std::size_t start = begin; start < end; start += block) {
        for (std::size_t channel = 0; channel < input.size(); ++channel) {
            inputs[channel] = input[channel].data() + start;
            outputs[channel] = output[channel].data() + start;
        }
        filter.Process({inputs, outputs, std::min(block, end - start)});
    }
}

inline Channels Processed(kroaudiofilterhost::AudioFilter& filter, const Channels& input, std::size_t block = 512) {
    Channels output(input.size(), std::vector<float>(input.front().size()));
    Process(filter, input, output, 0, input.front().size(), block);
    return output;
}

} // namespace test
