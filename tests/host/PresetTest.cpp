#include "FullDisk.h"
#include "host/FactoryPresets.h"
#include "host/UndoHistory.h"
#include "host/UserPresets.h"
#include "krocore/config/Error.h"
#include "qoc/components/ComponentIDs.h"
#include "qoc/components/ParameterIndices.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <random>
#include <unistd.h>

using namespace qohost;
using kroaudiofilterhost::AudioFilter;
using qoc::components::CreateEffect;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

std::vector<float> ValuesOf(const AudioFilter& filter) {
    std::vector<float> values;
    for (int index = 0; index < filter.GetParameterCount(); ++index)
        values.push_back(filter.GetParameterValue(index));
    return values;
}

// The message of the error that the call throws.
template <typename Call>
std::string ErrorOf(const Call& call) {
    try {
        call();
    } catch (const krocore::config::Error& error) {
        return error.what();
    }
    return "no error";
}

class PresetTest : public testing::Test {
protected:
    static constexpr int kLink = 1;
    static constexpr int kGain1 = 2; // -96 ... 48 dB
    static constexpr int kGain2 = 3;

    boost::intrusive_ptr<AudioFilter> fAmplify = CreateEffect(qoc::components::kAmplifyComponentID);
};

TEST_F(PresetTest, ValuesComeInBothFormsAndTheRestIsDefault) {
    fAmplify->SetParameterValue(kGain2, 0.125F);
    const auto notes = ApplyPreset(*fAmplify, ParsePreset(R"({"effect": "qoc.Amplify", "name": "x", "author": [1],
        "natural": {"gain1": -24, "link": false}})"));
    EXPECT_THAT(notes, IsEmpty());
    EXPECT_FLOAT_EQ(fAmplify->GetParameterValue(kGain1), 0.5F);
    EXPECT_EQ(fAmplify->GetParameterValue(kLink), 0.0F);
    EXPECT_FLOAT_EQ(fAmplify->GetParameterValue(kGain2), 2.0F / 3); // 0 dB
    ApplyPreset(*fAmplify, ParsePreset(R"({"effect": "qoc.Amplify", "name": "x", "values": {"gain2": 1.25}})"));
    EXPECT_EQ(fAmplify->GetParameterValue(kGain2), 1.25F);
    EXPECT_EQ(fAmplify->GetParameterValue(kLink), 1.0F);
}

TEST_F(PresetTest, WhatCannotBeTakenIsTold) {
    const auto notes = ApplyPreset(*fAmplify, ParsePreset(R"({"effect": "qoc.Amplify", "name": "x",
        "natural": {"gain1": 60, "volume": 3, "channels": 1, "gain2": -24}})"));
    EXPECT_THAT(notes, ElementsAre(R"("gain1" goes no further than 48 dB.)",
                                   R"(There is nothing to set that is called "channels".)",
                                   R"(There is nothing to set that is called "volume".)"));
    EXPECT_EQ(fAmplify->GetParameterValue(kGain1), 1.0F);
    EXPECT_FLOAT_EQ(fAmplify->GetParameterValue(kGain2), 0.5F);
}

