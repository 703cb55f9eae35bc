#include "SourcePaths.h"
#include "host/AudioFile.h"
#include "host/TestSignal.h"
#include "qoc/components/EffectCatalogue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sndfile.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <spawn.h>
#include <sstream>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

extern char** environ;

namespace workbench {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

struct Outcome {
    int exitCode = -1;
    std::string output;
    std::string errors;
};

// Runs the real program in a folder of its own.
class CommandLine : public testing::Test {
protected:
    CommandLine() {
        const auto* const test = testing::UnitTest::GetInstance()->current_test_info();
        fFolder =
            std::filesystem::temp_directory_path() / ("workbench-" + std::to_string(getpid()) + "-" + test->name());
        std::filesystem::remove_all(fFolder);
        std::filesystem::create_directories(fFolder);
    }
    ~CommandLine() override { std::filesystem::remove_all(fFolder); }

    std::string Path(const std::string& name) const { return (fFolder / name).string(); }

    pid_t Start(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), QO_WORKBENCH_PROGRAM);
        return Spawn(std::move(arguments));
    }
    // In a shell in the test's folder, where $W is the program.
    Outcome Shell(const std::string& script) const {
        const std::string start = "W='" QO_WORKBENCH_PROGRAM "'; cd '" + fFolder.string() + "'; ";
        return Finish(Spawn({"/bin/sh", "-c", start + script}));
    }
    pid_t Spawn(std::vector<std::string> arguments) const {
        std::vector<char*> argv;
        for (std::string& argument : arguments)
            argv.push_back(argument.data());
        argv.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        constexpr int kFlags = O_WRONLY | O_CREAT | O_TRUNC;
        posix_spawn_file_actions_addopen(&actions, 1, Path("stdout").c_str(), kFlags, 0600);
        posix_spawn_file_actions_addopen(&actions, 2, Path("stderr").c_str(), kFlags, 0600);
        pid_t child = 0;
        EXPECT_EQ(posix_spawn(&child, argv[0], &actions, nullptr, argv.data(), environ), 0);
        posix_spawn_file_actions_destroy(&actions);
        return child;
    }
    Outcome Finish(pid_t child) const {
        int status = 0;
        waitpid(child, &status, 0);
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, Text("stdout"), Text("stderr")};
    }
    Outcome Run(std::vector<std::string> arguments) const { return Finish(Start(std::move(arguments))); }

    void WaitForUnfinishedFile() const {
        const auto isUnfinished = [](const std::string& name) { return name.starts_with(".unfinished"); };
        while (std::ranges::none_of(FileNames(), isUnfinished))
            std::this_thread::yield();
    }

    std::string Text(const std::string& name) const {
        std::ifstream file(Path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    std::vector<std::string> FileNames() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(fFolder))
            names.push_back(entry.path().filename().string());
        return names;
    }

    std::filesystem::path fFolder;
};

TEST_F(CommandLine, WrongUsageExitsWithTwoAndAShortUsage) {
    const std::vector<std::string> cases[] = {
        {"render", "--effect", "amplify", "only-one.wav"},
        {"render", "in.wav", "out.wav"},
        {"render", "--effect", "amplify", "--volume", "3", "in.wav", "out.wav"},
        {"snapshot", "--effect", "amplify", "--theme", "pink", "x.png"},
        {"snapshot", "--effect", "amplify", "--channels", "33", "x.png"},
        {"snapshot", "--effect", "amplify", "--scripts", "hardlimiterui", "x.png"},
        {"params"},
        {"params", "amplify", "--format", "xml"},
        {"check"},
        {"--nonsense"},
    };
    for (const auto& arguments : cases) {
        const Outcome outcome = Run(arguments);
        EXPECT_EQ(outcome.exitCode, 2) << arguments.back();
        EXPECT_THAT(outcome.errors, StartsWith("workbench: "));
        EXPECT_THAT(outcome.errors, HasSubstr("\nusage: workbench"));
        EXPECT_EQ(outcome.output, "");
    }
}

