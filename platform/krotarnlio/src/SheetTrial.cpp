#include "SheetTrial.h"

#include "orrin/error.h"
#include "orrin/serialization.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <utility>

namespace krotarnlio {

using orrin::any_regular_t;
using orrin::cell_info_t;
using orrin::cell_kind_t;
using orrin::in_quotes;
using orrin::name_t;
using orrin::serialize_regular;

namespace {

constexpr std::array kProbes{0.0, 0.5, 1.0};

// What stands behind the prefix in "in12" or "out12"; empty for another name.
std::string_view NumberBehind(std::string_view prefix, std::string_view name) {
    if (name.size() <= prefix.size() || !name.starts_with(prefix)) return {};
    const std::string_view number = name.substr(prefix.size());
    return std::ranges::all_of(number, [](unsigned char c) { return std::isdigit(c) != 0; }) ? number
                                                                                             : std::string_view();
}

} // namespace

SheetTrial::SheetTrial(orrin::sheet_t& sheet, Report report)
    : fSheet(sheet), fReport(std::move(report)), fCells(sheet.cells()) {
    for (const cell_info_t& cell : fCells) {
        fSeen[cell.name];
        if (cell.kind != cell_kind_t::input || NumberBehind("in", cell.name.text()).empty()) continue;
        fInputs.push_back(cell.name);
        fInitial.emplace(cell.name, sheet.get(cell.name));
    }
}

void SheetTrial::Run() {
    FindPairs();
    Look("");
    for (const double value : kProbes)
        TryAll(value);
    for (const name_t input : fInputs)
        Set(input, fInitial.at(input));
    for (const name_t input : fInputs)
        TryEach(input);
    Settle();
    TellContradictions();
}

void SheetTrial::FindPairs() {
    for (const cell_info_t& cell : fCells) {
        const std::string_view number = NumberBehind("out", cell.name.text());
        if (cell.kind != cell_kind_t::output || number.empty()) continue;
        const std::string input = "in" + std::string(number);
        if (!fSheet.has_input(name_t(input)))
            fReport(cell.position,
                    "there is no input " + in_quotes(input) + ", so that the panel never shows what it writes here",
                    true);
    }
}

void SheetTrial::TryAll(double value) {
    for (const name_t input : fInputs)
        Set(input, value);
    Settle();
    Look(" with all inputs at " + serialize_regular(value));
}

void SheetTrial::TryEach(name_t input) {
    for (const double value : kProbes) {
        Set(input, value);
        Settle();
        Look(" with " + std::string(input.text()) + " at " + serialize_regular(value));
    }
    Set(input, fInitial.at(input));
}

void SheetTrial::Set(name_t input, const any_regular_t& value) {
    fSheet.set(input, value);
}

void SheetTrial::Settle() {
    fSheet.update();
    fSheet.reinitialise();
}

void SheetTrial::Look(const std::string& where) {
    constexpr std::size_t kMostValues = 64;
    for (const orrin::error_t& error : fSheet.errors())
        fReport(error.position(), error.message(), false);
    for (const cell_info_t& cell : fCells) {
        Values& seen = fSeen[cell.name];
        const any_regular_t& value = fSheet.get(cell.name);
        if (seen.size() < kMostValues && std::ranges::find(seen, value) == seen.end()) seen.push_back(value);
        if (cell.kind == cell_kind_t::output && !NumberBehind("out", cell.name.text()).empty())
            LookAtOutput(cell, where);
    }
    LookAtClauses();
}

void SheetTrial::LookAtOutput(const cell_info_t& output, const std::string& where) {
    constexpr double kRounding = 1e-6;
    const any_regular_t& value = fSheet.get(output.name);
    const double* const number = value.get_if<double>();
    const std::string cell = "cell " + in_quotes(output.name.text());
    if (!number)
        fReport(output.position, cell + " needs a number from 0 to 1, not " + orrin::type_phrase(value.type()), false);
    else if (!(*number >= -kRounding && *number <= 1 + kRounding))
        fReport(output.position, cell + " is " + serialize_regular(value) + where + ", expected a number from 0 to 1",
                false);
}

void SheetTrial::LookAtClauses() {
    for (const orrin::clause_trial_t& trial : fSheet.try_other_clauses()) {
        Clause& clause = fClauses[{trial.position.line, trial.position.column}];
        ++clause.trials;
        if (trial.agrees) continue;
        if (clause.contradictions++ == 0) clause.message = trial.message;
    }
}

// Bounds make honest clauses disagree in places.
void SheetTrial::TellContradictions() {
    for (const auto& [place, clause] : fClauses)
        if (2 * clause.contradictions > clause.trials)
            fReport({place.first, place.second}, "the clause " + clause.message, false);
}

void SheetTrial::CompareRanges(const ScriptEffect& effect) {
    if (const name_t rate("sample_rate"); fSheet.has_input(rate)) Set(rate, effect.sampleRate);
    for (const ScriptParameter& parameter : effect.parameters)
        if (fSheet.has_input(name_t("in" + std::to_string(parameter.index)))) CompareRange(parameter);
}

SheetTrial::Numbers SheetTrial::NumbersWith(name_t input, double value) {
    Set(input, value);
    Settle();
    Numbers numbers;
    for (const cell_info_t& cell : fCells)
        if (cell.kind == cell_kind_t::interface || cell.kind == cell_kind_t::logic)
            if (const double* const number = fSheet.get(cell.name).get_if<double>()) numbers[cell.name] = *number;
    return numbers;
}

// Some cell has to have what the effect says; another one may show it otherwise.
void SheetTrial::CompareRange(const ScriptParameter& parameter) {
    constexpr double kRounding = 1e-4;
    const name_t input("in" + std::to_string(parameter.index));
    const Numbers low = NumbersWith(input, 0);
    const Numbers high = NumbersWith(input, 1);
    Set(input, fInitial.at(input));
    const double tolerance = kRounding * std::max(1.0, std::abs(parameter.high - parameter.low));
    const cell_info_t* shown = nullptr;
    for (const cell_info_t& cell : fCells) {
        const auto first = low.find(cell.name);
        const auto last = high.find(cell.name);
        if (first == low.end() || last == high.end() || first->second == last->second) continue;
        if (std::abs(first->second - parameter.low) <= tolerance &&
            std::abs(last->second - parameter.high) <= tolerance)
            return;
        if (!shown) shown = &cell;
    }
    if (!shown) return;
    fReport(shown->position,
            "cell " + in_quotes(shown->name.text()) + " runs from " + serialize_regular(low.at(shown->name)) + " to " +
                serialize_regular(high.at(shown->name)) + " over " + std::string(input.text()) + ", the effect's \"" +
                parameter.name + "\" from " + serialize_regular(parameter.low) + " to " +
                serialize_regular(parameter.high),
            true);
}

} // namespace krotarnlio
