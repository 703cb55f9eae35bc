#pragma once

namespace qoc::dsp {

// What the reverbs tell and share.

// Direct sound against reverberation, both in percent, in decibels; not beyond kMostDirectRatio to either side.
inline constexpr float kMostDirectRatio = 80;
float DirectRatio(float dry, float wet) noexcept;

// The mean length of a tank's lines, in seconds, that lets a decay of so many seconds begin densely: echoes follow each
// other faster when there is less time for them.
double MeanLineLength(double decay) noexcept;

// Seconds until a decay of 60 dB in `decay` seconds has come to 90 dB.
double AudibleSeconds(double decay) noexcept;

} // namespace qoc::dsp
