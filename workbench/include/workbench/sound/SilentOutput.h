#pragma once

#include "workbench/sound/SoundOutput.h"

#include <vector>

namespace workbench {

// Plays to nobody, at the pace of the toolkit's clock: for machines without a sound device, and for tests.
class SilentOutput final : public SoundOutput {
public:
    void Start(qohost::PlaybackEngine& engine, float sampleRate) override;
    void Stop() override { fEngine = nullptr; }
    // Runs the engine through the time since the last call.
    void Poll() override;
    krocore::string16 Problem() const override;

private:
    qohost::PlaybackEngine* fEngine = nullptr;
    double fSampleRate = 0;
    double fLast = 0; // seconds
    std::vector<float> fBuffer;
};

} // namespace workbench
