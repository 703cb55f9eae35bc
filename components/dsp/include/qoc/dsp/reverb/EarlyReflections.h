#pragma once

#include "kromediatypes/AudioChannelLabel.h"
#include "qoc/dsp/reverb/Room.h"
#include "qoc/dsp/stream/SoundPiece.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qoc::dsp {

// The first reflections of a room. Each channel is a source, which stands beside the place of the sound where the
// channel's loudspeaker would, and a microphone at the listener: a cardioid that looks to the channel's side, a hand's
// breadth from the middle, as stereo microphones stand (ORTF: 110 degrees, 17 cm); a channel without a side has a
// microphone for all directions. What the nearest source sends straight comes at once, with a level near 1; reflections
// as much later, and weaker, as their ways are longer. Another scene fades in over 30 ms. Owned by its effect;
// everything but Prepare is real time safe.
class EarlyReflections {
public:
    // Later than the direct sound there are none, in rooms of up to 30000 cubic metres.
    static constexpr double kLongestSeconds = 0.7;

    static constexpr std::size_t kPiece = kPieceFrames;
    using Piece = SoundPiece;

    struct Scene {
        Room room;
        RoomPlace source;
        double absorption = 0.2;  // of the walls: the share (0...1) of the energy that they take
        double level = 1;         // of the reflections, a factor
        double directLevel = 0;   // of what comes straight, a factor
        bool isOneSource = false; // the mean of all channels sounds at the place of the source

        bool operator==(const Scene&) const = default;
    };

    // `sampleRate` in hertz. Allocates.
    void Prepare(double sampleRate, std::span<const kromediatypes::AudioChannelLabel> labels);
    // Forgets all sound.
    void Reset() noexcept;
    // `settle`: without a fade.
    void Set(const Scene& scene, bool settle) noexcept;
    // A piece of each channel, of which so many frames count.
    void Take(std::span<const Piece> inputs, std::size_t frames) noexcept;
    // What the piece taken last sends, by channel: as many frames as were taken count. A tap adds a piece at once,
    // which is several times as fast as sample by sample.
    void Give(std::span<Piece> direct, std::span<Piece> reflected) noexcept;

private:
    struct Microphone {
        double sine = 0; // of the direction that it looks to, from the front to the right
        double cosine = 1;
        bool hasSide = false;
    };
    struct Tap {
        std::uint32_t delay = 0; // samples
        std::uint32_t source = 0;
        std::uint32_t channel = 0;
        float gain = 0;
    };
    struct Taps {
        std::vector<Tap> direct;
        std::vector<Tap> reflected;
    };

    void StartFade() noexcept;
    void MakeTaps(const Scene& scene, Taps& taps) const noexcept;
    void AddTaps(const Scene& scene, std::span<const RoomImage> images, Tap way, double nearest,
                 Taps& taps) const noexcept;
    RoomPlace SourceOf(const Scene& scene, std::size_t source) const noexcept;
    RoomPlace MicrophoneAt(const Room& room, const Microphone& microphone) const noexcept;
    void Write(std::size_t source, std::span<const float> samples) noexcept;
    std::size_t RingSize() const noexcept { return fMask + 1 + kPiece; }

    // Frames of a piece.
    struct Part {
        std::size_t begin;
        std::size_t frames;
        std::size_t position; // of the first in the rings
    };
    float ShareBefore(std::size_t frame) const noexcept;
    void Add(const Taps& taps, const Part& part, bool isBefore, std::span<Piece> direct,
             std::span<Piece> reflected) const noexcept;
    void Add(std::span<const Tap> taps, const Part& part, bool isBefore, std::span<Piece> outputs) const noexcept;
    std::size_t AddSome(std::span<const Tap> taps, const Part& part, Piece& sums) const noexcept;

    double fSampleRate = 44100;
    std::vector<Microphone> fMicrophones;
    // Of the sources one behind the other, that of their mean last. The first kPiece samples of each stand again behind
    // its end.
    std::vector<float> fRings;
    std::size_t fLongest = 0; // samples
    std::size_t fMask = 0;
    std::size_t fPosition = 0;
    std::size_t fTaken = 0; // and not given yet
    Scene fScene;
    Scene fPending; // waits for the fade to end
    Taps fFrom;
    Taps fTo;
    std::size_t fFadeLength = 1;
    std::size_t fFadeRemaining = 0;
};

} // namespace qoc::dsp
