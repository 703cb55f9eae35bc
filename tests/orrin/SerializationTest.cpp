#include "orrin/serialization.h"

#include "orrin/error.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>

namespace orrin {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// Equal to the last bit: other than for ==, 0 is not -0. All NaN are one.
bool Identical(const any_regular_t& left, const any_regular_t& right) {
    if (left.type() != right.type()) return false;
    if (const auto* const number = left.get_if<double>()) {
        return std::isnan(*number)
                   ? std::isnan(right.get<double>())
                   : std::bit_cast<std::uint64_t>(*number) == std::bit_cast<std::uint64_t>(right.get<double>());
    }
    if (const auto* const array = left.get_if<array_t>()) {
        return std::ranges::equal(*array, right.get<array_t>(), Identical);
    }
    if (const auto* const dictionary = left.get_if<dictionary_t>()) {
        return std::ranges::equal(*dictionary, right.get<dictionary_t>(), [](const auto& a, const auto& b) {
            return a.first == b.first && Identical(a.second, b.second);
        });
    }
    return left == right;
}

void ExpectRoundTrips(const any_regular_t& value) {
    const std::string text = serialize_regular(value);
    const array_t tokens = tokenize_regular(value);
    EXPECT_TRUE(Identical(evaluate_serialization(text), value)) << text;
    EXPECT_TRUE(Identical(evaluate_token_stream(tokens), value)) << text;
    EXPECT_EQ(serialize_token_stream(tokens), text);
    EXPECT_EQ(tokenize_serialization(text), tokens);
    for (const any_regular_t& token : tokens) {
        EXPECT_TRUE(token.type() != type_t::array && token.type() != type_t::dictionary) << text;
    }
}

TEST(Serialization, ValuesThatAreHardToWriteRoundTrip) {
    std::string bytes;
    for (int i = 0; i < 256; ++i)
        bytes += static_cast<char>(i);

    const any_regular_t values[] = {
        {},
        0,
        -0.0,
        0.1,
        1e23,
        5e-324,
        -std::numeric_limits<double>::max(),
        9007199254740993.0,
        kInfinity,
        -kInfinity,
        std::numeric_limits<double>::quiet_NaN(),
        "",
        "'",
        "\"",
        "'\"'\"",
        "\"\"''",
        "/*",
        "//",
        "\r\n",
        "\\",
        "@",
        "$$$/A/B=C",
        std::string(3, '\0'),
        bytes,
        "\xEF\xBB\xBF",
        name_t(),
        name_t("plain"),
        name_t("true"),
        name_t("two words"),
        name_t("1st"),
        name_t("'\""),
        name_t(bytes),
        name_t(".array"),
        name_t(".name"),
        name_t("."),
        array_t{},
        array_t{array_t{}, dictionary_t{}},
        array_t{-kInfinity, -1, kInfinity},
        array_t{"a", "b"},
        array_t{name_t("a"), "b"},
        dictionary_t{{name_t(), 1}, {name_t("true"), 2}, {name_t("'\""), 3}, {name_t(".dictionary"), 4}},
    };
    for (const any_regular_t& value : values)
        ExpectRoundTrips(value);
}

class RandomValues {
public:
    any_regular_t Value(int depth) {
        switch (Below(depth > 0 ? 7 : 5)) {
        case 0: return {};
        case 1: return std::bit_cast<double>(fRandom());
        case 2: return Below(2) == 0;
        case 3: return Text();
        case 4: return name_t(Text());
        case 5: return Array(depth);
        default: return Dictionary(depth);
        }
    }

private:
    unsigned Below(unsigned limit) { return static_cast<unsigned>(fRandom() % limit); }

    std::string Text() {
        constexpr std::string_view kCharacters("ab_1.'\"\\@ \n\r\0\xC3\xA4/*{}[]:,", 23);
        std::string text;
        for (unsigned length = Below(8); length > 0; --length)
            text += kCharacters[Below(kCharacters.size())];
        return text;
    }

    any_regular_t Array(int depth) {
        array_t array;
        for (unsigned size = Below(5); size > 0; --size)
            array.push_back(Value(depth - 1));
        return array;
    }

    any_regular_t Dictionary(int depth) {
        dictionary_t dictionary;
        for (unsigned size = Below(5); size > 0; --size)
            dictionary[name_t(Text())] = Value(depth - 1);
        return dictionary;
    }

    std::mt19937_64 fRandom{20240607};
};

TEST(Serialization, RandomValuesRoundTrip) {
    RandomValues random;
    for (int i = 0; i < 3000 && !testing::Test::HasFailure(); ++i)
        ExpectRoundTrips(random.Value(4));
}

TEST(Serialization, DeepestValueRoundTrips) {
    any_regular_t value;
    for (std::uint32_t i = 0; i < any_regular_t::kDeepestValue; ++i) {
        value = i % 2 ? any_regular_t(array_t{value}) : any_regular_t(dictionary_t{{name_t("a"), value}});
    }
    const std::string text = serialize_regular(value);
    EXPECT_EQ(evaluate_serialization(text), value);
    EXPECT_EQ(evaluate_token_stream(tokenize_regular(value)), value);
}

TEST(Serialization, TextWithVariablesOrCallsIsRefused) {
    EXPECT_THROW(evaluate_serialization("[variable]"), error_t);
    EXPECT_THROW(evaluate_serialization("f()"), error_t);
    EXPECT_THROW(evaluate_serialization(""), error_t);
}

TEST(TokenStream, MalformedStreamsAreRefused) {
    const name_t array(".array"), dictionary(".dictionary"), name(".name");
    const std::pair<array_t, std::string_view> cases[] = {
        {{}, "0 values are left instead of one"},
        {{1, 2}, "2 values are left instead of one"},
        {{array}, "too few values"},
        {{1, 2, array}, "2 is no count of values"},
        {{1, -1, array}, "-1 is no count of values"},
        {{1, 0.5, array}, "0.5 is no count of values"},
        {{1, kInfinity, array}, "1/0 is no count of values"},
        {{1, std::nan(""), array}, "0/0 is no count of values"},
        {{1, "1", array}, "\"1\" is no count of values"},
        {{name_t("a"), 1, dictionary}, "too few values"},
        {{"a", 2, 1, dictionary}, "a key is a string"},
        {{name}, "too few values"},
        {{1, name}, "a name is made of a number"},
        {{1, name_t(".set")}, "unknown operator '.set'"},
        {array_t(1, array_t{}), "an array is no token"},
    };
    for (const auto& [tokens, message] : cases) {
        try {
            evaluate_token_stream(tokens);
            ADD_FAILURE() << message;
        } catch (const std::invalid_argument& error) {
            EXPECT_EQ(error.what(), "malformed token stream: " + std::string(message));
        }
    }
}

} // namespace
} // namespace orrin
