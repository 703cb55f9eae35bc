#include "krocore/ReplacementFile.h"

#include "FullDisk.h"
#include "krocore/config/Error.h"

#include <gmock/gmock.h>

#include <csignal>
#include <cstdlib>
#include <fstream>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace krocore {
namespace {

namespace fs = std::filesystem;

class ReplacementFileTest : public testing::Test {
protected:
    void SetUp() override {
        std::string name = (fs::temp_directory_path() / "replacementXXXXXX").string();
        ASSERT_NE(mkdtemp(name.data()), nullptr);
        fFolder = name;
    }
    void TearDown() override { fs::remove_all(fFolder); }

    fs::path Made(const char* name, std::string_view contents) const {
        std::ofstream(fFolder / name, std::ios::binary) << contents;
        return fFolder / name;
    }
    static std::string Contents(const fs::path& path) {
        std::ifstream stream(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    std::size_t Files() const {
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(fFolder), fs::directory_iterator()));
    }
    // The message of the error that writing meets.
    static std::string Refusal(const fs::path& target) {
        try {
            ReplaceFile(target, "new");
        } catch (const config::Error& error) {
            return error.what();
        }
        return "written";
    }

    fs::path fFolder;
};

TEST_F(ReplacementFileTest, RefusesWhatIsNoFileAndWhatIsReadOnly) {
    fs::create_directory(fFolder / "folder");
    ASSERT_EQ(mkfifo((fFolder / "pipe").c_str(), 0600), 0);
    fs::create_symlink("/dev/null", fFolder / "device");
    fs::create_symlink("round", fFolder / "round");
    const fs::path others = Made("others", "old");
    fs::permissions(others, fs::perms::owner_read | fs::perms::group_read);
    if (geteuid() == 0) {
        ASSERT_EQ(chown(others.c_str(), 12345, 12345), 0);
    }
    const std::size_t before = Files();
    const std::pair<const char*, const char*> cases[] = {{"folder", "folder"},    {"pipe", "pipe"},
                                                         {"device", "device"},    {"round", "symbolic links"},
                                                         {"others", "read-only"}, {"none/file", "No such"}};
    for (const auto& [name, reason] : cases) {
        EXPECT_THAT(Refusal(fFolder / name), testing::StartsWith((fFolder / name).string() + ": the file can't"));
        EXPECT_THAT(Refusal(fFolder / name), testing::HasSubstr(reason));
    }
    EXPECT_TRUE(fs::is_fifo(fFolder / "pipe"));
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
    EXPECT_EQ(Contents(others), "old");
    EXPECT_EQ(Files(), before);
}

TEST_F(ReplacementFileTest, FollowsLinksAlsoToWhatIsNotThereYet) {
    fs::create_directory(fFolder / "inner");
    fs::create_symlink("inner/to", fFolder / "from");
    fs::create_symlink("../file", fFolder / "inner/to");
    for (const char* const contents : {"first", "second"}) {
        ReplaceFile(fFolder / "from", contents);
        EXPECT_EQ(Contents(fFolder / "file"), contents);
        EXPECT_TRUE(fs::is_symlink(fFolder / "from") && fs::is_symlink(fFolder / "inner/to"));
    }
}

TEST_F(ReplacementFileTest, NamesOfAnyLengthAreWrittenAndNothingBesideThem) {
    const fs::path before = fs::current_path();
    Made("a.part", "mine");
    Made(".a.part", "mine");
    fs::current_path(fFolder);
    for (const std::size_t length : {1, 239, 240, 250, 255})
        ReplaceFile(std::string(length, 'a'), "new");
    fs::current_path(before);
    EXPECT_EQ(Contents(fFolder / std::string(255, 'a')), "new");
    EXPECT_THAT(Refusal(fFolder / std::string(256, 'a')), testing::HasSubstr("too long"));
    EXPECT_EQ(Contents(fFolder / "a.part") + Contents(fFolder / ".a.part"), "minemine");
    EXPECT_EQ(Files(), 7U);
}

TEST_F(ReplacementFileTest, RightsAreThoseOfTheFileThatWasThereOrTheUsualOnes) {
    const mode_t mask = umask(027);
    ReplaceFile(fFolder / "new", "x");
    umask(mask);
    EXPECT_EQ(fs::status(fFolder / "new").permissions(), fs::perms(0640));
    fs::permissions(fFolder / "new", fs::perms(0604));
    {
        ReplacementFile unfinished(fFolder / "new");
        EXPECT_EQ(fs::status(unfinished.Path()).permissions(), fs::perms(0600)) << "nobody reads it before it is there";
        unfinished.Commit();
    }
    EXPECT_EQ(fs::status(fFolder / "new").permissions(), fs::perms(0604));
    if (geteuid() != 0) return;
    ASSERT_EQ(chown((fFolder / "new").c_str(), 12345, 54321), 0);
    ReplaceFile(fFolder / "new", "x");
    struct stat status {};
    ASSERT_EQ(stat((fFolder / "new").c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, 12345U);
    EXPECT_EQ(status.st_gid, 54321U);
}

TEST_F(ReplacementFileTest, WhatFailsOrIsGivenUpLeavesTheOldFile) {
    const fs::path file = Made("file", "old");
    { const ReplacementFile givenUp(file); }
    for (const std::size_t size : {5001, 100000}) {
        const FullDisk full(5000);
        EXPECT_THROW(ReplaceFile(file, std::string(size, 'x')), config::Error) << size;
    }
    EXPECT_EQ(Contents(file), "old");
    ReplacementFile late(file);
    fs::remove(file);
    fs::create_directory(file);
    EXPECT_THROW(late.Commit(), config::Error) << "a folder by now";
    EXPECT_EQ(Files(), 2U);
}

TEST_F(ReplacementFileTest, ASignalThatEndsTheProcessLeavesNothing) {
    const fs::path file = Made("file", "old");
    const pid_t child = fork();
    if (child == 0) {
        ReplacementFile committed(fFolder / "other");
        committed.Commit();
        const ReplacementFile unfinished(file);
        const ReplacementFile another(file);
        std::signal(SIGHUP, [](int) {
            TemporaryFile::RemoveAll();
            _exit(0);
        });
        std::raise(SIGHUP);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(Contents(file), "old");
    EXPECT_EQ(Files(), 2U);
}

} // namespace
} // namespace krocore
