#include "qoc/components/GenericParameterInfo.h"
#include "qoc/components/ParameterTable.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>

using namespace qoc::components;

namespace {

constexpr const char* kWindowItems[] = {"Hann", "Hamming", "Kaiser (140 dB)"};
constexpr const char* kSizeItems[] = {"32", "64", "32768"};
constexpr float kSizes[] = {32, 64, 32768};

constexpr ParameterRow kGain = {.id = "gain", .name = "$$$/Test/Gain=Gain @0", .unit = "dB", .lo = -96, .hi = 48};
constexpr ParameterRow kCutoff = {.id = "cutoff",
                                  .name = "Cutoff",
                                  .unit = "Hz",
                                  .lo = 20,
                                  .hi = 20000,
                                  .defaultValue = 2000,
                                  .scale = ParameterScale::kLogarithmic};
constexpr ParameterRow kNotchFrequency = {
    .id = "frequency", .name = "Frequency", .unit = "Hz", .lo = 0.5F, .scale = ParameterScale::kNyquist};
constexpr ParameterRow kLink = {.id = "link", .name = "Link", .kind = ParameterKind::kSwitch};
constexpr ParameterRow kWindow = {
    .id = "window", .name = "Window", .hi = 8, .kind = ParameterKind::kChoice, .items = kWindowItems};
// The range ends below the largest size, whose stored value therefore lies above 1.
constexpr ParameterRow kSize = {.id = "size",
                                .name = "Size",
                                .lo = 32,
                                .hi = 24000,
                                .kind = ParameterKind::kChoice,
                                .items = kSizeItems,
                                .itemValues = kSizes};

TEST(GenericParameterInfo, ConvertsBothWays) {
    struct Case {
        const ParameterRow* row;
        float normalised;
        float natural;
    };
    const Case cases[] = {
        {&kGain, 0.5F, -24.0F},
        {&kGain, 1.0F, 48.0F},
        {&kGain, 2.0F / 3.0F, 0.0F},
        {&kGain, 1.2F, 76.8F}, // not clamped
        {&kCutoff, 0.0F, 20.0F},
        {&kCutoff, 1.0F, 20000.0F},
        {&kCutoff, 0.5F, 632.45553F}, // geometric mean: sqrt(20 * 20000)
        {&kNotchFrequency, 0.5F, 12000.5F},
        {&kWindow, 0.125F, 1.0F},
        {&kSize, (32768.0F - 32) / 23968, 32768.0F},
    };
    for (const Case& c : cases) {
        GenericParameterInfo info(*c.row);
        info.SetNyquist(24000);
        EXPECT_NEAR(info.ToNatural(c.normalised), c.natural, std::abs(c.natural) * 2e-6F + 1e-5F) << c.row->id;
        EXPECT_NEAR(info.ToNormalised(c.natural), c.normalised, 2e-6F) << c.row->id;
    }
}

TEST(GenericParameterInfo, ProcessingGetsValuesInsideTheRange) {
    const float notANumber = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(GenericParameterInfo(kGain).ToClampedNatural(1.2F), 48.0F);
    EXPECT_EQ(GenericParameterInfo(kGain).ToClampedNatural(-3.0F), -96.0F);
    EXPECT_EQ(GenericParameterInfo(kGain).ToClampedNatural(notANumber), -96.0F);
    EXPECT_EQ(GenericParameterInfo(kSize).ToClampedNatural((32768.0F - 32) / 23968), 32768.0F);
    EXPECT_EQ(GenericParameterInfo(kSize).ToClampedNatural(0.001F), 64.0F); // 32 + 23.968 is nearer to 64
    EXPECT_TRUE(std::isfinite(GenericParameterInfo(kCutoff).ToNormalised(-1.0F)));
}

TEST(GenericParameterInfo, WritesText) {
    EXPECT_EQ(GenericParameterInfo(kGain).ToText(0.5F), u"-24 dB");
    EXPECT_EQ(GenericParameterInfo(kLink).ToText(0.5F), u"On");
    EXPECT_EQ(GenericParameterInfo(kLink).ToText(0.49F), u"Off");
    EXPECT_EQ(GenericParameterInfo(kWindow).ToText(0.25F), u"Kaiser (140 dB)");
    EXPECT_EQ(GenericParameterInfo(kGain, 3).GetName(), u"Gain 3");
    EXPECT_EQ(GenericParameterInfo(kGain, 3).GetID(), "gain3");
}

TEST(GenericParameterInfo, ReadsText) {
    struct Case {
        const ParameterRow* row;
        const char16_t* text;
        std::optional<float> natural;
    };
    const Case cases[] = {
        {&kGain, u"-5 dB", -5.0F},
        {&kGain, u" +3", 3.0F},
        {&kGain, u"1,5", 1.5F},
        {&kGain, u"-inf", -96.0F},
        {&kGain, u"inf", {}},
        {&kGain, u"loud", {}},
        {&kGain, u"", {}},
        {&kCutoff, u"8k", 8000.0F},
        {&kLink, u"ON", 1.0F},
        {&kLink, u" off ", 0.0F},
        {&kLink, u"0", 0.0F},
        {&kLink, u"2", {}},
        {&kWindow, u"hamming", 1.0F},
        {&kWindow, u"Kaiser (140 dB)", 2.0F},
        {&kWindow, u"square", {}},
        {&kSize, u"32768", 32768.0F},
    };
    for (const Case& c : cases) {
        const GenericParameterInfo info(*c.row);
        const std::optional<float> value = info.FromText(c.text);
        ASSERT_EQ(value.has_value(), c.natural.has_value()) << c.row->id << krocore::ToStdString(c.text);
        if (value) {
            EXPECT_NEAR(info.ToNatural(*value), *c.natural, std::abs(*c.natural) * 2e-6F + 1e-5F);
        }
    }
}

TEST(ParameterTable, RowsStandWhereTheySayAndIndicesBetweenThemAreFree) {
    const ParameterRow pair[] = {{.index = 2, .id = "x"}, {.id = "y"}};
    const ParameterRow last[] = {{.index = 7, .id = "last"}};
    ParameterTable table;
    table.AddRepeated(pair, 2).Add(last);
    ASSERT_EQ(table.Size(), 8);
    std::string ids;
    for (int i = 0; i < table.Size(); ++i)
        ids += (table.Find(i) == nullptr ? "-" : table.Find(i)->GetID()) + " ";
    EXPECT_EQ(ids, "- - x1 y1 x2 y2 - last ");
    // Taken already; and a group that stands there more often than its neighbour leaves room for.
    EXPECT_THROW(table.Add(last), std::logic_error);
    EXPECT_THROW(ParameterTable().AddRepeated(pair, 4).Add(last), std::logic_error);
}

} // namespace
