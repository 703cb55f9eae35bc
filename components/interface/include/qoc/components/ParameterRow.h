#pragma once

#include <cstdint>
#include <span>

namespace qoc::components {

// How a stored value 0...1 lies on the natural range lo...hi.
enum class ParameterScale : std::uint8_t {
    kLinear,
    kLogarithmic, // lo above 0
    kNyquist,     // hertz = value * Nyquist + lo; hi follows the sample rate and the row's hi says nothing
};

enum class ParameterKind : std::uint8_t { kNumber, kSwitch, kChoice };

// What a row's parameter is besides a number. Combine.
enum ParameterFlags : std::uint8_t {
    kParameterPlain = 0,
    kParameterNotAutomatable = 1,
    kParameterReadOnly = 2,     // told by the effect
    kParameterWhole = 4,        // only whole natural values differ
    kParameterNeedsPrepare = 8, // taken over when the effect is prepared
};

// One row of an effect's parameter table: everything that panels, presets, the command line and plug-ins know about the
// parameter. Texts are localisation keys ("$$$/..."); "@0" in the name, and the end of the id, take the number of a
// parameter that stands several times ("gain" and "Gain @0" become gain1 and "Gain 1"). Tables are constants, so views
// stay valid.
struct ParameterRow {
    static constexpr int kNext = -1;

    int index =
        kNext; // the parameter's, or that of the first one made from the row; kNext: right behind the row before
    const char* id = "";
    const char* name = "";
    const char* unit = "";
    float lo = 0;
    float hi = 1;
    float defaultValue = 0; // natural; the upper end where a range that follows the sample rate ends below it
    int decimals = 2;
    ParameterScale scale = ParameterScale::kLinear;
    ParameterKind kind = ParameterKind::kNumber;
    std::uint8_t flags = kParameterPlain;
    std::span<const char* const> items = {}; // names of a choice's items
    std::span<const float> itemValues = {};  // their natural values, ascending; 0, 1, 2 ... when empty
    const char* curve = "";    // the id of the curve that the row's parameters draw with others, see ParameterTable
    const char* linkedBy = ""; // the id of the switch that makes all parameters of the row one value
};

} // namespace qoc::components