TEST_F(PresetTest, FaultsAreNamedAndNothingChanges) {
    struct Case {
        const char* json;
        const char* named;
    };
    const Case cases[] = {
        {"", "no preset"},
        {"{\"effect\":", "line 1"},
        {"[]", "object"},
        {R"({"name": "x"})", "\"effect\""},
        {R"({"effect": "qoc.Amplify"})", "\"name\""},
        {R"({"effect": "qoc.Amplify", "name": "x", "values": [1]})", "\"values\""},
        {R"({"effect": "qoc.Amplify", "name": "x", "values": {"gain1": 1e60}})", "1e60"},
        {R"({"effect": "qoc.Amplify", "name": "x", "values": {"gain1": NaN}})", "no preset"},
        {R"({"effect": "qoc.Amplify", "name": "x", "values": {"gain1": null}})", "gain1"},
        {R"({"effect": "qoc.Amplify", "name": "x", "values": {"gain1": true}})", "gain1"},
        {R"({"effect": "qoc.Amplify", "name": "x", "values": {"gain1": 0}, "natural": {"gain1": 0}})", "two values"},
        {R"({"effect": "qoc.Amplify", "name": "x", "natural": {"gain1": 0.1, "link": 2}})", "\"link\""},
        {R"({"effect": "qoc.Notch", "name": "x", "values": {"gain1": 0}})", "qoc.Notch"},
    };
    const std::vector<float> before = ValuesOf(*fAmplify);
    for (const Case& c : cases) {
        EXPECT_THAT(ErrorOf([&] { ApplyPreset(*fAmplify, ParsePreset(c.json)); }), HasSubstr(c.named)) << c.json;
        EXPECT_EQ(ValuesOf(*fAmplify), before) << c.json;
    }
    Preset broken{.name = "x", .effect = "qoc.Amplify", .values = {}};
    broken.values["gain1"].number = std::numeric_limits<float>::infinity();
    EXPECT_THAT(ErrorOf([&] { ApplyPreset(*fAmplify, broken); }), HasSubstr("gain1"));
    EXPECT_EQ(ValuesOf(*fAmplify), before);
}

TEST_F(PresetTest, DepthRepetitionsAndMessagesAreBounded) {
    const std::string start = R"({"effect": "qoc.Amplify", "name": "x", )";
    const auto repeated = [](const char* text, int times) {
        std::string all;
        for (int i = 0; i < times; ++i)
            all += text;
        return all;
    };
    EXPECT_NO_THROW(ParsePreset(start + R"("author": )" + repeated("[", 10) + repeated("]", 10) + "}"));
    // The same names in different objects are not twice the same.
    EXPECT_NO_THROW(
        ParsePreset(R"({"a": {"name": {"a": 1}}, "b": {"name": 1}, "name": "x", "effect": "qoc.Amplify"})"));
    for (const auto& [open, close] : {std::pair{"[", "]"}, std::pair{R"({"a":)", "}"}}) {
        const std::string nested = repeated(open, 500000) + "1" + repeated(close, 500000);
        for (const char* const place : {R"("author": )", R"("values": )", R"("values": {"gain1": )"})
            EXPECT_THAT(ErrorOf([&] { ParsePreset(start + place + nested); }), HasSubstr("nested too deeply"));
    }
    for (const char* const twice : {R"("name": "y"})", R"("values": {"gain1": 0, "gain1": 0}})"})
        EXPECT_THAT(ErrorOf([&] { ParsePreset(start + twice); }), HasSubstr("says twice"));

    const std::string longWord(1000000, 'w');
    std::string unknown;
    for (int i = 0; i < 100000; ++i)
        unknown += (i == 0 ? "\"" : ", \"") + longWord.substr(0, 100) + std::to_string(i) + "\": 0";
    const auto notes = ApplyPreset(*fAmplify, ParsePreset(start + R"("values": {)" + unknown + "}}"));
    ASSERT_EQ(notes.size(), 21U);
    EXPECT_THAT(notes.back(), HasSubstr("99980"));
    for (const std::string& note : notes)
        EXPECT_LT(note.size(), 200U);
    for (const std::string& wrong :
         {longWord, start + R"("values": {"gain1": ")" + longWord + "\"}}",
          start + R"("values": {")" + longWord + "\": []}}", R"({"name": "x", "effect": ")" + longWord + "\"}"})
        EXPECT_LT(ErrorOf([&] { ApplyPreset(*fAmplify, ParsePreset(wrong)); }).size(), 300U);
}

TEST_F(PresetTest, FilesKeepEveryBit) {
    for (const float value : {0.1F, 1.0F / 3, 1e-30F, -0.0F, 1.3654F, std::nextafter(0.5F, 1.0F)}) {
        fAmplify->SetParameterValue(kGain1, value);
        const std::string json = WritePreset(CapturePreset(*fAmplify, "na\"me \xC3\xA4"));
        const Preset preset = ParsePreset(json);
        EXPECT_EQ(preset.name, "na\"me \xC3\xA4");
        const float read = preset.values.at("gain1").number;
        EXPECT_EQ(read, value);
        EXPECT_EQ(std::signbit(read), std::signbit(fAmplify->GetParameterValue(kGain1)));
    }
    fAmplify->SetParameterValue(kGain1, 0.1F);
    EXPECT_THAT(WritePreset(CapturePreset(*fAmplify, "x")), HasSubstr("\"gain1\": 0.1,"));
}

