#include "krocore/NumberFormat.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

namespace krocore {
namespace {

constexpr char16_t kMinusSign = u'\u2212';
constexpr char16_t kInfinitySign = u'\u221E';
constexpr std::size_t kGroupDigits = 3;

bool IsSpace(char16_t c) {
    // No-break, figure, thin and narrow no-break space beside the ASCII ones.
    return c == u' ' || c == u'\t' || c == u'\u00A0' || c == u'\u2007' || c == u'\u2009' || c == u'\u202F';
}
bool IsDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}
bool IsPoint(char16_t c) {
    return c == u'.' || c == u',';
}
bool IsGroupMark(char16_t c) {
    return IsSpace(c) || c == u'\'' || c == u'\u2019';
}

char16_t Lower(char16_t c) {
    return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + (u'a' - u'A')) : c;
}

bool EqualsIgnoringCase(std::u16string_view a, std::u16string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char16_t left, char16_t right) { return Lower(left) == Lower(right); });
}

std::size_t LeadingDigits(std::u16string_view text) {
    return static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), IsDigit) - text.begin());
}

void SkipSpaces(std::u16string_view& text) {
    while (!text.empty() && IsSpace(text.front()))
        text.remove_prefix(1);
}

std::u16string_view Trimmed(std::u16string_view text) {
    SkipSpaces(text);
    while (!text.empty() && IsSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

// Takes a sign off the front, if there is one; true if it is a minus.
bool TakeSign(std::u16string_view& text) {
    if (text.empty()) return false;
    const char16_t first = text.front();
    const bool isMinus = first == u'-' || first == kMinusSign;
    if (isMinus || first == u'+') text.remove_prefix(1);
    return isMinus;
}

bool TakeInfinity(std::u16string_view& text) {
    constexpr std::array<std::u16string_view, 3> kNames{u"infinity", u"inf", std::u16string_view(&kInfinitySign, 1)};
    for (const std::u16string_view name : kNames) {
        if (EqualsIgnoringCase(text.substr(0, name.size()), name)) {
            text.remove_prefix(name.size());
            return true;
        }
    }
    return false;
}

// Takes digits, points and group marks off the front. A space or apostrophe belongs to the number only where exactly
// three digits follow, so that "5 dB" ends at the 5.
std::u16string_view TakeMantissa(std::u16string_view& text) {
    std::size_t length = 0;
    while (length < text.size()) {
        const char16_t c = text[length];
        const bool isGroup = IsGroupMark(c) && length > 0 && IsDigit(text[length - 1]) &&
                             LeadingDigits(text.substr(length + 1)) == kGroupDigits;
        if (!IsDigit(c) && !IsPoint(c) && !isGroup) break;
        ++length;
    }
    const std::u16string_view mantissa = text.substr(0, length);
    text.remove_prefix(length);
    return mantissa;
}

// Where the decimal point of a mantissa is; its length if it has none. A character that comes more than once, with no
// other behind it, separates groups.
std::size_t FindDecimalPoint(std::u16string_view mantissa) {
    const std::size_t last = mantissa.find_last_of(u".,");
    if (last == std::u16string_view::npos) return mantissa.size();
    const char16_t other = mantissa[last] == u'.' ? u',' : u'.';
    const bool isAlone = mantissa.find(mantissa[last]) == last;
    const bool hasOther = mantissa.find(other) != std::u16string_view::npos;
    return isAlone || hasOther ? last : mantissa.size();
}

// The decimal number as plain ASCII for std::from_chars.
class PlainText {
public:
    // False if the integer part is not well grouped.
    bool AppendIntegerPart(std::u16string_view part);
    // False if anything but digits is in there.
    bool AppendFraction(std::u16string_view part);

    bool HasDigits() const { return fHasDigits; }
    std::optional<double> Value(int exponent);

private:
    void AppendDigits(std::u16string_view digits) {
        for (const char16_t digit : digits)
            Append(static_cast<char>(digit));
        fHasDigits = fHasDigits || !digits.empty();
    }
    void Append(char c) {
        if (fLength < fCharacters.size()) fCharacters[fLength++] = c;
    }

    std::array<char, 128> fCharacters{};
    std::size_t fLength = 0;
    bool fHasDigits = false;
};

bool PlainText::AppendIntegerPart(std::u16string_view part) {
    std::size_t count = LeadingDigits(part);
    AppendDigits(part.substr(0, count));
    part.remove_prefix(count);
    if (part.empty()) return true;
    if (count == 0 || count > kGroupDigits) return false;

    const char16_t separator = part.front();
    while (!part.empty()) {
        if (part.front() != separator || LeadingDigits(part.substr(1)) != kGroupDigits) return false;
        AppendDigits(part.substr(1, kGroupDigits));
        part.remove_prefix(1 + kGroupDigits);
    }
    return true;
}

bool PlainText::AppendFraction(std::u16string_view part) {
    if (LeadingDigits(part) != part.size()) return false;
    Append('.');
    AppendDigits(part);
    return true;
}

std::optional<double> PlainText::Value(int exponent) {
    constexpr std::size_t kExponentRoom = 16;
    if (fLength + kExponentRoom > fCharacters.size()) return std::nullopt;
    Append('e');
    char* const end = fCharacters.data() + fCharacters.size();
    const char* const stop = std::to_chars(fCharacters.data() + fLength, end, exponent).ptr;
    double value = 0;
    if (std::from_chars(fCharacters.data(), stop, value).ec != std::errc()) return std::nullopt;
    return value;
}

// Takes "e", a sign and digits off the front; 0 if the text does not go on so, nothing if the power is absurd.
std::optional<int> TakeExponent(std::u16string_view& text) {
    constexpr std::size_t kMostDigits = 3;
    if (text.empty() || Lower(text.front()) != u'e') return 0;
    std::u16string_view rest = text.substr(1);
    const bool isNegative = TakeSign(rest);
    const std::size_t count = LeadingDigits(rest);
    if (count == 0) return 0;
    if (count > kMostDigits) return std::nullopt;

    int power = 0;
    for (const char16_t digit : rest.substr(0, count))
        power = power * 10 + (digit - u'0');
    text = rest.substr(count);
    return isNegative ? -power : power;
}

// The power of ten that the text behind a number stands for; empty if that text is neither a multiplier nor the unit.
std::optional<int> PowerOfSuffix(std::u16string_view suffix, std::u16string_view unit) {
    if (suffix.empty() || EqualsIgnoringCase(suffix, unit)) return 0;
    const char16_t letter = suffix.front();
    const bool isKilo = Lower(letter) == u'k';
    if (!isKilo && letter != u'M') return std::nullopt;
    if (!unit.empty() && Lower(unit.front()) == Lower(letter)) {
        // "8k" where the unit is "kHz"
        return suffix.size() == 1 && (isKilo || unit.front() == letter) ? std::optional(0) : std::nullopt;
    }
    const std::u16string_view behind = Trimmed(suffix.substr(1));
    if (!behind.empty() && !EqualsIgnoringCase(behind, unit)) return std::nullopt;
    return isKilo ? 3 : 6;
}

// Takes the number off the front and multiplies it by what the suffix says.
std::optional<double> ReadMagnitude(std::u16string_view text, std::u16string_view unit) {
    if (TakeInfinity(text)) {
        if (!PowerOfSuffix(Trimmed(text), unit)) return std::nullopt;
        return std::numeric_limits<double>::infinity();
    }
    const std::u16string_view mantissa = TakeMantissa(text);
    const std::size_t point = FindDecimalPoint(mantissa);
    PlainText plain;
    if (!plain.AppendIntegerPart(mantissa.substr(0, point))) return std::nullopt;
    if (point < mantissa.size() && !plain.AppendFraction(mantissa.substr(point + 1))) return std::nullopt;
    if (!plain.HasDigits()) return std::nullopt;

    const std::optional<int> exponent = TakeExponent(text);
    const std::optional<int> power = PowerOfSuffix(Trimmed(text), unit);
    if (!exponent || !power) return std::nullopt;
    return plain.Value(*exponent + *power);
}

} // namespace

std::optional<double> ParseTypedNumber(std::u16string_view text, std::u16string_view unit) {
    text = Trimmed(text);
    const bool isNegative = TakeSign(text);
    SkipSpaces(text);
    const std::optional<double> magnitude = ReadMagnitude(text, Trimmed(unit));
    if (!magnitude) return std::nullopt;
    return isNegative && *magnitude != 0 ? -*magnitude : *magnitude;
}

} // namespace krocore
