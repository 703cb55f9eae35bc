#pragma once

#include "krosdl/SoundDevice.h"
#include "workbench/sound/SilentOutput.h"

namespace workbench {

// The system's standard sound device, through SDL; silence when there is none. It is looked for at the first Poll, so
// that a window is not kept waiting for it.
class SdlSoundOutput final : public SoundOutput {
public:
    ~SdlSoundOutput() override;

    void Start(qohost::PlaybackEngine& engine, float sampleRate) override;
    void Stop() override;
    void Poll() override;
    krocore::string16 Problem() const override;

private:
    void Open();

    krosdl::SoundDevice fDevice;
    qohost::PlaybackEngine* fEngine = nullptr;
    float fSampleRate = 0;  // hertz
    bool fIsWanted = false; // and was not looked for yet
    SilentOutput fSilent;
};

} // namespace workbench
