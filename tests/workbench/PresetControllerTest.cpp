#include "WorkbenchFixture.h"

#include "qoc/components/ParameterIndices.h"

namespace workbench {
namespace {

using kroui::ui::kCommand;
using kroui::ui::Key;
using kroui::ui::kNoModifier;

// The commands of the menu that can be chosen, in its order, while a preset that comes with the effect is current ...
constexpr int kSaveAs = 0;
constexpr int kReset = 1;
// ... while one of the user's is, unchanged ...
constexpr int kDeleteOfUsers = 1;
// ... and changed.
constexpr int kSaveOfUsers = 0;

class PresetControllerTest : public WorkbenchFixture {
protected:
    std::filesystem::path FileOf(const std::string& name) const {
        return fFolder.Path("presets/amplify/" + name + ".json");
    }
    void SaveAs(std::u16string_view name) {
        ChooseFromMenu("presetMenu", kSaveAs);
        fWindow.Type(name);
        PressKey(Key::kEnter);
    }
    // The entry so many places below (or above) the current one.
    void StepPreset(int steps) {
        Node("preset").UI_TakeFocus();
        for (int i = 0; i < std::abs(steps); ++i)
            PressKey(steps > 0 ? Key::kDown : Key::kUp);
    }
};

TEST_F(PresetControllerTest, TakingAPresetIsOneStepAndTheNameFollowsTheSettings) {
    EXPECT_EQ(ValueOf("preset"), "Default");
    const float unity = Gain();
    StepPreset(1); // "+3 dB"
    EXPECT_EQ(ValueOf("preset"), "+3 dB");
    EXPECT_NEAR(Gain(), 99.0F / 144, 1e-6F);
    DragGain(40);
    EXPECT_EQ(ValueOf("preset"), "+3 dB *");
    PressLetter(u'z', kCommand);
    EXPECT_EQ(ValueOf("preset"), "+3 dB");
    PressLetter(u'z', kCommand);
    EXPECT_EQ(ValueOf("preset"), "Default");
    EXPECT_FLOAT_EQ(Gain(), unity);
    EXPECT_FALSE(fSession.History().CanUndo());
    PressLetter(u'y', kCommand);
    ChooseFromMenu("presetMenu", kReset);
    EXPECT_EQ(ValueOf("preset"), "Default");
    EXPECT_FLOAT_EQ(Gain(), unity);
}

TEST_F(PresetControllerTest, OwnPresetsAreSavedChangedTakenAgainAndDeleted) {
    DragGain(40);
    const float mine = Gain();
    SaveAs(u" My voice ");
    EXPECT_EQ(ValueOf("preset"), "My voice");
    EXPECT_TRUE(Node("preset").UI_IsVisible());
    ASSERT_TRUE(std::filesystem::exists(FileOf("My voice")));

    DragGain(20);
    const float changed = Gain();
    ASSERT_NE(changed, mine);
    EXPECT_EQ(ValueOf("preset"), "My voice *");
    ChooseFromMenu("presetMenu", kSaveOfUsers);
    EXPECT_EQ(ValueOf("preset"), "My voice");
    ChooseFromMenu("presetMenu", 2); // Reset to Default, behind Save As and Delete
    EXPECT_NE(Gain(), changed);
    const auto& entries = fSession.Presets().Entries();
    StepPreset(static_cast<int>(entries.size()) - 1);
    EXPECT_EQ(ValueOf("preset"), "My voice");
    EXPECT_FLOAT_EQ(Gain(), changed);

    ChooseFromMenu("presetMenu", kDeleteOfUsers);
    EXPECT_FALSE(std::filesystem::exists(FileOf("My voice")));
    EXPECT_FLOAT_EQ(Gain(), changed);
    EXPECT_NE(ValueOf("preset"), "My voice");
}

// Letter for letter: case, inner spaces, dots, brackets and letters beyond ASCII are the user's.
TEST_F(PresetControllerTest, NamesAreKeptAsTyped) {
    for (const char16_t* const name :
         {u"My Voice", u"my  voice 2", u"K\u00FCche (Bad)", u"v1.2", u"-6 dB, LOUD!", u"\u6697\u3044"}) {
        fSession.Filter()->SetParameterValue(kLeftGain, Gain() - 0.01F);
        fWindow.Advance(kMoment);
        // Behind Save while a preset of the user's is current and changed.
        ChooseFromMenu("presetMenu", fSession.Presets().Current().isUsers ? 1 : kSaveAs);
        fWindow.Type(name);
        PressKey(Key::kEnter);
        const std::string text = krocore::ToStdString(name);
        EXPECT_EQ(ValueOf("preset"), text) << TextOf("message");
        ASSERT_TRUE(std::filesystem::exists(FileOf(text))) << text;
        EXPECT_EQ(fSession.Presets().Read({text, true}).name, text);
        EXPECT_NE(TemporaryFolder::Contents(FileOf(text)).find('"' + text + '"'), std::string::npos);
    }
    EXPECT_EQ(fSession.SavedPresets().Names("amplify").size(), 6U);
}

// Several names for the same settings: the one that was saved or taken last is the one that is shown.
TEST_F(PresetControllerTest, SettingsSavedUnchangedHaveTheNewName) {
    StepPreset(1); // "+3 dB"
    SaveAs(u"Mine");
    EXPECT_EQ(ValueOf("preset"), "Mine");
    SaveAs(u"Mine too"); // the field holds "Mine", selected
    EXPECT_EQ(ValueOf("preset"), "Mine too");
    StepPreset(-1);
    EXPECT_EQ(ValueOf("preset"), "Mine");
    DragGain(20);
    EXPECT_EQ(ValueOf("preset"), "Mine *");
    PressLetter(u'z', kCommand);
    EXPECT_EQ(ValueOf("preset"), "Mine");
    DragGain(20);
    ChooseFromMenu("presetMenu", kSaveOfUsers);
    fView->ChooseEffect(EffectFromName("notch"));
    fView->ChooseEffect(Amplify());
    EXPECT_EQ(ValueOf("preset"), "Mine");
    StepPreset(1);
    EXPECT_EQ(ValueOf("preset"), "Mine too");
    EXPECT_NEAR(Gain(), 99.0F / 144, 1e-6F);
}

TEST_F(PresetControllerTest, NamesThatCannotBeAreRefusedAndEscapeLeavesEverything) {
    SaveAs(u"Mine");
    const std::string before = TemporaryFolder::Contents(FileOf("Mine"));
    DragGain(40);
    for (const char16_t* const name : {u"mine", u"default", u"a/b", u"  "}) {
        // Behind Save, since the preset has changed.
        ChooseFromMenu("presetMenu", 1);
        fWindow.Type(name);
        PressKey(Key::kEnter);
        EXPECT_TRUE(Node("presetName").UI_IsVisible()) << TextOf("message");
        PressKey(Key::kEscape);
        EXPECT_FALSE(Node("presetName").UI_IsVisible());
    }
    EXPECT_EQ(ValueOf("preset"), "Mine *");
    EXPECT_EQ(TemporaryFolder::Contents(FileOf("Mine")), before);
    EXPECT_EQ(fSession.Presets().Entries().back().name, "Mine");
}

TEST_F(PresetControllerTest, ABrokenPresetIsToldOfAndChangesNothing) {
    fFolder.Write("presets/amplify/Broken.json", "{");
    fFolder.Write("presets/amplify/Other.json", R"({"effect": "qoc.Notch", "name": "x"})");
    DragGain(40);
    const float gain = Gain();
    fView->ChooseEffect(EffectFromName("notch"));
    fView->ChooseEffect(Amplify()); // looks at the folder
    for (const char* const named : {"Other", "Broken"}) {
        Click("preset");
        PressKey(Key::kEnd);
        if (std::string(named) == "Broken") PressKey(Key::kUp);
        PressKey(Key::kEnter);
        EXPECT_NE(TextOf("message").find(std::string(named) == "Other" ? "qoc.Notch" : "Broken.json"),
                  std::string::npos)
            << TextOf("message");
        EXPECT_FLOAT_EQ(Gain(), gain);
        EXPECT_EQ(ValueOf("preset"), "Default *");
    }
}

TEST_F(PresetControllerTest, SlotsKeepTwoSettingsAndSwitchingIsOneStep) {
    DragGain(40);
    const float a = Gain();
    Click("slotB"); // a copy at first
    EXPECT_FLOAT_EQ(Gain(), a);
    DragGain(-20);
    const float b = Gain();
    ASSERT_NE(a, b);
    Click("slotA");
    EXPECT_EQ(Gain(), a);
    EXPECT_EQ(ValueOf("slotA"), "on");
    PressLetter(u'a', kNoModifier);
    EXPECT_EQ(Gain(), b);
    EXPECT_EQ(ValueOf("slotB"), "on");
    PressLetter(u'z', kCommand);
    EXPECT_EQ(Gain(), a);
    PressLetter(u'y', kCommand);
    EXPECT_EQ(Gain(), b);
    Click("slotB"); // is on already
    EXPECT_EQ(Gain(), b);
    EXPECT_EQ(ValueOf("slotB"), "on");
}

// Each effect has a slot and settings for both of its own.
TEST_F(PresetControllerTest, SlotsAndNamesFollowTheEffect) {
    DragGain(40);
    const float a = Gain();
    Click("slotB");
    SaveAs(u"Mine");
    fView->ChooseEffect(EffectFromName("notch"));
    fWindow.Advance(kMoment);
    EXPECT_EQ(ValueOf("slotA"), "on");
    EXPECT_EQ(ValueOf("slotB"), "off");
    EXPECT_EQ(ValueOf("preset"), "Default");
    Click("slotB");
    Click("slotA");
    fView->ChooseEffect(Amplify());
    fWindow.Advance(kMoment);
    EXPECT_EQ(ValueOf("slotB"), "on");
    EXPECT_EQ(ValueOf("preset"), "Mine");
    Click("slotA");
    EXPECT_EQ(Gain(), a);
}

TEST_F(PresetControllerTest, WhatCannotChangeWhilePlayingIsTakenTooAndPlayingGoesOn) {
    fView->ChooseEffect(EffectFromName("fftfilter"));
    const auto& filter = *fSession.Filter();
    constexpr int kSize = qoc::components::kFFTFilterSize;
    ASSERT_FALSE(filter.GetParameterInfo(kSize)->IsAutomatable());
    fFolder.Write("presets/fftfilter/Long.json", R"({"effect": "qoc.FFTFilter", "name": "x", "values": {")" +
                                                     filter.GetParameterInfo(kSize)->GetID() + R"(": 1}})");
    fSession.Presets().Refresh();
    PressKey(Key::kSpace);
    fWindow.Advance(1);
    const double position = fSession.Position();
    EXPECT_TRUE(fSession.LoadPreset({"Long", true}).empty());
    EXPECT_EQ(filter.GetParameterValue(kSize), 1.0F);
    EXPECT_TRUE(fSession.Engine().IsPlaying());
    fWindow.Advance(1 + static_cast<double>(filter.Latency()) / filter.GetSampleRate()); // what is heard is as late
    EXPECT_GT(fSession.Position(), position + 0.5);
}

} // namespace
} // namespace workbench
