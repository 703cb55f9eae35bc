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
    fWindow.Type(u" "); // text, and no command to play
    EXPECT_FALSE(fSession.Engine().IsPlaying());
    PressKey(Key::kEscape);
    EXPECT_EQ(fSession.Effect().shortName, "doppler");
}

} // namespace
} // namespace workbench