TEST_F(PresetTest, FrequenciesAreKeptInHertzAtWhateverSampleRate) {
    // Normalised = (hertz - 0.5) / Nyquist.
    const auto notch = CreateEffect(qoc::components::kNotchComponentID);
    const auto stereo = kromediatypes::AudioChannelLayout::Stereo();
    notch->Prepare(44100, 512, stereo);
    notch->SetParameterValue(0, 999.5F / 22050);
    const Preset preset = ParsePreset(WritePreset(CapturePresetForAnyRate(*notch, "x")));
    EXPECT_TRUE(HasSettingsOf(*notch, preset));
    notch->Prepare(96000, 512, stereo);
    EXPECT_FALSE(HasSettingsOf(*notch, preset));
    EXPECT_THAT(ApplyPreset(*notch, preset), IsEmpty());
    EXPECT_NEAR(notch->GetParameterValue(0), 999.5F / 48000, 1e-7F);
    EXPECT_TRUE(HasSettingsOf(*notch, preset));
}

TEST_F(PresetTest, UsersPresetsAreFilesOfAFolderAnEffect) {
    const auto folder = std::filesystem::temp_directory_path() / ("presets-" + std::to_string(getpid()));
    const UserPresets presets(folder / "made" / "when needed");
    EXPECT_THAT(presets.Names("amplify"), IsEmpty());
    fAmplify->SetParameterValue(kGain1, 0.25F);
    for (const char* const name : {"b", "A\xC3\xA4 (2)", "B"})
        presets.Write("amplify", CapturePreset(*fAmplify, name));
    EXPECT_THAT(presets.Names("amplify"), ElementsAre("A\xC3\xA4 (2)", "B", "b"));
    EXPECT_THAT(presets.Names("notch"), IsEmpty());
    // A file that was renamed is the preset of its new name; others don't count.
    std::filesystem::rename(presets.FileOf("amplify", "b"), folder / "made/when needed/amplify/c.json");
    std::filesystem::create_directory(folder / "made/when needed/amplify/d.json");
    EXPECT_THAT(presets.Names("amplify"), ElementsAre("A\xC3\xA4 (2)", "B", "c"));
    EXPECT_EQ(presets.Read("amplify", "c").name, "c");
    EXPECT_EQ(presets.Read("amplify", "c").values.at("gain1").number, 0.25F);
    presets.Remove("amplify", "c");
    EXPECT_FALSE(presets.Has("amplify", "c"));
    const std::string longest(200, 'n');
    presets.Write("amplify", CapturePreset(*fAmplify, longest));
    EXPECT_TRUE(presets.Has("amplify", longest));
    for (const std::string& name :
         {std::string(), longest + "n", std::string("../x"), std::string("a/b"), std::string(".x"), std::string("x."),
          std::string("x "), std::string("con:"), std::string("a\nb")}) {
        EXPECT_FALSE(presets.Has("amplify", name)) << name;
        EXPECT_THAT(ErrorOf([&] { presets.Write("amplify", CapturePreset(*fAmplify, name)); }), HasSubstr("name"));
    }
    std::filesystem::remove_all(folder);
    // Where a file stands in place of the folder.
    std::ofstream(folder) << "x";
    EXPECT_THAT(ErrorOf([&] { presets.Write("amplify", CapturePreset(*fAmplify, "x")); }), HasSubstr("folder"));
    std::filesystem::remove(folder);
}

