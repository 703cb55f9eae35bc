#include "qoc/components/SectionCascade.h"

namespace qoc::components {

void SectionCascade::Prepare(std::size_t channels, std::size_t mostSections) {
    fMostSections = mostSections;
    fSections = 0;
    fBiquads.assign(channels * mostSections, {});
}

void SectionCascade::SetSections(std::span<const BiquadCoefficients> sections) noexcept {
    fSections = sections.size();
    for (std::size_t first = 0; first < fBiquads.size(); first += fMostSections) {
        for (std::size_t i = 0; i < fSections; ++i) {
            fBiquads[first + i].SetCoefficients(sections[i]);
            fBiquads[first + i].Reset();
        }
    }
}

void SectionCascade::Process(std::size_t channel, std::span<double> sound) noexcept {
    for (Biquad& section : std::span(fBiquads).subspan(channel * fMostSections, fSections)) {
        Biquad working = section; // a copy that lives in registers
        for (double& sample : sound)
            sample = working.Process(sample);
        section = working;
    }
}

} // namespace qoc::components
