#include "qoc/components/RoomReverb.h"

#include <algorithm>

namespace qoc::components {

RoomReverb::~RoomReverb() = default;

void RoomReverb::PrepareProcessing(std::size_t /*maximumBlock*/) {
    const double sampleRate = GetSampleRate();
    const kromediatypes::AudioChannelLayout& layout = GetInputBuses().front().GetLayout();
    fRoom.Prepare(sampleRate, layout);
    std::vector<kromediatypes::AudioChannelLabel> labels;
    for (const std::size_t channel : fRoom.Channels())
        labels.push_back(layout[channel]);
    fEarly.Prepare(sampleRate, labels);
    fScatter.Prepare(sampleRate, fRoom.size());
    fTank.Prepare(sampleRate, fRoom.size());
    fDry.Prepare(sampleRate);
    for (std::vector<SoundPiece>* const pieces : {&fLate, &fDirect, &fReflected})
        pieces->assign(fRoom.size(), {});
}

void RoomReverb::ResetProcessing() noexcept {
    fEarly.Reset();
    fScatter.Reset();
    fTank.Reset();
}

void RoomReverb::ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept {
    for (std::size_t begin = 0, frames = 0; begin < block.frames; begin += frames) {
        frames = fScatter.Within(fTank.Within(std::min(kPieceFrames, block.frames - begin)));
        Take(block, begin, frames);
        Reverberate(fLate, frames);
        fEarly.Give(fDirect, fReflected);
        fScatter.Process(fReflected, frames);
        Mix(fLate, fDirect, fReflected, frames);
        Add(block, begin, frames);
    }
}

void RoomReverb::Take(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t begin,
                      std::size_t frames) noexcept {
    fRoom.Take(block, begin, frames, fLate);
    fEarly.Take(fLate, frames);
    SoundPiece dry;
    fDry.Next(std::span(dry).first(frames));
    for (std::size_t channel = 0; channel < block.outputs.size(); ++channel) {
        float* const output = block.outputs[channel] + begin;
        for (std::size_t i = 0; i < frames; ++i)
            output[i] = dry[i] * fRoom.Dry(channel)[i];
    }
}

void RoomReverb::Add(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t begin,
                     std::size_t frames) noexcept {
    for (std::size_t k = 0; k < fLate.size(); ++k) {
        float* const output = block.outputs[fRoom.Channels()[k]] + begin;
        for (std::size_t i = 0; i < frames; ++i)
            output[i] += fLate[k][i];
    }
}

} // namespace qoc::components
