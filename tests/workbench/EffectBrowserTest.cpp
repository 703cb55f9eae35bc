#include "WorkbenchFixture.h"

namespace workbench {
namespace {

using kroui::ui::kCommand;
using kroui::ui::Key;

class EffectBrowserTest : public WorkbenchFixture {
protected:
    std::string Shown() {
        std::string names;
        for (const auto* const effect : Effects()) {
            if (Node("effect-" + std::string(effect->shortName)).UI_IsVisible()) {
                names += effect->shortName;
                names += ' ';
            }
        }
        return names;
    }
};

TEST_F(EffectBrowserTest, TypingFiltersByNameAndCategoryAndEscapeClears) {
    const std::string all = Shown();
    PressLetter(u'f', kCommand);
    fWindow.Type(u"shift");
    EXPECT_EQ(Shown(), "doppler graphicphaseshifter pitchshift ");
    fWindow.Type(u" TIME");
    EXPECT_EQ(Shown(), "doppler pitchshift ");
    fWindow.Type(u" nothing");
    EXPECT_EQ(Shown(), "");
    PressKey(Key::kEscape);
    EXPECT_EQ(Shown(), all);
    EXPECT_FALSE(fSession.Engine().IsPlaying());
}

TEST_F(EffectBrowserTest, PresetsAndPlainWordsAreFoundAndNamed) {
    fFolder.Write("presets/delay/Grandfather.json", R"({"effect": "qoc.Delay", "name": "x"})");
    const std::tuple<const char16_t*, const char*, const char*> cases[] = {
        {u"hum", "notch", "Notch Filter, Hum 50 Hz"},
        {u"grandf", "delay", "Delay, Grandfather"},
        {u"telephone band", "scientificfilter", "Scientific Filter, Telephone Band"},
        {u"karaoke", "centerchannelextract", "Center Channel Extract, karaoke"},
    };
    for (const auto& [text, effect, name] : cases) {
        PressLetter(u'f', kCommand);
        fWindow.Type(text);
        EXPECT_NE(Shown().find(effect), std::string::npos) << Shown();
        EXPECT_EQ(TextOf(std::string("effect-") + effect), name);
        PressKey(Key::kEscape);
        EXPECT_EQ(TextOf(std::string("effect-") + effect).find(','), std::string::npos);
    }
    PressLetter(u'f', kCommand);
    fWindow.Type(u"um"); // no word begins so
    EXPECT_EQ(Shown().find("notch"), std::string::npos);
}

TEST_F(EffectBrowserTest, APresetThatWasSavedMeanwhileIsFound) {
    PressLetter(u'f', kCommand);
    fWindow.Type(u"grandf");
    EXPECT_EQ(Shown(), "");
    PressKey(Key::kEscape);
    fSession.Presets().SaveAs("Grandfather");
    PressLetter(u'f', kCommand);
    fWindow.Type(u"grandf");
    EXPECT_EQ(Shown(), "amplify ");
}

TEST_F(EffectBrowserTest, ArrowsAndEnterChooseAmongWhatIsShown) {
    PressLetter(u'f', kCommand);
    fWindow.Type(u"shift");
    PressKey(Key::kEnter);
    EXPECT_EQ(fSession.Effect().shortName, "graphicphaseshifter"); // in the order of the categories
    PressKey(Key::kDown);
    PressKey(Key::kDown);
    EXPECT_EQ(fSession.Effect().shortName, "pitchshift");
    PressKey(Key::kDown);
    EXPECT_EQ(fSession.Effect().shortName, "pitchshift");
    PressKey(Key::kUp);
    EXPECT_EQ(fSession.Effect().shortName, "doppler");
    Node("effects").UI_TakeFocus();
    PressKey(Key::kEnd);
    EXPECT_EQ(fSession.Effect().shortName, "pitchshift");
    PressKey(Key::kHome);
    EXPECT_EQ(fSession.Effect().shortName, "graphicphaseshifter");
    PressLetter(u'f', kCommand);
    fWindow.Type(u" "); // text, and no command to play
    EXPECT_FALSE(fSession.Engine().IsPlaying());
    PressKey(Key::kEscape);
    EXPECT_EQ(fSession.Effect().shortName, "graphicphaseshifter");
}

} // namespace
} // namespace workbench
