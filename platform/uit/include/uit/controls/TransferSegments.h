#pragma once

#include "krocore/String.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace uit::controls {

// A point of a dynamics curve: the level that comes in and the level that goes out, dB.
struct TransferPoint {
    double input = 0;
    double output = 0;
    friend bool operator==(const TransferPoint&, const TransferPoint&) = default;
};

// What the straight line between two points of a dynamics curve does to the level. Levels that rise less than they did
// are compressed, levels that rise more are expanded.
struct TransferSegment {
    enum class Kind : std::uint8_t { kStraight, kCompressor, kExpander };

    TransferPoint lower;
    TransferPoint upper;

    // dB out a dB in; infinity for a step.
    double Slope() const;
    Kind GetKind() const;
    // Steepness on a scale that is even to both sides: 0 is 1:1, 3 compresses 4:1, -3 expands 4:1. Held within
    // kMostCompression, which flat and falling segments reach.
    double Compression() const;
    static double SlopeOf(double compression);

    krocore::string16 KindText() const;
    // "4.0:1", "1:1"; an infinity sign for what is flat.
    krocore::string16 RatioText() const;
    // A ratio as it is typed: "4:1", "1:4" or, in the sense of this segment, "4". As a compression.
    std::optional<double> ParseRatio(std::u16string_view text) const;

    static constexpr double kMostCompression = 29; // 30:1
};

} // namespace uit::controls
