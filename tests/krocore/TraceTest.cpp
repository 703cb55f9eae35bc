#include "krocore/debug/Trace.h"
#include "krocore/threads/Threads.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

namespace krocore::debug {
namespace {

// Levels outlive a test, so each test has categories of its own and puts "*" back.
class TraceTest : public testing::Test {
protected:
    ~TraceTest() override {
        SetTraceSink({});
        SetTraceLevel("*", 0);
    }
};

TEST_F(TraceTest, ALineIsWrittenUpToTheLevelOfItsCategoryOrOfTheStar) {
    EXPECT_TRUE(TraceEnabled("registered", 0, true));
    EXPECT_FALSE(TraceEnabled("registered", 1, true));
    SetTraceLevel("own", 1);
    SetTraceLevel("*", 3);
    EXPECT_TRUE(TraceEnabled("registered", 3, true));
    EXPECT_TRUE(TraceEnabled("unknown", 3, false));
    EXPECT_FALSE(TraceEnabled("unknown", 4, false));
    EXPECT_FALSE(TraceEnabled("own", 3, false));
}

TEST_F(TraceTest, CategoriesAreKnownOnceRegisteredOrSet) {
    TraceEnabled("known: b", 1, true);
    TraceEnabled("known: never", 1, false);
    SetTraceLevel("known: a", 1);
    const std::vector<std::string> categories = TraceCategories();
    EXPECT_THAT(categories, testing::IsSupersetOf({"known: a", "known: b"}));
    EXPECT_THAT(categories, testing::Not(testing::Contains("known: never")));
    EXPECT_THAT(categories, testing::Not(testing::Contains("*")));
}

TEST_F(TraceTest, TheChangeCountMovesWithLevelsAndSinkOnly) {
    const unsigned long start = TraceChangeCount();
    EXPECT_NE(start, 0U);
    TraceEnabled("count: new", 1, true);
    EXPECT_EQ(TraceChangeCount(), start);
    SetTraceLevel("count: new", 2);
    const unsigned long afterLevel = TraceChangeCount();
    EXPECT_NE(afterLevel, start);
    SetTraceSink([](std::string_view) {});
    EXPECT_NE(TraceChangeCount(), afterLevel);
}

TEST_F(TraceTest, TextGoesToTheInstalledSink) {
    std::string written;
    SetTraceSink([&written](std::string_view text) { written += text; });
    Trace("one\n");
    const TraceSink first = SetTraceSink({});
    SetTraceSink([&first, &written](std::string_view text) {
        written += "chained ";
        first(text);
    });
    Trace("two");
    EXPECT_EQ(written, "one\nchained two");

    testing::internal::CaptureStderr();
    SetTraceSink({});
    Trace("to stderr");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "to stderr");
}

TEST(Threads, EachThreadHasItsOwnNumber) {
    const std::uint64_t mine = threads::GetCurrentThreadID();
    std::uint64_t others = mine;
    std::thread([&others] { others = threads::GetCurrentThreadID(); }).join();
    EXPECT_NE(others, mine);
    EXPECT_EQ(threads::GetCurrentThreadID(), mine);
}

} // namespace
} // namespace krocore::debug
