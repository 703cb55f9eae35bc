#pragma once

#include <span>

namespace qoc::dsp {

// Follows the level of one sound, or of several channels taken together: the peaks, going up with the attack's time
// constant and down with the release's, or the power, averaged over the release's time constant. A sine of amplitude 1
// reads 0 dB in both ways (AES17). A value; real time safe.
class LevelDetector {
public:
    // What a channel that stands still reads.
    static constexpr double kSilence = -200; // decibels

    struct Settings {
        bool isPower = false;
        // What remains of a difference after a sample, 0 at once.
        double attack = 0;
        double release = 0;
    };
    // What remains after a sample of a difference that shrinks to 1/e in so many samples.
    static double Remainder(double samples) noexcept;

    void Reset() noexcept { fValue = 0; }
    // Takes the powers of the next samples: their squares, or of several channels the means or the largest of theirs.
    // Leaves in their stead the levels in decibels of full scale, in which each sample counts already.
    void Next(std::span<double> powers, const Settings& settings) noexcept;

private:
    void FollowPeaks(std::span<double> powers, const Settings& settings) noexcept;
    void FollowPower(std::span<double> powers, double remainder) noexcept;

    double fValue = 0; // amplitude or power
    bool fIsPower = false;
};

} // namespace qoc::dsp
