#include "SourcePaths.h"
#include "host/AudioFile.h"
#include "host/TestSignal.h"
#include "qoc/components/EffectCatalogue.h"
#include "workbench/commands/EffectTables.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <malloc.h>
#include <nlohmann/json.hpp>
#include <sndfile.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <csignal>
#include <cstdlib>
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
using testing::Not;
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

TEST_F(CommandLine, WrongUsageExitsWithTwoAndTwoLines) {
    const std::vector<std::string> cases[] = {
        {"render", "--effect", "amplify", "only-one.wav"},
        {"render", "in.wav", "out.wav"},
        {"render", "--effect", "amplify", "--volume", "3", "in.wav", "out.wav"},
        {"snapshot", "--effect", "amplify", "--theme", "pink", "x.png"},
        {"snapshot", "--effect", "amplify", "--channels", "33", "x.png"},
        {"snapshot", "--effect", "amplify", "--scripts", "hardlimiterui", "x.png"},
        {"params"},
        {"params", "amplify", "--format", "xml"},
        {"snapshot", "x.png"},
        {"snapshot", "--effect", "amplify", "--scale", "nan", "x.png"},
        {"snapshot", "--effect", "amplify", "--scale", "inf", "x.png"},
        {"snapshot", "--effect", "amplify", "--channels", "2.5", "x.png"},
        {"--zoom", "nan"},
        {"render", "--effect", "amplify", "--from", "nan", "in.wav", "out.wav"},
        {"render", "--effect", "amplify", "--to", "-1", "in.wav", "out.wav"},
        {"render", "--effect", "amplify", "--tail", "long", "in.wav", "out.wav"},
        {"render", "--effect", "amplify", "--bits", "20", "in.wav", "out.wav"},
        {"render", "--effect", "amplify", "--normalize", "3", "in.wav", "out.wav"},
        {"help", "nonesuch"},
        {"check"},
        {"--nonsense"},
    };
    for (const auto& arguments : cases) {
        const Outcome outcome = Run(arguments);
        EXPECT_EQ(outcome.exitCode, 2) << arguments.back();
        EXPECT_THAT(outcome.errors, StartsWith("workbench: "));
        EXPECT_THAT(outcome.errors, HasSubstr("\nusage: workbench"));
        EXPECT_EQ(std::ranges::count(outcome.errors, '\n'), 2) << outcome.errors;
        EXPECT_EQ(outcome.output, "");
    }
}

TEST_F(CommandLine, MistypedWordsAreToldWithTheNearestName) {
    const std::pair<std::vector<std::string>, std::string> cases[] = {
        {{"rendr", "in.wav", "out.wav"}, "did you mean \"render\"?"},
        {{"lsit"}, "did you mean \"list\"?"},
        {{"snap"}, "did you mean \"snapshot\"?"},
        {{"help", "gallry"}, "did you mean \"gallery\"?"},
        {{"render", "--efect", "amplify", "in.wav", "out.wav"}, "did you mean \"--effect\"?"},
        {{"params", "amplyfi"}, "did you mean \"amplify\"?"},
        {{"preset", "--effect", "notch", "--preset", "Hum 50Hz", Path("o.json")}, "did you mean \"Hum 50 Hz\"?"},
    };
    for (const auto& [arguments, advice] : cases)
        EXPECT_THAT(Run(arguments).errors, HasSubstr(advice)) << arguments.back();
    EXPECT_EQ(Run({"rendr"}).exitCode, 2);
    EXPECT_THAT(Run({"song.wav"}).errors, HasSubstr("song.wav: there is no such file"));
    EXPECT_THAT(Run({"zzzzzzzz"}).errors, Not(HasSubstr("did you mean")));
}

