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
    for (std::vector<float>* const frame : {&fWetFrame, &fDirectFrame, &fReflectedFrame})
        frame->assign(fRoom.size(), 0.0F);
}

void RoomReverb::ResetProcessing() noexcept {
    fEarly.Reset();
    fScatter.Reset();
    fTank.Reset();
}

void RoomReverb::ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept {
    for (std::size_t begin = 0, frames = 0; begin < block.frames; begin += frames) {
        frames = fScatter.Within(fTank.Within(std::min(kPieceFrames, block.frames - begin)));
        for (std::size_t place = 0; place < frames; ++place)
            Take(block, begin + place, place);
        Reverberate(fLate, frames);
        fEarly.Give(fDirect, fReflected);
        fScatter.Process(fReflected, frames);
        for (std::size_t place = 0; place < frames; ++place)
            Add(block, begin + place, place);
    }
}

void RoomReverb::Take(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t frame,
                      std::size_t place) noexcept {
    fRoom.Take(block, frame);
    fEarly.Take(fRoom.Sound());
    for (std::size_t k = 0; k < fLate.size(); ++k)
        fLate[k][place] = fRoom.Sound()[k];
    const float dry = fDry.Next();
    for (std::size_t channel = 0; channel < block.outputs.size(); ++channel)
        block.outputs[channel][frame] = dry * fRoom.Dry(channel);
}

void RoomReverb::Add(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t frame, std::size_t place) noexcept {
    for (std::size_t k = 0; k < fLate.size(); ++k) {
        fWetFrame[k] = fLate[k][place];
        fDirectFrame[k] = fDirect[k][place];
        fReflectedFrame[k] = fReflected[k][place];
    }
    Mix(fWetFrame, fDirectFrame, fReflectedFrame);
    for (std::size_t k = 0; k < fWetFrame.size(); ++k)
        block.outputs[fRoom.Channels()[k]][frame] += fWetFrame[k];
}

} // namespace qoc::components