TEST_F(CommandLine, FailuresNameTheFileOrWordAndExitWithOne) {
    qohost::WriteAudioFile(Path("in.wav"), qohost::MakeTestSignal(0.1), 0);
    std::ofstream(Path("text.wav")) << "text";
    struct Case {
        std::vector<std::string> arguments;
        std::string named;
    };
    const Case cases[] = {
        {{"render", "--effect", "amplify", Path("missing.wav"), Path("o.wav")}, "missing.wav"},
        {{"render", "--effect", "amplify", Path("text.wav"), Path("o.wav")}, "text.wav"},
        {{"render", "--effect", "amplify", Path("in.wav"), Path("no/such/o.wav")}, "no/such/o.wav"},
        {{"render", "--effect", "amplify", "--set", "gain1=-600", Path("in.wav"), Path("o.wav")}, "gain1=-600"},
        {{"render", "--effect", "amplify", "--set", "volume=1", Path("in.wav"), Path("o.wav")}, "volume"},
        {{"render", "--effect", "nonesuch", Path("in.wav"), Path("o.wav")}, "nonesuch"},
        {{"render", "--effect", "amplify", "--preset", "none", Path("in.wav"), Path("o.wav")}, "none"},
        {{"params", "nonesuch"}, "nonesuch"},
        {{"snapshot", "--effect", "amplify", Path("no/such/o.png")}, "no/such/o.png"},
        {{"gallery", Path("text.wav")}, "text.wav"},
    };
    for (const Case& c : cases) {
        const Outcome outcome = Run(c.arguments);
        EXPECT_EQ(outcome.exitCode, 1) << c.named;
        EXPECT_THAT(outcome.errors, StartsWith("workbench: "));
        EXPECT_THAT(outcome.errors, HasSubstr(c.named));
    }
    EXPECT_FALSE(std::filesystem::exists(Path("o.wav")));
}

TEST_F(CommandLine, EveryPresetOfEveryEffectRenders) {
    qohost::WriteAudioFile(Path("in.wav"), qohost::MakeTestSignal(0.1), SF_FORMAT_WAV | SF_FORMAT_FLOAT);
    for (const auto& effect : qoc::components::AllEffects()) {
        const std::string name(effect.shortName);
        std::istringstream presets(Run({"presets", name}).output);
        int count = 0;
        for (std::string preset; std::getline(presets, preset); ++count) {
            SCOPED_TRACE(name + ": " + preset);
            const Outcome outcome =
                Run({"render", "--effect", name, "--preset", preset, Path("in.wav"), Path("out.wav")});
            EXPECT_EQ(outcome.exitCode, 0);
            EXPECT_EQ(outcome.errors, "");
            float peak = 0;
            for (const auto& channel : qohost::ReadAudioFile(Path("out.wav")).sound.channels)
                for (const float sample : channel)
                    peak = std::max(peak, std::isfinite(sample) ? std::abs(sample) : INFINITY);
            EXPECT_GT(peak, 1e-3F);
            EXPECT_LT(peak, 10);
        }
        EXPECT_GE(count, 3) << name;
    }
}

TEST_F(CommandLine, PresetFilesAreWrittenAndComeBeforeTheSettings) {
    const Outcome made = Run({"preset", "--effect", "amplify", "--preset", "-6 DB", "--set", "link=off", "--set",
                              "gain2=-96", Path("mine.json")});
    ASSERT_EQ(made.exitCode, 0) << made.errors;
    EXPECT_THAT(Text("mine.json"), HasSubstr("\"mine\""));
    qohost::Sound sound = qohost::Sound::Silent(44100, kromediatypes::AudioChannelLayout::Stereo(), 4410);
    for (auto& channel : sound.channels)
        std::ranges::fill(channel, 0.25F);
    qohost::WriteAudioFile(Path("in.wav"), sound, 0);
    const Outcome outcome = Run({"render", "--effect", "amplify", "--preset", Path("mine.json"), "--set", "gain2=6",
                                 Path("in.wav"), Path("out.wav")});
    ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;
    const qohost::Sound result = qohost::ReadAudioFile(Path("out.wav")).sound;
    constexpr float kRounding = 1e-4F; // of 16 bits
    EXPECT_NEAR(result.channels[0].back(), 0.25 * std::pow(10, -6 / 20.0), kRounding);
    EXPECT_NEAR(result.channels[1].back(), 0.25 * std::pow(10, 6 / 20.0), kRounding);
    const Outcome wrong =
        Run({"render", "--effect", "notch", "--preset", Path("mine.json"), Path("in.wav"), Path("none.wav")});
    EXPECT_EQ(wrong.exitCode, 1);
    EXPECT_THAT(wrong.errors, HasSubstr("qoc.Amplify"));
    EXPECT_FALSE(std::filesystem::exists(Path("none.wav")));
}

