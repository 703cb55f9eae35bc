#include "Drawing.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace kroui::limner::test {

namespace {

using Operation = void (*)(Limner&);

// Each draws over the whole picture and beyond.
const std::vector<Operation>& Operations() {
    static const std::vector<Operation> operations{
        [](Limner& l) {
            l.FillRect({-5, -5, 200, 200}, kWhite);
        },
        [](Limner& l) {
            l.FillRect({-5.3F, -5.3F, 200, 200}, kWhite);
        },
        [](Limner& l) {
            l.FillRoundRect({-5, -5, 200, 200}, 4, kWhite);
        },
        [](Limner& l) {
            l.FillRoundRect({-5.01F, -5, 200, 200}, 4, kWhite);
        },
        [](Limner& l) {
            l.FrameRoundRect({-5, -5, 200, 200}, 4, kWhite, 50);
        },
        [](Limner& l) {
            l.DrawText(u"MMMMMMMMMMMMMMMMMM", {60}, kWhite, {-50, 0, 300, 60}, {});
        },
        [](Limner& l) {
            l.Arc(50, 30, 100, 0, 360);
            l.Fill({kWhite});
        },
        [](Limner& l) {
            l.MoveTo(-10, 30);
            l.LineTo(200, 30);
            l.Stroke({kWhite, 100});
        },
        [](Limner& l) {
            const ImagePtr white = Supplier().DrawImage({4, 4}, 1, [](Limner& w) { w.FillRect({0, 0, 4, 4}, kWhite); });
            l.DrawImage(*white, {-5, -5, 200, 200}, 1);
        },
    };
    return operations;
}

} // namespace

TEST(State, ClipRectHoldsEveryOperationAndEndsWithRestore) {
    for (std::size_t i = 0; i < Operations().size(); ++i) {
        const ImagePtr clipped = Drawn([i](Limner& limner) {
            limner.Save();
            limner.ClipRect({20, 10, 30, 20});
            Operations()[i](limner);
            limner.Restore();
        });
        const RectT<int> ink = Ink(*clipped);
        EXPECT_GE(ink.left, 20) << i;
        EXPECT_GE(ink.top, 10) << i;
        EXPECT_LE(ink.Right(), 50) << i;
        EXPECT_LE(ink.Bottom(), 30) << i;
        EXPECT_FALSE(ink.IsEmpty()) << i;

        const ImagePtr restored = Drawn([i](Limner& limner) {
            limner.Save();
            limner.ClipRect({20, 10, 30, 20});
            Operations()[0](limner);
            limner.Restore();
            Operations()[i](limner);
        });
        EXPECT_NE(Ink(*restored), (RectT<int>{20, 10, 30, 20})) << i;

        const ImagePtr nothing = Drawn([i](Limner& limner) {
            limner.ClipRect({20, 10, 30, 20});
            limner.ClipRect({60, 10, 30, 20});
            Operations()[i](limner);
        });
        EXPECT_TRUE(Ink(*nothing).IsEmpty()) << i;
    }
}

TEST(State, ClipRectBetweenPathAndFillKeepsThePath) {
    const ImagePtr image = Drawn([](Limner& limner) {
        limner.AddRect({0, 0, 100, 60});
        limner.Save();
        limner.ClipRect({20, 10, 30, 20});
        limner.Translate(500, 500);
        limner.Fill({kWhite});
        limner.Restore();
    });
    EXPECT_EQ(Ink(*image), (RectT<int>{20, 10, 30, 20}));
}

TEST(State, ClipBoundsFollowClipTranslationAndScale) {
    Drawn(
        [](Limner& limner) {
            EXPECT_EQ(limner.ClipBounds(), (Rect{0, 0, 100, 60}));
            limner.Save();
            limner.Translate(10, 20);
            EXPECT_EQ(limner.ClipBounds(), (Rect{-10, -20, 100, 60}));
            limner.ClipRect({0, 0, 40, 10});
            EXPECT_EQ(limner.ClipBounds(), (Rect{0, 0, 40, 10}));
            limner.ClipRect({38, 0, 40, 10});
            EXPECT_EQ(limner.ClipBounds(), (Rect{38, 0, 2, 10}));
            limner.ClipRect({0, 0, 1, 1});
            EXPECT_TRUE(limner.ClipBounds().IsEmpty());
            limner.Restore();
            limner.Restore();
            EXPECT_EQ(limner.ClipBounds(), (Rect{0, 0, 100, 60}));
        },
        1.5F);
}

