#include "uit/controls/AxisText.h"

#include "krocore/NumberFormat.h"

#include <algorithm>
#include <cmath>

namespace uit::controls {

namespace {

constexpr double kThousand = 1000;

} // namespace

krocore::string16 AxisText::Write(double axisValue, double pixel) const {
    const double value = Typed(axisValue);
    const bool isThousands = unit == u"Hz" && std::abs(value) >= kThousand && std::isfinite(value);
    const double whole = isThousands ? kThousand : 1;
    krocore::string16 text = krocore::FormatNumber(value / whole, Decimals(axisValue, pixel, whole));
    if (!unit.empty() && unit != u"\u00B0") text += u' ';
    if (isThousands) text += u'k';
    return text += unit;
}

krocore::string16 AxisText::WriteForEntry(double axisValue, double pixel) const {
    return krocore::FormatNumber(Typed(axisValue), Decimals(axisValue, pixel, 1) + 1, krocore::kFormatNoTrailingZeros);
}

std::optional<double> AxisText::Read(std::u16string_view text) const {
    const std::optional<double> typed = krocore::ParseTypedNumber(text, unit);
    if (!typed || !typedToAxis) return typed;
    const double value = typedToAxis(*typed);
    return std::isnan(value) ? std::nullopt : std::optional(value);
}

// As many as it takes for neighbouring pixels to read differently, in units of `whole`.
int AxisText::Decimals(double axisValue, double pixel, double whole) const {
    constexpr int kMost = 6;
    constexpr double kSlack = 0.05; // a pixel's value has its own rounding
    const double step = std::abs(Typed(axisValue + pixel) - Typed(axisValue)) / whole;
    if (!std::isfinite(step) || step <= 0) return 1;
    return std::clamp(static_cast<int>(std::ceil(-std::log10(step) - kSlack)), 0, kMost);
}

} // namespace uit::controls
