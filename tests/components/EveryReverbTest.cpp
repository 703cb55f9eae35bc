#include "EveryVectorTarget.h"
#include "MeasureReverb.h"
#include "qoc/components/FullReverb.h"
#include "qoc/components/ParameterIndices.h"
#include "qoc/components/Reverb.h"
#include "qoc/components/StudioReverb.h"
#include "qoc/dsp/spectrum/RealFFT.h"

#include <gtest/gtest.h>

#include <functional>

using namespace qoc::components;
using kroaudiofilterhost::AudioFilter;
using test::Channels;

// What the three reverbs have in common, at their defaults but for the dry sound.
namespace {

struct Kind {
    const char* name;
    std::function<boost::intrusive_ptr<AudioFilter>()> create;
    int dry; // index of the parameter
    int diffusion;
};

const Kind kKinds[] = {
    {"reverb", [] { return boost::intrusive_ptr<AudioFilter>(new Reverb); }, kReverbDry, kReverbDiffusion},
    {"full reverb", [] { return boost::intrusive_ptr<AudioFilter>(new FullReverb); }, kFullReverbDry,
     kFullReverbDiffusion},
    {"studio reverb", [] { return boost::intrusive_ptr<AudioFilter>(new StudioReverb); }, kStudioReverbDry,
     kStudioReverbDiffusion},
};

void Set(AudioFilter& filter, int index, double natural) {
    filter.SetParameterValue(index, filter.GetParameterInfo(index)->ToNormalised(static_cast<float>(natural)));
}

boost::intrusive_ptr<AudioFilter> Prepared(const Kind& kind, std::size_t channels = 2, float rate = 44100,
                                           double diffusion = -1) {
    boost::intrusive_ptr<AudioFilter> filter = kind.create();
    Set(*filter, kind.dry, 0);
    if (diffusion >= 0) Set(*filter, kind.diffusion, diffusion);
    filter->Prepare(rate, 8192, kromediatypes::AudioChannelLayout::ForChannelCount(channels));
    return filter;
}

// Seconds, from the first sound, until the echoes are nine tenths as dense as noise, and how dense they are in the mean
// of the tenth of a second behind the first 25 ms.
std::pair<double, double> Density(const std::vector<float>& response, double rate) {
    const auto first = std::ranges::find_if(response, [](float sample) { return std::abs(sample) > 1e-9; });
    const std::vector<float> heard(first, response.end());
    double dense = 0.01;
    while (dense < 0.2 && test::EchoDensity(heard, dense, rate) < 0.9)
        dense += 0.001;
    double sum = 0;
    constexpr int kTimes = 20;
    for (int i = 0; i < kTimes; ++i)
        sum += test::EchoDensity(heard, 0.025 + 0.005 * i, rate);
    return {dense, sum / kTimes};
}

// J. S. Abel, P. Huang, "A simple, robust measure of reverberation echo density", AES 121, 2006.
TEST(EveryReverb, IsAsDenseAsNoiseAfterTwentyFiveMillisecondsInEveryChannel) {
    struct Case {
        double diffusion;
        std::size_t channels;
        float rate;
    };
    for (const Kind& kind : kKinds) {
        for (const Case& each : {Case{80, 1, 44100}, Case{80, 1, 96000}, Case{100, 2, 44100}, Case{80, 2, 48000},
                                 Case{80, 6, 48000}, Case{90, 2, 96000}}) {
            const auto filter = Prepared(kind, each.channels, each.rate, each.diffusion);
            const Channels responses = test::ImpulseResponse(*filter, static_cast<std::size_t>(0.25 * each.rate));
            for (std::size_t channel = 0; channel < each.channels; ++channel) {
                if (each.channels == 6 && channel == 3) continue; // low frequency effects
                const auto [dense, mean] = Density(responses[channel], each.rate);
                EXPECT_LE(dense, 0.025) << kind.name << " " << each.rate << " Hz, channel " << channel;
                EXPECT_GE(mean, 0.91) << kind.name << " " << each.rate << " Hz, channel " << channel;
            }
        }
    }
}

TEST(EveryReverb, LeavesSingleEchoesAtNoDiffusion) {
    for (const Kind& kind : kKinds) {
        const Channels responses = test::ImpulseResponse(*Prepared(kind, 2, 44100, 0), 8820);
        EXPECT_LT(test::EchoDensity(responses[0], 0.06, 44100), 0.4) << kind.name;
    }
}

// How far, in decibels, the spectrum of all channels rises over its median in 200 Hz.
double LargestResonance(const Channels& responses, double begin, double rate) {
    constexpr std::size_t kSize = 65536;
    const auto start = static_cast<std::size_t>(begin * rate);
    const qoc::dsp::RealFFT transform(kSize);
    std::vector<double> power(transform.Bins());
    for (const auto& response : responses) {
        std::vector<float> tail(kSize);
        for (std::size_t i = 0; i < kSize; ++i)
            tail[i] = response[start + i] *
                      static_cast<float>(1 - std::cos(2 * std::numbers::pi * static_cast<double>(i) / kSize));
        std::vector<std::complex<float>> spectrum(transform.Bins());
        transform.Forward(tail, spectrum);
        for (std::size_t bin = 0; bin < spectrum.size(); ++bin)
            power[bin] += std::norm(spectrum[bin]);
    }
    const auto binOf = [&](double hertz) { return static_cast<std::ptrdiff_t>(hertz / rate * kSize); };
    double largest = 0;
    for (int hertz = 100; hertz < 16000; hertz += 200) {
        std::vector<double> near(power.begin() + binOf(hertz), power.begin() + binOf(hertz + 200));
        const auto middle = near.begin() + static_cast<std::ptrdiff_t>(near.size() / 2);
        std::ranges::nth_element(near, middle);
        largest = std::max(largest, std::ranges::max(near) / *middle);
    }
    return 10 * std::log10(largest);
}

// Gaussian noise that decays alike has 8.7 to 9.6 dB.
TEST(EveryReverb, HasNoResonanceInTheLateTail) {
    for (const Kind& kind : kKinds) {
        const Channels responses = test::ImpulseResponse(*Prepared(kind), 110000);
        EXPECT_LT(LargestResonance(responses, 0.8, 44100), 12) << kind.name;
    }
}

// By how many cents, from one tenth of a second to the next, the phase of a held tone says that it is another.
double Wander(const std::vector<float>& sound, double hertz, double begin, double rate) {
    constexpr double kStep = 0.1; // seconds
    const auto size = static_cast<std::size_t>(kStep * rate);
    double largest = 0;
    std::complex<double> before;
    for (auto at = static_cast<std::size_t>(begin * rate); at + size <= sound.size(); at += size) {
        std::complex<double> now;
        for (std::size_t i = at; i < at + size; ++i)
            now += double{sound[i]} * std::polar(1.0, -2 * std::numbers::pi * hertz * static_cast<double>(i) / rate);
        const double turns = std::arg(now * std::conj(before)) / (2 * std::numbers::pi);
        if (std::abs(before) > 0) largest = std::max(largest, 1200 * std::abs(std::log2(1 + turns / kStep / hertz)));
        before = now;
    }
    return largest;
}

TEST(EveryReverb, AHeldToneStaysAtItsPitch) {
    constexpr double kHertz = 220;
    const auto tone = test::Sine(kHertz, 264600, 44100);
    for (const Kind& kind : kKinds) {
        const Channels output = test::Processed(*Prepared(kind), {tone, tone});
        EXPECT_LT(Wander(output[0], kHertz, 4, 44100), 1) << kind.name;
    }
}

TEST(EveryReverb, SoundsTheSameWithEveryKindOfVectors) {
    for (const Kind& kind : kKinds) {
        Channels first;
        test::WithEveryVectorTarget([&](const std::string& name) {
            const Channels response = test::ImpulseResponse(*Prepared(kind, 2, 44100, 60), 8820);
            if (first.empty()) first = response;
            EXPECT_TRUE(response == first) << kind.name << " " << name;
        });
    }
}

} // namespace
