// What a sheet costs that is far larger than a panel's: loading it, setting all of its cells, and one edit.

#include "orrin/sheet.h"

#include <benchmark/benchmark.h>

#include <string>

namespace {

// Running totals: c2 is the sum of c0 and c1, c4 that of c2 and c3, and so on; any of the three from the others.
std::string RunningTotals(std::int64_t relations) {
    std::string cells;
    std::string logic;
    for (std::int64_t i = 0; i <= 2 * relations; ++i)
        cells += "c" + std::to_string(i) + ": 1; ";
    for (std::int64_t i = 0; i < 2 * relations; i += 2) {
        const std::string a = "c" + std::to_string(i);
        const std::string b = "c" + std::to_string(i + 1);
        const std::string sum = "c" + std::to_string(i + 2);
        logic += "relate { " + sum + " <== " + a + " + " + b + "; " + a + " <== " + sum + " - " + b + "; " + b +
                 " <== " + sum + " - " + a + "; }\n";
    }
    return "sheet totals { interface: " + cells + "\nlogic: " + logic + "}";
}

void LoadSheet(benchmark::State& state) {
    const std::string script = RunningTotals(state.range(0));
    for (auto _ : state) {
        orrin::sheet_t sheet;
        sheet.load(script, "totals");
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(LoadSheet)->RangeMultiplier(4)->Range(64, 1024)->Complexity()->Unit(benchmark::kMicrosecond);

void SetAllCells(benchmark::State& state) {
    orrin::sheet_t sheet;
    sheet.load(RunningTotals(state.range(0)), "totals");
    double value = 0;
    for (auto _ : state) {
        for (std::int64_t i = 0; i <= 2 * state.range(0); ++i)
            sheet.set(orrin::name_t("c" + std::to_string(i)), ++value);
        sheet.update();
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(SetAllCells)->RangeMultiplier(4)->Range(64, 1024)->Complexity()->Unit(benchmark::kMicrosecond);

// Of a cell in the middle, which turns round what stood towards it.
void EditOneCell(benchmark::State& state) {
    orrin::sheet_t sheet;
    sheet.load(RunningTotals(state.range(0)), "totals");
    double value = 0;
    for (auto _ : state) {
        for (const std::int64_t cell : {state.range(0), std::int64_t{0}})
            sheet.set(orrin::name_t("c" + std::to_string(cell)), ++value);
        sheet.update();
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(EditOneCell)->RangeMultiplier(4)->Range(64, 1024)->Complexity()->Unit(benchmark::kMicrosecond);

} // namespace
