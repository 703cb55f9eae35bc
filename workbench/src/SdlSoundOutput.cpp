#include "workbench/SdlSoundOutput.h"

#include "krocore/Localizer.h"

#define SDL_MAIN_HANDLED
#include <SDL.h>

#include <cmath>

namespace workbench {

namespace {

constexpr Uint16 kBlock = 1024;

} // namespace

SdlSoundOutput::SdlSoundOutput() {
    SDL_SetMainReady();
    if (SDL_InitSubSystem(SDL_INIT_AUDIO) != 0) fReason = SDL_GetError();
}

SdlSoundOutput::~SdlSoundOutput() {
    SdlSoundOutput::Stop();
    if (SDL_WasInit(SDL_INIT_AUDIO) != 0) SDL_QuitSubSystem(SDL_INIT_AUDIO);
}

void SdlSoundOutput::Start(qohost::PlaybackEngine& engine, float sampleRate) {
    Stop();
    fEngine = &engine;
    SDL_AudioSpec wanted{};
    wanted.freq = static_cast<int>(std::lround(sampleRate));
    wanted.format = AUDIO_F32SYS;
    wanted.channels = kChannels;
    wanted.samples = kBlock;
    wanted.callback = &SdlSoundOutput::Fill;
    wanted.userdata = &engine;
    if (SDL_WasInit(SDL_INIT_AUDIO) != 0) {
        // With no change allowed SDL converts to what the device can do.
        fDevice = SDL_OpenAudioDevice(nullptr, 0, &wanted, nullptr, 0);
        fReason = fDevice != 0 ? "" : SDL_GetError();
    }
    if (fDevice == 0) fSilent.Start(engine, sampleRate);
}

void SdlSoundOutput::Stop() {
    if (fDevice != 0) SDL_CloseAudioDevice(fDevice);
    fDevice = 0;
    fIsRunning = false;
    fEngine = nullptr;
    fSilent.Stop();
}

void SdlSoundOutput::Poll() {
    if (fDevice == 0) return fSilent.Poll();
    // A device that plays nothing would still cost time.
    const bool isNeeded = fEngine->IsPlaying();
    if (isNeeded != fIsRunning) SDL_PauseAudioDevice(fDevice, isNeeded ? 0 : 1);
    fIsRunning = isNeeded;
}

krocore::string16 SdlSoundOutput::Problem() const {
    if (fDevice != 0) return {};
    return krocore::ReplacePlaceholders(
        krocore::Localize("$$$/Workbench/NoDevice=Nothing is heard: no sound device could be opened (@0)."),
        {krocore::ToUTF16(fReason)});
}

void SdlSoundOutput::Fill(void* engine, std::uint8_t* stream, int bytes) {
    const std::size_t frames = static_cast<std::size_t>(bytes) / (sizeof(float) * kChannels);
    static_cast<qohost::PlaybackEngine*>(engine)->Render(reinterpret_cast<float*>(stream), frames, kChannels);
}

} // namespace workbench
