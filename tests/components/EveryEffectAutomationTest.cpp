#include "EffectWalk.h"

#include <gtest/gtest.h>

#include <cctype>
#include <numbers>

using namespace qoc::components;

namespace {

using kroaudiofilterhost::AudioFilterParameterInfo;
using test::Channels;

constexpr test::Format kFormat = {44100, 2};
constexpr std::size_t kFrames = 12000;

// Two tones that begin softly, so that nothing but the automation is rough.
Channels Tones() {
    constexpr std::size_t kFadeIn = 2000;
    Channels tones = {test::Sine(220, kFrames, kFormat.rate), test::Sine(330, kFrames, kFormat.rate)};
    for (std::vector<float>& tone : tones)
        for (std::size_t i = 0; i < kFadeIn; ++i)
            tone[i] *= static_cast<float>(0.5 - 0.5 * std::cos(std::numbers::pi * static_cast<double>(i) / kFadeIn));
    return tones;
}

// One parameter goes from a tenth to nine tenths of its range, a step every so many frames. The others have their
// defaults with seed 0, and else some of them any value.
Channels Swept(const EffectDescription& effect, int index, std::size_t step, const Channels& input, unsigned seed) {
    const auto filter = effect.create();
    if (seed > 0) test::Shuffle(*filter, seed);
    test::Prepare(*filter, kFormat);
    const auto automate = [&](std::size_t frame) {
        filter->Automate(index, 0.1F + 0.8F * static_cast<float>(frame) / static_cast<float>(kFrames));
        filter->ServeAutomation();
    };
    automate(0);
    filter->Reset();
    Channels output = input;
    for (std::size_t frame = 0; frame < kFrames; frame += step) {
        automate(frame);
        test::Process(*filter, input, output, frame, std::min(frame + step, kFrames), step);
    }
    return output;
}

// The level of what is high in a sound, in decibels: differences, seven in a row, leave 10 kHz 24 dB down and 1 kHz
// 160.
double Roughness(const std::vector<float>& sound) {
    constexpr int kDifferences = 7;
    std::vector<double> rest(sound.begin(), sound.end());
    for (int pass = 0; pass < kDifferences; ++pass)
        for (std::size_t i = rest.size() - 1; i > 0; --i)
            rest[i] = (rest[i] - rest[i - 1]) / 2;
    double energy = 0;
    for (std::size_t i = kFrames / 5; i < rest.size(); ++i)
        energy += rest[i] * rest[i];
    return 10 * std::log10(energy / static_cast<double>(rest.size()) + 1e-20);
}

// Of many that are alike, the first two stand for all.
bool IsOneOfMany(const std::string& id) {
    return std::isdigit(static_cast<unsigned char>(id.back())) != 0 && !id.ends_with('1') && !id.ends_with('2');
}

// Steps of 512 frames against steps of 16, which are as good as none.
TEST(EveryEffect, GlidesWhenAnyOfItsNumbersIsAutomated) {
    constexpr double kMost = 6;         // decibels
    constexpr double kInaudible = -105; // from full scale
    const Channels input = Tones();
    test::ForEveryEffect([&](const EffectDescription& effect) {
        const auto some = effect.create();
        for (int index = 0; index < some->GetParameterCount(); ++index) {
            const AudioFilterParameterInfo* info = some->GetParameterInfo(index);
            if (info == nullptr || !info->IsAutomatable() || info->IsReadOnly() || IsOneOfMany(info->GetID()) ||
                info->GetKind() != AudioFilterParameterInfo::Kind::kNumber)
                continue;
            for (unsigned seed = 0; seed < 3; ++seed) {
                const double coarse = Roughness(Swept(effect, index, 512, input, seed)[0]);
                if (coarse <= kInaudible) continue;
                EXPECT_LE(coarse, kMost + Roughness(Swept(effect, index, 16, input, seed)[0]))
                    << info->GetID() << ", seed " << seed;
            }
        }
    });
}

} // namespace
