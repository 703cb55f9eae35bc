#include "TurtleText.h"

#include <fmt/format.h>

namespace qolv2 {

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