TEST_F(CommandLine, RenderAppliesTheSettingsInPlaceToo) {
    // -6 dB left, +6 dB right: factors 10^(-6/20) and 10^(6/20).
    qohost::Sound sound = qohost::Sound::Silent(44100, kromediatypes::AudioChannelLayout::Stereo(), 4410);
    for (auto& channel : sound.channels)
        std::fill(channel.begin(), channel.end(), 0.25F);
    qohost::WriteAudioFile(Path("in.wav"), sound, 0);
    const auto render = [this](const std::string& output) {
        return Run({"render", "--effect", "AMPLIFY", "--set", "link=off", "--set", "gain1=-6 dB", "--set", "Gain 2=6",
                    Path("in.wav"), Path(output)});
    };
    for (const char* const output : {"out.wav", "in.wav"}) {
        const Outcome outcome = render(output);
        ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;
        EXPECT_EQ(outcome.errors, ""); // no terminal: no progress
        const qohost::Sound result = qohost::ReadAudioFile(Path(output)).sound;
        ASSERT_EQ(result.Frames(), 4410U);
        EXPECT_NEAR(result.channels[0][2000], 0.25 * std::pow(10, -0.3), 1e-4);
        EXPECT_NEAR(result.channels[1][2000], 0.25 * std::pow(10, 0.3), 1e-4);
    }
}

TEST_F(CommandLine, AnInterruptedRenderLeavesTheOutputAsItWas) {
    qohost::WriteAudioFile(Path("in.wav"), qohost::MakeTestSignal(30), 0);
    const std::vector<std::string> before = FileNames();
    const std::string sound = Text("in.wav");
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const pid_t child = Start({"render", "--effect", "fullreverb", Path("in.wav"), Path("in.wav")});
        WaitForUnfinishedFile();
        kill(child, signal);
        const Outcome outcome = Finish(child);
        EXPECT_EQ(outcome.exitCode, 130) << signal;
        EXPECT_THAT(outcome.errors, HasSubstr("was not written"));
        std::vector<std::string> after = FileNames();
        std::erase(after, "stdout");
        std::erase(after, "stderr");
        EXPECT_EQ(after, before);
        EXPECT_TRUE(Text("in.wav") == sound);
    }
}

TEST_F(CommandLine, ASignalWhileAStreamIsReadLeavesNoTemporaryFile) {
    ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
    // Not Ctrl-C: a shell has what it starts in the background ignore it. It holds the other end of the pipe open.
    for (const char* const signal : {"TERM", "HUP"}) {
        const Outcome outcome =
            Shell(std::string("export TMPDIR=$PWD; exec 9<>pipe; $W render --effect amplify - out.wav <&9 & "
                              "while ! ls -a | grep -q unfinished; do :; done; kill -") +
                  signal + " $!; wait $!; [ $? -gt 128 ]");
        EXPECT_EQ(outcome.exitCode, 0) << signal;
        EXPECT_THAT(FileNames(), testing::UnorderedElementsAre("pipe", "stdout", "stderr")) << signal;
    }
}

