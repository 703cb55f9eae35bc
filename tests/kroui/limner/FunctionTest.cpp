#include "Drawing.h"
#include "kroui/limner/RecordingLimner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace kroui::limner::test {
namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
using Line = std::vector<Point>;

double InkOf(const Image& image) {
    double ink = 0;
    for (const std::uint32_t pixel : image.Pixels())
        ink += (pixel >> 24) / 255.0;
    return ink;
}

double DifferenceOf(const Image& a, const Image& b) {
    double difference = 0;
    for (std::size_t i = 0; i < a.Pixels().size(); ++i)
        difference += std::abs(static_cast<int>(a.Pixels()[i] >> 24) - static_cast<int>(b.Pixels()[i] >> 24)) / 255.0;
    return difference;
}

ImagePtr Stroked(const Line& line, float width, float scale = 1) {
    return Drawn([&](Limner& limner) { limner.StrokeFunction(line, {kWhite, width}); }, scale);
}

ImagePtr StrokedAsPath(const Line& line, float width, float scale) {
    return Drawn(
        [&](Limner& limner) {
            limner.MoveTo(line[0].x, line[0].y);
            for (const Point& point : line)
                limner.LineTo(point.x, point.y);
            limner.Stroke({kWhite, width, LineCap::kRound, LineJoin::kRound});
        },
        scale);
}

TEST(Function, LevelLineCoversItsWidthExactly) {
    const ImagePtr image = Stroked({{-10, 20.5F}, {50, 20.5F}, {200, 20.5F}}, 2);
    for (const int x : {0, 33, 99}) {
        EXPECT_EQ(AlphaAt(*image, x, 18), 0);
        EXPECT_NEAR(AlphaAt(*image, x, 19), 128, 1);
        EXPECT_EQ(AlphaAt(*image, x, 20), 255);
        EXPECT_NEAR(AlphaAt(*image, x, 21), 128, 1);
    }
}

TEST(Function, StrokeLooksAsAPathDoes) {
    Line wave;
    for (int i = 0; i <= 90; ++i)
        wave.push_back({5 + static_cast<float>(i), 30 + 20 * std::sin(static_cast<float>(i) * 0.15F)});
    const Line lines[] = {{{5, 10}, {95, 50}},
                          {{5, 50}, {45, 50}, {50, 5}, {55, 50}, {95, 50}}, // a spike
                          {{5, 10}, {50, 10}, {50, 50}, {95, 50}},          // a jump
                          wave};
    for (const Line& line : lines) {
        for (const float scale : {1.0F, 2.0F}) {
            const ImagePtr function = Stroked(line, 1.5F, scale);
            const ImagePtr path = StrokedAsPath(line, 1.5F, scale);
            EXPECT_NEAR(InkOf(*function), InkOf(*path), InkOf(*path) * 0.06);
            EXPECT_LT(DifferenceOf(*function, *path), InkOf(*path) * 0.1);
        }
    }
}

TEST(Function, ManyPointsAPixelCostNoInk) {
    Line dense;
    for (int i = 0; i <= 20000; ++i)
        dense.push_back({static_cast<float>(i) * 0.005F, 10 + static_cast<float>(i) * 0.002F});
    EXPECT_LE(LargestDifference(*Stroked(dense, 1.5F), *Stroked({{0, 10}, {100, 50}}, 1.5F)), 3);
}

TEST(Function, WhatIsNoNumberOrRunsBackInterruptsTheLine) {
    for (const Line& line :
         {Line{{0, 30}, {40, 30}, {kNaN, 30}, {60, 30}, {100, 30}},
          Line{{0, 30}, {40, 30}, {50, kNaN}, {60, 30}, {100, 30}}, Line{{60, 30}, {100, 30}, {0, 30}, {40, 30}}}) {
        const ImagePtr image = Stroked(line, 2);
        EXPECT_EQ(AlphaAt(*image, 20, 30), 255);
        EXPECT_EQ(AlphaAt(*image, 50, 30), 0);
        EXPECT_EQ(AlphaAt(*image, 80, 30), 255);
    }
    for (const Line& line : {Line{}, Line{{50, 30}}, Line{{kNaN, kNaN}, {kNaN, 1}}})
        EXPECT_TRUE(Ink(*Stroked(line, 2)).IsEmpty());
    EXPECT_TRUE(Ink(*Stroked({{0, 30}, {100, 30}}, kNaN)).IsEmpty());
}

TEST(Function, ClipAndTranslationHold) {
    const ImagePtr image = Drawn([](Limner& limner) {
        limner.Translate(10, 5);
        limner.ClipRect({20, 0, 30, 100});
        limner.StrokeFunction(Line{{-1e9F, 20}, {1e9F, 20}}, {kWhite, 2});
        limner.FillFunction(Line{{0, 30}, {100, 30}}, 1e9F, {kWhite});
        limner.FillFunction(Line{{0, 30}, {100, 30}}, kNaN, {kWhite});
    });
    EXPECT_EQ(Ink(*image), (RectT<int>{30, 24, 30, 36}));
    EXPECT_EQ(AlphaAt(*image, 40, 27), 0);
}

TEST(Function, FillCoversTheAreaToTheBaseOnBothSides) {
    // Two triangles of 40 x 20 on either side of the base.
    const ImagePtr image = Drawn([](Limner& limner) {
        limner.FillFunction(Line{{10, 10}, {50, 30}, {90, 50}}, 30, {kWhite});
    });
    EXPECT_NEAR(InkOf(*image), 2 * 40 * 20 / 2, 8);
    EXPECT_EQ(AlphaAt(*image, 12, 20), 255);
    EXPECT_EQ(AlphaAt(*image, 12, 31), 0);
    EXPECT_EQ(AlphaAt(*image, 88, 29), 0);
    EXPECT_EQ(AlphaAt(*image, 88, 40), 255);
    EXPECT_EQ(AlphaAt(*image, 8, 25), 0);
}

TEST(Function, IsRecordedWithItsPoints) {
    RecordingLimner limner;
    limner.StrokeFunction(Line{{0, 10}, {1, 12.5F}}, {kWhite, 1.5F});
    limner.FillFunction(Line{{0, 10}}, 20, {kWhite});
    EXPECT_THAT(limner.Operations(),
                testing::ElementsAre("StrokeFunction #FFFFFF 1.5 0,10 1,12.5", "FillFunction #FFFFFF 20 0,10"));
}

} // namespace
} // namespace kroui::limner::test
