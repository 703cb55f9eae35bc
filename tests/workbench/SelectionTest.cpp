#include "WorkbenchFixture.h"

#include "host/AudioFile.h"

#include <sndfile.h>

#include <algorithm>
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

TEST_F(SelectionTest, StopGoesToItsBegin) {
    Select(2, 4);
    for (const double start : {3.0, 8.0}) {
        fSession.Seek(start);
        PressKey(Key::kEscape);
        EXPECT_NEAR(fSession.Position(), 2, 0.02);
    }
    fWindow.Click(PlaceOf(7)); // no selection
    Click("stop");
    EXPECT_EQ(fSession.Position(), 0);
}

TEST_F(SelectionTest, KeysMoveThePositionAndStayWithinTheSound) {
    Node("waveform").UI_TakeFocus();
    const std::pair<Key, double> steps[] = {{Key::kRight, 1}, {Key::kRight, 2}, {Key::kLeft, 1},   {Key::kLeft, 0},
                                            {Key::kLeft, 0},  {Key::kEnd, 10},  {Key::kRight, 10}, {Key::kHome, 0}};
    for (const auto& [key, position] : steps) {
        PressKey(key);
        EXPECT_NEAR(fSession.Position(), position, 1e-3);
    }
    PressKey(Key::kLeft, kShift); // nothing is there to select
    EXPECT_FALSE(fSession.HasSelection());
    PressKey(Key::kRight, kShift);
    EXPECT_NEAR(SelectionEnd() - SelectionBegin(), 1, 1e-3);
}

TEST_F(SelectionTest, RenderWritesTheSelectionBesideTheSoundAndOverNothing) {
    const auto file = fFolder.Path("voice.wav");
    qohost::WriteAudioFile(file, *fSession.CurrentSound().InMemory(), 0);
    ASSERT_TRUE(fView->OpenFile(file));
    DragGain(40);
    Select(2, 4);
    Click("render");
    EXPECT_NE(WaitForRender().find("voice-amplify.wav"), std::string::npos) << TextOf("message");
    const qohost::Sound part = qohost::ReadAudioFile(fFolder.Path("voice-amplify.wav")).sound;
    ASSERT_EQ(part.Frames(), fSession.Selection().end - fSession.Selection().begin);
    const float gain = std::pow(10.0F, (Gain() * 144 - 96) / 20);
    const float source = fSession.CurrentSound().InMemory()->channels[0][fSession.Selection().begin + 30000];
    EXPECT_NEAR(part.channels[0][30000], source * gain, 1e-4F);

    const std::string before = TemporaryFolder::Contents(fFolder.Path("voice-amplify.wav"));
    PressLetter(u'r', kCommand);
    EXPECT_NE(WaitForRender().find("voice-amplify-2.wav"), std::string::npos) << TextOf("message");
    EXPECT_EQ(TemporaryFolder::Contents(fFolder.Path("voice-amplify.wav")), before);
}

