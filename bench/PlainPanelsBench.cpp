// What a node costs: panels of plain nodes opened and repainted, and a curve graph with everything in it made anew, at
// a scale of 1 and 2.

#include "PlainPanels.h"
#include "kroui/limner/CairoSupplier.h"
#include "kroui/ui/HeadlessWindow.h"
#include "kroui/utility/LinearRuler.h"
#include "kroui/utility/LogRuler.h"
#include "uit/controls/UI_CurveEditor.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

namespace {

using bench::PlainPanel;
using kroui::ui::HeadlessWindow;

const kroui::limner::CairoSupplier& Supplier() {
    static const kroui::limner::CairoSupplier sSupplier;
    return sSupplier;
}

void Repaint(benchmark::State& state, HeadlessWindow& window) {
    for (auto _ : state) {
        window.Window().InvalidateAll();
        benchmark::DoNotOptimize(window.Paint());
    }
}

// Read, built, and painted for the first time, into a window that is there.
void Open(benchmark::State& state, PlainPanel panel) {
    const std::string archive = bench::ArchiveOf(panel);
    HeadlessWindow window(Supplier(), bench::SizeOf(panel));
    for (auto _ : state) {
        window.Window().SetContent(bench::OpenPlainPanel(archive));
        window.Paint();
        state.PauseTiming();
        window.Window().SetContent(nullptr);
        state.ResumeTiming();
    }
}

void RepaintPanel(benchmark::State& state, PlainPanel panel) {
    HeadlessWindow window(Supplier(), bench::SizeOf(panel), static_cast<float>(state.range(0)));
    window.Window().SetContent(bench::OpenPlainPanel(bench::ArchiveOf(panel)));
    window.Paint();
    Repaint(state, window);
    window.Window().SetContent(nullptr);
}

void Nodes26_Open(benchmark::State& state) {
    Open(state, PlainPanel::kForm);
}
BENCHMARK(Nodes26_Open)->Unit(benchmark::kMicrosecond);

void Nodes93_Open(benchmark::State& state) {
    Open(state, PlainPanel::kFaders);
}
BENCHMARK(Nodes93_Open)->Unit(benchmark::kMicrosecond);

void Nodes26_Repaint(benchmark::State& state) {
    RepaintPanel(state, PlainPanel::kForm);
}
BENCHMARK(Nodes26_Repaint)->Arg(1)->Arg(2)->Unit(benchmark::kMicrosecond);

void Nodes93_Repaint(benchmark::State& state) {
    RepaintPanel(state, PlainPanel::kFaders);
}
BENCHMARK(Nodes93_Repaint)->Arg(1)->Arg(2)->Unit(benchmark::kMicrosecond);

constexpr kroui::Size kContentSize = {600, 300};
constexpr int kPoints = 128;
constexpr int kResponseLength = 4096;
constexpr double kLowest = 20; // Hz
constexpr double kHighest = 20000;

double FrequencyAt(double part) {
    return kLowest * std::pow(kHighest / kLowest, part);
}

// Decibels: hills and valleys with a ripple, as a comb's or a transform's response has it.
double ResponseAt(double hertz) {
    double level = 2 * std::sin(hertz * 0.004) + 0.8 * std::sin(std::log(hertz) * 90);
    for (int hill = 0; hill < 12; ++hill) {
        const double away = std::log10(hertz / (30 * std::pow(1.7, hill))) / (0.12 + 0.05 * (hill % 3));
        level += 14 * std::sin(hill * 2.3 + 1) * std::exp(-away * away);
    }
    return level;
}

std::vector<double> Response(double shift) {
    std::vector<double> values(kResponseLength);
    for (int i = 0; i < kResponseLength; ++i)
        values[static_cast<std::size_t>(i)] = ResponseAt(FrequencyAt(i / (kResponseLength - 1.0))) + shift;
    return values;
}

// With its picture of grid and rulers at hand.
class Graph : public uit::controls::UI_CurveEditor {
public:
    Graph() : UI_CurveEditor(new kroui::utility::LogRuler, new kroui::utility::LinearRuler) {
        SetRanges(kLowest, kHighest, 40, -40);
        SetDrawHorizontalMinorTicks(true);
        SetDrawVerticalMinorTicks(true);
        SetDrawCurve(false);
        SetUniqueHorizontalPositions(true);
        const kroui::Size size = SizeForContent(kContentSize);
        UI_SetFrame({0, 0, size.width, size.height});
        CurvePoints points;
        for (unsigned i = 0; i < kPoints; ++i) {
            const double hertz = FrequencyAt((i + 0.5) / kPoints);
            points.push_back({i, {hertz, ResponseAt(hertz)}});
        }
        SetCurvePoints(points);
        SetResponseData(Response(0), 0);
    }
    using UI_RulerGridBase::InvalidateGrid;
};

// Grid and rulers drawn, and a response of 4096 values that is another each time, with 128 points before it.
void Graph_RepaintAllNew(benchmark::State& state) {
    const boost::intrusive_ptr<Graph> graph(new Graph);
    const kroui::Rect frame = graph->UI_GetFrame();
    HeadlessWindow window(Supplier(), {frame.width, frame.height}, static_cast<float>(state.range(0)));
    window.Window().SetContent(graph);
    window.Paint();
    const std::vector<double> responses[] = {Response(0), Response(0.5)};
    std::size_t turn = 0;
    for (auto _ : state) {
        graph->SetResponseData(responses[turn ^= 1], 0);
        graph->InvalidateGrid();
        window.Window().InvalidateAll();
        benchmark::DoNotOptimize(window.Paint());
    }
    window.Window().SetContent(nullptr);
}
BENCHMARK(Graph_RepaintAllNew)->Arg(1)->Arg(2)->Unit(benchmark::kMicrosecond);

// As it is most of the time: grid, rulers and response are kept.
void Graph_Repaint(benchmark::State& state) {
    const boost::intrusive_ptr<Graph> graph(new Graph);
    const kroui::Rect frame = graph->UI_GetFrame();
    HeadlessWindow window(Supplier(), {frame.width, frame.height}, static_cast<float>(state.range(0)));
    window.Window().SetContent(graph);
    window.Paint();
    Repaint(state, window);
    window.Window().SetContent(nullptr);
}
BENCHMARK(Graph_Repaint)->Arg(1)->Arg(2)->Unit(benchmark::kMicrosecond);

} // namespace
