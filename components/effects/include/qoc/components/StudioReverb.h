#pragma once

#include "qoc/components/ComponentBase.h"
#include "qoc/components/EarlyReflections.h"
#include "qoc/components/GlidingSections.h"
#include "qoc/components/ReverbTank.h"
#include "qoc/components/RoomChannels.h"
#include "qoc/components/SmoothedValue.h"

#include <vector>

namespace qoc::components {

// A reverb for mixing, in the manner of a plate: dense from the start and in slow motion, so that nothing rings. The
// early reflections are those of a room of the size that is set. Middle and low frequencies decay by 60 dB in the decay
// time; damping shortens the decay of high ones. Without reverberation the sound comes out bit by bit as it went in.
// Two parameters tell what comes of the others: how long the reverberation is heard, and how much louder than it the
// direct sound is.
class StudioReverb : public ComponentBase {
public:
    StudioReverb();

    // Until the reverberation has decayed by 90 dB and the last reflection has come.
    std::size_t Tail() const noexcept override;

protected:
    ~StudioReverb() override;

    void ParameterHasChanged(int index) override;
    void PrepareProcessing(std::size_t maximumBlock) override;
    void ResetProcessing() noexcept override;
    void ReadParameters(bool settle) noexcept override;
    void ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept override;

private:
    void Tell() noexcept;
    void ReadRoom(bool settle) noexcept;
    void ReadCuts(bool settle) noexcept;
    void Widen(float width) noexcept;

    RoomChannels fRoom;
    EarlyReflections fEarly;
    ReverbTank fTank;
    GlidingSections fCuts;
    SmoothedValue fDry;
    SmoothedValue fWet;
    SmoothedValue fWidth;
    // Of the room's channels.
    std::vector<float> fSound;
    std::vector<float> fDirect;
    std::vector<float> fReflected;
};

} // namespace qoc::components
