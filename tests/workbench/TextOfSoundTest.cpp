#include "workbench/commands/TextOfSound.h"

#include <gtest/gtest.h>

namespace workbench {
namespace {

TEST(TextOfSound, TimesRoundToMillisecondsAndCarry) {
    const std::pair<double, const char*> cases[] = {
        {0, "0:00.000"},       {-1, "0:00.000"},          {59.9994, "0:59.999"},      {59.9996, "1:00.000"},
        {102.318, "1:42.318"}, {3723.004, "1:02:03.004"}, {3599.9999, "1:00:00.000"},
    };
    for (const auto& [seconds, text] : cases)
        EXPECT_EQ(krocore::ToStdString(TimeText(seconds)), text) << seconds;
}

TEST(TextOfSound, TimesAreReadAsPeopleWriteThem) {
    const std::pair<const char*, std::optional<double>> cases[] = {
        {"0", 0},     {"90", 90},         {"1:30", 90},          {"1:30.5", 90.5},         {"1:02:03.25", 3723.25},
        {"0.5", 0.5}, {"", std::nullopt}, {"1:", std::nullopt},  {":5", std::nullopt},     {"1:60", std::nullopt},
        {"-1", {}},   {"nan", {}},        {"inf", std::nullopt}, {"1.5:00", std::nullopt}, {"1:1:1:1", std::nullopt},
    };
    for (const auto& [text, seconds] : cases)
        EXPECT_EQ(TimeFromText(text), seconds) << text;
}

} // namespace
} // namespace workbench
