#include "krocore/NumberFormat.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace krocore {
namespace {

constexpr char16_t kFigureSpace = u'\u2007';
constexpr char16_t kInfinity = u'\u221E';
constexpr char16_t kEmDash = u'\u2014';
constexpr int kMostDecimalPlaces = 15;

constinit NumberLocale sLocale;

// A magnitude as the decimal digits of its shortest exact form: 0.d1d2d3... times 10 to the power of pointAt. Zero has
// no digits. Rounding these digits, not the binary value, is what a person expects: 2.675 becomes 2.68.
class Decimal {
public:
    explicit Decimal(double magnitude);

    void RoundTo(int decimalPlaces);

    bool IsZero() const { return fCount == 0; }
    int PointAt() const { return fPointAt; }
    int SignificantPlaces() const { return IsZero() ? 0 : std::max(0, fCount - fPointAt); }

    // The digit at a position counted from the first one; 0 on either side of the digits.
    char16_t Digit(int position) const {
        return position >= 0 && position < fCount ? static_cast<char16_t>(fDigits[position]) : u'0';
    }

private:
    void CountUp();

    std::array<char, 24> fDigits{};
    int fCount = 0;
    int fPointAt = 1;
};

Decimal::Decimal(double magnitude) {
    std::array<char, 32> text{}; // "d.ddd...e+ddd"
    const char* const end =
        std::to_chars(text.data(), text.data() + text.size(), magnitude, std::chars_format::scientific).ptr;
    const char* const exponent = std::find<const char*>(text.data(), end, 'e');
    for (const char* at = text.data(); at != exponent; ++at) {
        if (*at != '.') fDigits[fCount++] = *at;
    }
    if (fDigits[0] == '0') fCount = 0;

    const char* const exponentDigits = exponent + (exponent[1] == '+' ? 2 : 1);
    std::from_chars(exponentDigits, end, fPointAt);
    ++fPointAt;
}

void Decimal::RoundTo(int decimalPlaces) {
    const int kept = fPointAt + decimalPlaces;
    if (kept >= fCount) return;
    const bool isUp = kept >= 0 && fDigits[kept] >= '5';
    fCount = std::max(0, kept);
    if (isUp) CountUp();
    while (fCount > 0 && fDigits[fCount - 1] == '0')
        --fCount;
}

void Decimal::CountUp() {
    while (fCount > 0 && fDigits[fCount - 1] == '9')
        --fCount;
    if (fCount > 0) {
        ++fDigits[fCount - 1];
    } else {
        fDigits[fCount++] = '1';
        ++fPointAt;
    }
}

// Collects a number's characters. There is room for the largest double with separators.
class NumberText {
public:
    void Append(char16_t character) { fCharacters[fLength++] = character; }

    void AppendSign(bool isNegative, std::uint32_t flags) {
        if (isNegative) {
            Append(u'-');
        } else if ((flags & kFormatAlwaysSign) != 0) {
            Append(u'+');
        } else if ((flags & kFormatPadSign) != 0) {
            Append(kFigureSpace);
        }
    }

    void AppendDigits(const Decimal& decimal, int decimalPlaces, std::uint32_t flags);

    string16 PaddedTo(int width) const {
        const std::size_t wanted = static_cast<std::size_t>(std::max(0, width));
        string16 result(wanted > fLength ? wanted - fLength : 0, kFigureSpace);
        return result.append(fCharacters.data(), fLength);
    }

private:
    std::array<char16_t, 512> fCharacters{};
    std::size_t fLength = 0;
};

void NumberText::AppendDigits(const Decimal& decimal, int decimalPlaces, std::uint32_t flags) {
    constexpr int kGroup = 3;
    const NumberLocale locale = (flags & kFormatNoLocalization) != 0 ? NumberLocale() : sLocale;
    const bool hasSeparators = (flags & kFormatUseSeparator) != 0;

    if (decimal.PointAt() <= 0) Append(u'0');
    for (int i = 0; i < decimal.PointAt(); ++i) {
        if (hasSeparators && i > 0 && (decimal.PointAt() - i) % kGroup == 0) Append(locale.thousandsSeparator);
        Append(decimal.Digit(i));
    }
    if (decimalPlaces > 0) Append(locale.decimalPoint);
    for (int i = 0; i < decimalPlaces; ++i)
        Append(decimal.Digit(decimal.PointAt() + i));
}

void AppendFinite(NumberText& text, double value, int decimalPlaces, std::uint32_t flags) {
    decimalPlaces = std::clamp(decimalPlaces, 0, kMostDecimalPlaces);
    Decimal decimal(std::abs(value));
    decimal.RoundTo(decimalPlaces);
    if ((flags & kFormatNoTrailingZeros) != 0) decimalPlaces = std::min(decimalPlaces, decimal.SignificantPlaces());
    text.AppendSign(std::signbit(value) && !decimal.IsZero(), flags);
    text.AppendDigits(decimal, decimalPlaces, flags);
}

template <class Value>
string8 Shortest(Value value) {
    std::array<char, 32> text{};
    const char* const end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
    return {text.data(), static_cast<std::size_t>(end - text.data())};
}

} // namespace

const NumberLocale& NumberLocale::Current() {
    return sLocale;
}

void NumberLocale::SetCurrent(const NumberLocale& locale) {
    sLocale = locale;
}

string16 FormatNumber(double value, int decimalPlaces, std::uint32_t flags, int width) {
    NumberText text;
    if (std::isnan(value)) {
        text.Append(kEmDash);
    } else if (std::isinf(value)) {
        text.AppendSign(value < 0, flags);
        text.Append(kInfinity);
    } else {
        AppendFinite(text, value, decimalPlaces, flags);
    }
    return text.PaddedTo((flags & kFormatLeadingSpaces) != 0 ? width : 0);
}

string8 FormatShortest(float value) {
    return Shortest(value);
}

string8 FormatShortest(double value) {
    return Shortest(value);
}

std::optional<double> ParsePlainNumber(std::string_view text) {
    double value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end || std::isnan(value)) return std::nullopt;
    return value;
}

} // namespace krocore