TEST_F(PresetTest, FileErrorsNameTheFile) {
    const auto folder = std::filesystem::temp_directory_path() / ("preset-" + std::to_string(getpid()));
    EXPECT_THAT(ErrorOf([&] { ReadPresetFile(folder); }), HasSubstr(folder.string()));
    const Preset preset = CapturePreset(*fAmplify, "x");
    EXPECT_THAT(ErrorOf([&] { WritePresetFile(folder / "a.json", preset); }), HasSubstr("a.json"));
    std::filesystem::create_directory(folder);
    EXPECT_THAT(ErrorOf([&] { ReadPresetFile(folder); }), HasSubstr("can't be read"));
    WritePresetFile(folder / "a.json", preset);
    EXPECT_EQ(WritePreset(ReadPresetFile(folder / "a.json")), WritePreset(preset));
    std::filesystem::remove_all(folder);
}

TEST_F(PresetTest, IsOneStepOfUndo) {
    UndoHistory history(fAmplify);
    const std::vector<float> before = ValuesOf(*fAmplify);
    ApplyPreset(*fAmplify, ParsePreset(R"({"effect": "qoc.Amplify", "name": "x",
        "natural": {"gain1": -6, "gain2": 6, "link": false}})"));
    ASSERT_TRUE(history.Undo());
    EXPECT_EQ(ValuesOf(*fAmplify), before);
    EXPECT_FALSE(history.CanUndo());
    // The defaults over the defaults are no step.
    ASSERT_TRUE(history.Redo());
    ASSERT_TRUE(history.Undo());
    ApplyPreset(*fAmplify, ParsePreset(R"({"effect": "qoc.Amplify", "name": "x"})"));
    EXPECT_FALSE(history.CanUndo());
}

TEST_F(PresetTest, WhileTheEngineRunsSomeParametersStay) {
    const auto filter = CreateEffect(qoc::components::kFFTFilterComponentID);
    const float size = filter->GetParameterValue(qoc::components::kFFTFilterSize);
    filter->SetCanChangeNonAutomatableParameters(false);
    const auto notes = ApplyPreset(*filter, ParsePreset(R"({"effect": "qoc.FFTFilter", "name": "x",
        "natural": {"fftSize": 0, "level1": 0}})"));
    EXPECT_THAT(notes, ElementsAre(HasSubstr("\"fftSize\"")));
    EXPECT_EQ(filter->GetParameterValue(qoc::components::kFFTFilterSize), size);
    EXPECT_EQ(filter->GetParameterValue(qoc::components::kFFTFilterFirstPoint + 1), 0.0F);
}

TEST_F(PresetTest, EveryEffectHasPresetsThatItTakes) {
    for (const auto& effect : qoc::components::AllEffects()) {
        if (effect.create == nullptr) continue;
        SCOPED_TRACE(std::string(effect.shortName));
        const std::vector<Preset> presets = FactoryPresets(effect);
        ASSERT_GE(presets.size(), 3U);
        EXPECT_EQ(presets.front().name, "Default");
        const auto filter = effect.create();
        std::vector<std::vector<float>> all = {ValuesOf(*filter)};
        for (const Preset& preset : presets) {
            SCOPED_TRACE(preset.name);
            EXPECT_THAT(ApplyPreset(*filter, preset), IsEmpty());
            if (preset.name != "Default") {
                EXPECT_THAT(all, testing::Not(testing::Contains(ValuesOf(*filter))));
                all.push_back(ValuesOf(*filter));
            }
            const auto copy = effect.create();
            ApplyPreset(*copy, ParsePreset(WritePreset(CapturePreset(*filter, preset.name))));
            EXPECT_EQ(ValuesOf(*copy), ValuesOf(*filter));
        }
        ApplyPreset(*filter, presets.front());
        EXPECT_EQ(ValuesOf(*filter), all.front());
    }
}

