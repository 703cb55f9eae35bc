#pragma once

#include "qoc/components/ComponentBase.h"
#include "qoc/dsp/delay/CrossfadedDelay.h"
#include "qoc/dsp/reverb/ReverbTank.h"
#include "qoc/dsp/reverb/RoomChannels.h"
#include "qoc/dsp/stream/SmoothedValue.h"
#include "qoc/dsp/stream/SoundPiece.h"

#include <vector>

namespace qoc::components {

// A room by its sound alone: after the pre-delay it decays by 60 dB in the decay time. Diffusion thickens its start,
// perception leaves single echoes to be heard. Without reverberation the sound comes out bit by bit as it went in.
// Two parameters tell what comes of the others: how long the reverberation is heard, and how much louder than it the
// direct sound is.
class Reverb : public ComponentBase {
public:
    Reverb();

    // Until the reverberation has decayed by 90 dB.
    std::size_t Tail() const noexcept override;

protected:
    ~Reverb() override;

    void OnParametersChanged(ParameterIndices changed) override;
    void PrepareProcessing(std::size_t maximumBlock) override;
    void ResetProcessing() noexcept override;
    void ReadParameters(bool settle) noexcept override;
    void ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept override;

private:
    void Tell() noexcept;
    // A piece from the block, and back.
    void Take(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t begin, std::size_t frames) noexcept;
    void Add(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t begin, std::size_t frames) noexcept;

    RoomChannels fRoom;
    CrossfadedDelay fPredelay;
    ReverbTank fTank;
    SmoothedValue fDry;
    SmoothedValue fWet;
    std::vector<SoundPiece> fSound; // of the room's channels
};

} // namespace qoc::components
