#include "krotarnlio/ScriptChecker.h"
#include "krotarnlio/UI_KROLioRoot.h"
#include "krotarnlio/UI_Lio.h"
#include "orrin/expression_parser.h"
#include "orrin/functions.h"
#include "orrin/serialization.h"
#include "orrin/sheet.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <sstream>
#include <stdexcept>

namespace {

using namespace orrin;

void Require(bool isTrue, const char* what) {
    if (isTrue) return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

any_regular_t Call(name_t function, const any_regular_t& arguments) {
    if (function == name_t("e")) return functions::evaluate_token_stream(arguments);
    if (function == name_t("t")) return functions::tokenize_regular(arguments);
    if (function == name_t("s")) return functions::evaluate_serialization(arguments);
    if (function == name_t("d")) return functions::merge_dictionary_set(arguments);
    if (function == name_t("none")) throw std::invalid_argument("there is no such function");
    return arguments;
}

any_regular_t Look(name_t name) {
    if (name == name_t("none")) throw std::invalid_argument("there is no such name");
    if (name.text().starts_with("align_") || name.text().starts_with("place_")) return name;
    return static_cast<double>(name.text().size());
}

void SetUp(virtual_machine_t& machine, sheet_t* /*sheet*/) {
    machine.set_function_lookup(&Call);
    machine.set_variable_lookup(&Look);
}

// What a value is written as, in both forms, is read as the same value.
void RunExpression(std::string_view text) {
    constexpr std::size_t kLongest = 200'000;
    const expression_t expression = parse_expression(text, "fuzz");
    disassemble(expression);
    virtual_machine_t machine;
    SetUp(machine, nullptr);
    const any_regular_t value = machine.evaluate(expression);
    const std::string written = serialize_regular(value);
    if (written.size() > kLongest) return;
    Require(evaluate_serialization(written) == value, "the written value reads as another one");
    Require(serialize_regular(evaluate_serialization(written)) == written, "the value is written in two ways");
    Require(evaluate_token_stream(tokenize_regular(value)) == value, "the tokens read as another value");
}

// Values to set cells to; some of the right type, some not.
any_regular_t SomeValue(std::uint32_t number) {
    constexpr std::uint32_t kKinds = 6;
    switch (number % kKinds) {
    case 0: return static_cast<double>(number % 100) / 100;
    case 1: return number % 4 < 2;
    case 2: return name_t("a");
    case 3: return std::string("text");
    case 4: return array_t{number, any_regular_t()};
    default: return -std::numeric_limits<double>::infinity();
    }
}

// Whatever is set, an update ends, and another one finds nothing to do.
void RunSheet(std::string_view text) {
    constexpr std::uint32_t kSets = 40;
    sheet_t sheet;
    SetUp(sheet.machine(), nullptr);
    sheet.load(text, "fuzz");
    const std::vector<cell_info_t> cells = sheet.cells();
    int calls = 0;
    for (const cell_info_t& cell : cells)
        sheet.subscribe(cell.name, [&calls](const any_regular_t&) { ++calls; });
    auto random = static_cast<std::uint32_t>(text.size());
    for (std::uint32_t i = 0; i < kSets && !cells.empty(); ++i) {
        random = random * 1664525 + 1013904223; // Numerical Recipes, a quick generator
        const cell_info_t& cell = cells[(random >> 8) % cells.size()];
        if (cell.kind == cell_kind_t::input || cell.kind == cell_kind_t::interface)
            sheet.set(cell.name, SomeValue(random >> 16));
        random % 7 == 0 ? sheet.reinitialise() : sheet.update();
        const std::uint64_t evaluations = sheet.evaluation_count();
        calls = 0;
        sheet.update();
        Require(calls == 0 && sheet.evaluation_count() == evaluations, "an update leaves something to do");
        sheet.at_fault();
        sheet.is_valid(cell.name);
    }
}

constexpr const char* kCells = "sheet fuzz { constant: c: 7; input: in0: 0.5; interface: gain: 3; on: true; text: 'a'; "
                               "items: [{ name: 'A', value: 1 }, 'B']; bounds: { min_value: 0, max_value: 1 }; "
                               "curve: [{ x: 0, y: 1 }]; any: empty; output: out0 <== gain; }";

// A layout of which the checker finds nothing wrong can be made, and the other way round.
void RunLayout(const std::string& text) {
    const krotarnlio::ScriptChecker checker(
        {&SetUp, {name_t("e"), name_t("t"), name_t("s"), name_t("d")}, uit::lio::GetAdapterFactoryProc(), nullptr});
    const auto problems = checker.CheckLayout({"fuzz", text}, {"sheet", kCells});
    const auto sheet = std::make_shared<sheet_t>();
    SetUp(sheet->machine(), sheet.get());
    sheet->load(kCells, "sheet");
    krotarnlio::UI_Lio lio(nullptr, nullptr);
    SetUp(lio.GetLayoutEngineVM(), nullptr);
    lio.SetClientWidgetAdpaterFactory(uit::lio::GetAdapterFactoryProc());
    std::istringstream stream(text);
    try {
        krotarnlio::UI_KROLioRoot* const root = lio.ParseLioScript(stream, sheet, "fuzz");
        root->Layout();
        for (const cell_info_t& cell : sheet->cells())
            if (cell.kind == cell_kind_t::interface)
                sheet->set(cell.name, SomeValue(static_cast<std::uint32_t>(text.size())));
        sheet->update();
        root->Refresh();
        krotarnlio::UI_Lio::Release(root);
    } catch (const orrin::error_t&) {
        Require(!problems.empty(), "the checker has found nothing wrong in a layout that can't be made");
    }
}

} // namespace

// One of the three languages, by its first word.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    try {
        if (text.starts_with("sheet"))
            RunSheet(text);
        else if (text.starts_with("layout"))
            RunLayout(std::string(text));
        else
            RunExpression(text);
    } catch (const orrin::error_t& error) {
        Require(error.position().line > 0 && !error.message().empty(), "an error without a place or without a message");
    }
    return 0;
}
