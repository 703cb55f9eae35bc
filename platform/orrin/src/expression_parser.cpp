#include "orrin/expression_parser.h"

#include "expression_compiler.h"
#include "list_parser.h"

namespace orrin {

expression_t parse_expression(token_reader_t& reader) {
    return expression_compiler_t(reader).compile();
}

expression_t parse_expression(std::string_view text, std::string scriptName) {
    token_reader_t reader(text, std::move(scriptName));
    expression_t expression = parse_expression(reader);
    if (!reader.at_end()) reader.fail_expected("the end of the expression");
    return expression;
}

vector<named_expression_t> parse_named_expressions(token_reader_t& reader, token_kind_t close) {
    vector<named_expression_t> result;
    vector<key_t> keys;
    parse_list(reader, close, [&] {
        keys.push_back(parse_key(reader));
        result.push_back({keys.back().name, keys.back().offset, parse_expression(reader)});
    });
    check_unique(reader, keys);
    return result;
}

std::string parse_string(token_reader_t& reader) {
    std::string text(reader.expect(token_kind_t::string).text);
    while (reader.at(token_kind_t::string))
        text += reader.next().text;
    return text;
}

} // namespace orrin
