#include "sheet_script.h"

#include "orrin/expression_parser.h"

#include <algorithm>
#include <array>

namespace orrin {

namespace {

constexpr std::array kKinds{cell_kind_t::constant, cell_kind_t::input,     cell_kind_t::interface,
                            cell_kind_t::logic,    cell_kind_t::invariant, cell_kind_t::output};

class parser_t {
public:
    parser_t(std::string_view text, std::string scriptName) : fReader(text, std::move(scriptName)) {}

    sheet_script_t parse() {
        fScript.source = fReader.source();
        if (!fReader.at_end()) sheet();
        return std::move(fScript);
    }

private:
    void sheet() {
        fReader.expect_word("sheet");
        fScript.name = fReader.expect_name("a name for the sheet");
        fReader.expect(token_kind_t::brace_open, "in front of the sheet's sections");
        while (!fReader.accept(token_kind_t::brace_close))
            section();
        if (!fReader.at_end()) fReader.fail_expected("the end of the script behind the sheet");
    }

    bool at_section() {
        return fReader.peek(1).kind == token_kind_t::colon &&
               std::ranges::any_of(kKinds, [this](cell_kind_t kind) { return fReader.at_word(cell_kind_name(kind)); });
    }

    void section() {
        if (!at_section())
            fReader.fail_expected(
                "a section (\"constant:\", \"input:\", \"interface:\", \"logic:\", \"invariant:\" or \"output:\")");
        const std::string_view word = fReader.next().text;
        fReader.next();
        fKind = *std::ranges::find(kKinds, word, cell_kind_name);
        while (!fReader.at(token_kind_t::brace_close) && !at_section())
            declaration();
    }

    void declaration() {
        switch (fKind) {
        case cell_kind_t::constant: return constant();
        case cell_kind_t::input: return input();
        case cell_kind_t::interface: return interface();
        case cell_kind_t::logic: return logic();
        case cell_kind_t::invariant:
        case cell_kind_t::output: return defined_cells();
        }
    }

    void constant() {
        sheet_script_t::cell_t& cell = new_cell();
        fReader.expect(token_kind_t::colon, "behind the name of the constant");
        initialiser(cell);
        end_of_declaration();
    }

    void input() {
        sheet_script_t::cell_t& cell = new_cell();
        if (fReader.accept(token_kind_t::colon)) initialiser(cell);
        end_of_declaration();
    }

    void interface() {
        const bool unlink = fReader.at_word("unlink") && fReader.peek(1).kind == token_kind_t::identifier;
        if (unlink) fReader.next();
        sheet_script_t::cell_t& cell = new_cell();
        cell.linked = !unlink;
        if (fReader.accept(token_kind_t::colon)) initialiser(cell);
        if (fReader.accept(token_kind_t::defined_by)) definition({{cell.name, cell.offset}});
        end_of_declaration();
    }

    void logic() {
        const token_kind_t following = fReader.peek(1).kind;
        if (fReader.at_word("relate") && following == token_kind_t::brace_open) return relate(kNone);
        if (fReader.at_word("when") && following == token_kind_t::parenthesis_open) return conditional();
        defined_cells();
    }

    void defined_cells() {
        std::vector<sheet_script_t::target_t> targets;
        do {
            const sheet_script_t::cell_t& cell = new_cell();
            targets.push_back({cell.name, cell.offset});
        } while (fReader.accept(token_kind_t::comma));
        fReader.expect(token_kind_t::defined_by, "behind the name of the cell");
        definition(std::move(targets));
        end_of_declaration();
    }

    void conditional() {
        fReader.next();
        fReader.next();
        fScript.conditions.push_back(parse_expression(fReader));
        fReader.expect(token_kind_t::parenthesis_close, "behind the condition");
        if (!fReader.at_word("relate")) fReader.fail_expected("\"relate\" behind the condition");
        relate(static_cast<index_t>(fScript.conditions.size() - 1));
    }

    void relate(index_t condition) {
        sheet_script_t::relation_t relation;
        relation.condition = condition;
        relation.offset = fReader.next().offset;
        fReader.expect(token_kind_t::brace_open, "behind \"relate\"");
        do
            relation.clauses.push_back(clause());
        while (!fReader.accept(token_kind_t::brace_close));
        fScript.relations.push_back(std::move(relation));
    }

    sheet_script_t::clause_t clause() {
        sheet_script_t::clause_t clause;
        do {
            const std::uint32_t offset = fReader.peek().offset;
            clause.targets.push_back({fReader.expect_name("the name of a cell"), offset});
        } while (fReader.accept(token_kind_t::comma));
        fReader.expect(token_kind_t::defined_by, "behind the name of the cell");
        clause.expression = parse_expression(fReader);
        end_of_declaration();
        return clause;
    }

    sheet_script_t::cell_t& new_cell() {
        const token_t token = fReader.peek();
        if (token.text == "true" || token.text == "false" || token.text == "empty")
            if (token.kind == token_kind_t::identifier) fReader.fail_expected("the name of a cell");
        sheet_script_t::cell_t cell;
        cell.name = fReader.expect_name("the name of a cell");
        cell.kind = fKind;
        cell.offset = token.offset;
        return fScript.cells.emplace_back(cell);
    }

    void initialiser(sheet_script_t::cell_t& cell) {
        cell.initialiser = static_cast<index_t>(fScript.initialisers.size());
        fScript.initialisers.push_back(parse_expression(fReader));
    }

    void definition(std::vector<sheet_script_t::target_t> targets) {
        sheet_script_t::relation_t relation;
        relation.offset = targets.front().offset;
        relation.isDefinition = true;
        relation.clauses.push_back({std::move(targets), parse_expression(fReader)});
        fScript.relations.push_back(std::move(relation));
    }

    void end_of_declaration() { fReader.expect(token_kind_t::semicolon, "behind the expression"); }

    token_reader_t fReader;
    sheet_script_t fScript;
    cell_kind_t fKind = cell_kind_t::constant;
};

} // namespace

sheet_script_t parse_sheet_script(std::string_view text, std::string scriptName) {
    return parser_t(text, std::move(scriptName)).parse();
}

} // namespace orrin