TEST_F(SelectionTest, ClippingIsToldWithWhatHelps) {
    const auto file = fFolder.Path("voice.wav");
    // 20 dB make 3 of 0.3: 9.54 dB beyond full scale. Every sample of both channels is.
    qohost::Sound sound = qohost::Sound::Silent(44100, kromediatypes::AudioChannelLayout::Stereo(), 4410);
    for (auto& channel : sound.channels)
        std::ranges::fill(channel, 0.3F);
    qohost::WriteAudioFile(file, sound, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    ASSERT_TRUE(fView->OpenFile(file));
    for (const int gain : {kLeftGain, kLeftGain + 1})
        fSession.Filter()->SetParameterValue(gain, (96 + 20) / 144.0F);
    EXPECT_FALSE(Node("remedies").UI_IsVisible());
    Click("render");
    const std::string told = WaitForRender();
    EXPECT_NE(told.find("voice-amplify.wav: 8,820 samples (100.00 %)"), std::string::npos) << told;
    EXPECT_NE(told.find("by 9.54 dB"), std::string::npos) << told;
    ASSERT_TRUE(Node("remedies").UI_IsVisible());
    EXPECT_LE(Node("message").UI_GetFrame().Right(), Node("remedies").UI_GetFrame().left);

    const auto peakOf = [this](const std::string& name) {
        return std::ranges::max(qohost::ReadAudioFile(fFolder.Path(name)).sound.channels[0]);
    };
    ChooseFromMenu("remedies", 0);
    EXPECT_NE(WaitForRender().find("voice-amplify-2.wav"), std::string::npos) << TextOf("message");
    EXPECT_FALSE(Node("remedies").UI_IsVisible());
    EXPECT_NEAR(peakOf("voice-amplify-2.wav"), 3, 1e-3F);
    Click("render");
    WaitForRender();
    ChooseFromMenu("remedies", 1);
    EXPECT_NE(WaitForRender().find("voice-amplify-4.wav"), std::string::npos) << TextOf("message");
    EXPECT_NEAR(peakOf("voice-amplify-4.wav"), std::pow(10, -1 / 20.0), 1e-4F);
}

TEST_F(SelectionTest, ASelectionEndsWithItsSound) {
    Select(2, 4);
    Click("loop");
    const auto file = fFolder.Path("short.wav");
    const auto layout = kromediatypes::AudioChannelLayout::Stereo();
    qohost::WriteAudioFile(file, qohost::Sound::Silent(44100, layout, 44100 * 6), 0);
    ASSERT_TRUE(fView->OpenFile(file));
    fWindow.Advance(kMoment);
    EXPECT_FALSE(fSession.HasSelection());
    EXPECT_EQ(ValueOf("waveform"), "0:00.000");
    EXPECT_EQ(TextOf("duration").find("selection"), std::string::npos);
    EXPECT_EQ(TextOf("render"), "Render");
    // The engine plays all of it: from before where the selection was to behind its end.
    PressKey(Key::kSpace);
    fWindow.Advance(1);
    EXPECT_NEAR(fSession.Position(), 1.1, 0.1);
    fWindow.Advance(4);
    EXPECT_NEAR(fSession.Position(), 5.1, 0.15);
    EXPECT_EQ(fSession.TaskToRender().range.end, fSession.TaskToRender().range.begin);
    // A file that can't be read leaves sound and selection.
    Select(1, 2);
    EXPECT_FALSE(fView->OpenFile(fFolder.Path("none.wav")));
    EXPECT_NEAR(SelectionEnd(), 2, 0.02);
    EXPECT_EQ(TextOf("render"), "Render Selection");
}

TEST_F(SelectionTest, PlayFromItsEndOrBehindItBeginsItAnew) {
    Select(2, 4);
    const auto frame = static_cast<double>(1) / 44100;
    for (const double start : {SelectionEnd(), SelectionEnd() + frame, 8.0, SelectionBegin() - frame, 0.0}) {
        fSession.Seek(start);
        PressKey(Key::kSpace);
        EXPECT_NEAR(fSession.Position(), 2.1, 0.06) << start;
        PressKey(Key::kSpace);
    }
    // Inside, up to the last of it, it goes on where it stands.
    for (const double start : {SelectionBegin(), 3.0, SelectionEnd() - 0.5}) {
        fSession.Seek(start);
        PressKey(Key::kSpace);
        EXPECT_NEAR(fSession.Position(), start + 0.1, 0.06) << start;
        PressKey(Key::kSpace);
    }
}

TEST_F(SelectionTest, PlayBeginsWhereItStandsHoweverLongNothingHappened) {
    for (int i = 0; i < 20; ++i) {
        fSession.Seek(2);
        fWindow.Advance(0.017); // within a pause between two looks at what goes on
        fSession.Play();
        EXPECT_NEAR(fSession.Position(), 2, 0.001);
        fSession.Stop();
    }
}

TEST_F(SelectionTest, RenderThatIsCancelledOrFailsLeavesNothing) {
    const auto file = fFolder.Path("deep/voice.wav");
    std::filesystem::create_directories(file.parent_path());
    const auto layout = kromediatypes::AudioChannelLayout::Stereo();
    qohost::WriteAudioFile(file, qohost::Sound::Silent(44100, layout, 44100 * 40), 0);
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
