#pragma once

#include "krosdl/SoundDevice.h"
#include "workbench/sound/SilentOutput.h"

namespace workbench {

// The system's standard sound device, through SDL; silence when there is none.
class SdlSoundOutput final : public SoundOutput {
public:
    ~SdlSoundOutput() override;

    void Start(qohost::PlaybackEngine& engine, float sampleRate) override;
    void Stop() override;
    void Poll() override;
    krocore::string16 Problem() const override;

private:
    krosdl::SoundDevice fDevice;
    qohost::PlaybackEngine* fEngine = nullptr;
    SilentOutput fSilent;
};

} // namespace workbench