TEST_F(CommandLine, APresetForPluginHostsReadsBack) {
    qohost::WriteAudioFile(Path("in.wav"), qohost::MakeTestSignal(0.1), SF_FORMAT_WAV | SF_FORMAT_PCM_U8);
    const std::string bundle = Path("My Tele.lv2");
    ASSERT_EQ(
        Run({"preset", "--effect", "fftfilter", "--preset", "Telephone", "--set", "spline=on", "--as-lv2", bundle})
            .errors,
        "");
    EXPECT_EQ(Run({"preset", "--effect", "fftfilter", "--as-lv2", bundle}).exitCode, 1) << "it is there";
    const auto render = [&](const std::vector<std::string>& settings, const char* output) {
        std::vector<std::string> arguments = {"render", "--effect", "fftfilter", "--overwrite"};
        arguments.insert(arguments.end(), settings.begin(), settings.end());
        arguments.insert(arguments.end(), {Path("in.wav"), Path(output)});
        EXPECT_EQ(Run(arguments).errors, "");
        return Text(output);
    };
    EXPECT_EQ(render({"--preset", bundle}, "read.wav"),
              render({"--preset", "Telephone", "--set", "spline=on"}, "set.wav"));
    // As other programs write texts.
    std::ofstream(Path("host.ttl"))
        << R"(<> <urn:qoaudio:state> "{\"effect\": \"qoc.FFTFilter\",\n\"name\": \"\u00DC\", )"
           R"(\"natural\": {\"spline\": true}}" .)";
    EXPECT_EQ(render({"--preset", Path("host.ttl")}, "read.wav"), render({"--set", "spline=on"}, "set.wav"));
    std::ofstream(Path("none.ttl")) << "<> <urn:qoaudio:state> 17 .";
    EXPECT_THAT(Run({"preset", "--effect", "fftfilter", "--preset", Path("none.ttl"), Path("o.json")}).errors,
                HasSubstr("none.ttl: there is no preset"));
    EXPECT_THAT(Run({"preset", "--effect", "amplify", "--preset", bundle, Path("o.json")}).errors,
                HasSubstr("is for \"qoc.FFTFilter\""));
}

TEST_F(CommandLine, HelpTellsOfEveryCommandAndEachOfItsOptions) {
    const std::string all = Run({"help"}).output;
    EXPECT_THAT(all, HasSubstr("Exit codes:"));
    EXPECT_EQ(Run({"--help"}).output, all);
    for (const std::string command :
         {"open", "render", "preset", "presets", "params", "list", "snapshot", "gallery", "check", "help"}) {
        EXPECT_THAT(all, HasSubstr("\n  " + command + " "));
        const Outcome help = Run({"help", command});
        EXPECT_EQ(help.exitCode, 0);
        EXPECT_EQ(help.output, Run({command, "--help"}).output);
        EXPECT_THAT(help.output, HasSubstr("usage: workbench " + command));
        for (const char* const noise : {"{", "}", "Env:", ":TEXT", " TEXT", "INT in"})
            EXPECT_THAT(help.output, Not(HasSubstr(noise))) << command;
    }
}