// Whatever can be set of any effect, at both ends of its range.
TEST_F(PresetTest, EndsOfEveryRangeAndChoiceAreTakenAndNothingBeyond) {
    for (const auto& effect : qoc::components::AllEffects()) {
        if (effect.create == nullptr) continue;
        const auto filter = effect.create();
        for (int index = 0; index < filter->GetParameterCount(); ++index) {
            const auto* const info = filter->GetParameterInfo(index);
            if (info == nullptr || info->IsReadOnly()) continue;
            SCOPED_TRACE(std::string(effect.shortName) + " " + info->GetID());
            Preset preset{.name = "x", .effect = krocore::ToStdString(filter->GetComponentID()), .values = {}};
            using Kind = kroaudiofilterhost::AudioFilterParameterInfo::Kind;
            if (info->GetKind() == Kind::kNumber) {
                for (const float end : {0.0F, 1.0F}) {
                    const float natural = info->ToNatural(end);
                    if (!std::isfinite(natural)) continue;
                    preset.values[info->GetID()] = {.number = natural, .isNatural = true};
                    EXPECT_THAT(ApplyPreset(*filter, preset), IsEmpty());
                    EXPECT_NEAR(filter->GetParameterValue(index), end, 1e-5F);
                }
                continue;
            }
            const int items = info->GetKind() == Kind::kSwitch ? 2 : info->GetItemCount();
            for (const int item : {0, items - 1}) {
                preset.values[info->GetID()] = {.number = static_cast<float>(item), .isNatural = true};
                EXPECT_THAT(ApplyPreset(*filter, preset), IsEmpty());
                const float value = filter->GetParameterValue(index);
                if (info->GetKind() == Kind::kChoice) {
                    EXPECT_EQ(info->ToItem(value), item);
                } else {
                    EXPECT_EQ(value, static_cast<float>(item));
                }
            }
            for (const float beyond : {-1.0F, static_cast<float>(items), 0.5F}) {
                preset.values[info->GetID()] = {.number = beyond, .isNatural = true};
                EXPECT_THAT(ErrorOf([&] { ApplyPreset(*filter, preset); }), HasSubstr(info->GetID())) << beyond;
            }
        }
    }
}

TEST_F(PresetTest, EveryParameterCountsInAComparison) {
    for (const auto& effect : qoc::components::AllEffects()) {
        if (effect.create == nullptr) continue;
        const auto filter = effect.create();
        const Preset preset = CapturePreset(*filter, "x");
        EXPECT_TRUE(HasSettingsOf(*filter, preset)) << effect.shortName;
        for (int index = 0; index < filter->GetParameterCount(); ++index) {
            const auto* const info = filter->GetParameterInfo(index);
            if (info == nullptr || info->IsReadOnly()) continue;
            const float before = filter->GetParameterValue(index);
            filter->SetParameterValueQuietly(index, before < 0.5F ? before + 0.25F : before - 0.25F);
            EXPECT_FALSE(HasSettingsOf(*filter, preset)) << effect.shortName << " " << info->GetID();
            filter->SetParameterValueQuietly(index, before);
        }
    }
}

TEST_F(PresetTest, AStateBringsBackEveryEffectAsOneChange) {
    std::mt19937 generator(1);
    std::uniform_real_distribution<float> value(0, 1);
    for (const auto& effect : qoc::components::AllEffects()) {
        if (effect.create == nullptr) continue;
        SCOPED_TRACE(std::string(effect.shortName));
        const auto filter = effect.create();
        filter->Prepare(44100, 512, kromediatypes::AudioChannelLayout::Stereo());
        for (int index = 0; index < filter->GetParameterCount(); ++index)
            if (filter->GetParameterInfo(index) != nullptr) filter->SetParameterValue(index, value(generator));
        const std::string state = SaveState(*filter);
        const auto other = effect.create();
        UndoHistory history(other);
        EXPECT_THAT(LoadState(*other, state), IsEmpty());
        EXPECT_TRUE(HasSettingsOf(*other, CapturePresetForAnyRate(*filter, {})));
        EXPECT_EQ(other->GetCurves().empty(), state.find("curves") == std::string::npos);
        if (!other->GetCurves().empty()) {
            const auto expected = filter->GetCurve(0);
            const auto curve = other->GetCurve(0);
            ASSERT_EQ(curve.size(), expected.size());
            for (std::size_t i = 0; i < curve.size(); ++i) {
                EXPECT_NEAR(curve[i].x, expected[i].x, 1e-6 * std::abs(expected[i].x) + 1e-6);
                EXPECT_NEAR(curve[i].y, expected[i].y, 1e-5);
            }
        }
        EXPECT_TRUE(history.Undo());
        EXPECT_FALSE(history.CanUndo());
        other->SetCanChangeNonAutomatableParameters(true);
    }
}

