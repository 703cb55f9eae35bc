#pragma once

#include "krocore/String.h"

#include <boost/function.hpp>

#include <optional>
#include <string_view>

namespace uit::controls {

// How the values of an axis are written and typed: the unit, and conversions between the axis and what people read.
struct AxisText {
    using Translator = boost::function<double(double)>;

    krocore::string16 label; // "Frequency:"
    krocore::string16 unit;  // "Hz"
    Translator typedToAxis;  // empty: the axis' values are typed
    Translator axisToTyped;

    // A value with its unit, "1.25 kHz", with the places that tell it from one that is `pixel` away on the axis.
    krocore::string16 Write(double axisValue, double pixel) const;
    // The same for an entry field: without the unit, and finer.
    krocore::string16 WriteForEntry(double axisValue, double pixel) const;
    // What was typed, as a value of the axis; none if it is no number.
    std::optional<double> Read(std::u16string_view text) const;

private:
    double Typed(double axisValue) const { return axisToTyped ? axisToTyped(axisValue) : axisValue; }
    int Decimals(double axisValue, double pixel, double whole) const;
};

} // namespace uit::controls
