#pragma once

#include "qoc/components/ComponentBase.h"
#include "qoc/dsp/reverb/EarlyReflections.h"
#include "qoc/dsp/reverb/ReflectionScatter.h"
#include "qoc/dsp/reverb/ReverbTank.h"
#include "qoc/dsp/reverb/RoomChannels.h"
#include "qoc/dsp/stream/SmoothedValue.h"
#include "qoc/dsp/stream/SoundPiece.h"

#include <span>
#include <vector>

namespace qoc::components {

// Base of the reverbs that have a room: its first reflections, which diffusion scatters, and a tank, of all channels
// but the low frequency effects'.
class RoomReverb : public ComponentBase {
protected:
    using ComponentBase::ComponentBase;
    ~RoomReverb() override;

    // A piece of the room's channels, to become what the tank makes of it.
    virtual void Reverberate(std::span<SoundPiece> sound, std::size_t frames) noexcept = 0;
    // Makes what is added to the dry sound, of the room's channels: `wet` is what Reverberate has left, `direct` and
    // `reflected` what fEarly tells.
    virtual void Mix(std::span<SoundPiece> wet, std::span<const SoundPiece> direct,
                     std::span<const SoundPiece> reflected, std::size_t frames) noexcept = 0;

    void PrepareProcessing(std::size_t maximumBlock) override;
    void ResetProcessing() noexcept override;
    void ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept final;

    RoomChannels fRoom;
    EarlyReflections fEarly;
    ReflectionScatter fScatter;
    ReverbTank fTank;
    SmoothedValue fDry; // of what does not go through the room

private:
    void Take(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t begin, std::size_t frames) noexcept;
    void Add(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t begin, std::size_t frames) noexcept;

    // Of the room's channels.
    std::vector<SoundPiece> fLate;
    std::vector<SoundPiece> fDirect;
    std::vector<SoundPiece> fReflected;
};

} // namespace qoc::components
