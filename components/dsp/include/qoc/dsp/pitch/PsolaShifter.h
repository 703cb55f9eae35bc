#pragma once

#include "qoc/dsp/delay/HistoryBuffer.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qoc::dsp {

// Shifts the pitch of a voice and keeps its formants: time-domain pitch-synchronous overlap-add (E. Moulines and
// F. Charpentier, "Pitch-synchronous waveform processing techniques for text-to-speech synthesis using diphones",
// Speech Communication 9, 1990). Grains two periods long are set down at the wanted period; each fades in from the mark
// of the grain before it to its own, and out to the next. A grain is the input, late by the latency and moved by the
// grain's shift; shifts are fractions of samples, read by a windowed sinc. While nothing is shifted the output is the
// late input, bit by bit.
//
// The fades are straight lines: for corrections below a semitone neighbouring grains differ by a small angle, and a
// straight fade turns that angle evenly, which leaves a tone pure. All channels are cut at the same marks.
//
// The owner asks at each mark for the next grain and calls Render in between. Nothing here allocates but Prepare.
class PsolaShifter {
public:
    // Half the length of the sinc: shifts end this many samples before the latency is used up.
    static constexpr int kHalfTaps = 16;

    // `latency` in samples, above kHalfTaps.
    void Prepare(std::size_t latency);
    void Reset() noexcept;

    // Samples that Render may make before the next grain has to be started; 0 when it is time.
    std::size_t FramesUntilMark() const noexcept;
    // How far apart the last two marks are.
    double MarkDistance() const noexcept { return fLength; }

    // The next grain of a voice: `period` of the input in samples, `ratio` of the output's frequency to the input's.
    // The first one after sound without pitch is set on the loudest place within a period of the channel `guide`, so
    // that its grains keep the strongest part of each period whole.
    void StartGrain(const HistoryBuffer& history, std::size_t guide, double period, double ratio) noexcept;
    // A grain of the sound as it is, over `frames` samples.
    void StartPlainGrain(double frames) noexcept;

    // Writes `frames` output samples a channel, from `offset` on; the history ends with the input that belongs to the
    // last of them. At most kLargestRender at once and not beyond the mark.
    static constexpr std::size_t kLargestRender = 256;
    void Render(const HistoryBuffer& history, std::span<float* const> outputs, std::size_t offset,
                std::size_t frames) noexcept;

private:
    // The input, moved: output sample t is the input at t - latency + whole + fraction.
    struct Grain {
        double shift = 0;
        std::int64_t whole = 0;
        bool isWhole = true;
        std::array<float, 2 * kHalfTaps> taps{};
    };

    static void SetShift(Grain& grain, double shift) noexcept;
    void StartNext(double length, double shift) noexcept;
    double DistanceToPeak(const HistoryBuffer& history, std::size_t guide, double period) const noexcept;
    double Wrap(double shift, double period) const noexcept;
    void Read(const HistoryBuffer& history, std::size_t channel, const Grain& grain, std::size_t frames,
              float* target) const noexcept;

    std::int64_t fLatency = 0;
    Grain fFading;     // the grain whose mark lies behind
    Grain fRising;     // the grain whose mark comes next
    double fStart = 0; // place of the segment's first sample behind the last mark, 0...1
    double fLength = 1;
    std::size_t fDone = 0; // samples of the segment that have been made
    bool fVoiced = false;
    std::array<float, kLargestRender> fFade{};
    std::array<float, kLargestRender> fRisingSound{};
};

} // namespace qoc::dsp
