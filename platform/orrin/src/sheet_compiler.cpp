#include "sheet_program.h"

#include "orrin/core_functions.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace orrin {

namespace {

std::string place(position_t position) {
    return std::to_string(position.line) + ":" + std::to_string(position.column);
}

class compiler_t {
public:
    compiler_t(sheet_script_t script, const known_variable_t& known) : fScript(std::move(script)), fKnown(known) {}

    sheet_program_t compile() {
        fProgram.name = fScript.name;
        fProgram.source = fScript.source;
        declare_cells();
        bind_initialisers();
        for (expression_t& condition : fScript.conditions)
            bind_condition(condition);
        for (sheet_script_t::relation_t& relation : fScript.relations)
            bind_relation(relation);
        index_readers();
        order_sheet(fProgram);
        check_initialisers();
        warn();
        return std::move(fProgram);
    }

private:
    using cell_t = sheet_program_t::cell_t;

    [[noreturn]] void fail(std::uint32_t offset, std::string message) const {
        throw fProgram.error(offset, std::move(message));
    }

    void declare_cells() {
        fProgram.cellsByName = name_index_t(fScript.cells.size());
        fProgram.cells.reserve(fScript.cells.size());
        fWrittenBy.assign(fScript.cells.size(), kNone);
        for (const sheet_script_t::cell_t& declared : fScript.cells) {
            const auto number = static_cast<index_t>(fProgram.cells.size());
            const index_t known = fProgram.cellsByName.add(declared.name, number);
            if (known != number)
                fail(declared.offset, "cell " + fProgram.quoted(known) + " exists already, see " +
                                          place(fProgram.source->position(fProgram.cells[known].offset)));
            cell_t cell;
            cell.name = declared.name;
            cell.kind = declared.kind;
            cell.linked = declared.linked;
            cell.offset = declared.offset;
            fProgram.cells.push_back(cell);
        }
    }

    // The expression's number. `cell` is the one that it computes, `self` the one whose name means its contributed
    // value; `initial`: interface cells are read as contributed.
    index_t bind(expression_t& code, index_t cell, index_t self, bool initial) {
        const auto number = static_cast<index_t>(fProgram.expressions.size());
        range_t variables{static_cast<index_t>(fProgram.variables.size()), 0};
        for (const name_t name : code.variables()) {
            const index_t read = fProgram.cellsByName.find(name);
            if (read == kNone && !fKnown(name))
                fail(variable_offset(code, name), "there is no cell " + in_quotes(name.text()));
            const bool contributed =
                read != kNone && (read == self || (initial && fProgram.cells[read].kind == cell_kind_t::interface));
            fProgram.variables.push_back({read, contributed});
        }
        variables.end = static_cast<index_t>(fProgram.variables.size());
        const bool callsHost = calls_host(code);
        if (callsHost) fProgram.callers.push_back(number);
        fProgram.expressions.push_back({std::move(code), variables, cell, callsHost});
        return number;
    }

    static std::uint32_t variable_offset(const expression_t& code, name_t name) {
        for (const instruction_t& instruction : code.code())
            if (instruction.operation == operation_t::push_variable && code.variables()[instruction.operand] == name)
                return instruction.offset;
        return code.offset();
    }

    std::uint32_t variable_offset(index_t expression, index_t cell) const {
        return variable_offset(fProgram.expressions[expression].code, fProgram.cells[cell].name);
    }

    void bind_initialisers() {
        for (index_t cell = 0; cell < fProgram.cells.size(); ++cell) {
            const index_t initialiser = fScript.cells[cell].initialiser;
            if (initialiser != kNone)
                fProgram.cells[cell].initialiser = bind(fScript.initialisers[initialiser], cell, kNone, true);
        }
    }

    void bind_condition(expression_t& condition) {
        fProgram.conditions.push_back(bind(condition, kNone, kNone, false));
    }

    void bind_relation(sheet_script_t::relation_t& declared) {
        const auto number = static_cast<index_t>(fProgram.relations.size());
        sheet_program_t::relation_t relation;
        relation.condition = declared.condition;
        relation.offset = declared.offset;
        relation.isDefinition = declared.isDefinition;
        relation.clauses.begin = static_cast<index_t>(fProgram.clauses.size());
        for (sheet_script_t::clause_t& clause : declared.clauses)
            bind_clause(clause, number, declared.isDefinition);
        relation.clauses.end = static_cast<index_t>(fProgram.clauses.size());
        fProgram.relations.push_back(relation);
    }

    void bind_clause(sheet_script_t::clause_t& declared, index_t relation, bool isDefinition) {
        const auto number = static_cast<index_t>(fProgram.clauses.size());
        sheet_program_t::clause_t clause;
        clause.relation = relation;
        clause.targets.begin = static_cast<index_t>(fProgram.targets.size());
        for (const sheet_script_t::target_t& target : declared.targets)
            fProgram.targets.push_back(find_target(target, number, isDefinition));
        clause.targets.end = static_cast<index_t>(fProgram.targets.size());

        const index_t first = fProgram.targets[clause.targets.begin];
        const bool hasContributed = isDefinition && fProgram.cells[first].kind == cell_kind_t::interface;
        clause.expression = bind(declared.expression, first, hasContributed ? first : kNone, false);
        check_reads_no_target(clause.expression, number);
        fProgram.clauses.push_back(clause);
    }

