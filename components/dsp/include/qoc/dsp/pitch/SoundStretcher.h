#pragma once

#include "qoc/dsp/delay/HistoryBuffer.h"
#include "qoc/dsp/pitch/HitSchedule.h"
#include "qoc/dsp/pitch/OnsetDetector.h"
#include "qoc/dsp/pitch/SpectralStretcher.h"
#include "qoc/dsp/pitch/SpliceFade.h"
#include "qoc/dsp/pitch/SpliceJudge.h"
#include "qoc/dsp/pitch/SpliceSearch.h"
#include "qoc/dsp/pitch/TimeMap.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace qoc::dsp {

// Makes a sound longer or shorter without changing its pitch, following a TimeMap: tells where to read for the frame
// that is due. The sound is read in pieces, each at its own pace and in its middle at the frame that the map has for
// it, or a little beside it: a piece begins where the sound goes on like the one before (Verhelst and Roelands, "An
// overlap-add technique based on waveform similarity", 1993), and they overlap for a fade. The beginning of a hit is
// never repeated, left out or faded: the piece before it ends early enough for the next one to bring it when it is due.
// Where no place is found that goes on like the sound, it may be stretched by its spectrum instead, from there to the
// next hit or until splices suit it again. Lengths are in samples of the stretched sound. Owned by the pitch shifter.
// Everything but Prepare is real time safe.
class SoundStretcher {
public:
    // Of the ratios of the map.
    static constexpr double kLowestRatio = 0.5;
    static constexpr double kHighestRatio = 2;

    struct Lengths {
        double sequence = 0; // of a piece with both its fades; 0: by the ratio, with a fade of its own
        double overlap = 0;  // of a fade, up to half the sequence
    };
    // What goes on in the sound: all up to Reach() behind the frame that is due is known.
    struct Sound {
        const TimeMap& map;
        const HistoryBuffer& history;
        const OnsetDetector& onsets;
    };
    // A sound to read at the frame, at a place between its samples.
    struct Voice {
        const HistoryBuffer* sound = nullptr;
        double place = 0;
        float gain = 0;
    };

    // `longest`: of the sequences that will be set; `margin`: how far around a place is read. Allocates, and resets.
    void Prepare(std::size_t channels, double sampleRate, double longest, std::size_t margin);
    void Reset() noexcept;
    // Of the pieces that are still to begin. Frames of spectra are so long that about one a sequence begins, and
    // overlap by the more the longer the fades are.
    void SetLengths(const Lengths& lengths) noexcept;
    // Whether what has no splice that suits it is stretched by its spectrum.
    void SetSpectral(bool maySpectral) noexcept { fMayBeSpectral = maySpectral; }

    // How far from the frame that is due the sound may be read that is heard at it, in samples.
    static double FarthestOff(const Lengths& lengths, double sampleRate) noexcept;
    // How far ahead of the frame that is due the map and the history have to be, and the history behind it.
    std::size_t Reach() const noexcept { return fReach; }

    // Leaves the sound as it is: from `frame` on, a piece that is due now.
    void Follow(std::int64_t frame, const TimeMap& map) noexcept;
    // Goes to the next frame, `frame`.
    void Advance(std::int64_t frame, const Sound& sound) noexcept;

    // What is heard at the frame: its piece and, while that fades in, the one before, which goes out.
    std::array<Voice, 2> Voices(const HistoryBuffer& history) const noexcept;

private:
    enum class Reason { kNone, kEnd, kHit, kTooFar };

    struct Piece {
        double offset = 0;       // from positions to places in the sound
        bool isSpectral = false; // read from the stretched sound, with the offset that is due
        bool isVoice = false;    // in frames for a sound with a pitch
    };

    Lengths LengthsAt(float ratio) const noexcept;
    double Place() const noexcept { return fPosition + fPiece.offset; }
    Voice VoiceOf(const Piece& piece, double gain, const HistoryBuffer& history) const noexcept;
    void Look(std::int64_t frame, const Sound& sound) noexcept;
    void Fade() noexcept;
    Reason ReasonToSplice(std::int64_t frame, const Sound& sound) noexcept;
    void Splice(std::int64_t frame, Reason reason, const Sound& sound) noexcept;
    SpliceSearch::Place FindPlace(const Lengths& lengths, const SpliceSearch::Room& room,
                                  const HistoryBuffer& history) noexcept;
    SpliceSearch::Room RoomFor(Reason reason, const Lengths& lengths, const TimeMap& map) const noexcept;
    void BeginPiece(const Lengths& lengths, const SpliceSearch::Place& found) noexcept;
    bool StaysSpectral(std::int64_t frame, double likeness, const Sound& sound) noexcept;
    bool TryToStartSpectral(std::int64_t frame, const Sound& sound) noexcept;
    bool SuitsVoiceFrames() const noexcept;
    bool WouldRise(std::int64_t frame, const HistoryBuffer& history) const noexcept;
    void EndAt(double position) noexcept;

    double fSampleRate = 44100;
    double fFarthest = 0;
    std::size_t fReach = 0;
    Lengths fLengths;
    bool fMayBeSpectral = false;

    SpliceSearch fSearch;
    SpliceJudge fJudge;
    HitSchedule fHits;
    SpectralStretcher fSpectral;
    SpliceFade fFade;

    double fPosition = 0;
    Piece fPiece;
    Piece fFormer;
    double fGain = 1;
    double fFormerGain = 0;
    double fEnd = 0;             // position at which the piece is to end, or whether it might is looked at
    double fListensAt = 0;       // position
    int fTries = 0;              // to leave frames for a voice
    bool fWantsSpectral = false; // the last splice did not suit the sound
};

} // namespace qoc::dsp
