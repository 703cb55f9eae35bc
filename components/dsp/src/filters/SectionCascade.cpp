#include "qoc/dsp/filters/SectionCascade.h"

#include <algorithm>
#include <iterator>

namespace qoc::dsp {

void SectionCascade::Prepare(std::size_t channels, std::size_t mostSections) {
    fMostSections = mostSections;
    fSections.clear();
    fSections.reserve(mostSections);
    fMemories.assign(channels * mostSections, {});
}

void SectionCascade::SetSections(std::span<const FilterSection> sections) noexcept {
    fSections.clear();
    std::ranges::transform(sections, std::back_inserter(fSections), &FilterSection::Step);
    std::ranges::fill(fMemories, StateVariableFilter::Memory());
}

void SectionCascade::Process(std::size_t channel, std::span<double> sound) noexcept {
    auto memory = fMemories.begin() + static_cast<std::ptrdiff_t>(channel * fMostSections);
    for (const StateVariableFilter& section : fSections) {
        const StateVariableFilter step = section; // copies that live in registers
        StateVariableFilter::Memory working = *memory;
        for (double& sample : sound)
            sample = step.Next(working, sample);
        *memory++ = working;
    }
}

} // namespace qoc::dsp
