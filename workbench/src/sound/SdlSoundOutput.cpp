#include "workbench/sound/SdlSoundOutput.h"

#include "krocore/Localizer.h"

namespace workbench {

SdlSoundOutput::~SdlSoundOutput() {
    SdlSoundOutput::Stop();
}

void SdlSoundOutput::Start(qohost::PlaybackEngine& engine, float sampleRate) {
    Stop();
    fEngine = &engine;
    const auto render = [&engine](float* interleaved, std::size_t frames, std::size_t channels) {
        engine.Render(interleaved, frames, channels);
    };
    if (!fDevice.Open(sampleRate, kChannels, render)) fSilent.Start(engine, sampleRate);
}

void SdlSoundOutput::Stop() {
    fDevice.Close();
    fEngine = nullptr;
    fSilent.Stop();
}

void SdlSoundOutput::Poll() {
    if (!fDevice.IsOpen()) return fSilent.Poll();
    // A device that plays nothing would still cost time.
    fDevice.Run(fEngine->IsPlaying());
}

krocore::string16 SdlSoundOutput::Problem() const {
    if (fDevice.IsOpen()) return {};
    return krocore::ReplacePlaceholders(
        krocore::Localize("$$$/Workbench/NoDevice=Nothing is heard: no sound device could be opened (@0)."),
        {krocore::ToUTF16(fDevice.Problem())});
}

} // namespace workbench
