#include "AllocationCounter.h"
#include "EffectWalk.h"

#include <gtest/gtest.h>

#include <limits>

// What hosts rely on, whatever the effect.

using namespace qoc::components;

namespace {

using kroaudiofilterhost::AudioFilter;
using kroaudiofilterhost::AudioFilterCurvePoint;
using kroaudiofilterhost::AudioFilterParameterInfo;
using test::Channels;
using test::Format;
using test::MadeEffect;
using test::Settings;

constexpr Format kStereo = {44100, 2};
constexpr std::size_t kBlock = 480;

// Runs stereo sound through the filter with all four buffers in one piece of memory, so many samples apart.
struct Places {
    std::size_t inputs[2];
    std::size_t outputs[2];
};

Channels ProcessedIn(AudioFilter& filter, const Channels& input, const Places& places) {
    Channels output = input;
    std::vector<float> memory(6 * kBlock);
    for (std::size_t start = 0; start + kBlock <= input[0].size(); start += kBlock) {
        for (std::size_t channel = 0; channel < 2; ++channel)
            std::copy_n(input[channel].data() + start, kBlock, memory.data() + places.inputs[channel]);
        const float* const inputs[] = {memory.data() + places.inputs[0], memory.data() + places.inputs[1]};
        float* const outputs[] = {memory.data() + places.outputs[0], memory.data() + places.outputs[1]};
        filter.Process({inputs, outputs, kBlock});
        for (std::size_t channel = 0; channel < 2; ++channel)
            std::copy_n(memory.data() + places.outputs[channel], kBlock, output[channel].data() + start);
    }
    return output;
}

TEST(EveryEffect, SoundsTheSameHoweverItsBuffersOverlap) {
    const Places apart = {{0, kBlock}, {2 * kBlock, 3 * kBlock}};
    const Places tangled[] = {
        {{0, kBlock}, {kBlock, 0}},          // crossed
        {{100, kBlock + 100}, {0, kBlock}},  // each a little in front of its input
        {{0, kBlock}, {100, 3 * kBlock}},    // one behind its input and over the other's
        {{0, kBlock}, {kBlock, 3 * kBlock}}, // one over the other's input
    };
    test::ForEveryEffect([&](const EffectDescription& effect) {
        for (const bool isBypassed : {false, true}) {
            const MadeEffect filter = test::Prepared(effect, kStereo);
            filter->SetBypassed(isBypassed);
            const Channels input = test::BusySound(2, 30 * kBlock, kStereo.rate, 4);
            filter->Reset();
            const Channels expected = ProcessedIn(*filter, input, apart);
            for (const Places& places : tangled) {
                filter->Reset();
                EXPECT_TRUE(ProcessedIn(*filter, input, places) == expected);
            }
        }
    });
}

TEST(EveryEffect, GoesOnListeningWhileTheBypassedSoundPassesAsLate) {
    test::ForEveryEffect([](const EffectDescription& effect) {
        const MadeEffect filter = test::Prepared(effect, kStereo);
        const MadeEffect other = test::Prepared(effect, kStereo);
        const std::size_t latency = filter->Latency();
        const std::size_t frames = 3 * kBlock * (latency / kBlock + 10);
        const Channels input = test::BusySound(2, frames, kStereo.rate, 8);
        filter->SetBypassed(true);
        filter->Reset();
        Channels output = input;
        test::Process(*filter, input, output, 0, frames / 3, 333);
        filter->SetBypassed(false);
        test::Process(*filter, input, output, frames / 3, 2 * frames / 3, 333);
        filter->SetBypassed(true);
        test::Process(*filter, input, output, 2 * frames / 3, frames, 333);
        const Channels heard = test::Processed(*other, input);
        const auto fade = static_cast<std::size_t>(0.005 * kStereo.rate) + 1;
        for (std::size_t i = 0; i < frames; ++i) {
            for (std::size_t channel = 0; channel < 2; ++channel) {
                const float late = i < latency ? 0 : input[channel][i - latency];
                const bool isBypassed = i < frames / 3 || i >= 2 * frames / 3 + fade;
                const bool isHeard = i >= frames / 3 + fade && i < 2 * frames / 3;
                if (isBypassed) {
                    ASSERT_EQ(output[channel][i], late) << i;
                }
                if (isHeard) {
                    ASSERT_EQ(output[channel][i], heard[channel][i]) << i;
                }
            }
        }
    });
}

// Another value for about a third of the parameters that can be automated.
std::vector<kroaudiofilterhost::AudioFilterParameterValue> Moves(const AudioFilter& filter, unsigned seed) {
    std::mt19937 generator(seed);
    std::uniform_real_distribution<float> value(0, 1);
    std::vector<kroaudiofilterhost::AudioFilterParameterValue> moves;
    for (int index = 0; index < filter.GetParameterCount(); ++index) {
        const AudioFilterParameterInfo* info = filter.GetParameterInfo(index);
        if (info != nullptr && info->IsAutomatable() && value(generator) < 0.34F)
            moves.push_back({index, value(generator)});
    }
    return moves;
}

TEST(EveryEffect, SoundsAutomatedAsItSoundsWhenItIsSet) {
    test::ForEveryEffect([](const EffectDescription& effect) {
        const MadeEffect automated = test::Prepared(effect, kStereo);
        const MadeEffect set = test::Prepared(effect, kStereo);
        const std::size_t frames = 8 * kBlock + std::min<std::size_t>(automated->Latency(), 8000);
        const Channels input = test::BusySound(2, 5 * frames, kStereo.rate, 3);
        Channels one = input;
        Channels other = input;
        for (unsigned turn = 0; turn < 5; ++turn) {
            const auto moves = Moves(*set, turn);
            const std::size_t before = AllocationCount();
            for (const auto& [index, value] : moves)
                automated->Automate(index, value);
            EXPECT_EQ(AllocationCount(), before);
            automated->ServeAutomation();
            set->SetParameterValues(moves);
            test::Process(*automated, input, one, turn * frames, (turn + 1) * frames, kBlock);
            test::Process(*set, input, other, turn * frames, (turn + 1) * frames, kBlock);
        }
        EXPECT_TRUE(one == other);
        EXPECT_EQ(test::SettingsOf(*automated), test::SettingsOf(*set));
    });
}

TEST(EveryEffect, ChangesItsLatencyOnlyWithWhatSaysThatItNeedsPrepare) {
    test::ForEveryEffect([](const EffectDescription& effect) {
        const MadeEffect filter = test::Prepared(effect, kStereo);
        for (int index = 0; index < filter->GetParameterCount(); ++index) {
            const AudioFilterParameterInfo* info = filter->GetParameterInfo(index);
            if (info == nullptr || info->IsReadOnly()) continue;
            EXPECT_FALSE(info->NeedsPrepare() && info->IsAutomatable()) << info->GetID();
            const float before = filter->GetParameterValue(index);
            const std::size_t latency = filter->Latency();
            for (const float value : {0.0F, 1.0F}) {
                filter->SetParameterValue(index, value);
                EXPECT_EQ(filter->Latency(), latency) << info->GetID();
                const bool changes = value != before;
                EXPECT_EQ(filter->NeedsPrepare(), changes && info->NeedsPrepare()) << info->GetID();
                test::Prepare(*filter, kStereo);
                EXPECT_FALSE(filter->NeedsPrepare());
                if (!info->NeedsPrepare()) {
                    EXPECT_EQ(filter->Latency(), latency) << info->GetID();
                }
                filter->SetParameterValue(index, before);
                test::Prepare(*filter, kStereo);
            }
        }
    });
}

TEST(EveryEffect, DescribesItselfForARateBeforeItIsPreparedAsAfterwards) {
    test::ForEveryEffect([](const EffectDescription& effect) {
        for (const float rate : {16000.0F, 192000.0F}) {
            const MadeEffect told = effect.create();
            told->SetSampleRate(rate);
            const MadeEffect prepared = test::Prepared(effect, {rate, 2});
            for (int index = 0; index < told->GetParameterCount(); ++index) {
                const AudioFilterParameterInfo* one = told->GetParameterInfo(index);
                const AudioFilterParameterInfo* other = prepared->GetParameterInfo(index);
                if (one == nullptr) continue;
                EXPECT_EQ(one->GetMinimum(), other->GetMinimum()) << one->GetID();
                EXPECT_EQ(one->GetMaximum(), other->GetMaximum()) << one->GetID();
                EXPECT_EQ(one->GetDefault(), other->GetDefault()) << one->GetID();
                if (!one->IsReadOnly()) {
                    EXPECT_EQ(told->GetParameterValue(index), prepared->GetParameterValue(index)) << one->GetID();
                }
            }
            prepared->SetSampleRate(8000);
            EXPECT_EQ(prepared->GetSampleRate(), rate) << "it is prepared";
        }
    });
}

TEST(EveryEffect, TakesAndGivesACurveAsOneValue) {
    std::size_t curves = 0;
    test::ForEveryEffect([&](const EffectDescription& effect) {
        const MadeEffect filter = test::Prepared(effect, kStereo);
        for (int index = 0; index < filter->GetParameterCount(); ++index) {
            const AudioFilterParameterInfo* info = filter->GetParameterInfo(index);
            const auto isOf = [&](const auto& curve) {
                return info != nullptr && info->GetCurveID() == curve.id &&
                       (index == curve.countIndex ||
                        (index >= curve.firstPoint && index < curve.firstPoint + 2 * curve.mostPoints));
            };
            const bool says = info != nullptr && !info->GetCurveID().empty();
            EXPECT_EQ(std::ranges::any_of(filter->GetCurves(), isOf), says) << index;
        }
        for (std::size_t curve = 0; curve < filter->GetCurves().size(); ++curve, ++curves) {
            const auto& drawn = filter->GetCurves()[curve];
            std::vector<AudioFilterCurvePoint> points;
            for (int point = 0; point < drawn.mostPoints; ++point) {
                const auto at = [&](int index, float part) {
                    const AudioFilterParameterInfo* info = filter->GetParameterInfo(index);
                    return info->GetMinimum() + part * (info->GetMaximum() - info->GetMinimum());
                };
                const float part = static_cast<float>(point + 1) / static_cast<float>(drawn.mostPoints + 1);
                points.push_back({at(drawn.IndexOfX(point), part), at(drawn.IndexOfY(point), 1 - part)});
            }
            for (const std::size_t count : {points.size(), std::size_t{2}, std::size_t{3}}) {
                const std::span<const AudioFilterCurvePoint> some = std::span(points).first(count);
                EXPECT_TRUE(filter->SetCurve(curve, some));
                const auto got = filter->GetCurve(curve);
                ASSERT_EQ(got.size(), count);
                for (std::size_t i = 0; i < count; ++i) {
                    EXPECT_NEAR(got[i].x, some[i].x, 1e-5 * std::abs(some[i].x) + 1e-5);
                    EXPECT_NEAR(got[i].y, some[i].y, 1e-5 * std::abs(some[i].y) + 1e-5);
                }
            }
            const auto before = filter->GetCurve(curve);
            points[1].y = std::numeric_limits<float>::quiet_NaN();
            EXPECT_FALSE(filter->SetCurve(curve, std::span(points).first(2)));
            points[1].y = 0;
            points.push_back(points.back());
            EXPECT_FALSE(filter->SetCurve(curve, points)) << "one too many";
            EXPECT_EQ(filter->GetCurve(curve), before);
        }
    });
    EXPECT_EQ(curves, 3U) << "FFT filter, phase shifter, dynamics";
}

} // namespace
