#include "orrin/dictionary.h"
#include "orrin/error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>

namespace orrin {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(Name, EqualTextsAreOneName) {
    std::map<std::string, name_t> names;
    for (int i = 0; i < 20'000; ++i) { // more than the table begins with
        const std::string text = "name" + std::to_string(i);
        names.emplace(text, name_t(text));
    }
    for (const auto& [text, name] : names) {
        EXPECT_EQ(name_t(text), name);
        EXPECT_EQ(name.text(), text);
        EXPECT_EQ(name_t(text).text().data(), name.text().data());
    }
    EXPECT_EQ(name_t(""), name_t());
    EXPECT_NE(name_t("a"), name_t("a" + std::string(1, '\0')));
    EXPECT_EQ(name_t(std::string(100'000, 'x')), name_t(std::string(100'000, 'x')));
}

TEST(Name, OrderIsThatOfTheTextWhateverTheOrderOfInterning) {
    std::vector<name_t> names = {name_t("order_b"), name_t("order_a"), name_t("order"), name_t(), name_t("Order")};
    std::ranges::sort(names);
    const std::vector<name_t> expected = {name_t(), name_t("Order"), name_t("order"), name_t("order_a"),
                                          name_t("order_b")};
    EXPECT_EQ(names, expected);
}

TEST(Value, TypesFollowWhatItIsMadeOf) {
    const std::pair<any_regular_t, type_t> cases[] = {
        {any_regular_t(), type_t::empty},
        {0.5f, type_t::number},
        {7, type_t::number},
        {std::size_t{7}, type_t::number},
        {true, type_t::boolean},
        {"text", type_t::string}, // no bool, which a pointer turns into
        {std::string("text"), type_t::string},
        {name_t("text"), type_t::name},
        {array_t{1, "two"}, type_t::array},
        {dictionary_t{{name_t("a"), 1}}, type_t::dictionary},
    };
    for (const auto& [value, type] : cases)
        EXPECT_EQ(value.type(), type) << type_name(type);
}

TEST(Value, AccessOfAnotherTypeIsNullOrThrows) {
    const any_regular_t text = "12";
    EXPECT_EQ(text.get_if<double>(), nullptr);
    EXPECT_EQ(text.get_if<name_t>(), nullptr);
    EXPECT_EQ(text.get_or<double>(3), 3);
    EXPECT_EQ(any_regular_t(4).get_or<double>(3), 4);
    try {
        text.get<array_t>();
        FAIL();
    } catch (const type_error_t& error) {
        EXPECT_STREQ(error.what(), "needs an array, not a string");
    }
}

TEST(Value, IsRegular) {
    const any_regular_t values[] = {
        {}, 1, kNaN, false, "", "ab", name_t("ab"), array_t{}, array_t{kNaN}, dictionary_t{{name_t("a"), kNaN}}};
    for (const any_regular_t& left : values) {
        for (const any_regular_t& right : values)
            EXPECT_EQ(left == right, &left == &right);

        any_regular_t copy = left;
        EXPECT_EQ(copy, left);
        const any_regular_t moved = std::move(copy);
        EXPECT_EQ(moved, left);
        EXPECT_TRUE(copy.empty());
        copy = moved;
        copy = *&copy;
        EXPECT_EQ(copy, left);
    }
}

TEST(Value, ElementMayReplaceTheArrayThatHoldsIt) {
    any_regular_t value = array_t{array_t{"inner"}};
    value = value.get<array_t>().front();
    EXPECT_EQ(value, any_regular_t(array_t{"inner"}));
    value = value.get<array_t>().front();
    EXPECT_EQ(value, any_regular_t("inner"));
}

TEST(Value, DepthIsLimitedSoThatFreeingAndComparingCannotExhaustTheStack) {
    any_regular_t deep, same;
    for (std::uint32_t i = 0; i < any_regular_t::kDeepestValue; ++i) {
        deep = i % 2 ? any_regular_t(array_t{deep}) : any_regular_t(dictionary_t{{name_t("a"), deep}});
        same = i % 2 ? any_regular_t(array_t{same}) : any_regular_t(dictionary_t{{name_t("a"), same}});
    }
    EXPECT_EQ(deep, same);
    EXPECT_THROW(any_regular_t(array_t{deep}), std::length_error);
    EXPECT_THROW(any_regular_t(dictionary_t{{name_t("a"), deep}}), std::length_error);
}

// Each step doubles what would have to be written or compared, although hardly any memory is taken.
TEST(Value, SharedPartsCountEachTime) {
    any_regular_t value = 1;
    int steps = 0;
    const auto doubleForEver = [&] {
        for (;; ++steps)
            value = array_t{value, value};
    };
    EXPECT_THROW(doubleForEver(), std::length_error);
    EXPECT_EQ(steps, 25); // 2 + 4 + ... + 2^25 = 2^26 - 2 values are allowed, 2^27 - 2 are more than 10^8
}

TEST(Dictionary, KeepsTheOrderOfTextAndTheLastOfEquals) {
    dictionary_t dictionary({{name_t("b"), 1}, {name_t("c"), 2}, {name_t("a"), 3}, {name_t("b"), 4}});
    dictionary[name_t("aa")] = 5;
    dictionary[name_t("c")] = 6;
    dictionary.erase(name_t("a"));
    dictionary.erase(name_t("none"));

    std::vector<std::pair<std::string_view, double>> entries;
    for (const auto& [key, value] : dictionary)
        entries.emplace_back(key.text(), value.get<double>());
    EXPECT_THAT(entries, testing::ElementsAre(std::pair("aa", 5), std::pair("b", 4), std::pair("c", 6)));
    EXPECT_EQ(dictionary.find(name_t("a")), nullptr);
    EXPECT_EQ(dictionary.find(name_t("zz")), nullptr);
}

} // namespace
} // namespace orrin
