#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace qoc::dsp {

// Finds the flat tops that are left of peaks that were too loud: runs of samples at the level where a channel was
// clipped. That level may differ above and below zero. It can be found too: peaks of a sound are round, so that twice
// as many samples lie within four times the tolerance of a peak than within the tolerance, and those of a clipped one
// are not. Owned by the effect that uses it; nothing but Prepare allocates.
class ClipDetector {
public:
    struct Run {
        std::size_t begin = 0;
        std::size_t end = 0; // one past the last sample
        bool isBelowZero = false;
    };
    struct Settings {
        double level = 1;            // where the sound is clipped, an amplitude above 0
        bool findsLevel = false;     // in place of that
        double tolerance = 0.01;     // part of the level by which samples may lie below
        std::size_t minimumSize = 2; // samples
    };
    // What has been found out about a channel: the level above and below zero, 0 for none.
    struct Levels {
        double above = 0;
        double below = 0;
    };

    // For frames of up to so many samples. Allocates.
    void Prepare(std::size_t frame);

    // The clipped runs of a frame of a channel, in order. They stay valid until the next call. Levels are found from
    // samples in the frame and kept for those to come.
    std::span<const Run> Find(std::span<const float> sound, const Settings& settings, Levels& levels) noexcept;

private:
    static double FindLevel(std::span<const float> sound, float sign, const Settings& settings, double known) noexcept;
    void Collect(std::span<const float> sound, float sign, double level, const Settings& settings) noexcept;

    std::vector<Run> fRuns;
};

} // namespace qoc::dsp
