#include "LioScript.h"

namespace krotarnlio {

using orrin::token_kind_t;
using orrin::token_reader_t;

namespace {

LioElement ParseElement(token_reader_t& reader);

std::vector<LioElement> ParseChildren(token_reader_t& reader) {
    std::vector<LioElement> children;
    while (!reader.accept(token_kind_t::brace_close))
        children.push_back(ParseElement(reader));
    return children;
}

// name(key: expression, ...) followed by ";" or by its children in braces.
LioElement ParseElement(token_reader_t& reader) {
    const token_reader_t::nesting_t nesting(reader);
    LioElement element;
    element.offset = reader.peek().offset;
    element.widget = reader.expect_name("a widget").text();
    reader.expect(token_kind_t::parenthesis_open, "behind the widget's name");
    element.attributes = orrin::parse_named_expressions(reader, token_kind_t::parenthesis_close);
    if (reader.accept(token_kind_t::brace_open))
        element.children = ParseChildren(reader);
    else
        reader.expect(token_kind_t::semicolon, "behind the widget");
    return element;
}

} // namespace

LioScript ParseLioText(std::string_view text, std::string scriptName) {
    token_reader_t reader(text, std::move(scriptName));
    LioScript script;
    script.source = reader.source();
    if (reader.at_end()) return script;
    reader.expect_word("layout");
    script.nameOffset = reader.peek().offset;
    script.name = reader.expect_name("the layout's name");
    reader.expect(token_kind_t::brace_open);
    reader.expect_word("view");
    script.view = ParseElement(reader);
    reader.expect(token_kind_t::brace_close, "behind the view");
    if (!reader.at_end()) reader.fail_expected("the end of the script");
    return script;
}

} // namespace krotarnlio
