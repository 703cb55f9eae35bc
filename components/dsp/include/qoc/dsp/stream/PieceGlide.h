#pragma once

#include "qoc/dsp/stream/SoundPiece.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace qoc::dsp {

// From settings to others in 50 ms, for sound that is made in pieces: what crossfades the sound of the ones into that
// of the others. Settings that come meanwhile wait until the glide is over. A piece ends where a glide does, so that
// the way the sound is cut into blocks does not matter. Owned by what has the settings; real time safe.
template <typename Settings>
class PieceGlide {
public:
    // `sampleRate` in hertz.
    void Prepare(double sampleRate) noexcept {
        constexpr double kSeconds = 0.05;
        fLength = static_cast<std::size_t>(std::ceil(kSeconds * sampleRate));
    }
    // `settle`: to be there now. Tells whether From() and To() are others now.
    bool Set(const Settings& settings, bool settle) noexcept {
        fPending = settings;
        if (!settle) return fRemaining == 0 && Start();
        fFrom = fTo = settings;
        fRemaining = 0;
        return true;
    }

    const Settings& From() const noexcept { return fFrom; }
    const Settings& To() const noexcept { return fTo; }
    bool IsMoving() const noexcept { return fRemaining > 0; }

    // How many of so many frames the next piece may have.
    std::size_t Within(std::size_t frames) const noexcept { return IsMoving() ? std::min(frames, fRemaining) : frames; }
    // Of To() against From(), at each of a piece's frames.
    const SoundPiece& Share(std::size_t frames) noexcept {
        for (std::size_t i = 0; IsMoving() && i < frames; ++i) {
            const float left = static_cast<float>(fRemaining - i - 1) / static_cast<float>(fLength);
            fShare[i] = 1 - left * left * (3 - 2 * left); // without a kink at either end
        }
        return fShare;
    }
    // Behind a piece. Tells whether From() and To() are others now.
    bool Advance(std::size_t frames) noexcept {
        if (!IsMoving()) return false;
        fRemaining -= frames;
        if (fRemaining > 0) return false;
        fFrom = fTo;
        Start();
        return true;
    }

private:
    bool Start() noexcept {
        if (fPending == fTo) return false;
        fFrom = fTo;
        fTo = fPending;
        fRemaining = fLength;
        return true;
    }

    Settings fFrom{};
    Settings fTo{};
    Settings fPending{};
    std::size_t fLength = 1;
    std::size_t fRemaining = 0;
    SoundPiece fShare{};
};

} // namespace qoc::dsp
