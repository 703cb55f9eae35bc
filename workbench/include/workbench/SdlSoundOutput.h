#pragma once

#include "workbench/SilentOutput.h"

#include <cstdint>

namespace workbench {

// The system's standard sound device, through SDL; silence when there is none.
class SdlSoundOutput final : public SoundOutput {
public:
    SdlSoundOutput();
    ~SdlSoundOutput() override;

    void Start(qohost::PlaybackEngine& engine, float sampleRate) override;
    void Stop() override;
    void Poll() override;
    krocore::string16 Problem() const override;

private:
    static void Fill(void* engine, std::uint8_t* stream, int bytes);

    qohost::PlaybackEngine* fEngine = nullptr;
    SilentOutput fSilent;
    std::string fReason; // what SDL says when there is no device
    std::uint32_t fDevice = 0;
    bool fIsRunning = false;
};

} // namespace workbench