    index_t find_target(const sheet_script_t::target_t& target, index_t clause, bool isDefinition) {
        const index_t cell = fProgram.cellsByName.find(target.name);
        if (cell == kNone) fail(target.offset, "there is no cell " + in_quotes(target.name.text()));
        const cell_kind_t kind = fProgram.cells[cell].kind;
        if (!isDefinition && kind != cell_kind_t::interface)
            fail(target.offset, "a relation can write interface cells only, " + fProgram.quoted(cell) + " is in \"" +
                                    std::string(cell_kind_name(kind)) + ":\"");
        if (fWrittenBy[cell] == clause) fail(target.offset, "the clause writes " + fProgram.quoted(cell) + " twice");
        fWrittenBy[cell] = clause;
        return cell;
    }

    void check_reads_no_target(index_t expression, index_t clause) const {
        for (const auto& variable : fProgram.expressions[expression].variables.of(fProgram.variables))
            if (variable.cell != kNone && !variable.contributed && fWrittenBy[variable.cell] == clause)
                fail(variable_offset(expression, variable.cell),
                     fProgram.quoted(variable.cell) + " is computed from itself");
    }

    void index_readers() {
        std::vector<adjacency_t::pair_t> value;
        std::vector<adjacency_t::pair_t> contributed;
        for (index_t expression = 0; expression < fProgram.expressions.size(); ++expression)
            for (const auto& variable : fProgram.expressions[expression].variables.of(fProgram.variables))
                if (variable.cell != kNone)
                    (variable.contributed ? contributed : value).emplace_back(variable.cell, expression);
        fProgram.valueReaders = adjacency_t(fProgram.cells.size(), value);
        fProgram.contributedReaders = adjacency_t(fProgram.cells.size(), contributed);
    }

    void check_initialisers() const {
        std::vector<char> fromInputs(fProgram.cells.size(), false);
        for (const index_t clause : fProgram.inputClauses)
            for (const index_t target : fProgram.clauses[clause].targets.of(fProgram.targets))
                fromInputs[target] = true;
        for (index_t cell = 0; cell < fProgram.cells.size(); ++cell) {
            const index_t initialiser = fProgram.cells[cell].initialiser;
            if (initialiser == kNone) continue;
            for (const auto& variable : fProgram.expressions[initialiser].variables.of(fProgram.variables))
                if (variable.cell != kNone) check_initial_read(cell, variable.cell, fromInputs[variable.cell]);
        }
    }

    // Initialisers run in three groups, constants, inputs, interface cells, each in the order of declaration.
    void check_initial_read(index_t cell, index_t read, bool fromInputs) const {
        const cell_t& reader = fProgram.cells[cell];
        const cell_t& source = fProgram.cells[read];
        const std::uint32_t offset = variable_offset(reader.initialiser, read);
        const std::string is = fProgram.quoted(read) + " is ";
        if (source.kind <= cell_kind_t::interface) {
            if (source.kind > reader.kind)
                fail(offset, is + "in \"" + std::string(cell_kind_name(source.kind)) +
                                 ":\", which has no values yet when \"" + std::string(cell_kind_name(reader.kind)) +
                                 ":\" is initialised");
            if (source.kind == reader.kind && read >= cell && source.initialiser != kNone)
                fail(offset, read == cell ? is + "initialised from itself" : is + "initialised later, move it up");
        } else if (reader.kind != cell_kind_t::interface || !fromInputs) {
            fail(offset, is + "computed later than " + fProgram.quoted(cell) +
                             " is initialised: an initialiser reads constants, inputs, interface cells above it, and "
                             "what is computed from constants and inputs alone");
        }
    }

    void warn() {
        std::vector<char> written(fProgram.cells.size(), false);
        for (const index_t target : fProgram.targets)
            written[target] = true;
        for (index_t cell = 0; cell < fProgram.cells.size(); ++cell) {
            const cell_t& declared = fProgram.cells[cell];
            if (declared.kind == cell_kind_t::interface && declared.initialiser == kNone && !written[cell])
                fProgram.warnings.push_back(
                    fProgram.error(declared.offset, "interface cell " + fProgram.quoted(cell) +
                                                        " is never initialised and never written"));
        }
    }

    sheet_script_t fScript;
    const known_variable_t& fKnown;
    sheet_program_t fProgram;
    std::vector<index_t> fWrittenBy; // the last clause read that writes the cell
};

} // namespace

bool sheet_program_t::is_computed(index_t cell) const {
    return std::ranges::any_of(clauses, [&](const clause_t& clause) {
        if (!relations[clause.relation].isDefinition) return false;
        const auto writes = clause.targets.of(targets);
        const auto reads = expressions[clause.expression].variables.of(variables);
        return std::ranges::find(writes, cell) != writes.end() &&
               std::ranges::none_of(reads, [&](const variable_t& read) { return read.cell == cell; });
    });
}

sheet_program_t compile_sheet(sheet_script_t script, const known_variable_t& known) {
    return compiler_t(std::move(script), known).compile();
}

} // namespace orrin
