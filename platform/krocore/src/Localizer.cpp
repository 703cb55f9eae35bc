#include "krocore/Localizer.h"

#include "krocore/FilePath.h"
#include "krocore/config/Error.h"

#include <array>
#include <cstdint>
#include <fstream>
#include <span>
#include <system_error>
#include <utility>

namespace krocore {
namespace {

constexpr std::string_view kKeyMark = "$$$/";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// Escapes and what they stand for, in UTF-8.
constexpr std::array<std::pair<std::string_view, std::string_view>, 4> kEscapes{{
    {"#{cubed}", "\xC2\xB3"},
    {"#{deg}", "\xC2\xB0"},
    {"#{endl}", "\n"},
    {"#{hash}", "#"},
}};

// A key or a dictionary line cut at its first "=".
struct KeyParts {
    std::string_view name;
    std::string_view text;
    bool hasText;
};

KeyParts SplitKey(std::string_view key) {
    const std::size_t equals = key.find('=');
    if (equals == std::string_view::npos) return {key, {}, false};
    return {key.substr(0, equals), key.substr(equals + 1), true};
}

// Takes the escape off the front of the text and appends what it stands for; an unknown one loses only its "#".
void TakeEscape(std::string_view& text, string8& result) {
    for (const auto& [escape, meaning] : kEscapes) {
        if (text.starts_with(escape)) {
            result += meaning;
            return text.remove_prefix(escape.size());
        }
    }
    result += '#';
    text.remove_prefix(1);
}

string16 ExpandEscapes(std::string_view text) {
    std::size_t hash = text.find('#');
    if (hash == std::string_view::npos) return ToUTF16(text);

    string8 expanded;
    while (hash != std::string_view::npos) {
        expanded += text.substr(0, hash);
        text.remove_prefix(hash);
        TakeEscape(text, expanded);
        hash = text.find('#');
    }
    expanded += text;
    return ToUTF16(expanded);
}

string8 ExpandLineEnds(std::string_view text) {
    constexpr std::string_view kLineEnd = R"(\n)";
    string8 result;
    for (std::size_t at = text.find(kLineEnd); at != std::string_view::npos; at = text.find(kLineEnd)) {
        result += text.substr(0, at);
        result += '\n';
        text.remove_prefix(at + kLineEnd.size());
    }
    return result += text;
}

std::string_view TakeLine(std::string_view& text) {
    const std::size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    return line;
}

bool IsPassedOver(std::string_view line) {
    return line.starts_with("//") || line.find_first_not_of(" \t") == std::string_view::npos;
}

// Takes the "@" and, where it belongs to it, the character behind it off the front of the text.
void TakePlaceholder(std::u16string_view& text, std::span<const std::u16string_view> replacements, string16& result) {
    const char16_t next = text.size() > 1 ? text[1] : u'\0';
    const std::size_t index = next >= u'0' && next <= u'9' ? next - u'0' : replacements.size();
    const bool isReplaced = index < replacements.size();
    result += isReplaced ? replacements[index] : text.substr(0, 1);
    text.remove_prefix(isReplaced || next == u'@' ? 2 : 1);
}

[[noreturn]] void ThrowBadLine(std::string_view nameForMessages, int line) {
    throw config::Error(std::string(nameForMessages) + ":" + std::to_string(line) +
                        R"(: expected an entry like "$$$/Group/Entry=Text", an empty line or a comment ("//"))");
}

} // namespace

Localizer& Localizer::Get() {
    static Localizer sLocalizer;
    return sLocalizer;
}

string16 Localizer::Localize(std::string_view key) const {
    if (!key.starts_with(kKeyMark)) return ExpandEscapes(key);
    const KeyParts parts = SplitKey(key);
    if (!fEntries.empty()) {
        const auto found = fEntries.find(parts.name);
        if (found != fEntries.end()) return ExpandEscapes(found->second);
    }
    return ExpandEscapes(parts.hasText ? parts.text : key);
}

string16 Localizer::LocalizeReference(std::string_view reference) const {
    if (!reference.starts_with('(') || !reference.ends_with(')')) return ToUTF16(reference);
    const std::string_view inside = reference.substr(1, reference.size() - 2);
    return inside.starts_with(kKeyMark) ? Localize(inside) : ToUTF16(reference);
}

void Localizer::LoadDictionary(const std::filesystem::path& file) {
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(file, error);
    std::string text(error ? 0 : static_cast<std::size_t>(size), '\0');
    std::ifstream stream(file, std::ios::binary);
    if (error || !stream.read(text.data(), static_cast<std::streamsize>(text.size()))) {
        throw config::Error("Cannot read the dictionary \"" + PathText(file) + "\"");
    }
    LoadDictionaryText(text, PathText(file));
}

void Localizer::LoadDictionaryText(std::string_view text, std::string_view nameForMessages) {
    if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
    Entries entries;
    for (int number = 1; !text.empty(); ++number) {
        const std::string_view line = TakeLine(text);
        if (IsPassedOver(line)) continue;
        const KeyParts parts = SplitKey(line);
        if (!parts.hasText || !parts.name.starts_with(kKeyMark) || parts.name == kKeyMark) {
            ThrowBadLine(nameForMessages, number);
        }
        entries.insert_or_assign(std::string(parts.name), ExpandLineEnds(parts.text));
    }
    entries.merge(fEntries); // keeps the new text where both have the entry
    fEntries = std::move(entries);
}

void Localizer::Clear() {
    fEntries.clear();
}

string16 Localize(std::string_view key) {
    return Localizer::Get().Localize(key);
}

string16 ReplacePlaceholders(std::u16string_view text, std::initializer_list<std::u16string_view> replacements) {
    string16 result;
    for (std::size_t at = text.find(u'@'); at != std::u16string_view::npos; at = text.find(u'@')) {
        result += text.substr(0, at);
        text.remove_prefix(at);
        TakePlaceholder(text, {replacements.begin(), replacements.size()}, result);
    }
    return result += text;
}

} // namespace krocore
