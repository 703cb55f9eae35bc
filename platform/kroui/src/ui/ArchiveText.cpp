#include "ArchiveText.h"

#include "ArchiveFormat.h"

#include "krocore/String.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace kroui::ui {

namespace {

constexpr int kMostDecimals = 6;

// Doubles outside of this are written with an exponent.
constexpr double kSmallestPlainDouble = 1e-6;
constexpr double kLargestPlainDouble = 1e15;
constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kReplacementCharacter = "\xEF\xBF\xBD";

template <class Number>
Number Finite(Number value) {
    if (std::isnan(value)) return 0;
    constexpr auto kLargest = std::numeric_limits<Number>::max();
    return std::clamp(value, -kLargest, kLargest) + Number{0}; // adding 0 turns -0 into 0
}

std::size_t DecimalsOf(std::string_view text) {
    const auto point = text.find('.');
    return point == text.npos ? 0 : text.size() - point - 1;
}

std::string_view WithoutTrailingZeros(std::string_view text) {
    if (DecimalsOf(text) == 0) return text;
    text = text.substr(0, text.find_last_not_of('0') + 1);
    if (text.ends_with('.')) text.remove_suffix(1);
    return text == "-0" ? "0" : text;
}

bool IsASCII(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

} // namespace

ArchiveText::ArchiveText() {
    fText = "<?xml version='1.0'?>";
    EndLine();
}

void ArchiveText::Open(std::string_view element, std::string_view attributes) {
    BeginLine();
    fText.append("<").append(element).append(attributes).append(">");
    EndLine();
    ++fLevel;
}

void ArchiveText::Close(std::string_view element) {
    --fLevel;
    BeginLine();
    fText.append("</").append(element).append(">");
    EndLine();
}

void ArchiveText::Text(std::string_view element, std::string_view text) {
    if (text.empty()) {
        Empty(element);
        return;
    }
    BeginLine();
    fText.append("<").append(element).append(">");
    if (IsASCII(text)) {
        AppendEscaped(text);
    } else {
        AppendEscaped(krocore::ToUTF8(krocore::ToUTF16(text))); // malformed parts become well-formed
    }
    fText.append("</").append(element).append(">");
    EndLine();
}

void ArchiveText::Empty(std::string_view element) {
    BeginLine();
    fText.append("<").append(element).append("/>");
    EndLine();
}

void ArchiveText::Int(std::int32_t value) {
    Line(format::kInt, " type='signed' size='32'", std::to_string(value));
}

void ArchiveText::Unsigned(std::uint32_t value) {
    Line(format::kInt, " type='unsigned' size='32'", std::to_string(value));
}

void ArchiveText::Float(float value) {
    char buffer[128]; // the smallest float has 46 digits, the largest 39
    value = Finite(value);
    auto end = std::to_chars(buffer, std::end(buffer), value, std::chars_format::fixed).ptr;
    if (DecimalsOf({buffer, end}) > kMostDecimals) {
        end = std::to_chars(buffer, std::end(buffer), value, std::chars_format::fixed, kMostDecimals).ptr;
    }
    Line(format::kFloat, {}, WithoutTrailingZeros({buffer, end}));
}

void ArchiveText::Double(double value) {
    char buffer[64];
    value = Finite(value);
    const auto magnitude = std::abs(value);
    const bool isPlain = magnitude == 0 || (magnitude >= kSmallestPlainDouble && magnitude < kLargestPlainDouble);
    const auto notation = isPlain ? std::chars_format::fixed : std::chars_format::scientific;
    Line(format::kDouble, {}, {buffer, std::to_chars(buffer, std::end(buffer), value, notation).ptr});
}

void ArchiveText::BeginLine() {
    fText.append(fLevel, '\t');
}

void ArchiveText::EndLine() {
    fText.append(kLineEnd);
}

void ArchiveText::Line(std::string_view element, std::string_view attributes, std::string_view plainText) {
    BeginLine();
    fText.append("<").append(element).append(attributes).append(">").append(plainText);
    fText.append("</").append(element).append(">");
    EndLine();
}

void ArchiveText::AppendEscaped(std::string_view text) {
    for (const auto c : text) {
        AppendEscapedCharacter(c);
    }
}

void ArchiveText::AppendEscapedCharacter(char c) {
    switch (c) {
    case '&': fText.append("&amp;"); return;
    case '<': fText.append("&lt;"); return;
    case '>': fText.append("&gt;"); return;
    case '\n': fText.append("&#10;"); return;
    case '\r': fText.append("&#13;"); return;
    default: break;
    }
    // XML has no way to write the other control characters.
    const bool isControl = static_cast<unsigned char>(c) < ' ' && c != '\t';
    if (isControl) {
        fText.append(kReplacementCharacter);
    } else {
        fText.push_back(c);
    }
}

} // namespace kroui::ui
