// What a curve graph costs its user: showing a new response, dragging a point, zooming.

#include "kroui/limner/CairoSupplier.h"
#include "kroui/ui/HeadlessWindow.h"
#include "kroui/utility/LinearRuler.h"
#include "kroui/utility/LogRuler.h"
#include "uit/controls/UI_CurveEditor.h"

#include <benchmark/benchmark.h>

#include <cmath>

namespace {

using uit::controls::UI_CurveEditor;

constexpr int kPointCount = 128;
constexpr int kResponseLength = 4096;
constexpr double kLow = 20;
constexpr double kHigh = 22050;

double FrequencyAt(double part) {
    return kLow * std::pow(kHigh / kLow, part);
}

double LevelAt(double part) {
    return 40 * std::sin(part * 9) * std::cos(part * 31);
}

std::vector<double> Response(double shift) {
    std::vector<double> values;
    for (int i = 0; i < kResponseLength; ++i)
        values.push_back(LevelAt(static_cast<double>(i) / kResponseLength) + shift + (i % 7) * 0.1);
    return values;
}

class Graph : public benchmark::Fixture {
public:
    void SetUp(const benchmark::State& state) override {
        const float scale = static_cast<float>(state.range(0));
        fWindow = std::make_unique<kroui::ui::HeadlessWindow>(fSupplier, kroui::Size{653, 326}, scale);
        fEditor.reset(new UI_CurveEditor(new kroui::utility::LogRuler, new kroui::utility::LinearRuler));
        fEditor->SetRanges(kLow, kHigh, 96, -96);
        fEditor->SetUniqueHorizontalPositions(true);
        fEditor->SetDrawHorizontalMinorTicks(true);
        fEditor->SetDrawVerticalMinorTicks(true);
        fEditor->SetRulersSupportZooming(true);
        fEditor->UI_SetFrame({0, 0, 653, 326}); // a content of 600 x 300
        UI_CurveEditor::CurvePoints points;
        for (int i = 0; i < kPointCount; ++i) {
            const double part = static_cast<double>(i) / (kPointCount - 1);
            points.push_back({static_cast<unsigned>(i), {FrequencyAt(part), LevelAt(part)}});
        }
        fEditor->SetCurvePoints(points);
        fEditor->SetResponseData(Response(0), 0);
        fWindow->Window().SetContent(fEditor);
        fWindow->Paint();
    }
    void TearDown(const benchmark::State&) override {
        fWindow.reset();
        fEditor.reset();
    }

protected:
    kroui::Point PointAt(int index) const {
        return fEditor->GetPixelForCoordinatePair(
            fEditor->GetCurvePoints()[static_cast<std::size_t>(index)].coordinates);
    }

    kroui::limner::CairoSupplier fSupplier;
    std::unique_ptr<kroui::ui::HeadlessWindow> fWindow;
    boost::intrusive_ptr<UI_CurveEditor> fEditor;
};

BENCHMARK_DEFINE_F(Graph, FullRepaint)(benchmark::State& state) {
    for (auto _ : state) {
        fWindow->Window().InvalidateAll();
        benchmark::DoNotOptimize(fWindow->Paint());
    }
}
BENCHMARK_REGISTER_F(Graph, FullRepaint)->Arg(1)->Arg(2);

BENCHMARK_DEFINE_F(Graph, NewResponseOf4096AndPaint)(benchmark::State& state) {
    const std::vector<double> responses[] = {Response(0), Response(5)};
    std::size_t turn = 0;
    for (auto _ : state) {
        fEditor->SetResponseData(responses[turn ^= 1], 0);
        benchmark::DoNotOptimize(fWindow->Paint());
    }
}
BENCHMARK_REGISTER_F(Graph, NewResponseOf4096AndPaint)->Arg(1)->Arg(2);

// A listener, as every panel has one, and the repaint of each step.
BENCHMARK_DEFINE_F(Graph, DragStepOfOneOf128PointsAndPaint)(benchmark::State& state) {
    long heard = 0;
    fEditor->NotifyWhenChangedInteractively([&](kroui::controls::UI_InteractiveControlChangedMessage*) { ++heard; });
    const kroui::Point at = PointAt(kPointCount / 2);
    fWindow->Press(at);
    float offset = 10;
    for (auto _ : state) {
        fWindow->MoveTo({at.x, at.y + (offset = -offset)});
        benchmark::DoNotOptimize(fWindow->Paint());
    }
    fWindow->Release();
    benchmark::DoNotOptimize(heard);
}
BENCHMARK_REGISTER_F(Graph, DragStepOfOneOf128PointsAndPaint)->Arg(1)->Arg(2);

BENCHMARK_DEFINE_F(Graph, ZoomStepAndPaint)(benchmark::State& state) {
    float notches = 1;
    for (auto _ : state) {
        fWindow->Wheel({300, 318}, notches = -notches);
        benchmark::DoNotOptimize(fWindow->Paint());
    }
}
BENCHMARK_REGISTER_F(Graph, ZoomStepAndPaint)->Arg(1);

} // namespace
