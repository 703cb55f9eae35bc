#include "DryPath.h"

#include <algorithm>
#include <functional>

namespace kroaudiofilterhost {

namespace {

constexpr float kFadeSeconds = 0.005F;

using kromediatypes::AudioBlock;

bool Overlap(const float* one, const float* other, std::size_t frames) {
    const std::less<> isBefore;
    return isBefore(one, other + frames) && isBefore(other, one + frames);
}

// Whether an output lies on another channel's input, or on its own but not exactly.
bool IsTangled(const AudioBlock& block) {
    for (std::size_t output = 0; output < block.outputs.size(); ++output) {
        for (std::size_t input = 0; input < block.inputs.size(); ++input) {
            const bool isInPlace = input == output && block.inputs[input] == block.outputs[output];
            if (!isInPlace && Overlap(block.inputs[input], block.outputs[output], block.frames)) return true;
        }
    }
    return false;
}

// One step from `value` towards `target`.
float Approach(float value, float target, float step) {
    return value < target ? std::min(value + step, target) : std::max(value - step, target);
}

} // namespace

void DryPath::Prepare(const Format& format, bool isBypassed) {
    fLatency = format.latency;
    fStep = 1 / (kFadeSeconds * format.sampleRate);
    fRings.assign(format.inputs, std::vector<float>(format.latency + format.maximumBlock));
    fDry.assign(format.maximumBlock, 0.0F);
    fCopies.assign(format.inputs, std::vector<float>(format.maximumBlock));
    fCopyPointers.clear();
    for (const std::vector<float>& copy : fCopies)
        fCopyPointers.push_back(copy.data());
    Reset(isBypassed);
}

void DryPath::Reset(bool isBypassed) noexcept {
    for (std::vector<float>& ring : fRings)
        std::ranges::fill(ring, 0.0F);
    fPosition = 0;
    fShare = isBypassed ? 1.0F : 0.0F;
}

AudioBlock DryPath::Begin(const AudioBlock& block, bool isBypassed) noexcept {
    if (fLatency > 0 || IsHeard(isBypassed)) Keep(block);
    if (fCopies.size() < block.inputs.size() || !IsTangled(block)) return block;
    for (std::size_t channel = 0; channel < block.inputs.size(); ++channel)
        std::copy_n(block.inputs[channel], block.frames, fCopies[channel].data());
    return {std::span(fCopyPointers).first(block.inputs.size()), block.outputs, block.frames};
}

void DryPath::End(const AudioBlock& block, bool isBypassed) noexcept {
    if (fRings.empty()) return;
    if (IsHeard(isBypassed)) {
        const float before = fShare;
        for (std::size_t channel = 0; channel < block.outputs.size(); ++channel) {
            fShare = before;
            if (channel < fRings.size()) Fetch(channel, block.frames);
            Mix(block.outputs[channel], block.frames, isBypassed ? 1.0F : 0.0F);
        }
    }
    fPosition = (fPosition + block.frames) % fRings.front().size();
}

void DryPath::Keep(const AudioBlock& block) noexcept {
    for (std::size_t channel = 0; channel < std::min(fRings.size(), block.inputs.size()); ++channel) {
        std::vector<float>& ring = fRings[channel];
        const std::size_t first = std::min(block.frames, ring.size() - fPosition);
        std::copy_n(block.inputs[channel], first, ring.data() + fPosition);
        std::copy_n(block.inputs[channel] + first, block.frames - first, ring.data());
    }
}

// What went in as long ago as the effect takes.
void DryPath::Fetch(std::size_t channel, std::size_t frames) noexcept {
    const std::vector<float>& ring = fRings[channel];
    const std::size_t begin = (fPosition + ring.size() - fLatency) % ring.size();
    const std::size_t first = std::min(frames, ring.size() - begin);
    std::copy_n(ring.data() + begin, first, fDry.data());
    std::copy_n(ring.data(), frames - first, fDry.data() + first);
}

// At the ends it is one side only, so that a bypassed effect that makes no numbers is not heard.
void DryPath::Mix(float* output, std::size_t frames, float target) noexcept {
    for (std::size_t i = 0; i < frames; ++i) {
        fShare = Approach(fShare, target, fStep);
        if (fShare == 1) {
            output[i] = fDry[i];
        } else if (fShare > 0) {
            output[i] += fShare * (fDry[i] - output[i]);
        }
    }
}

} // namespace kroaudiofilterhost
