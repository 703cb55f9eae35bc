#pragma once

#include "qoc/dsp/filters/FilterSections.h"

#include <cstddef>
#include <span>
#include <vector>

namespace qoc::dsp {

// Second-order sections in a row, at work on several channels. Owned by its effect. Everything but Prepare is real time
// safe.
class SectionCascade {
public:
    // Room for that many sections in each channel; there are none yet.
    void Prepare(std::size_t channels, std::size_t mostSections);
    // Takes other sections, no more than there is room for, and forgets all sound.
    void SetSections(std::span<const FilterSection> sections) noexcept;
    // Replaces a piece of a channel's sound by what comes out.
    void Process(std::size_t channel, std::span<double> sound) noexcept;

private:
    std::vector<StateVariableFilter> fSections;
    std::vector<StateVariableFilter::Memory> fMemories; // of the first channel, of the second, ...
    std::size_t fMostSections = 0;
};

} // namespace qoc::dsp
