#pragma once

namespace qoc::dsp {

// What the reverbs tell and share. Real time safe.

// Direct sound against reverberation, both in percent and not below 0, in decibels; not beyond kMostDirectRatio to
// either side.
inline constexpr float kMostDirectRatio = 80; // decibels
float DirectRatio(float dry, float wet) noexcept;

// The mean length of a tank's lines, in seconds, that suits a decay of so many seconds: there is time for enough passes
// through them. 7 % of the decay, from 6 ms to the longest mean of the tank.
double MeanLineLength(double decay) noexcept;

// Seconds until a decay of 60 dB in `decay` seconds has come to 90 dB, the first pass through the tank included.
double AudibleSeconds(double decay) noexcept;

} // namespace qoc::dsp