TEST_F(CommandLine, StreamsStandForFilesInEveryCommand) {
    qohost::WriteAudioFile(Path("in.wav"), qohost::MakeTestSignal(0.3), SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    qohost::WriteAudioFile(Path("in.raw"), qohost::MakeTestSignal(0.3), SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    std::ofstream(Path("-")) << "no stream";
    ASSERT_EQ(Run({"render", "--effect", "amplify", "--set", "gain=-6", Path("in.wav"), Path("want.wav")}).exitCode, 0);
    ASSERT_EQ(Run({"render", "--effect", "amplify", "--set", "gain=-6", Path("in.wav"), Path("want.au")}).exitCode, 0);
    const std::string channels = std::to_string(qohost::MakeTestSignal(0.3).channels.size());
    const std::string render = "$W render --effect amplify --set gain=-6 ";
    const std::string raw = "--type raw --rate 44100 --channels " + channels + " ";
    const std::string cases[] = {
        "cat in.wav | " + render + "- - --type wav | cmp - want.wav",
        "cat in.wav | " + render + "- - | cat | cmp - want.wav",
        render + "- - --type au < in.wav | cmp - want.au",
        render + raw + "- got.wav < in.raw && cmp got.wav want.wav",
        render + raw + "- - < in.raw > got.raw && " + render + raw + "in.raw - | cmp - got.raw",
        render + "in.wav /dev/stdout | cmp - want.wav",
        "cat in.wav | " + render + "/dev/fd/0 got.wav && cmp got.wav want.wav",
        "$W preset --effect amplify --set gain=-6 - | $W render --effect amplify --preset - in.wav got.wav && "
        "cmp got.wav want.wav",
        "$W snapshot --effect amplify a.png && $W snapshot --effect amplify - | cmp - a.png",
    };
    for (const std::string& script : cases) {
        const Outcome outcome = Shell(script);
        EXPECT_EQ(outcome.exitCode, 0) << script << "\n" << outcome.output << outcome.errors;
        EXPECT_EQ(outcome.errors, "") << script;
    }
    EXPECT_EQ(Text("-"), "no stream");
}

TEST_F(CommandLine, WhatIsNoFileIsRefusedAndFullStreamsAreErrors) {
    qohost::WriteAudioFile(Path("in.wav"), qohost::MakeTestSignal(0.1), 0);
    ASSERT_EQ(mkfifo(Path("pipe.wav").c_str(), 0600), 0);
    std::filesystem::create_symlink("/dev/null", Path("null.wav"));
    const std::pair<std::string, const char*> cases[] = {
        {"render --effect amplify pipe.wav out.wav", "pipe"},
        {"render --effect amplify in.wav pipe.wav", "pipe"},
        {"render --effect amplify in.wav null.wav", "device"},
        {"render --effect amplify --preset pipe.wav in.wav out.wav", "pipe"},
        {"snapshot --effect amplify pipe.wav", "pipe"},
        {"preset --effect amplify null.wav", "device"},
        {"render --effect amplify --type raw - out.wav < in.wav", "give both"},
        {"render --effect amplify in.wav - > /dev/full", "standard output"},
        {"snapshot --effect amplify - > /dev/full", "standard output"},
        {"preset --effect amplify - > /dev/full", "standard output"},
    };
    for (const auto& [arguments, reason] : cases) {
        const Outcome outcome = Shell("$W " + arguments);
        EXPECT_EQ(outcome.exitCode, 1) << arguments;
        EXPECT_THAT(outcome.errors, HasSubstr(reason)) << arguments;
    }
    EXPECT_TRUE(std::filesystem::is_fifo(Path("pipe.wav")));
    EXPECT_TRUE(std::filesystem::is_symlink(Path("null.wav")));
    EXPECT_EQ(FileNames().size(), 5U); // those and the outputs
}

TEST_F(CommandLine, LongSoundTakesNoMoreMemoryThanShort) {
    const auto peak = [this](double seconds) {
        qohost::WriteAudioFile(Path("in.wav"), qohost::MakeTestSignal(seconds), SF_FORMAT_WAV | SF_FORMAT_PCM_16);
        const pid_t child = Start({"render", "--effect", "amplify", Path("in.wav"), Path("out.wav")});
        rusage usage{};
        int status = 0;
        wait4(child, &status, 0, &usage);
        EXPECT_EQ(status, 0);
        return usage.ru_maxrss; // kilobytes
    };
    const auto brief = peak(1);
    const auto lengthy = peak(60); // 21 MB as floats
    EXPECT_LT(lengthy - brief, 4000);
    EXPECT_LT(lengthy, 64000);
}

TEST_F(CommandLine, ListsNameEffectsAndParametersWithRangesAndDefaults) {
    const Outcome list = Run({"list"});
    EXPECT_EQ(list.exitCode, 0);
    EXPECT_EQ(std::count(list.output.begin(), list.output.end(), '\n'), 29); // a head and 28 effects
    EXPECT_THAT(list.output, HasSubstr("\namplify "));
    EXPECT_THAT(list.output, HasSubstr("sound, panel  HARDLIMITERUI.lio, .trn\n"));
    const Outcome parameters = Run({"params", "Amplify"});
    EXPECT_EQ(parameters.output, "INDEX  ID        NAME           RANGE             DEFAULT\n"
                                 "0      channels  Channels       0 ... 32          read only\n"
                                 "1      link      Link Channels  Off, On           On\n"
                                 "2      gain1     Gain 1         -96 dB ... 48 dB  0 dB\n"
                                 "3      gain2     Gain 2         -96 dB ... 48 dB  0 dB\n");
    EXPECT_EQ(Run({"params", "stereoexpander", "--format", "tsv"}).output,
              "INDEX\tID\tNAME\tRANGE\tDEFAULT\n"
              "0\tpan\tCenter Channel Pan\t-100 % ... 100 %\t0 %\n"
              "1\texpand\tStereo Expand\t0 % ... 300 %\t100 %\n");
    EXPECT_EQ(Run({"--help"}).exitCode, 0);
    EXPECT_THAT(Run({"--version"}).output, StartsWith("workbench "));
}

// Width and height from a PNG file's header chunk (ISO/IEC 15948, 11.2.2).
std::pair<unsigned, unsigned> PictureSize(const std::string& bytes) {
    const auto number = [&bytes](std::size_t at) {
        unsigned value = 0;
        for (std::size_t i = at; i < at + 4; ++i)
            value = value << 8 | static_cast<unsigned char>(bytes.at(i));
        return value;
    };
    return {number(16), number(20)};
}

TEST_F(CommandLine, SnapshotsFollowScaleThemeAndChannels) {
    const auto snapshot = [this](std::vector<std::string> more) {
        more.insert(more.begin(), {"snapshot", "--effect", "amplify"});
        more.push_back(Path("o.png"));
        const Outcome outcome = Run(more);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
        return Text("o.png");
    };
    const std::string plain = snapshot({});
    const auto [width, height] = PictureSize(plain);
    EXPECT_EQ(PictureSize(snapshot({"--scale", "2"})), (std::pair{2 * width, 2 * height}));
    EXPECT_GT(PictureSize(snapshot({"--channels", "6"})).second, height);
    EXPECT_NE(snapshot({"--theme", "light"}), plain);
    EXPECT_NE(snapshot({"--set", "gain=12"}), plain);
    EXPECT_EQ(snapshot({}), plain);
}

TEST_F(CommandLine, GalleryHasEveryPanelInBothThemesAndScales) {
    ASSERT_EQ(Run({"gallery", Path("pictures/new")}).exitCode, 0);
    for (const char* const name :
         {"amplify-dark.png", "amplify-dark@2x.png", "amplify-light.png", "amplify-light@2x.png"})
        EXPECT_GT(std::filesystem::file_size(fFolder / "pictures/new" / name), 1000U) << name;
}

TEST_F(CommandLine, WithoutAScreenOpenSaysSo) {
    unsetenv("DISPLAY");
    unsetenv("WAYLAND_DISPLAY");
    unsetenv("SDL_VIDEODRIVER");
    const Outcome outcome = Run({});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("workbench: there is no screen"));
}

} // namespace
} // namespace workbench
