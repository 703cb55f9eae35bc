#include "krocore/String.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace krocore {
namespace {

constexpr char32_t kReplacementCharacter = 0xFFFD;

constexpr std::uint8_t Byte(char c) {
    return static_cast<std::uint8_t>(c);
}
constexpr bool IsAscii(char c) {
    return Byte(c) < 0x80;
}
constexpr bool IsHighSurrogate(char32_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}
constexpr bool IsLowSurrogate(char32_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

constexpr char LowerAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

// What may follow a lead byte: the number of continuation bytes and the range of the first of them
// (The Unicode Standard, table 3-7, "Well-Formed UTF-8 Byte Sequences").
struct SequenceForm {
    int continuations;
    std::uint8_t lowest;
    std::uint8_t highest;
};

SequenceForm FormOf(std::uint8_t lead) {
    if (lead < 0xC2 || lead > 0xF4) return {0, 0, 0};
    if (lead < 0xE0) return {1, 0x80, 0xBF};
    if (lead < 0xF0) {
        return {2, static_cast<std::uint8_t>(lead == 0xE0 ? 0xA0 : 0x80),
                static_cast<std::uint8_t>(lead == 0xED ? 0x9F : 0xBF)};
    }
    return {3, static_cast<std::uint8_t>(lead == 0xF0 ? 0x90 : 0x80),
            static_cast<std::uint8_t>(lead == 0xF4 ? 0x8F : 0xBF)};
}

// Takes one code point that is not ASCII off the front; a maximal ill-formed part counts as one replacement character.
char32_t TakeCodePoint(std::string_view& utf8) {
    const std::uint8_t lead = Byte(utf8.front());
    utf8.remove_prefix(1);
    SequenceForm form = FormOf(lead);
    if (form.continuations == 0) return kReplacementCharacter;

    char32_t codePoint = lead & (0x3F >> form.continuations);
    for (; form.continuations > 0; --form.continuations) {
        if (utf8.empty() || Byte(utf8.front()) < form.lowest || Byte(utf8.front()) > form.highest) {
            return kReplacementCharacter;
        }
        codePoint = codePoint << 6 | (Byte(utf8.front()) & 0x3F);
        utf8.remove_prefix(1);
        form.lowest = 0x80;
        form.highest = 0xBF;
    }
    return codePoint;
}

char16_t* PutUTF16(char16_t* out, char32_t codePoint) {
    if (codePoint >= 0x10000) {
        *out++ = static_cast<char16_t>(0xD800 + ((codePoint - 0x10000) >> 10));
        codePoint = 0xDC00 + ((codePoint - 0x10000) & 0x3FF);
    }
    *out++ = static_cast<char16_t>(codePoint);
    return out;
}

// Takes one code point off the front; a surrogate without its partner counts as one replacement character.
char32_t TakeCodePoint(std::u16string_view& utf16) {
    const char32_t unit = utf16.front();
    utf16.remove_prefix(1);
    if (IsHighSurrogate(unit) && !utf16.empty() && IsLowSurrogate(utf16.front())) {
        const char32_t low = utf16.front();
        utf16.remove_prefix(1);
        return 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
    }
    return IsHighSurrogate(unit) || IsLowSurrogate(unit) ? kReplacementCharacter : unit;
}

char* PutUTF8(char* out, char32_t codePoint) {
    const auto put = [&out](char32_t byte) { *out++ = static_cast<char>(byte); };
    if (codePoint < 0x80) {
        put(codePoint);
    } else if (codePoint < 0x800) {
        put(0xC0 | codePoint >> 6);
    } else if (codePoint < 0x10000) {
        put(0xE0 | codePoint >> 12);
        put(0x80 | (codePoint >> 6 & 0x3F));
    } else {
        put(0xF0 | codePoint >> 18);
        put(0x80 | (codePoint >> 12 & 0x3F));
        put(0x80 | (codePoint >> 6 & 0x3F));
    }
    if (codePoint >= 0x80) put(0x80 | (codePoint & 0x3F));
    return out;
}

// The number of ASCII characters at the front; looks at eight at a time.
std::size_t LeadingAscii(std::string_view text) {
    constexpr std::uint64_t kHighBits = 0x8080808080808080;
    std::size_t count = 0;
    for (std::uint64_t eight = 0; count + sizeof eight <= text.size(); count += sizeof eight) {
        std::memcpy(&eight, text.data() + count, sizeof eight);
        if ((eight & kHighBits) != 0) break;
    }
    while (count < text.size() && IsAscii(text[count]))
        ++count;
    return count;
}

template <class Result>
Result Encode(std::u16string_view utf16) {
    constexpr std::size_t kMostBytesPerUnit = 3;
    if (std::all_of(utf16.begin(), utf16.end(), [](char16_t unit) { return unit < 0x80; })) {
        Result ascii(utf16.size(), '\0');
        std::transform(utf16.begin(), utf16.end(), ascii.begin(),
                       [](char16_t unit) { return static_cast<char>(unit); });
        return ascii;
    }
    Result result(utf16.size() * kMostBytesPerUnit, '\0');
    char* out = result.data();
    while (!utf16.empty())
        out = PutUTF8(out, TakeCodePoint(utf16));
    result.resize(static_cast<std::size_t>(out - result.data()));
    return result;
}

} // namespace

string16 ToUTF16(std::string_view utf8) {
    const std::size_t asciiCount = LeadingAscii(utf8);
    if (asciiCount == utf8.size()) return {utf8.begin(), utf8.end()};

    string16 result(utf8.size(), u'\0'); // a sequence never has more UTF-16 units than UTF-8 bytes
    char16_t* out = std::copy_n(utf8.begin(), asciiCount, result.data());
    utf8.remove_prefix(asciiCount);
    while (!utf8.empty()) {
        if (IsAscii(utf8.front())) {
            *out++ = Byte(utf8.front());
            utf8.remove_prefix(1);
        } else {
            out = PutUTF16(out, TakeCodePoint(utf8));
        }
    }
    result.resize(static_cast<std::size_t>(out - result.data()));
    return result;
}

string8 ToUTF8(std::u16string_view utf16) {
    return Encode<string8>(utf16);
}

std::string ToStdString(std::u16string_view utf16) {
    return Encode<std::string>(utf16);
}

string16 FromASCII(std::string_view ascii) {
    string16 result(ascii.size(), u'\0');
    std::transform(ascii.begin(), ascii.end(), result.begin(),
                   [](char c) { return IsAscii(c) ? char16_t{Byte(c)} : char16_t{kReplacementCharacter}; });
    return result;
}

bool EqualsIgnoringCase(std::string_view a, std::string_view b) noexcept {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char left, char right) { return LowerAscii(left) == LowerAscii(right); });
}

} // namespace krocore
