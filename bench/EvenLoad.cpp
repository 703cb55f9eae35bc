#include "EvenLoad.h"

#include "SetEffects.h"
#include "SoundMaterial.h"
#include "host/TestSignal.h"
#include "qoc/components/EffectCatalogue.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <ctime>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace bench {

namespace {

constexpr std::size_t kBlock = 64;
constexpr int kRounds = 7;
constexpr unsigned kSeed = 3;

struct BlockTimes {
    double OfBlock() const { return 100 * worst * rate / kBlock; } // percent
    double OverMedian() const { return worst / median; }

    double rate = 48000;
    double median = 0; // seconds
    double worst = 0;
};

double ThreadSeconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

void RunRound(kroaudiofilterhost::AudioFilter& filter, const test::Channels& sound, std::vector<double>& seconds) {
    std::array<std::vector<float>, 2> output = {std::vector<float>(kBlock), std::vector<float>(kBlock)};
    float* const outputs[] = {output[0].data(), output[1].data()};
    filter.Reset();
    for (std::size_t block = 0; block < seconds.size(); ++block) {
        const float* const inputs[] = {sound[0].data() + block * kBlock, sound[1].data() + block * kBlock};
        const double begin = ThreadSeconds();
        filter.Process({inputs, outputs, kBlock});
        seconds[block] = std::min(seconds[block], ThreadSeconds() - begin);
    }
}

BlockTimes MeasureBlocks(const Filter& filter, const test::Channels& sound, double rate) {
    filter->SetDuration(static_cast<double>(sound.front().size()));
    filter->Prepare(static_cast<float>(rate), kBlock, kromediatypes::AudioChannelLayout::Stereo());
    std::vector<double> seconds(sound.front().size() / kBlock, 1);
    for (int round = 0; round < kRounds; ++round)
        RunRound(*filter, sound, seconds);
    std::ranges::sort(seconds);
    return {rate, seconds[seconds.size() / 2], seconds.back()};
}

void RunBlocks(benchmark::State& state, const Filter& filter) {
    static const qohost::Sound sSound = qohost::MakeTestSignal(4);
    BlockTimes times;
    for (auto _ : state)
        times = MeasureBlocks(filter, sSound.channels, 48000);
    state.counters["median_us"] = 1e6 * times.median;
    state.counters["worst_us"] = 1e6 * times.worst;
    state.counters["worst_over_median"] = times.OverMedian();
    state.counters["worst_percent_of_block"] = times.OfBlock();
}

// What an effect is tried with.
struct Case {
    std::string name;
    std::function<Filter()> make;
    float clip = 0; // decibels under full scale that the sound is clipped at; 0: it is not
};

// The peaks of the sounds lie at -6 dB.
constexpr float kPeak = -6.02F;

std::vector<Case> AllCases() {
    const auto plain = [](const char* name) {
        return Case{name, [name] { return qoc::components::FindEffectByShortName(name)->create(); }};
    };
    std::vector<Case> cases = {plain("autoclickremover"),
                               plain("adaptivenoisereduction"),
                               plain("autophasecorrection"),
                               plain("centerchannelextract"),
                               plain("pitchcorrect"),
                               {"fftfilter_128_points", DrawnFFTFilter},
                               {"graphicphaseshifter_128_points", DrawnPhaseShifter}};
    for (const int decibels : {3, 6, 10}) {
        const float level = kPeak - static_cast<float>(decibels);
        cases.push_back(
            {"intraclip_" + std::to_string(decibels) + "_dB", [level] { return IntraClipAt(level); }, level});
    }
    for (const auto& [name, ratio] : {std::pair{"0.5", 0.5F}, {"0.75", 0.75F}, {"1.26", 1.26F}, {"2", 2.0F}})
        cases.push_back({std::string("pitchshift_x_") + name, [ratio] { return PitchShiftBy(ratio); }});
    return cases;
}

// Made once for all effects.
const test::Channels& SoundOf(test::Material kind, double rate) {
    static std::map<std::pair<test::Material, double>, test::Channels> sSounds;
    test::Channels& sound = sSounds[{kind, rate}];
    const double seconds = rate > 100000 ? 2 : 4;
    if (sound.empty()) sound = test::MakeMaterial(kind, static_cast<std::size_t>(seconds * rate), rate, kSeed);
    return sound;
}

test::Channels Clipped(test::Channels sound, float decibels) {
    if (decibels == 0) return sound;
    const float level = std::pow(10.0F, decibels / 20);
    for (auto& channel : sound) {
        for (float& sample : channel)
            sample = std::clamp(sample, -level, level);
    }
    return sound;
}

struct Worst {
    void Take(double other, std::string_view of) {
        if (other <= value) return;
        value = other;
        kind = of;
    }

    double value = 0;
    std::string kind;
};

void RunEverySound(benchmark::State& state, const Case& each, double rate) {
    Worst ofBlock;
    Worst overMedian;
    const Filter filter = each.make();
    for (auto _ : state) {
        for (std::size_t kind = 0; kind < test::kMaterialNames.size(); ++kind) {
            const std::string name(test::kMaterialNames[kind]);
            const auto sound = Clipped(SoundOf(static_cast<test::Material>(kind), rate), each.clip);
            const BlockTimes times = MeasureBlocks(filter, sound, rate);
            ofBlock.Take(times.OfBlock(), name);
            overMedian.Take(times.OverMedian(), name);
            state.counters[name] = times.OfBlock();
        }
    }
    state.counters["worst_over_median"] = overMedian.value;
    state.counters["worst_percent_of_block"] = ofBlock.value;
    state.SetLabel(ofBlock.kind + " " + overMedian.kind);
}

} // namespace

void RegisterEvenLoad() {
    for (const auto& effect : qoc::components::AllEffects()) {
        if (!effect.create) continue;
        benchmark::RegisterBenchmark((std::string(effect.shortName) + "/blocks").c_str(),
                                     [&effect](benchmark::State& state) { RunBlocks(state, effect.create()); })
            ->Iterations(1)
            ->Unit(benchmark::kMillisecond);
    }
    for (const Case& each : AllCases()) {
        for (const int rate : {48000, 192000}) {
            benchmark::RegisterBenchmark((each.name + "/every_sound/" + std::to_string(rate)).c_str(),
                                         [each, rate](benchmark::State& state) { RunEverySound(state, each, rate); })
                ->Iterations(1)
                ->Unit(benchmark::kMillisecond);
        }
    }
}

} // namespace bench
