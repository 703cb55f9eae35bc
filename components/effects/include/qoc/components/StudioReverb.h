#pragma once

#include "qoc/components/RoomReverb.h"
#include "qoc/dsp/filters/GlidingSections.h"
#include "qoc/dsp/stream/SmoothedValue.h"

#include <span>
#include <vector>

namespace qoc::components {

// A reverb for mixing, in the manner of a plate: dense from the start. The early reflections are those of a room of the
// size that is set, scattered by diffusion. Middle and low frequencies decay by 60 dB in the decay time; damping
// shortens the decay of high ones. Without reverberation the sound comes out bit by bit as it went in. Two parameters
// tell what comes of the others: how long the reverberation is heard, and how much louder than it the direct sound is.
class StudioReverb : public RoomReverb {
public:
    StudioReverb();

    // Until the reverberation has decayed by 90 dB and the last reflection has come.
    std::size_t Tail() const noexcept override;

protected:
    ~StudioReverb() override;

    void OnParametersChanged(ParameterIndices changed) override;
    void PrepareProcessing(std::size_t maximumBlock) override;
    void ResetProcessing() noexcept override;
    void ReadParameters(bool settle) noexcept override;
    void Reverberate(std::span<SoundPiece> sound, std::size_t frames) noexcept override;
    void Mix(std::span<SoundPiece> wet, std::span<const SoundPiece> direct, std::span<const SoundPiece> reflected,
             std::size_t frames) noexcept override;

private:
    void Tell() noexcept;
    void ReadRoom(bool settle) noexcept;
    void ReadCuts(bool settle) noexcept;
    void Widen(std::span<SoundPiece> sound, const SoundPiece& width) const noexcept;

    GlidingSections fCuts;
    SmoothedValue fWet;
    SmoothedValue fWidth;
};

} // namespace qoc::components
