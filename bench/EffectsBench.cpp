// How fast the effects are: each processes a minute of stereo sound at 44.1 kHz with its default settings. The counter
// "times_real_time" is seconds of sound a second of one core. At the end stand the sum over the effects and those that
// are slower than they may be.

#include "EvenLoad.h"
#include "SetEffects.h"
#include "host/TestSignal.h"
#include "host/UndoHistory.h"
#include "qoc/components/ComponentIDs.h"
#include "qoc/components/EffectCatalogue.h"
#include "qoc/components/ParameterIndices.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <memory>
#include <string>

namespace {

constexpr std::size_t kBlock = 512;
constexpr double kSeconds = 60;

void ProcessAll(kroaudiofilterhost::AudioFilter& filter, const qohost::Sound& sound) {
    std::vector<std::vector<float>> output(2, std::vector<float>(kBlock));
    for (std::size_t at = 0; at + kBlock <= sound.Frames(); at += kBlock) {
        const float* const inputs[] = {sound.channels[0].data() + at, sound.channels[1].data() + at};
        float* const outputs[] = {output[0].data(), output[1].data()};
        filter.Process({inputs, outputs, kBlock});
    }
    benchmark::DoNotOptimize(output.data());
}

using bench::Filter;

void RunFilter(benchmark::State& state, const Filter& filter) {
    static const qohost::Sound sSound = qohost::MakeTestSignal(kSeconds);
    filter->SetDuration(static_cast<double>(sSound.Frames()));
    filter->Prepare(sSound.sampleRate, kBlock, sSound.layout);
    for (auto _ : state)
        ProcessAll(*filter, sSound);
    state.counters["times_real_time"] = benchmark::Counter(kSeconds, benchmark::Counter::kIsIterationInvariantRate);
}

void RunEffect(benchmark::State& state, const qoc::components::EffectDescription& effect) {
    RunFilter(state, effect.create());
}

// At their defaults these let the sound through. Clip restoration hears a sound of -6 dB at its peaks as if it had been
// clipped at -12 dB: every peak is restored.
void RegisterSetEffects() {
    const auto add = [](const char* name, const auto& make) {
        benchmark::RegisterBenchmark(name, [make](benchmark::State& state) {
            RunFilter(state, make());
        })->Unit(benchmark::kMillisecond);
    };
    add("fftfilter/128_points", bench::DrawnFFTFilter);
    add("graphiceq30bands/set", bench::SetGraphicEQ);
    add("parametriceq/set", bench::SetParametricEQ);
    add("intraclip/clipped", [] { return bench::IntraClipAt(-12); });
    add("pitchshift/a_third_up", [] { return bench::PitchShiftBy(1.26F); });
}

// What one step of a drag costs: the filter is made anew and its response is asked for.
void DragFFTFilterPoint(benchmark::State& state) {
    const Filter filter = bench::DrawnFFTFilter();
    filter->Prepare(44100, kBlock, kromediatypes::AudioChannelLayout::Stereo());
    std::vector<float> decibels;
    float level = 0;
    for (auto _ : state) {
        level = level < 0.9F ? level + 0.001F : 0.1F;
        filter->SetParameterValue(qoc::components::kFFTFilterFirstPoint + 101, level);
        filter->GetMagnitudeResponse(4096, {20, 22050, true}, decibels);
        benchmark::DoNotOptimize(decibels.data());
    }
}

// What a step of undo or redo costs that changes a curve of all 128 points, at the largest size.
void UndoCurve(benchmark::State& state, const char16_t* effect, int size, int firstPoint) {
    const Filter filter = qoc::components::CreateEffect(effect);
    const float largest = filter->GetParameterInfo(size)->FromItem(filter->GetParameterInfo(size)->GetItemCount() - 1);
    filter->SetParameterValue(size, largest);
    filter->Prepare(44100, kBlock, kromediatypes::AudioChannelLayout::Stereo());
    std::vector<kroaudiofilterhost::AudioFilterParameterValue> curve = {{firstPoint - 1, 1}}; // the count
    for (int point = 0; point < 128; ++point) {
        curve.push_back({firstPoint + 2 * point, static_cast<float>(point + 1) / 129});
        curve.push_back({firstPoint + 2 * point + 1, point % 2 == 0 ? 0.4F : 0.7F});
    }
    qohost::UndoHistory history(filter);
    filter->SetParameterValues(curve);
    for (auto _ : state)
        if (!history.Undo()) history.Redo();
}

// Restoration takes the most work.
double SlowestAllowed(const std::string& effect) {
    constexpr std::array kHeavy = {"adaptivenoisereduction", "autoclickremover", "intraclip"};
    constexpr double kTimesRealTime = 20;
    return std::ranges::find(kHeavy, effect) == kHeavy.end() ? kTimesRealTime : kTimesRealTime / 2;
}

// Hands everything on to the reporter that the command line asks for, and adds up what the effects of the catalogue
// took.
class SummingReporter : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context& context) override { return fReporter->ReportContext(context); }
    void ReportRuns(const std::vector<Run>& runs) override {
        fReporter->ReportRuns(runs);
        for (const Run& run : runs) {
            const bool isWhole = run.run_type == Run::RT_Iteration && run.iterations > 0;
            const std::string name = run.run_name.function_name;
            if (isWhole && qoc::components::FindEffectByShortName(name) != nullptr)
                fSeconds[name] = run.cpu_accumulated_time / static_cast<double>(run.iterations);
        }
    }
    void Finalize() override { fReporter->Finalize(); }

    // To the error stream, so that what the reporter writes stays readable for programs. Whether all are fast enough.
    bool PrintSum() const {
        double sum = 0;
        bool isFast = true;
        for (const auto& [name, seconds] : fSeconds) {
            sum += seconds;
            if (kSeconds / seconds >= SlowestAllowed(name)) continue;
            isFast = false;
            std::fprintf(stderr, "too slow: %s, %.1f times real time, must be %.0f\n", name.c_str(), kSeconds / seconds,
                         SlowestAllowed(name));
        }
        if (fSeconds.empty()) return true;
        std::fprintf(stderr,
                     "%zu effects, a minute of stereo at 44.1 kHz each: %.2f s, %.0f times real time an effect\n",
                     fSeconds.size(), sum, kSeconds * static_cast<double>(fSeconds.size()) / sum);
        return isFast;
    }

