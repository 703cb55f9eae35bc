#include "workbench/sound/SdlSoundOutput.h"

#include "krocore/Localizer.h"

namespace workbench {

SdlSoundOutput::~SdlSoundOutput() {
    SdlSoundOutput::Stop();
}

void SdlSoundOutput::Start(qohost::PlaybackEngine& engine, float sampleRate) {
    Stop();
    fEngine = &engine;
    fSampleRate = sampleRate;
    fIsWanted = true;
}

void SdlSoundOutput::Open() {
    fIsWanted = false;
    const auto render = [engine = fEngine](float* interleaved, std::size_t frames, std::size_t channels) {
        engine->Render(interleaved, frames, channels);
    };
    if (!fDevice.Open(fSampleRate, kChannels, render)) fSilent.Start(*fEngine, fSampleRate);
}

void SdlSoundOutput::Stop() {
    fDevice.Close();
    fEngine = nullptr;
    fIsWanted = false;
    fSilent.Stop();
}

void SdlSoundOutput::Poll() {
    if (fIsWanted) Open();
    if (!fDevice.IsOpen()) return fSilent.Poll();
    // A device that plays nothing would still cost time.
    fDevice.Run(fEngine->IsPlaying());
}

krocore::string16 SdlSoundOutput::Problem() const {
    if (fIsWanted || fDevice.IsOpen()) return {};
    return krocore::ReplacePlaceholders(
        krocore::Localize("$$$/Workbench/NoDevice=Nothing is heard: no sound device could be opened (@0)."),
        {krocore::ToUTF16(fDevice.Problem())});
}

} // namespace workbench
