// How fast the effects are: each processes a minute of stereo sound at 44.1 kHz with its default settings. The counter
// "times_real_time" is seconds of sound a second of one core.

#include "host/TestSignal.h"
#include "qoc/components/EffectCatalogue.h"

#include <benchmark/benchmark.h>

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

void RunEffect(benchmark::State& state, const qoc::components::EffectDescription& effect) {
    static const qohost::Sound sSound = qohost::MakeTestSignal(kSeconds);
    const auto filter = effect.create();
    filter->SetDuration(static_cast<double>(sSound.Frames()));
    filter->Prepare(sSound.sampleRate, kBlock, sSound.layout);
    for (auto _ : state)
        ProcessAll(*filter, sSound);
    state.counters["times_real_time"] = benchmark::Counter(kSeconds, benchmark::Counter::kIsIterationInvariantRate);
}

} // namespace

int main(int argc, char** argv) {
    for (const auto& effect : qoc::components::AllEffects()) {
        if (!effect.create) continue;
        benchmark::RegisterBenchmark(std::string(effect.shortName).c_str(), [&effect](benchmark::State& state) {
            RunEffect(state, effect);
        })->Unit(benchmark::kMillisecond);
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
