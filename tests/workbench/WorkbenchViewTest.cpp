#include "WorkbenchFixture.h"

#include "host/AudioFile.h"
#include "kroui/ui/UI_NodeManager.h"
#include "workbench/commands/TreeText.h"

#include <filesystem>
#include <fstream>

namespace workbench {
namespace {

using kroui::ui::HeadlessWindow;
using kroui::ui::kCommand;
using kroui::ui::Key;
using kroui::ui::kNoModifier;
using kroui::ui::kShift;

// Where the gain of 0 dB lies in its range of -96 to 48 dB.
constexpr float kUnityGain = 96.0F / 144.0F;

TEST_F(WorkbenchFixture, DraggingASliderIsOneStepThatUndoAndRedoTakeBackAndRepeat) {
    ASSERT_NEAR(Gain(), kUnityGain, 1e-6F);
    EXPECT_FALSE(Node("undo").UI_GetAccessibleInfo().enabled);

    DragGain(40);
    const float dragged = Gain();
    EXPECT_GT(dragged, kUnityGain + 0.05F);
    EXPECT_EQ(krocore::ToStdString(Node("undo").UI_GetTooltip()).find("Undo "), 0U);

    EXPECT_TRUE(PressLetter(u'z', kCommand));
    EXPECT_NEAR(Gain(), kUnityGain, 1e-6F);
    EXPECT_FALSE(Node("undo").UI_GetAccessibleInfo().enabled);
    Click("redo");
    EXPECT_FLOAT_EQ(Gain(), dragged);
    Click("undo");
    EXPECT_NEAR(Gain(), kUnityGain, 1e-6F);
    EXPECT_TRUE(PressLetter(u'z', kCommand | kShift));
    EXPECT_FLOAT_EQ(Gain(), dragged);
    EXPECT_TRUE(PressLetter(u'y', kCommand)); // nothing left: ignored
    EXPECT_FLOAT_EQ(Gain(), dragged);
}

// The names of steps that are not alike: what is undone is not what is redone.
TEST_F(WorkbenchFixture, UndoAndRedoNameTheirOwnSteps) {
    const auto tip = [this](const char* id) { return krocore::ToStdString(Node(id).UI_GetTooltip()); };
    DragGain(40);
    const std::string dragged = tip("undo");
    Click("LinkChannels");
    const std::string linked = tip("undo");
    ASSERT_NE(dragged, linked);
    Click("undo");
    EXPECT_EQ(tip("undo"), dragged);
    const auto nameOf = [](const std::string& text) { return text.substr(5, text.rfind(" (") - 5); };
    EXPECT_EQ(tip("redo").find("Redo "), 0U);
    EXPECT_EQ(nameOf(tip("redo")), nameOf(linked));
}

// News go by themselves, problems stay until there is something else.
TEST_F(WorkbenchFixture, NewsGiveWayToTheHintAndProblemsStay) {
    const auto savePreset = [this](const char16_t* name) {
        ChooseFromMenu("presetMenu", 0);
        fWindow.Type(name);
        PressKey(Key::kEnter);
        return TextOf("message");
    };
    const std::string news = savePreset(u"Mine");
    EXPECT_EQ(news.find("Saved"), 0U) << news;
    fWindow.Advance(StatusLine::kNewsSeconds - 1);
    EXPECT_EQ(TextOf("message"), news);
    EXPECT_FALSE(fView->OpenFile("none.wav"));
    const std::string problem = TextOf("message");
    EXPECT_NE(problem.find("none.wav"), std::string::npos);
    fWindow.Advance(StatusLine::kNewsSeconds + 1);
    EXPECT_EQ(TextOf("message"), problem);
    savePreset(u"Mine too");
    fWindow.Advance(StatusLine::kNewsSeconds + 1);
    EXPECT_EQ(TextOf("message").find("Drag a number"), 0U) << TextOf("message");
}

TEST_F(WorkbenchFixture, EachEffectKeepsItsSettingsPanelAndHistoryWhilePlayingGoesOn) {
    DragGain(40);
    const float gain = Gain();
    PressKey(Key::kSpace);
    fWindow.Wheel(HeadlessWindow::CentreOf(Node("effects")), -1000); // to the end of the list
    Click("effect-stereoexpander");
    EXPECT_EQ(fView->UI_FindNode("GainControlsContainer"), nullptr);
    EXPECT_EQ(krocore::ToStdString(fView->Title()), "Test sound - Stereo Expander - Workbench");
    EXPECT_FALSE(Node("undo").UI_GetAccessibleInfo().enabled);
    EXPECT_TRUE(fSession.Engine().IsPlaying());
    EXPECT_GT(fSession.Position(), 0.1);

    // To the top with the keyboard: the list is in the order of its categories.
    Node("effects").UI_TakeFocus();
    PressKey(Key::kHome);
    EXPECT_EQ(fSession.Effect().shortName, "amplify");
    EXPECT_FLOAT_EQ(Gain(), gain);
    EXPECT_NE(fView->UI_FindNode("GainControlsContainer"), nullptr);
    Click("undo");
    EXPECT_NEAR(Gain(), kUnityGain, 1e-6F);
}

TEST_F(WorkbenchFixture, UndoWaitsForTheGestureThatIsOpen) {
    DragGain(30);
    const kroui::Point place = GainKnob();
    fWindow.Press({place.x + 30, place.y});
    fWindow.MoveTo({place.x + 50, place.y});
    const float during = Gain();
    PressLetter(u'z', kCommand);
    EXPECT_FLOAT_EQ(Gain(), during);
    fWindow.Release();
}

TEST_F(WorkbenchFixture, PlayingGoesOnPausesAndStopsAtTheEnd) {
    Click("play");
    EXPECT_TRUE(fSession.Engine().IsPlaying());
    fWindow.Advance(1.0);
    EXPECT_NEAR(fSession.Position(), 1.1, 0.06);
    EXPECT_EQ(TextOf("time").substr(0, 4), "0:01");
    EXPECT_TRUE(PressKey(Key::kSpace));
    EXPECT_FALSE(fSession.Engine().IsPlaying());

    // From near the end of the ten seconds it runs out, and all meters come to rest.
    const double duration = fSession.CurrentSound().Seconds();
    const auto wave = Node("waveform").UI_GetFrame();
    fWindow.Click({wave.Right() - 60, wave.Centre().y});
    EXPECT_GT(fSession.Position(), duration * 0.95);
    PressKey(Key::kSpace);
    EXPECT_TRUE(fSession.Engine().IsPlaying());
    fWindow.Advance(12);
    EXPECT_FALSE(fSession.Engine().IsPlaying());
    EXPECT_TRUE(fSession.Filter()->IsSuspended());
    EXPECT_EQ(Node("levels").UI_GetAccessibleInfo().value.find(u"6"), krocore::string16::npos);
}

TEST_F(WorkbenchFixture, MetersShowThePeakBeforeAndBehindTheEffect) {
    // All up by 6 dB; the built-in sound peaks at -6 dB.
    fSession.Filter()->SetParameterValue(kLeftGain, (96 + 6) / 144.0F);
    fSession.Filter()->SetParameterValue(kLeftGain + 1, (96 + 6) / 144.0F);
    PressKey(Key::kSpace);
    fWindow.Advance(3); // the marks of the start, which is faded in, are gone
    const std::string levels = krocore::ToStdString(Node("levels").UI_GetAccessibleInfo().value);
    float inputLeft = 0;
    float outputLeft = 0;
    ASSERT_EQ(std::sscanf(levels.c_str(), "in L %f", &inputLeft), 1) << levels;
    ASSERT_EQ(std::sscanf(levels.c_str() + levels.find("out L"), "out L %f", &outputLeft), 1) << levels;
    EXPECT_NEAR(outputLeft - inputLeft, 6, 0.11) << levels;
    EXPECT_LE(inputLeft, -5.9F);
    ASSERT_EQ(Node("levels").UI_GetAccessiblePartCount(), 4);
    const kroui::ui::AccessiblePart outputBar = Node("levels").UI_GetAccessiblePart(2);
    EXPECT_EQ(outputBar.info.name, u"out L");
    EXPECT_NEAR(outputBar.info.range->value, outputLeft, 0.051);
    EXPECT_LE(outputBar.info.range->value, outputBar.info.range->maximum);
    EXPECT_EQ(outputBar.bounds.top - Node("levels").UI_GetAccessiblePart(1).bounds.Bottom(), 0);
}

TEST_F(WorkbenchFixture, ShortcutsSwitchLoopBypassThemeAndZoom) {
    PressLetter(u'l', kNoModifier);
    EXPECT_TRUE(fSession.Engine().IsLooping());
    EXPECT_EQ(Node("loop").UI_GetAccessibleInfo().value, u"on");
    Click("loop");
    EXPECT_FALSE(fSession.Engine().IsLooping());
    PressLetter(u'b', kNoModifier);
    EXPECT_TRUE(fSession.Engine().IsBypassed());
    EXPECT_EQ(Node("bypass").UI_GetAccessibleInfo().value, u"on");

    PressLetter(u't', kCommand);
    EXPECT_EQ(fWindow.Window().GetTheme().Name(), "light");
    PressLetter(u'+', kCommand);
    EXPECT_FLOAT_EQ(fWindow.Window().ScaleFactor(), 1.25F);
    EXPECT_EQ(TextOf("state"), "zoom 125 %  light");
    PressLetter(u'0', kCommand);
    EXPECT_FLOAT_EQ(fWindow.Window().ScaleFactor(), 1);
    for (int i = 0; i < 20; ++i)
        PressLetter(u'-', kCommand);
    EXPECT_FLOAT_EQ(fWindow.Window().ScaleFactor(), 0.64F);
    EXPECT_FALSE(PressLetter(u'q', kCommand));
}

TEST_F(WorkbenchFixture, EscapeStopsAndThenGoesToTheStart) {
    fSession.Seek(2);
    PressKey(Key::kSpace);
    PressKey(Key::kEscape);
    EXPECT_FALSE(fSession.Engine().IsPlaying());
    EXPECT_GT(fSession.Position(), 1.9);
    PressKey(Key::kEscape);
    EXPECT_EQ(fSession.Position(), 0);
}

TEST_F(WorkbenchFixture, ADroppedSoundIsOpenedAndTheEffectKeepsItsSettings) {
    const auto file = std::filesystem::temp_directory_path() / "workbench-dropped.wav";
    const auto layout = kromediatypes::AudioChannelLayout::ForChannelCount(4);
    qohost::WriteAudioFile(file, qohost::Sound::Silent(32000, layout, 32000), 0);
    DragGain(40);
    const float gain = Gain();
    EXPECT_TRUE(fWindow.Window().FilesDropped({&file, 1}, {600, 300}));
    fWindow.Advance(kMoment);
    EXPECT_EQ(TextOf("soundName"), "workbench-dropped.wav");
    EXPECT_EQ(TextOf("soundFacts"), "32 kHz 4 channels 0:01.000");
    EXPECT_EQ(krocore::ToStdString(fView->Title()), "workbench-dropped.wav - Amplify - Workbench");
    EXPECT_FLOAT_EQ(Gain(), gain);
    // A row of the panel and two meters for each of the four channels.
    EXPECT_EQ(Node("GainControlsContainer").ChildCount(), 4U);
    const auto levels = Node("levels").UI_GetAccessibleInfo().value;
    EXPECT_EQ(std::count(levels.begin(), levels.end(), u','), 7);
    std::filesystem::remove(file);
}

TEST_F(WorkbenchFixture, ABrokenFileIsToldOfAndNothingIsLost) {
    const auto file = std::filesystem::temp_directory_path() / "workbench-broken.wav";
    std::ofstream(file) << "no sound";
    const qohost::SoundSource* const before = &fSession.CurrentSound();
    EXPECT_TRUE(fWindow.Window().FilesDropped({&file, 1}, {600, 300}));
    EXPECT_NE(TextOf("message").find("workbench-broken.wav"), std::string::npos);
    EXPECT_EQ(&fSession.CurrentSound(), before);
    PressKey(Key::kSpace);
    EXPECT_TRUE(fSession.Engine().IsPlaying());
    std::filesystem::remove(file);
}

TEST_F(WorkbenchFixture, PanelLargerThanItsPlaceScrollsByWheelAndBar) {
    const auto file = std::filesystem::temp_directory_path() / "workbench-many.wav";
    const auto layout = kromediatypes::AudioChannelLayout::ForChannelCount(32);
    qohost::WriteAudioFile(file, qohost::Sound::Silent(8000, layout, 800), 0);
    ASSERT_TRUE(fView->OpenFile(file));
    std::filesystem::remove(file);
    fWindow.Advance(kMoment);
    const auto place = Node("panelPlace").UI_GetFrame();
    const auto card = [this] { return Node("panel").UI_GetFrame(); };
    ASSERT_GT(card().height, place.height);
    EXPECT_EQ(card().top, 0);

    // Over the empty margin of the panel, where no control uses the wheel.
    const kroui::Point margin = fView->UI_FindNode("panelPlace")->UI_LocalToWindow({card().left + 4, 60});
    fWindow.Wheel(margin, -1);
    EXPECT_LT(card().top, 0);
    fWindow.Wheel(margin, -1000);
    EXPECT_EQ(card().Bottom(), place.height);
    fWindow.Wheel(margin, 1000);
    EXPECT_EQ(card().top, 0);
    // The bar over the right edge, dragged down to its end.
    const float x = place.Right() - 4;
    fWindow.Drag({x, place.top + 10}, {x, place.Bottom() + 500});
    EXPECT_EQ(card().Bottom(), place.height);
}

TEST_F(WorkbenchFixture, PartsNeverOverlapFromTheSmallestSizeOn) {
    const char* const parts[] = {"header", "browser", "panelPlace", "levels", "waveform", "transport", "status"};
    for (const kroui::Size size :
         {WorkbenchView::kSmallestSize, WorkbenchView::kDefaultSize, kroui::Size{2560, 1440}}) {
        fWindow.Window().SetSize(size);
        fView->UI_SetFrame({0, 0, size.width, size.height});
        for (const char* const first : parts) {
            const kroui::Rect& frame = Node(first).UI_GetFrame();
            EXPECT_FALSE(frame.IsEmpty()) << first;
            EXPECT_TRUE(frame.left >= 0 && frame.top >= 0 && frame.Right() <= size.width &&
                        frame.Bottom() <= size.height)
                << first;
            for (const char* const second : parts)
                EXPECT_FALSE(first != second && frame.Intersects(Node(second).UI_GetFrame())) << first << " " << second;
        }
    }
}

TEST_F(WorkbenchFixture, NothingIsPaintedWhileNothingHappens) {
    fWindow.Advance(1);
    for (int i = 0; i < 20; ++i) {
        kroui::ui::UI_NodeManager::Get().RunTimers();
        EXPECT_EQ(fWindow.Paint(), 0);
        fWindow.Advance(0.05);
        EXPECT_TRUE(fWindow.LastDamage().empty());
    }
}

TEST_F(WorkbenchFixture, TreeTextTellsIdRoleNameValueAndPlace) {
    const std::string tree = DescribeTree(fWindow.Window());
    EXPECT_NE(tree.find("play\tbutton\tPlay (Space)\t\t36\t828\t40\t40\tenabled\n"), std::string::npos) << tree;
    EXPECT_NE(tree.find("LinkChannels\tcheckbox\tLink Channels\ton\t"), std::string::npos);
    EXPECT_NE(tree.find("effect-amplify\tlist-item\tAmplify\tselected\t"), std::string::npos);
}

} // namespace
} // namespace workbench
