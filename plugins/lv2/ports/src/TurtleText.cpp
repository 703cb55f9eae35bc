#include "qolv2/TurtleText.h"

#include "krocore/String.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cstdint>

namespace qolv2 {

namespace {

std::u16string InUTF16(std::uint32_t letter) {
    constexpr std::uint32_t kPlanes = 0x10000;
    if (letter < kPlanes) return {static_cast<char16_t>(letter)};
    const std::uint32_t rest = letter - kPlanes;
    return {static_cast<char16_t>(0xD800 + (rest >> 10U)), static_cast<char16_t>(0xDC00 + (rest & 0x3FFU))};
}

// Appends what stands behind a backslash, and returns how long that is.
std::size_t AppendEscaped(std::string_view escaped, std::string& text) {
    if (escaped.empty()) return 0;
    const std::size_t digits = escaped.front() == 'u' ? 4 : escaped.front() == 'U' ? 8 : 0;
    if (digits > 0 && escaped.size() > digits) {
        std::uint32_t letter = 0;
        std::from_chars(escaped.data() + 1, escaped.data() + 1 + digits, letter, 16);
        text += krocore::ToStdString(InUTF16(letter));
        return 1 + digits;
    }
    constexpr std::string_view kLetters = "tbnrf";
    constexpr std::string_view kMeant = "\t\b\n\r\f";
    const std::size_t known = kLetters.find(escaped.front());
    text += known != kLetters.npos ? kMeant[known] : escaped.front();
    return 1;
}

} // namespace

std::string TurtleText(std::string_view text) {
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') quoted += '\\';
        if (c == '\n')
            quoted += "\\n";
        else
            quoted += c;
    }
    return quoted + '"';
}

std::optional<std::string> ReadTurtleText(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
    const std::string_view quote = text.starts_with("\"\"\"") ? "\"\"\"" : "\"";
    if (!text.starts_with(quote)) return {};
    text.remove_prefix(quote.size());
    std::string read;
    while (!text.empty() && !text.starts_with(quote)) {
        if (text.front() == '\\')
            text.remove_prefix(AppendEscaped(text.substr(1), read) + 1);
        else {
            read += text.front();
            text.remove_prefix(1);
        }
    }
    if (text.empty()) return {};
    return read;
}

std::string TurtleNumber(double number) {
    std::string text = fmt::format("{:.9g}", number);
    if (text.find_first_of(".e") == text.npos) text += ".0";
    return text;
}

std::string TurtleURI(std::string_view uri) {
    return fmt::format("<{}>", uri);
}

void TurtleStatements::Add(std::string_view predicate, std::string_view object) {
    fLines.push_back(fmt::format("{} {}", predicate, object));
}

std::string TurtleStatements::About(std::string_view subject) const {
    return fmt::format("{}\n    {} .\n\n", subject, Joined("    "));
}

std::string TurtleStatements::Nameless() const {
    return fmt::format("[\n        {}\n    ]", Joined("        "));
}

std::string TurtleStatements::Joined(std::string_view indent) const {
    std::string text;
    for (const std::string& line : fLines)
        text += (text.empty() ? "" : fmt::format(" ;\n{}", indent)) + line;
    return text;
}

} // namespace qolv2
