#include "krosdl/SoundDevice.h"

#define SDL_MAIN_HANDLED
#include <SDL.h>

#include <cmath>
#include <utility>

namespace krosdl {

namespace {

constexpr Uint16 kBlock = 1024; // frames

} // namespace

SoundDevice::~SoundDevice() {
    Close();
    if (fHasAudio) SDL_QuitSubSystem(SDL_INIT_AUDIO);
}

// When a device is wanted for the first time: looking for all of them takes a while.
bool SoundDevice::StartSystem() {
    if (fHasAudio) return true;
    SDL_SetMainReady();
    fHasAudio = SDL_InitSubSystem(SDL_INIT_AUDIO) == 0;
    if (!fHasAudio) fProblem = SDL_GetError();
    return fHasAudio;
}

bool SoundDevice::Open(float sampleRate, std::size_t channels, Callback callback) {
    Close();
    if (!StartSystem()) return false;
    fCallback = std::move(callback);
    fChannels = channels;
    SDL_AudioSpec wanted{};
    wanted.freq = static_cast<int>(std::lround(sampleRate));
    wanted.format = AUDIO_F32SYS;
    wanted.channels = static_cast<Uint8>(channels);
    wanted.samples = kBlock;
    wanted.callback = &SoundDevice::Fill;
    wanted.userdata = this;
    // With no change allowed SDL converts to what the device can do.
    fDevice = SDL_OpenAudioDevice(nullptr, 0, &wanted, nullptr, 0);
    fProblem = IsOpen() ? "" : SDL_GetError();
    return IsOpen();
}

void SoundDevice::Close() {
    if (IsOpen()) SDL_CloseAudioDevice(fDevice);
    fDevice = 0;
    fIsRunning = false;
    fCallback.clear();
}

void SoundDevice::Run(bool on) {
    if (!IsOpen() || on == fIsRunning) return;
    SDL_PauseAudioDevice(fDevice, on ? 0 : 1);
    fIsRunning = on;
}

void SoundDevice::Fill(void* device, std::uint8_t* stream, int bytes) {
    const auto& self = *static_cast<SoundDevice*>(device);
    const std::size_t frames = static_cast<std::size_t>(bytes) / (sizeof(float) * self.fChannels);
    self.fCallback(reinterpret_cast<float*>(stream), frames, self.fChannels);
}

} // namespace krosdl
