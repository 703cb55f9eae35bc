#pragma once

#include "qoc/components/ParameterRow.h"

#include <cstddef>

namespace qoc::components {

// Rows that the tables of all effects with a drawn curve have, each under the effect's own names.
struct CurveFilterRows {
    static constexpr std::size_t kMostPoints = 128;
    static constexpr const char* kCurve = "curve";   // its id
    static constexpr float kHighestFrequency = 1e6F; // hertz: half of any sample rate is less

    static constexpr ParameterRow Spline(int index, const char* name) {
        return {.index = index, .id = "spline", .name = name, .kind = ParameterKind::kSwitch};
    }
    // Logarithmic or linear.
    static constexpr ParameterRow Scale(int index, const char* name, std::span<const char* const> items) {
        return {.index = index,
                .id = "scale",
                .name = name,
                .kind = ParameterKind::kChoice,
                .flags = kParameterNotAutomatable,
                .items = items};
    }
    // The frequencies that the panel's graph shows.
    static constexpr ParameterRow View(int index, const char* id, const char* name, float defaultHertz) {
        return {.index = index,
                .id = id,
                .name = name,
                .unit = "Hz",
                .defaultValue = defaultHertz,
                .decimals = 1,
                .scale = ParameterScale::kNyquist,
                .flags = kParameterNotAutomatable};
    }
    static constexpr ParameterRow PointCount(int index, const char* name) {
        return {.index = index,
                .id = "points",
                .name = name,
                .hi = static_cast<float>(kMostPoints),
                .defaultValue = 2,
                .decimals = 0,
                .flags = kParameterWhole,
                .curve = kCurve};
    }
};

} // namespace qoc::components
