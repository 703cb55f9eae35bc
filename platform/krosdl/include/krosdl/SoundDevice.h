#pragma once

#include <boost/function.hpp>

#include <cstddef>
#include <cstdint>
#include <string>

namespace krosdl {

// The system's standard sound device, through SDL. Owned by the program; all calls on the user-interface thread.
class SoundDevice {
public:
    // Fills `frames` frames of `channels` interleaved samples, nominally -1...1. Called on the device's own thread, the
    // sound thread, which it must not hold up: it allocates nothing, waits for nothing and does not throw.
    using Callback = boost::function<void(float* interleaved, std::size_t frames, std::size_t channels)>;

    SoundDevice() = default;
    SoundDevice(const SoundDevice&) = delete;
    SoundDevice& operator=(const SoundDevice&) = delete;
    // Closes.
    ~SoundDevice();

    // Opens the device, not yet running, in place of what was open: `sampleRate` in hertz, `channels` 1...8. What the
    // device can't do SDL converts. False when there is no device; Problem says why.
    bool Open(float sampleRate, std::size_t channels, Callback callback);
    // When it returns, the callback is not called any more, and what it used may go.
    void Close();
    bool IsOpen() const { return fDevice != 0; }

    // Whether the callback is asked for sound; a device that plays nothing still costs time. Nothing for a closed one.
    void Run(bool on);

    // Why it is not open, in SDL's words; empty while it is, and before the first Open.
    const std::string& Problem() const { return fProblem; }

private:
    bool StartSystem();
    static void Fill(void* device, std::uint8_t* stream, int bytes);

    Callback fCallback;
    std::string fProblem;
    std::size_t fChannels = 0;
    std::uint32_t fDevice = 0;
    bool fHasAudio = false; // SDL's part for sound has been started
    bool fIsRunning = false;
};

} // namespace krosdl