private:
    std::unique_ptr<benchmark::BenchmarkReporter> fReporter{benchmark::CreateDefaultDisplayReporter()};
    std::map<std::string, double> fSeconds; // CPU time of a minute
};

} // namespace

int main(int argc, char** argv) {
    for (const auto& effect : qoc::components::AllEffects()) {
        if (!effect.create) continue;
        benchmark::RegisterBenchmark(std::string(effect.shortName).c_str(), [&effect](benchmark::State& state) {
            RunEffect(state, effect);
        })->Unit(benchmark::kMillisecond);
    }
    RegisterSetEffects();
    bench::RegisterEvenLoad();
    benchmark::RegisterBenchmark("fftfilter/drag", DragFFTFilterPoint)->Unit(benchmark::kMicrosecond);
    benchmark::RegisterBenchmark("fftfilter/undo", [](benchmark::State& state) {
        using namespace qoc::components;
        UndoCurve(state, kFFTFilterComponentID, kFFTFilterSize, kFFTFilterFirstPoint);
    })->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("graphicphaseshifter/undo", [](benchmark::State& state) {
        using namespace qoc::components;
        UndoCurve(state, kGraphicPhaseShifterComponentID, kPhaseShifterSize, kPhaseShifterFirstPoint);
    })->Unit(benchmark::kMillisecond);
    benchmark::Initialize(&argc, argv);
    SummingReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return reporter.PrintSum() ? 0 : 1;
}