TEST(State, SmoothingAndTranslationComeBackWithRestore) {
    const auto line = [](Limner& limner) {
        limner.MoveTo(3, 5);
        limner.LineTo(60, 41);
        limner.Stroke({kWhite, 2});
    };
    const ImagePtr plain = Drawn(line);
    const ImagePtr restored = Drawn([&](Limner& limner) {
        limner.Restore(); // without a Save: nothing
        limner.Save();
        limner.SetSmoothing(0);
        limner.Translate(7, 7);
        limner.Restore();
        line(limner);
    });
    EXPECT_EQ(LargestDifference(*plain, *restored), 0);
}

TEST(State, SmoothingOffLeavesNoPartlyCoveredPixels) {
    const ImagePtr image = Drawn([](Limner& limner) {
        limner.SetSmoothing(0);
        limner.Arc(30, 30, 20.3F, 0, 360);
        limner.Fill({kWhite});
        limner.FillRoundRect({55.2F, 10.4F, 30, 30}, 6, kWhite);
    });
    EXPECT_TRUE(std::ranges::all_of(image->Pixels(), [](auto pixel) { return pixel == 0 || pixel == 0xFFFFFFFF; }));
    EXPECT_EQ(AlphaAt(*image, 30, 30), 255);
    EXPECT_EQ(AlphaAt(*image, 70, 25), 255);
}

TEST(State, ScaleDoublesGeometry) {
    const auto scene = [](float factor) {
        return [factor](Limner& limner) {
            const auto f = [factor](float value) { return value * factor; };
            limner.Translate(f(3), f(2));
            limner.FillRect({f(1), f(1), f(10), f(10.25F)}, kWhite);
            limner.FillRoundRect({f(20), f(5), f(30), f(20)}, f(5), kWhite);
            limner.FrameRoundRect({f(20), f(30), f(30), f(20)}, f(5), kWhite, f(1));
            limner.MoveTo(f(60), f(5));
            limner.CurveTo(f(70), f(5), f(70), f(40), f(90), f(50));
            limner.Stroke({kWhite, f(1.5F), LineCap::kRound, LineJoin::kRound, f(3)});
            limner.Arc(f(70), f(40), f(8), 0, 270);
            limner.ClosePath();
            limner.Fill({kWhite});
        };
    };
    for (const float scale : {1.25F, 1.5F, 2.0F, 3.0F}) {
        const ImagePtr scaled = Drawn(scene(1), scale);
        const ImagePtr enlarged = Drawn(scene(scale), 1, {100 * scale, 60 * scale});
        EXPECT_LE(LargestDifference(*scaled, *enlarged), 1) << scale;
        EXPECT_GT(AlphaAt(*scaled, static_cast<int>(35 * scale), static_cast<int>(15 * scale)), 0);
    }
}

TEST(State, ArcRunsClockwiseFromTheRight) {
    // A quarter from 0 to 90 degrees lies to the lower right of the centre.
    const ImagePtr image = Drawn([](Limner& limner) {
        limner.Arc(50, 30, 20, 0, 90);
        limner.LineTo(50, 30);
        limner.Fill({kWhite});
    });
    EXPECT_EQ(Ink(*image), (RectT<int>{50, 30, 20, 20}));
}

TEST(State, CoordinatesThatAreNoNumbersDrawNothing) {
    constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
    const ImagePtr image = Drawn([](Limner& limner) {
        limner.Translate(kNaN, 0);
        limner.FillRect({kNaN, 0, 10, 10}, kWhite);
        limner.FillRoundRect({0, 0, kNaN, 10}, 4, kWhite);
        limner.DrawText(u"Gain", {12}, kWhite, {0, kNaN, 100, 20}, {});
        limner.MoveTo(kNaN, 0);
        limner.LineTo(10, kNaN);
        limner.Arc(10, 10, kNaN, 0, 360);
        limner.Stroke({kWhite, 3});
        limner.MoveTo(0, 0);
        limner.LineTo(10, 10);
        limner.Stroke({kWhite, kNaN});
    });
    EXPECT_TRUE(Ink(*image).IsEmpty());

    // A level of minus infinity is drawn to the edge.
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    const ImagePtr far = Drawn([](Limner& limner) {
        limner.FillRect({-1e30F, 10, 2e30F, 5}, kWhite);
        limner.MoveTo(50, 30);
        limner.LineTo(50, kInfinity);
        limner.Stroke({kWhite, 2});
    });
    EXPECT_EQ(Ink(*far), (RectT<int>{0, 10, 100, 50}));
}

} // namespace kroui::limner::test
