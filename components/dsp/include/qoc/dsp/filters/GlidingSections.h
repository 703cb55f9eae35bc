#pragma once

#include "kromediatypes/AudioBlock.h"
#include "qoc/dsp/filters/Biquad.h"
#include "qoc/dsp/filters/StateVariableFilter.h"
#include "qoc/dsp/stream/SmoothedValue.h"

#include <array>
#include <cstddef>
#include <span>
#include <vector>

namespace qoc::dsp {

// A fixed number of second-order sections in a row, on several channels, that glide to other coefficients while sound
// goes through. Owned by its effect; everything but Prepare is real time safe.
//
// At work they are state-variable filters, for the memory of a direct form, a difference of large numbers, is let out
// by a change as a thump as loud as the sound where poles lie low. What glides is the logarithm of the frequency, the
// damping and the outputs' shares: any values between those of two stable sections are a stable section.
// Sections that let the sound through cost nothing, and are bit-exact.
class GlidingSections {
public:
    void Prepare(double sampleRate, std::size_t channels, std::size_t sections);
    // Forgets all sound.
    void Reset() noexcept;
    // As many as prepared, all stable. `settle`: without a glide.
    void Set(std::span<const BiquadCoefficients> sections, bool settle) noexcept;
    // Whether all sound goes through bit by bit, until other sections are set.
    bool IsNeutral() const noexcept { return fHeard.empty(); }
    // Whether nothing glides: then Advance does nothing.
    bool IsSettled() const noexcept { return fRemaining == 0; }

    // Once for every frame, before its samples.
    void Advance() noexcept {
        if (fRemaining > 0) Glide();
    }
    double Process(std::size_t channel, double sample) noexcept {
        StateVariableFilter::Memory* const memories = fMemories.data() + channel * fSections.size();
        for (const std::size_t i : fHeard)
            sample = fSections[i].step.Next(memories[i], sample);
        return sample;
    }
    // A whole block, with a gain behind the sections. Samples that are no number count as zero.
    void Process(const kromediatypes::AudioBlock& block, SmoothedValue& gain) noexcept;

private:
    // What glides: the logarithm of tan(w / 2), 1 / Q, and how much of the input, of the band pass and of the low pass
    // is heard.
    enum { kPitch, kDamping, kInput, kBand, kLow, kValues };
    using Values = std::array<double, kValues>;

    struct Section {
        bool IsNeutral() const noexcept;

        Values to = {0, 2, 1, 0, 0};
        Values now = to;
        Values between = to; // of the two low-passes that values glide through, behind the first
        StateVariableFilter step;
    };

    static StateVariableFilter StepOf(const Values& values) noexcept;
    static Values ValuesOf(const BiquadCoefficients& coefficients) noexcept;
    bool Aim(std::size_t index, Values to) noexcept;
    void Glide() noexcept;
    void Arrive() noexcept;
    void FindHeard() noexcept;

    std::vector<Section> fSections;
    std::vector<StateVariableFilter::Memory> fMemories; // of the first channel, of the second, ...
    std::vector<std::size_t> fHeard;                    // the sections that are not neutral
    double fCoefficient = 1;                            // of the glide, as of a SmoothedValue
    std::size_t fSettlingSamples = 1;
    std::size_t fRemaining = 0;
};

} // namespace qoc::dsp