TEST_F(CommandLine, AFullOutputIsAnErrorAndAFullErrorOutputIsNone) {
    for (const std::string arguments :
         {"list", "params reverb --format json", "presets notch", "--help", "help render", "--version"}) {
        const std::string program = std::string(QO_WORKBENCH_PROGRAM) + " " + arguments;
        const int status = std::system((program + " >/dev/full 2>" + Path("stderr")).c_str());
        EXPECT_EQ(WEXITSTATUS(status), 1) << arguments;
        EXPECT_THAT(Text("stderr"), HasSubstr("workbench: the standard output can't be written"));
        EXPECT_THAT(Text("stderr"), Not(HasSubstr("std::")));
    }
    const int status = std::system((std::string(QO_WORKBENCH_PROGRAM) + " params nonesuch 2>/dev/full").c_str());
    EXPECT_EQ(WEXITSTATUS(status), 1);
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
        {{"render", "--effect", "amplify", Path("in.wav"), Path("in.wav")}, "--overwrite"},
        {{"render", "--effect", "amplify", Path("in.wav"), Path("text.wav")}, "--overwrite"},
        {{"preset", "--effect", "amplify", Path("text.wav")}, "--overwrite"},
        {{"render", "--effect", "amplify", "--from", "5", Path("in.wav"), Path("o.wav")}, "0:00.100 long"},
        {{"render", "--effect", "amplify", "--bits", "32", Path("in.wav"), Path("o.flac")}, "o.flac"},
    };
    for (const Case& c : cases) {
        const Outcome outcome = Run(c.arguments);
        EXPECT_EQ(outcome.exitCode, 1) << c.named;
        EXPECT_THAT(outcome.errors, StartsWith("workbench: "));
        EXPECT_THAT(outcome.errors, HasSubstr(c.named));
    }
    EXPECT_FALSE(std::filesystem::exists(Path("o.wav")));
    EXPECT_EQ(Text("text.wav"), "text");
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
                Run({"render", "--effect", name, "--preset", preset, "--overwrite", Path("in.wav"), Path("out.wav")});
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
                    "--overwrite", Path("in.wav"), Path(output)});
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
        const pid_t child = Start({"render", "--effect", "fullreverb", "--overwrite", Path("in.wav"), Path("in.wav")});
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
    const std::string render = "$W render --overwrite --effect amplify --set gain=-6 ";
    const std::string raw = "--type raw --rate 44100 --channels " + channels + " ";
    const std::string cases[] = {
        "cat in.wav | " + render + "- - --type wav | cmp - want.wav",
        "cat in.wav | " + render + "- - | cat | cmp - want.wav",
        render + "- - --type au < in.wav | cmp - want.au",
        render + raw + "- got.wav < in.raw && cmp got.wav want.wav",
        render + raw + "- - < in.raw > got.raw && " + render + raw + "in.raw - | cmp - got.raw",
        render + "in.wav /dev/stdout | cmp - want.wav",
        "cat in.wav | " + render + "/dev/fd/0 got.wav && cmp got.wav want.wav",
        "$W preset --effect amplify --set gain=-6 - | $W render --overwrite --effect amplify --preset - in.wav got.wav "
        "&& "
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
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer keeps what was freed";
#endif
    const auto peak = [this](double seconds) {
        qohost::WriteAudioFile(Path("in.wav"), qohost::MakeTestSignal(seconds), SF_FORMAT_WAV | SF_FORMAT_PCM_16);
        // What this process has when it forks counts as the child's; with Start it would be the most it ever had.
        malloc_trim(0);
        const pid_t child = fork();
        if (child == 0) {
            execl(QO_WORKBENCH_PROGRAM, "workbench", "render", "--effect", "amplify", "--overwrite",
                  Path("in.wav").c_str(), Path("out.wav").c_str(), nullptr);
            _exit(127);
        }
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
    const auto effects = static_cast<std::ptrdiff_t>(qoc::components::AllEffects().size());
    EXPECT_EQ(std::count(list.output.begin(), list.output.end(), '\n'), 1 + effects) << "a head, and each effect";
    EXPECT_THAT(list.output, HasSubstr("\namplify "));
    EXPECT_THAT(list.output, HasSubstr("sound, panel  HARDLIMITERUI.lio, .trn\n"));
    const Outcome parameters = Run({"params", "Amplify"});
    EXPECT_EQ(parameters.output, "INDEX  ID        NAME           RANGE             DEFAULT\n"
                                 "0      channels  Channels       0 ... 32          read only\n"
                                 "1      link      Link Channels  Off, On           On\n"
                                 "2      gain1     Gain 1         -96 dB ... 48 dB  0 dB\n"
                                 "3      gain2     Gain 2         -96 dB ... 48 dB  0 dB\n");
    EXPECT_EQ(Run({"params", "stereoexpander", "--format", "tsv"}).output,
              "index\tid\tname\tkind\tminimum\tmaximum\tdefault\tunit\tscale\tdecimals\titems\tautomatable\treadOnly\t"
              "linkedBy\tdescending\twhole\tneedsPrepare\tcurve\trangeText\tdefaultText\n"
              "0\tpan\tCenter Channel Pan\tnumber\t-100\t100\t0\t%\tlinear\t1\t\ttrue\tfalse\t\tfalse\tfalse\tfalse\t\t"
              "-100 % ... 100 %\t0 %\n"
              "1\texpand\tStereo Expand\tnumber\t0\t300\t100\t%\tlinear\t1\t\ttrue\tfalse\t\tfalse\tfalse\tfalse\t\t0 "
              "% ... 300 %\t"
              "100 %\n");
    EXPECT_THAT(Run({"--version"}).output, StartsWith("workbench "));
}

// Every number as a number, whatever the effect: what programs read is complete and agrees with what people read.
TEST_F(CommandLine, ListingsForProgramsHaveNumbersUnitsAndScales) {
    using Json = nlohmann::json;
    EXPECT_EQ(Json::parse(Run({"list", "--format", "json"}).output).size(), qoc::components::AllEffects().size());
    for (const auto& effect : qoc::components::AllEffects()) {
        const std::string name(effect.shortName);
        const Json presets = Json::parse(PresetTable(name).ToText(TableFormat::kJSON));
        EXPECT_EQ(presets.at(0).at("name"), "Default");
        const Json parameters = Json::parse(ParameterTable(name).ToText(TableFormat::kJSON));
        ASSERT_FALSE(parameters.empty());
        for (const Json& parameter : parameters) {
            SCOPED_TRACE(name + ": " + parameter.dump());
            const std::string kind = parameter.at("kind");
            const Json& standard = parameter.at("default");
            if (kind == "number") {
                EXPECT_LT(parameter.at("minimum").get<double>(), parameter.at("maximum").get<double>());
                EXPECT_THAT(parameter.at("scale"), testing::AnyOf("linear", "logarithmic"));
                if (parameter.at("readOnly")) continue;
                EXPECT_GE(standard.get<double>(), parameter.at("minimum").get<double>());
                EXPECT_LE(standard.get<double>(), parameter.at("maximum").get<double>());
                EXPECT_LE(standard.dump().size(), 10U) << "rounding shows";
            } else if (kind == "switch") {
                EXPECT_TRUE(standard.is_boolean());
            } else {
                const auto items = parameter.at("items").get<std::vector<std::string>>();
                EXPECT_THAT(items, testing::Contains(standard.get<std::string>()));
            }
        }
    }
    const Json gain = Json::parse(Run({"params", "amplify", "--format", "json"}).output).at(2);
    EXPECT_EQ(gain.at("minimum"), -96);
    EXPECT_EQ(gain.at("unit"), "dB");
    EXPECT_EQ(gain.at("linkedBy"), "link");
    for (const Json& each : Json::parse(Run({"params", "pitchcorrect", "--format", "json"}).output))
        EXPECT_EQ(each.at("descending"), each.at("id") == "attack"); // from slow to fast
    for (const Json& each : Json::parse(Run({"params", "dynamics", "--format", "json"}).output)) {
        const std::string id = each.at("id");
        EXPECT_EQ(each.at("needsPrepare"), id == "lookAhead");
        EXPECT_EQ(each.at("whole"), id == "pointCount");
        EXPECT_EQ(each.at("curve"), id.starts_with("point") ? "curve" : "");
    }
    // Half the rate, and one gain a channel.
    EXPECT_THAT(Run({"params", "fftfilter", "--rate", "96000"}).output, HasSubstr("48000"));
    EXPECT_THAT(Run({"params", "amplify", "--channels", "6"}).output, HasSubstr("gain6"));
    const Outcome refused = Run({"params", "amplify", "--rate", "5"});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_THAT(refused.errors, HasSubstr("5 Hz"));
}

TEST_F(CommandLine, ListFindsEffectsByPresetsAndPlainWords) {
    EXPECT_THAT(Run({"list", "hum", "50"}).output, HasSubstr("\nnotch "));
    EXPECT_THAT(Run({"list", "compressor"}).output, HasSubstr("Gentle Compressor 2:1"));
    EXPECT_THAT(Run({"list", "karaoke"}).output, HasSubstr("centerchannelextract"));
    EXPECT_EQ(Run({"list", "filter", "zzz", "--format", "json"}).output, "[]\n");
}

// The largest sample of a rendered file, and its length.
std::pair<float, std::size_t> PeakAndFrames(const std::string& file) {
    const qohost::Sound sound = qohost::ReadAudioFile(file).sound;
    float peak = 0;
    for (const auto& channel : sound.channels)
        for (const float sample : channel)
            peak = std::max(peak, std::abs(sample));
    return {peak, sound.Frames()};
}

TEST_F(CommandLine, ClippingIsToldWithWhatHelpsAndStrictRefusesIt) {
    // 20 dB on two of 200 samples is too much: 1.5 for 0.15 is 3.52 dB beyond full scale.
    qohost::Sound sound = qohost::Sound::Silent(44100, kromediatypes::AudioChannelLayout::Stereo(), 100);
    sound.channels[0][50] = 0.15F;
    sound.channels[1][60] = -0.12F;
    sound.channels[1][70] = 0.09F;
    qohost::WriteAudioFile(Path("in.wav"), sound, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    const auto render = [this](std::vector<std::string> more, const std::string& output) {
        more.insert(more.begin(), {"render", "--effect", "amplify", "--set", "gain=20"});
        more.insert(more.end(), {Path("in.wav"), Path(output)});
        return Run(more);
    };
    const Outcome clipped = render({}, "clipped.wav");
    EXPECT_EQ(clipped.exitCode, 0);
    for (const char* const part : {"clipped.wav: 2 samples (1.00 %)", "by 3.52 dB", "--bits float", "--normalize -1"})
        EXPECT_THAT(clipped.errors, HasSubstr(part));
    EXPECT_NEAR(PeakAndFrames(Path("clipped.wav")).first, 1, 1e-4);

    const Outcome strict = render({"--strict"}, "strict.wav");
    EXPECT_EQ(strict.exitCode, 1);
    EXPECT_THAT(strict.errors, HasSubstr("2 samples"));
    EXPECT_FALSE(std::filesystem::exists(Path("strict.wav")));

    const Outcome whole = render({"--strict", "--bits", "float"}, "float.wav");
    EXPECT_EQ(whole.errors, "");
    EXPECT_NEAR(PeakAndFrames(Path("float.wav")).first, 1.5, 1e-3);
    const Outcome down = render({"--strict", "--normalize", "-1 dB"}, "down.wav");
    EXPECT_EQ(down.errors, "");
    EXPECT_NEAR(PeakAndFrames(Path("down.wav")).first, std::pow(10, -1 / 20.0), 1e-4);
}

TEST_F(CommandLine, RenderAutomatesByTheTimeOfTheFile) {
    qohost::Sound sound = qohost::Sound::Silent(44100, kromediatypes::AudioChannelLayout::Stereo(), 88200);
    for (auto& channel : sound.channels)
        std::fill(channel.begin(), channel.end(), 0.25F);
    qohost::WriteAudioFile(Path("in.wav"), sound, 0);
    const auto render = [this](const char* points) {
        std::ofstream(Path("points.csv")) << points;
        return Run({"render", "--effect", "amplify", "--overwrite", "--automate", Path("points.csv"), "--from", "1",
                    Path("in.wav"), Path("out.wav")});
    };
    const Outcome outcome = render("1.5,gain,-96\n");
    ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;
    const qohost::Sound result = qohost::ReadAudioFile(Path("out.wav")).sound;
    ASSERT_EQ(result.Frames(), 44100U);
    EXPECT_EQ(result.channels[1][22049], 0.25F);
    EXPECT_LT(result.channels[1][40000], 1e-4F);
    EXPECT_THAT(render("1.5,gain,loud\n").errors, HasSubstr("points.csv: line 1: "));
}

TEST_F(CommandLine, RenderTakesARangeATailAndAWidthOfSamples) {
    const qohost::Sound sound = qohost::MakeTestSignal(2);
    qohost::WriteAudioFile(Path("in.wav"), sound, SF_FORMAT_WAV | SF_FORMAT_PCM_24);
    const auto render = [this](std::vector<std::string> more) {
        more.insert(more.begin(), {"render", "--effect", "amplify", "--overwrite"});
        more.insert(more.end(), {Path("in.wav"), Path("out.wav")});
        const Outcome outcome = Run(more);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
        return qohost::ReadAudioFile(Path("out.wav"));
    };
    const qohost::Sound part = render({"--from", "0:00.5", "--to", "1.25"}).sound;
    ASSERT_EQ(part.Frames(), 33075U);
    EXPECT_NEAR(part.channels[0][1000], sound.channels[0][22050 + 1000], 1e-5);
    EXPECT_EQ(render({"--from", "1.5", "--to", "100"}).sound.Frames(), 22050U);
    EXPECT_EQ(render({"--tail", "0.5"}).sound.Frames(), 88200U + 22050U);
    const std::pair<const char*, int> widths[] = {{"8", SF_FORMAT_PCM_U8},    {"16", SF_FORMAT_PCM_16},
                                                  {"24", SF_FORMAT_PCM_24},   {"32", SF_FORMAT_PCM_32},
                                                  {"float", SF_FORMAT_FLOAT}, {"double", SF_FORMAT_DOUBLE}};
    for (const auto& [word, encoding] : widths)
        EXPECT_EQ(render({"--bits", word}).encoding & SF_FORMAT_SUBMASK, encoding) << word;
    const auto reverb = [this](const std::string& tail) {
        Run({"render", "--effect", "reverb", "--overwrite", "--tail", tail, Path("in.wav"), Path("out.wav")});
        return PeakAndFrames(Path("out.wav")).second;
    };
    EXPECT_EQ(reverb("none"), 88200U);
    EXPECT_GT(reverb("natural"), 88200U + 44100U);
}

TEST_F(CommandLine, LinkedParametersMoveTogetherOrTheUserIsTold) {
    const auto preset = [this](std::vector<std::string> settings) {
        std::vector<std::string> arguments = {"preset", "--effect", "amplify", "--overwrite", Path("p.json")};
        for (const std::string& setting : settings)
            arguments.insert(arguments.end(), {"--set", setting});
        const Outcome outcome = Run(arguments);
        const auto values =
            outcome.exitCode == 0 ? nlohmann::json::parse(Text("p.json")).at("values") : nlohmann::json();
        return std::pair(outcome, values);
    };
    constexpr double kMinus20 = 76 / 144.0; // of the range from -96 to 48 dB
    const auto [together, both] = preset({"gain1=-20"});
    EXPECT_EQ(together.errors, "");
    EXPECT_EQ(both.at("link"), 1);
    for (const char* const gain : {"gain1", "gain2"})
        EXPECT_NEAR(both.at(gain).get<double>(), kMinus20, 1e-6);
    const auto [unlinked, apart] = preset({"gain1=-20", "gain2=0"});
    EXPECT_THAT(unlinked.errors, HasSubstr("\"link\" was switched off"));
    EXPECT_EQ(apart.at("link"), 0);
    EXPECT_NEAR(apart.at("gain2").get<double>(), 96 / 144.0, 1e-6);
    const auto [alone, one] = preset({"link=off", "gain1=-20"});
    EXPECT_EQ(alone.errors, "");
    EXPECT_NEAR(one.at("gain2").get<double>(), 96 / 144.0, 1e-6);
    const auto [contradiction, none] = preset({"link=on", "gain1=-20", "gain2=0"});
    EXPECT_EQ(contradiction.exitCode, 1);
    EXPECT_THAT(contradiction.errors, HasSubstr("can't differ"));
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
