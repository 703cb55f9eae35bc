#include "orrin/sheet.h"

#include "keyword_hint.h"
#include "sheet_engine.h"
#include "sheet_program.h"
#include "sheet_script.h"

#include "orrin/parse_cache.h"

#include <array>
#include <stdexcept>
#include <utility>

namespace orrin {

namespace {

std::shared_ptr<sheet_engine_t> empty_engine(virtual_machine_t& machine) {
    sheet_script_t script;
    script.source = std::make_shared<source_t>(std::string());
    return std::make_shared<sheet_engine_t>(compile_sheet(std::move(script), [](name_t) { return false; }), machine);
}

class flag_t {
public:
    explicit flag_t(bool& flag) : fFlag(flag) { fFlag = true; }
    ~flag_t() { fFlag = false; }
    flag_t(const flag_t&) = delete;
    flag_t& operator=(const flag_t&) = delete;

private:
    bool& fFlag;
};

} // namespace

std::string_view cell_kind_name(cell_kind_t kind) {
    static constexpr std::array<std::string_view, 6> kNames{"constant", "input",     "interface",
                                                            "logic",    "invariant", "output"};
    return kNames[static_cast<std::size_t>(kind)];
}

sheet_t::sheet_t() : fEngine(empty_engine(fMachine)) {
}

sheet_t::~sheet_t() {
    fEngine->stop();
}

void sheet_t::load(std::string_view script, const std::string& scriptName) {
    if (fLoading || fEngine->is_running()) throw std::logic_error("a sheet cannot be loaded while it updates");
    const flag_t loading(fLoading);
    sheet_program_t program = compile(script, scriptName);
    const auto engine = std::make_shared<sheet_engine_t>(std::move(program), fMachine);
    engine->start();
    engine->set_error_handler(fErrorHandler);
    fEngine->stop();
    fEngine = engine;
}

sheet_program_t sheet_t::compile(std::string_view script, const std::string& scriptName) const {
    static parse_cache_t<sheet_script_t> sParsed(parse_sheet_script);
    try {
        return compile_sheet(*sParsed.find(script, scriptName),
                             [this](name_t name) { return fMachine.knows_variable(name); });
    } catch (const error_t& error) {
        if (const auto cause = misspelt_keyword(script, scriptName, error.position())) throw error_t(*cause);
        throw;
    }
}

name_t sheet_t::name() const {
    return fEngine->program().name;
}

bool sheet_t::has_cell(name_t name) const {
    return fEngine->program().cellsByName.find(name) != kNone;
}

bool sheet_t::has_input(name_t name) const {
    return has_cell(name) && fEngine->program().cells[find(name)].kind == cell_kind_t::input;
}

bool sheet_t::has_output(name_t name) const {
    return has_cell(name) && fEngine->program().cells[find(name)].kind == cell_kind_t::output;
}

std::vector<cell_info_t> sheet_t::cells() const {
    std::vector<cell_info_t> infos;
    const sheet_program_t& program = fEngine->program();
    for (index_t number = 0; number < program.cells.size(); ++number) {
        const sheet_program_t::cell_t& cell = program.cells[number];
        infos.push_back({cell.name, cell.kind, cell.linked, cell.initialiser != kNone, program.is_computed(number),
                         program.source->position(cell.offset)});
    }
    return infos;
}

std::vector<clause_trial_t> sheet_t::try_other_clauses() const {
    return fEngine->try_other_clauses();
}

position_t sheet_t::position(name_t name) const {
    const sheet_program_t& program = fEngine->program();
    return program.source->position(program.cells[find(name)].offset);
}

std::vector<function_use_t> sheet_t::function_uses() const {
    std::vector<function_use_t> uses;
    for (const sheet_program_t::expression_of_t& expression : fEngine->program().expressions)
        for (const instruction_t& instruction : expression.code.code())
            if (instruction.operation == operation_t::call)
                uses.push_back({expression.code.functions()[instruction.operand],
                                fEngine->program().source->position(instruction.offset)});
    return uses;
}

const any_regular_t& sheet_t::get(name_t name) const {
    return fEngine->value(find(name));
}

const any_regular_t& sheet_t::contributed(name_t name) const {
    return fEngine->contributed(find(name));
}

void sheet_t::set(name_t name, any_regular_t value) {
    const index_t cell = find(name);
    const sheet_program_t& program = fEngine->program();
    if (!program.cells[cell].can_be_set())
        throw std::invalid_argument("cell " + program.quoted(cell) + " cannot be set, it is in \"" +
                                    std::string(cell_kind_name(program.cells[cell].kind)) + ":\"");
    fEngine->set(cell, std::move(value));
}

void sheet_t::touch(name_t name) {
    fEngine->touch(find(name));
}

void sheet_t::update() {
    fEngine->update();
}

void sheet_t::reinitialise() {
    fEngine->want_initial_values();
    fEngine->update();
}

void sheet_t::reinitialise(std::span<const given_input_t> given) {
    for (const given_input_t& input : given)
        fEngine->want_initial_values_of(find(input.name), input.told);
    fEngine->update();
}

void sheet_t::settle() {
    if (fEngine->settle()) fEngine->update();
}

boost::signals2::connection sheet_t::subscribe(name_t name, const slot_t& slot) {
    const std::shared_ptr<sheet_engine_t> engine = fEngine; // the slot may destroy the sheet
    return engine->subscribe(find(name), slot);
}

std::vector<error_t> sheet_t::errors() const {
    return fEngine->errors();
}

void sheet_t::set_error_handler(error_handler_t handler) {
    fErrorHandler = std::move(handler);
    fEngine->set_error_handler(fErrorHandler);
}

const std::vector<error_t>& sheet_t::warnings() const {
    return fEngine->program().warnings;
}

namespace {

std::vector<name_t> names_of(const sheet_program_t& program, const std::vector<index_t>& cells) {
    std::vector<name_t> names;
    names.reserve(cells.size());
    for (const index_t cell : cells)
        names.push_back(program.cells[cell].name);
    return names;
}

} // namespace

std::vector<name_t> sheet_t::contributing(name_t name) const {
    return names_of(fEngine->program(), fEngine->provenance().contributing(find(name)));
}

std::vector<name_t> sheet_t::at_fault() const {
    return names_of(fEngine->program(), fEngine->provenance().at_fault());
}

bool sheet_t::is_valid(name_t name) const {
    return fEngine->provenance().is_valid(find(name));
}

std::uint64_t sheet_t::evaluation_count() const {
    return fEngine->evaluation_count();
}

// While a script is loading no cell is there, so that no name of the new one means a cell of the old one.
std::uint32_t sheet_t::find(name_t name) const {
    const index_t cell = fLoading ? kNone : fEngine->program().cellsByName.find(name);
    if (cell == kNone) throw std::out_of_range("there is no cell " + in_quotes(name.text()));
    return cell;
}

} // namespace orrin
