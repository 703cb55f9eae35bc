#include "orrin/parse_cache.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace orrin {
namespace {

TEST(ParseCache, KeepsWhatWasParsedLatelyByTextAndName) {
    int parses = 0;
    parse_cache_t<std::string> cache([&](std::string_view text, const std::string& name) {
        ++parses;
        if (text == "wrong") throw std::runtime_error(name);
        return name + ":" + std::string(text);
    });
    EXPECT_EQ(*cache.find("a", "1"), "1:a");
    EXPECT_EQ(cache.find("a", "1"), cache.find("a", "1"));
    EXPECT_EQ(parses, 1);
    EXPECT_EQ(*cache.find("a", "2"), "2:a"); // where an error stands would be told under another name
    EXPECT_EQ(*cache.find("b", "1"), "1:b");
    EXPECT_EQ(parses, 3);
    EXPECT_THROW(cache.find("wrong", ""), std::runtime_error);
    EXPECT_THROW(cache.find("wrong", ""), std::runtime_error);
    EXPECT_EQ(parses, 5);

    // Many large ones push out what nobody asks for, and not what somebody does; a huge one pushes out nothing.
    for (char c = 'c'; c < 'c' + 10; ++c) {
        cache.find(std::string(200'000, c), "");
        cache.find("a", "1");
    }
    cache.find(std::string(2'000'000, 'z'), "");
    EXPECT_EQ(parses, 16);
    cache.find("a", "1");
    EXPECT_EQ(parses, 16);
    cache.find("b", "1");
    EXPECT_EQ(parses, 17);
}

} // namespace
} // namespace orrin
