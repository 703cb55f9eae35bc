#include "WorkbenchFixture.h"

#include "host/AudioFile.h"

#include <chrono>
#include <cmath>
#include <thread>

namespace workbench {
namespace {

using kroui::ui::kCommand;
using kroui::ui::Key;
using kroui::ui::kShift;

// The sound of ten seconds stands 24 units from the edges of its view.
class SelectionTest : public WorkbenchFixture {
protected:
    kroui::Point PlaceOf(double seconds) {
        const auto frame = Node("waveform").UI_GetFrame();
        const auto part = static_cast<float>(seconds / fSession.CurrentSound().Seconds());
        return {frame.left + 24 + (frame.width - 48) * part, frame.Centre().y};
    }
    void Select(double begin, double end) {
        fWindow.Drag(PlaceOf(begin), PlaceOf(end));
        fWindow.Advance(kMoment);
    }
    double SelectionBegin() const { return static_cast<double>(fSession.Selection().begin) / 44100; }
    double SelectionEnd() const { return static_cast<double>(fSession.Selection().end) / 44100; }
    // The message when the job is over.
    std::string WaitForRender() {
        for (int i = 0; i < 3000 && TextOf("render") == "Cancel"; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10)); // a real thread
            fWindow.Advance(kMoment);
        }
        return TextOf("message");
    }
};

TEST_F(SelectionTest, DragSelectsAClickClearsAndKeysExtend) {
    Select(4, 2); // backwards
    EXPECT_NEAR(SelectionBegin(), 2, 0.02);
    EXPECT_NEAR(SelectionEnd(), 4, 0.02);
    EXPECT_NEAR(fSession.Position(), 2, 0.02);
    EXPECT_EQ(TextOf("duration").substr(0, 10), "selection ");
    fWindow.Click(PlaceOf(5), kShift); // the nearer end follows
    EXPECT_NEAR(SelectionBegin(), 2, 0.02);
    EXPECT_NEAR(SelectionEnd(), 5, 0.02);
    Node("waveform").UI_TakeFocus();
    PressKey(Key::kLeft, kShift);
    EXPECT_NEAR(SelectionEnd(), 4, 0.02);
    fWindow.Click(PlaceOf(7));
    EXPECT_FALSE(fSession.HasSelection());
    EXPECT_NEAR(fSession.Position(), 7, 0.02);
    PressLetter(u'a', kCommand);
    EXPECT_EQ(fSession.Selection().end, fSession.CurrentSound().Frames());
}

TEST_F(SelectionTest, PlayingAndLoopingKeepToIt) {
    Select(2, 4);
    fSession.Seek(8);
    PressKey(Key::kSpace);
    EXPECT_NEAR(fSession.Position(), 2.1, 0.06);
    fWindow.Advance(2.5);
    EXPECT_FALSE(fSession.Engine().IsPlaying());
    EXPECT_NEAR(fSession.Position(), 2, 0.02);
    Click("loop");
    PressKey(Key::kSpace);
    fWindow.Advance(3);
    EXPECT_TRUE(fSession.Engine().IsPlaying());
    EXPECT_NEAR(fSession.Position(), 3.1, 0.15);
}

TEST_F(SelectionTest, RenderWritesTheSelectionBesideTheSoundAndOverNothing) {
    const auto file = fFolder.Path("voice.wav");
    qohost::WriteAudioFile(file, fSession.CurrentSound(), 0);
    ASSERT_TRUE(fView->OpenFile(file));
    DragGain(40);
    Select(2, 4);
    Click("render");
    EXPECT_NE(WaitForRender().find("voice-amplify.wav"), std::string::npos) << TextOf("message");
    const qohost::Sound part = qohost::ReadAudioFile(fFolder.Path("voice-amplify.wav")).sound;
    ASSERT_EQ(part.Frames(), fSession.Selection().end - fSession.Selection().begin);
    const float gain = std::pow(10.0F, (Gain() * 144 - 96) / 20);
    const float source = fSession.CurrentSound().channels[0][fSession.Selection().begin + 30000];
    EXPECT_NEAR(part.channels[0][30000], source * gain, 1e-4F);

    const std::string before = TemporaryFolder::Contents(fFolder.Path("voice-amplify.wav"));
    PressLetter(u'r', kCommand);
    EXPECT_NE(WaitForRender().find("voice-amplify-2.wav"), std::string::npos) << TextOf("message");
    EXPECT_EQ(TemporaryFolder::Contents(fFolder.Path("voice-amplify.wav")), before);
}

TEST_F(SelectionTest, RenderThatIsCancelledOrFailsLeavesNothing) {
    const auto file = fFolder.Path("deep/voice.wav");
    std::filesystem::create_directories(file.parent_path());
    const auto layout = kromediatypes::AudioChannelLayout::Stereo();
    qohost::WriteAudioFile(file, qohost::Sound::Silent(44100, layout, 44100 * 60), 0);
    ASSERT_TRUE(fView->OpenFile(file));
    fView->ChooseEffect(EffectFromName("fullreverb"));
    Click("render");
    EXPECT_EQ(TextOf("render"), "Cancel");
    Click("render");
    EXPECT_NE(WaitForRender().find("cancelled"), std::string::npos) << TextOf("message");
    EXPECT_FALSE(std::filesystem::exists(fFolder.Path("deep/voice-fullreverb.wav")));

    fView->ChooseEffect(Amplify());
    std::filesystem::remove_all(file.parent_path());
    Click("render");
    EXPECT_NE(WaitForRender().find("voice-amplify.wav"), std::string::npos) << TextOf("message");
    EXPECT_EQ(Node("message").UI_GetAccessibleInfo().name.find(u"Rendered"), krocore::string16::npos);
}

} // namespace
} // namespace workbench
