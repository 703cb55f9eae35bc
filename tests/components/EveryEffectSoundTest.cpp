#include "EffectWalk.h"
#include "qoc/dsp/stream/ChannelSide.h"

#include <gtest/gtest.h>

#include <ctime>
#include <map>
#include <set>

using namespace qoc::components;
using namespace qoc::dsp;

namespace {

using kroaudiofilterhost::AudioFilter;
using kroaudiofilterhost::AudioFilterParameterInfo;
using test::Channels;
using test::Format;
using test::MadeEffect;
using test::Settings;

constexpr Format kStereo = {44100, 2};

// An effect under shuffled settings, those of seed 0 the defaults.
MadeEffect Shuffled(const EffectDescription& effect, const Format& format, unsigned seed) {
    const MadeEffect filter = test::Prepared(effect, format);
    if (seed > 0) test::Shuffle(*filter, seed);
    test::Prepare(*filter, format);
    return filter;
}

TEST(EveryEffect, TellsItsLatency) {
    test::ForEveryEffect([](const EffectDescription& effect) {
        // Another place for a click than where it came, or none, is what these are for.
        if (effect.shortName == "autoclickremover" || effect.shortName == "doppler") return;
        for (const float rate : {44100.0F, 96000.0F}) {
            const MadeEffect filter = test::Prepared(effect, {rate, 2});
            constexpr std::size_t kAt = 3001;
            const Channels response = test::ImpulseResponse(*filter, kAt + filter->Latency() + 3000, kAt);
            for (const auto& channel : response) {
                const auto first = std::ranges::find_if(channel, [](float value) { return std::abs(value) > 1e-6F; });
                EXPECT_EQ(static_cast<std::size_t>(first - channel.begin()), kAt + filter->Latency()) << rate;
            }
        }
    });
}

// A host that renders the sound with its latency and its tail has all of it.
TEST(EveryEffect, IsSilentAfterItsTail) {
    constexpr std::size_t kLongest = 500000; // what is longer is not waited for
    test::ForEveryEffect([](const EffectDescription& effect) {
        for (unsigned seed = 0; seed < 6; ++seed) {
            const MadeEffect filter = Shuffled(effect, kStereo, seed);
            const Channels sound = test::BusySound(2, 20000, kStereo.rate, seed);
            test::Prepare(*filter, kStereo, 20000);
            const std::size_t tail = filter->Latency() + filter->Tail();
            if (tail > kLongest) continue;
            const double loudest = test::Peak(test::Processed(*filter, sound));
            const Channels silence(2, std::vector<float>(tail + 20000));
            const Channels after = test::Processed(*filter, silence);
            EXPECT_LE(test::Peak(after, tail), 1e-3 * loudest) << "seed " << seed << ", tail " << filter->Tail();
        }
    });
}

// Sound in one channel stays there, and is treated as it would be in the channel of its side of a stereo sound:
// whatever the number of channels, none is taken for another.
TEST(EveryEffect, SoundStaysInItsChannel) {
    // Effects whose purpose is to mix channels; settings of others that do.
    const std::set<std::string_view> kMixing = {"centerchannelextract", "channelmixer", "fullreverb", "reverb",
                                                "stereoexpander",       "studioreverb"};
    const std::map<std::string_view, std::set<std::string>> kMixingSwitches = {
        {"chorus", {"average", "binaural"}}, {"echo", {"bounce"}}, {"graphicphaseshifter", {"channel"}}};
    test::ForEveryEffect([&](const EffectDescription& effect) {
        if (kMixing.contains(effect.shortName)) return;
        for (unsigned seed = 0; seed < 2; ++seed) {
            const Format surround = {22050, 6};
            const MadeEffect model = Shuffled(effect, surround, seed);
            const auto switches = kMixingSwitches.find(effect.shortName);
            for (int index = 0; index < model->GetParameterCount(); ++index) {
                const auto* info = model->GetParameterInfo(index);
                if (info != nullptr && switches != kMixingSwitches.end() && switches->second.contains(info->GetID()))
                    model->SetParameterValue(index, 0);
            }
            const Settings settings = test::SettingsOf(*model);
            // Not where channels have settings of their own, or one of them is listened to.
            const int inStereo = test::Prepared(effect, kStereo)->GetParameterCount();
            const bool alike = model->GetParameterCount() == inStereo && effect.shortName != "pitchcorrect";
            const std::vector<ChannelSide> sides = SidesOf(model->GetInputBuses().front().GetLayout());
            for (std::size_t channel = 0; channel < surround.channels; ++channel) {
                if (sides[channel] == ChannelSide::kMiddle) continue;
                const std::size_t stereoChannel = sides[channel] == ChannelSide::kRight ? 1 : 0;
                const MadeEffect filter = test::Prepared(effect, surround, settings);
                const MadeEffect stereo = test::Prepared(effect, {surround.rate, 2}, settings);
                Channels alone(surround.channels, std::vector<float>(filter->Latency() + 5000));
                Channels aloneInStereo(2, alone[0]);
                alone[channel] = aloneInStereo[stereoChannel] =
                    test::BusySound(1, alone[0].size(), surround.rate, 4)[0];
                const Channels sound = test::Processed(*filter, alone);
                for (std::size_t other = 0; other < surround.channels; ++other) {
                    EXPECT_TRUE(other == channel || test::Peak({sound[other]}) == 0) << channel << " in " << other;
                }
                if (!alike) continue;
                EXPECT_TRUE(sound[channel] == test::Processed(*stereo, aloneInStereo)[stereoChannel])
                    << "channel " << channel << ", seed " << seed;
            }
        }
    });
}

// Of this thread, in seconds.
double ProcessorTime() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

// The least that any of some turns takes: others that use the processor only ever add to it.
double Cost(AudioFilter& filter, const Channels& sound, int turns) {
    double least = 1;
    for (int turn = 0; turn < turns; ++turn) {
        const double start = ProcessorTime();
        test::Processed(filter, sound, 1000);
        least = std::min(least, ProcessorTime() - start);
    }
    return least;
}

// What decays for a minute costs no more than sound, and when it is over, nothing is left of it: a sound is what it was
// at the start, and sweeps stand where their rates put them.
TEST(EveryEffect, AMinuteOfSilenceCostsNothingAndLeavesNothing) {
    constexpr Format kSlow = {8000, 2};
    constexpr int kTurns = 4;
    constexpr int kRounds = 15;
    constexpr std::size_t kPiece = 10000; // all turns together: whole rounds of the default sweeps
    const Channels sound = test::BusySound(2, kPiece, kSlow.rate, 3);
    const Channels silence(2, std::vector<float>(kPiece));
    // Not as at the start: a way, a room that moves, where grains begin, and what was learnt of noise and delay.
    const std::set<std::string_view> kElsewhere = {"adaptivenoisereduction", "autophasecorrection", "doppler",
                                                   "pitchcorrect", "studioreverb"};
    test::ForEveryEffect([&](const EffectDescription& effect) {
        const MadeEffect filter = test::Prepared(effect, kSlow);
        const double early = Cost(*filter, sound, kTurns);
        double silent = 0;
        for (int round = 0; round < kRounds; ++round)
            silent = std::max(silent, Cost(*filter, silence, kTurns));
        EXPECT_LT(silent, 5 * early + 1e-4);
        const Channels expected = test::Processed(*test::Prepared(effect, kSlow), sound);
        const double difference = test::Difference(test::Processed(*filter, sound), expected);
        EXPECT_TRUE(kElsewhere.contains(effect.shortName) || difference < 1e-4) << difference;
    });
}

} // namespace
