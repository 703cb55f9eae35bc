#pragma once

#include <cstddef>
#include <vector>

namespace krocore {

// Frequencies evenly spaced on a linear or logarithmic axis, first and last at its ends. A value.
struct FrequencyAxis {
    double start = 0; // hertz; above 0 when logarithmic
    double end = 0;   // hertz
    bool logarithmic = false;

    // Hertz of place `index` of `count`; the start if there is only one.
    double HertzAt(std::size_t index, std::size_t count) const;
    // Those of all places: several times as fast as one by one, and the same to a part in 10^11.
    std::vector<double> AllHertz(std::size_t count) const;
    // The place that shows `hertz`, the nearest of `count`; `count` when none does.
    std::size_t PlaceOf(double hertz, std::size_t count) const;

    bool operator==(const FrequencyAxis&) const = default;
};

} // namespace krocore
