#include "qoc/dsp/filters/GlidingSections.h"

#include "qoc/dsp/stream/SaneSample.h"

#include <algorithm>
#include <cmath>

namespace qoc::dsp {

namespace {

bool LetsThrough(std::span<const double, 3> shares) noexcept {
    return shares[0] == 1 && shares[1] == 0 && shares[2] == 0;
}

} // namespace

void GlidingSections::Prepare(double sampleRate, std::size_t channels, std::size_t sections) {
    fSections.assign(sections, {});
    fMemories.assign(channels * sections, {});
    fHeard.clear();
    fHeard.reserve(sections);
    fCoefficient = SmoothedValue::CoefficientAt(sampleRate);
    fSettlingSamples = SmoothedValue::SettlingSamplesAt(sampleRate);
    fRemaining = 0;
}

void GlidingSections::Reset() noexcept {
    std::ranges::fill(fMemories, StateVariableFilter::Memory());
}

void GlidingSections::Set(std::span<const BiquadCoefficients> sections, bool settle) noexcept {
    bool isChanged = false;
    for (std::size_t i = 0; i < fSections.size(); ++i)
        isChanged = Aim(i, ValuesOf(sections[i])) || isChanged;
    if (settle) {
        Arrive();
    } else if (isChanged) {
        fRemaining = fSettlingSamples;
        FindHeard();
    }
}

void GlidingSections::Process(const kromediatypes::AudioBlock& block, SmoothedValue& gain) noexcept {
    if (IsNeutral() && gain.IsSettled()) {
        for (std::size_t channel = 0; channel < block.outputs.size(); ++channel)
            std::transform(block.inputs[channel], block.inputs[channel] + block.frames, block.outputs[channel],
                           [factor = gain.Target()](float sample) { return factor * SaneSample(sample); });
        return;
    }
    for (std::size_t frame = 0; frame < block.frames; ++frame) {
        Advance();
        const double factor = gain.Next();
        for (std::size_t channel = 0; channel < block.outputs.size(); ++channel) {
            const double sample = Process(channel, SaneSample(block.inputs[channel][frame]));
            block.outputs[channel][frame] = static_cast<float>(factor * sample);
        }
    }
}

bool GlidingSections::Section::IsNeutral() const noexcept {
    return std::ranges::all_of(std::array{&to, &between, &now}, [](const Values* values) {
        return LetsThrough(std::span(*values).template subspan<kInput, 3>());
    });
}

StateVariableFilter GlidingSections::StepOf(const Values& values) noexcept {
    return {std::exp(values[kPitch]), values[kDamping], values[kInput], values[kBand], values[kLow]};
}

// The bilinear transform backwards, s = (1 - 1/z) / (1 + 1/z): (n2 s^2 + n1 s + n0) / (s^2 + k g s + g^2).
GlidingSections::Values GlidingSections::ValuesOf(const BiquadCoefficients& c) noexcept {
    if (c.IsNeutral()) return {0, 2, 1, 0, 0};
    const double atZero = 1 + c.a1 + c.a2;
    const double atNyquist = 1 - c.a1 + c.a2;
    const double g = std::sqrt(atZero / atNyquist);
    const double damping = 2 * (1 - c.a2) / (atNyquist * g);
    const double high = (c.b0 - c.b1 + c.b2) / atNyquist;
    const double band = 2 * (c.b0 - c.b2) / (atNyquist * g);
    const double low = (c.b0 + c.b1 + c.b2) / atZero;
    // What is high is the input less the damped band and the low.
    return {std::log(g), damping, high, band - damping * high, low - high};
}

// A section that lets the sound through may have its poles anywhere: where they are to go, or have been.
bool GlidingSections::Aim(std::size_t index, Values to) noexcept {
    Section& section = fSections[index];
    const bool wasNeutral = section.IsNeutral();
    if (LetsThrough(std::span(to).subspan<kInput, 3>())) std::copy_n(section.to.begin(), 2, to.begin());
    if (to == section.to) return false;
    section.to = to;
    if (wasNeutral) {
        for (Values* const values : {&section.between, &section.now})
            std::copy_n(to.begin(), 2, values->begin());
        for (std::size_t memory = index; memory < fMemories.size(); memory += fSections.size())
            fMemories[memory] = {};
    }
    return true;
}

void GlidingSections::Glide() noexcept {
    if (--fRemaining == 0) return Arrive();
    for (const std::size_t i : fHeard) {
        Section& section = fSections[i];
        for (std::size_t value = 0; value < kValues; ++value) {
            section.between[value] += fCoefficient * (section.to[value] - section.between[value]);
            section.now[value] += fCoefficient * (section.between[value] - section.now[value]);
        }
        section.step = StepOf(section.now);
    }
}

void GlidingSections::Arrive() noexcept {
    fRemaining = 0;
    for (Section& section : fSections) {
        section.between = section.now = section.to;
        section.step = StepOf(section.to);
    }
    FindHeard();
}

void GlidingSections::FindHeard() noexcept {
    fHeard.clear();
    for (std::size_t i = 0; i < fSections.size(); ++i) {
        if (!fSections[i].IsNeutral()) fHeard.push_back(i);
    }
}

} // namespace qoc::dsp
