#include "EffectWalk.h"

#include <gtest/gtest.h>

#include <set>

using namespace qoc::components;

namespace {

using kroaudiofilterhost::AudioFilter;
using kroaudiofilterhost::AudioFilterParameterInfo;
using test::Channels;
using test::Format;
using test::MadeEffect;
using test::Settings;

constexpr Format kStereo = {44100, 2};

bool MayChange(const AudioFilterParameterInfo* info) {
    return info != nullptr && !info->IsReadOnly() && info->IsAutomatable();
}

// Another value for a parameter: the other side of a switch, another item, its default, or from there a step of a tenth
// of the range as automation would make it.
float Changed(const AudioFilterParameterInfo& info, float value, std::mt19937& generator) {
    using enum AudioFilterParameterInfo::Kind;
    constexpr float kStep = 0.1F;
    if (info.GetKind() == kSwitch) return value < 0.5F ? 1.0F : 0.0F;
    if (info.GetKind() == kChoice) {
        std::uniform_int_distribution<int> item(1, info.GetItemCount() - 1);
        return info.FromItem((info.ToItem(value) + item(generator)) % info.GetItemCount());
    }
    if (value != info.GetDefault()) return info.GetDefault();
    return value < 0.5F ? value + kStep : value - kStep;
}

// Sets about a third of the parameters that may change while sound runs, but for those named.
void ShuffleAutomatable(AudioFilter& filter, unsigned seed, const std::set<std::string>& except = {}) {
    std::mt19937 generator(seed);
    std::uniform_real_distribution<float> value(0, 1);
    for (int index = 0; index < filter.GetParameterCount(); ++index) {
        const AudioFilterParameterInfo* const info = filter.GetParameterInfo(index);
        if (MayChange(info) && value(generator) < 0.34F && !except.contains(info->GetID()))
            filter.SetParameterValue(index, value(generator));
    }
}

// The sharpest bend of a channel's sound.
double Sharpness(const Channels& sound, std::size_t begin) {
    double sharpest = 0;
    for (const auto& channel : sound)
        sharpest = std::max(sharpest, test::Roughness(channel, begin, channel.size()));
    return sharpest;
}

// An effect before, with and after the change of one parameter while sound runs.
class OneChange {
public:
    OneChange(const EffectDescription& effect, const Settings& settings)
        : fEffect(effect), fSettings(settings), fBefore(test::Prepared(effect, kStereo, settings)),
          fAt(fBefore->Latency() + 6000), fInput(test::SmoothSound(2, fAt + fBefore->Latency() + 9000, kStereo.rate)),
          fOld(test::Processed(*fBefore, fInput)) {}

    void Expect(int index, float value) {
        Settings settings = fSettings;
        settings[static_cast<std::size_t>(index)] = value;
        const Channels then = test::Processed(*test::Prepared(fEffect, kStereo, settings), fInput);
        const Channels sound = Hear(index, value);
        const std::string what = fBefore->GetParameterInfo(index)->GetID() + " to " + std::to_string(value);
        // What makes no difference is not heard when it moves either.
        if (fOld == then) {
            EXPECT_TRUE(sound == fOld) << what;
            return;
        }
        // A jump by a part in 2000 of the sound would bend it more than this.
        const double calm = std::max(Sharpness(fOld, fAt), Sharpness(then, fAt));
        const double peak = std::max(test::Peak(fOld, fAt), test::Peak(then, fAt));
        EXPECT_LT(Sharpness(sound, fAt), 4 * calm + 5e-4 * peak) << what << ", calm " << calm << ", peak " << peak;
    }

private:
    Channels Hear(int index, float value) {
        const MadeEffect filter = test::Prepared(fEffect, kStereo, fSettings);
        Channels sound = fInput;
        test::Process(*filter, fInput, sound, 0, fAt, 512);
        filter->SetParameterValue(index, value);
        test::Process(*filter, fInput, sound, fAt, fInput.front().size(), 512);
        return sound;
    }

