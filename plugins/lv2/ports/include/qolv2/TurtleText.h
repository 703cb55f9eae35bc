#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qolv2 {

// The pieces of a description in Turtle (W3C, "RDF 1.1 Turtle", 2014).

// A literal: "text", quoted.
std::string TurtleText(std::string_view text);
// What a text begins with, behind spaces, when that is a literal; nothing for another thing, and without an end.
std::optional<std::string> ReadTurtleText(std::string_view text);
// A number as lilv and its kin take it: always a decimal, whatever the locale.
std::string TurtleNumber(double number);
std::string TurtleURI(std::string_view uri);

// Statements about one thing: "predicate object ; ...".
class TurtleStatements {
public:
    void Add(std::string_view predicate, std::string_view object);
    bool IsEmpty() const { return fLines.empty(); }
    // About a thing of its own: "<uri> ... .".
    std::string About(std::string_view subject) const;
    // About something without a name: "[ ... ]".
    std::string Nameless() const;

private:
    std::string Joined(std::string_view indent) const;

    std::vector<std::string> fLines;
};

} // namespace qolv2
