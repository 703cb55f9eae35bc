#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kroui::ui {

// Composes the text of an archive: an element a line, ended by CR LF and indented by one tab a level, attribute values
// in single quotes.
class ArchiveText {
public:
    ArchiveText();

    void Open(std::string_view element, std::string_view attributes = {});
    void Close(std::string_view element);
    // An element with a text; self-closed when the text is empty.
    void Text(std::string_view element, std::string_view text);
    void Empty(std::string_view element);
    void Int(std::int32_t value);
    void Unsigned(std::uint32_t value);
    // Shortest decimal form with at most six decimals. What is not finite is written as the nearest number that is.
    void Float(float value);
    // Shortest form that reads back as the same number; with an exponent only if it is very small or large.
    void Double(double value);

    std::string Take() { return std::move(fText); }

private:
    void BeginLine();
    void EndLine();
    void Line(std::string_view element, std::string_view attributes, std::string_view plainText);
    void AppendEscaped(std::string_view text);
    void AppendEscapedCharacter(char c);

    std::string fText;
    std::size_t fLevel = 0;
};

} // namespace kroui::ui