TEST_F(PresetTest, CurvesGoBeforeTheirParametersAndAreChecked) {
    const auto filter = CreateEffect(qoc::components::kDynamicsComponentID);
    const std::string start = R"({"effect": "qoc.Dynamics", "name": "x", )";
    // As lists from before curves had them.
    EXPECT_THAT(ApplyPreset(*filter, ParsePreset(start + R"("natural": {"pointCount": 3, "pointInput2": -40}})")),
                IsEmpty());
    ASSERT_EQ(filter->GetCurve(0).size(), 3U);
    EXPECT_NEAR(filter->GetCurve(0)[1].x, -40, 1e-4);
    const auto notes = ApplyPreset(*filter, ParsePreset(start + R"("natural": {"pointCount": 5}, "curves": {"other": [],
        "curve": [[-100, -90], [-200, 0]]}})"));
    ASSERT_EQ(filter->GetCurve(0).size(), 2U);
    EXPECT_NEAR(filter->GetCurve(0)[0].y, -90, 1e-4);
    EXPECT_THAT(notes, ElementsAre(HasSubstr("pointInput2"), HasSubstr("\"other\"")));
    const auto before = ValuesOf(*filter);
    const std::pair<std::string, const char*> wrong[] = {
        {R"("curves": []})", "curves"},
        {R"("curves": {"curve": 1}})", "curve"},
        {R"("curves": {"curve": [[1, 2, 3]]}})", "curve"},
        {R"("curves": {"curve": [[1, "x"]]}})", "curve"},
        {R"("curves": {"curve": [[0,0],[0,0],[0,0],[0,0],[0,0],[0,0],[0,0]]}})", "6 points"},
        {R"("version": 2})", "later program"},
        {R"("version": "new"})", "later program"},
    };
    for (const auto& [members, told] : wrong)
        EXPECT_THAT(ErrorOf([&] { ApplyPreset(*filter, ParsePreset(start + members)); }), HasSubstr(told)) << members;
    EXPECT_EQ(ValuesOf(*filter), before);
}

TEST_F(PresetTest, AFullDiskKeepsTheOldPreset) {
    const auto folder = std::filesystem::temp_directory_path() / ("preset-full-" + std::to_string(getpid()));
    const UserPresets presets(folder);
    presets.Write("amplify", CapturePreset(*fAmplify, "x"));
    const std::string before = WritePreset(presets.Read("amplify", "x"));
    fAmplify->SetParameterValue(kGain1, 0.1F);
    {
        const FullDisk full(20);
        EXPECT_THAT(ErrorOf([&] { presets.Write("amplify", CapturePreset(*fAmplify, "x")); }), HasSubstr("can't be"));
    }
    EXPECT_EQ(WritePreset(presets.Read("amplify", "x")), before);
    EXPECT_THAT(presets.Names("amplify"), ElementsAre("x"));
    std::filesystem::remove_all(folder);
}

TEST_F(PresetTest, FactoryCurveSoundsAsItsNameSays) {
    // Telephone: nothing at 100 Hz and 8 kHz, unity at 1 kHz.
    const auto filter = CreateEffect(qoc::components::kFFTFilterComponentID);
    filter->Prepare(48000, 512, kromediatypes::AudioChannelLayout::Stereo());
    ApplyPreset(*filter, FactoryPresets(*qoc::components::FindEffectByShortName("fftfilter")).at(1));
    const auto response = [&](double hertz) {
        std::vector<float> decibels;
        EXPECT_TRUE(filter->GetMagnitudeResponse(1, {.start = hertz, .end = hertz, .logarithmic = false}, decibels));
        return decibels.front();
    };
    EXPECT_LT(response(100), -50);
    EXPECT_NEAR(response(1000), 0, 0.1);
    EXPECT_LT(response(8000), -50);
}

} // namespace
