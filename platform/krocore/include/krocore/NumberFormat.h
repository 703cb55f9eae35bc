#pragma once

#include "krocore/String.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace krocore {

// How a number is written in a field. Flags combine.
enum NumberFormatFlags : std::uint32_t {
    kFormatNormal = 0,
    kFormatLeadingSpaces = 1,   // padded on the left with figure spaces to `width` characters
    kFormatPadSign = 2,         // a figure space where a positive number has no sign
    kFormatNoTrailingZeros = 4, // 1.50 -> 1.5, 2.00 -> 2
    kFormatAlwaysSign = 8,      // +3
    kFormatUseSeparator = 16,   // thousands separator of the locale
    kFormatNoLocalization = 32, // "." and "," whatever the locale says
};

// The two characters that a language writes numbers with. The C library's locale is never asked.
// User-interface thread.
struct NumberLocale {
    char16_t decimalPoint = u'.';
    char16_t thousandsSeparator = u',';

    static const NumberLocale& Current();
    static void SetCurrent(const NumberLocale& locale);
};

// A number with `decimalPlaces` (0...15) places, rounded half away from zero on its decimal value. Never shows "-0".
// Infinity is the infinity sign with its sign, NaN an em dash.
string16 FormatNumber(double value, int decimalPlaces, std::uint32_t flags = kFormatNormal, int width = 0);

// The number in the shortest form that reads back as the same value ("." always): for files.
string8 FormatShortest(float value);
string8 FormatShortest(double value);

// Reads a complete plain number ("." always), for files; surrounding space, a leading "+" and anything behind the
// number are refused, as are numbers that no double holds and NaN. Infinity is "inf" or "-inf", as FormatShortest
// writes it.
std::optional<double> ParsePlainNumber(std::string_view text);

// Reads what a person types: ".5", "1,5", "8k", "-5 dB", "+3", "1.000,5", "-inf", with or without `unit` (any case).
// A lone "," or "." is the decimal point wherever it stands; when both occur the last one is; one that occurs more than
// once separates groups of three digits, as spaces and apostrophes do. "k" multiplies by 1000, "M" by 1,000,000 unless
// that letter begins the unit, for which it may then stand alone ("8k" is 8 where the unit is "kHz"). U+2212 is a
// minus, U+221E and "inf" are infinity. Empty when the text is no number.
std::optional<double> ParseTypedNumber(std::u16string_view text, std::u16string_view unit = {});

} // namespace krocore