    const EffectDescription& fEffect;
    Settings fSettings;
    MadeEffect fBefore;
    std::size_t fAt;
    Channels fInput;
    Channels fOld;
};

TEST(EveryEffect, NoChangeClicksAndWhatHasNoSayMakesNoSound) {
    constexpr int kMostNumbers = 14; // of one effect at once: the others come with other seeds
    test::ForEveryEffect([](const EffectDescription& effect) {
        for (unsigned seed = 0; seed < 2; ++seed) {
            const MadeEffect filter = test::Prepared(effect, kStereo);
            if (seed > 0) ShuffleAutomatable(*filter, seed);
            const Settings settings = test::SettingsOf(*filter);
            OneChange change(effect, settings);
            std::mt19937 generator(seed + 50);
            const int stride = filter->GetParameterCount() / kMostNumbers + 1;
            for (int index = 0; index < filter->GetParameterCount(); ++index) {
                const AudioFilterParameterInfo* const info = filter->GetParameterInfo(index);
                if (!MayChange(info)) continue;
                const bool isNumber = info->GetKind() == AudioFilterParameterInfo::Kind::kNumber;
                if (isNumber && index % stride != static_cast<int>(seed) % stride) continue;
                change.Expect(index, Changed(*info, settings[static_cast<std::size_t>(index)], generator));
            }
        }
    });
}

// Once the sound from before is forgotten an effect is where one with these settings from the start is: its sound, what
// it tells and what its graph shows.
TEST(EveryEffect, ComesToRestWhereItsSettingsAre) {
    // These keep what they have found in the sound (noise, a delay, places to splice) for the sound that follows.
    const std::set<std::string_view> kLearning = {"adaptivenoisereduction", "autophasecorrection", "pitchcorrect",
                                                  "pitchshift"};
    // Settings that say how long the sound before is remembered, or how fast something has moved on until now.
    const std::set<std::string> kLasting = {"rate",    "levelRate",      "decay",          "attack",
                                            "release", "detectorAttack", "detectorRelease"};
    constexpr Format kSlow = {16000, 2}; // few samples take long
    test::ForEveryEffect([&](const EffectDescription& effect) {
        if (kLearning.contains(effect.shortName)) return;
        for (unsigned seed = 1; seed <= 4; ++seed) {
            const MadeEffect filter = test::Prepared(effect, kSlow);
            const std::size_t piece = filter->Latency() + 4000;
            const Channels sound = test::BusySound(2, piece, kSlow.rate, seed);
            for (unsigned change = 0; change < 3; ++change) {
                test::Processed(*filter, sound);
                ShuffleAutomatable(*filter, 10 * seed + change, kLasting);
            }
            // To and fro, so quickly that the one change is still under way when the other comes.
            const Settings last = test::SettingsOf(*filter);
            test::Processed(*filter, sound);
            ShuffleAutomatable(*filter, 10 * seed + 5, kLasting);
            test::Processed(*filter, Channels(2, std::vector<float>(100)));
            test::Apply(*filter, last);
            const MadeEffect other = test::Prepared(effect, kSlow, test::SettingsOf(*filter));
            for (int i = 0; i < 4; ++i)
                test::Processed(*other, sound);
            test::Processed(*other, Channels(2, std::vector<float>(100)));
            const std::size_t rest = std::min<std::size_t>(filter->Latency() + filter->Tail() + 14000, 400000);
            for (const MadeEffect& one : {filter, other}) {
                test::Processed(*one, sound);
                test::Processed(*one, Channels(2, std::vector<float>(rest)));
            }
            const Channels expected = test::Processed(*other, sound);
            EXPECT_LE(test::Difference(test::Processed(*filter, sound), expected), 1e-3 * test::Peak(expected)) << seed;
            // It counts since the start.
            EXPECT_TRUE(effect.shortName == "autoclickremover" || test::SettingsOf(*filter) == test::SettingsOf(*other))
                << seed;
            std::vector<float> response;
            std::vector<float> expectedResponse;
            filter->GetMagnitudeResponse(50, {20, 8000, true}, response);
            other->GetMagnitudeResponse(50, {20, 8000, true}, expectedResponse);
            EXPECT_EQ(response, expectedResponse) << seed;
        }
    });
}

} // namespace
