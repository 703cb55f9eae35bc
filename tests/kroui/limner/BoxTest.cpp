#include "Drawing.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace kroui::limner::test {

namespace {

struct BoxCase {
    Rect rect;
    float radius;
    float lineWidth; // 0: filled
    float scale;
};

// Boxes on pixels and between them, larger and smaller than a stamp, circles, thick lines.
const std::vector<BoxCase>& BoxCases() {
    static const std::vector<BoxCase> cases{
        {{10, 10, 40, 24}, 4, 0, 1},       {{10, 10, 40, 24}, 4, 1, 1},        {{10, 10, 16, 16}, 8, 0, 1},
        {{10, 10, 16, 16}, 8, 2, 1},       {{10, 10, 40, 3}, 1.5F, 0, 1},      {{10, 10, 9, 30}, 4.5F, 0, 1},
        {{10, 10, 40, 24}, 4, 1, 1.25F},   {{11, 13, 41, 25}, 4, 1.5F, 1.25F}, {{10, 11, 40, 24}, 4, 1, 1.5F},
        {{10, 10, 40, 24}, 4, 0, 2},       {{10, 10, 40, 24}, 4, 1, 3},        {{10, 10, 40, 24}, 0, 0, 1},
        {{10, 10, 40, 24}, 100, 0, 1},     {{10, 10, 40, 24}, 2, 6, 1},        {{10, 10, 12, 12}, 3, 6, 1},
        {{10.25F, 9.5F, 40, 24}, 4, 1, 1}, {{10.03F, 9.91F, 40, 24}, 4, 0, 1}, {{10.03F, 9.91F, 40, 24}, 4, 1, 1},
        {{10, 10, 0.5F, 24}, 4, 0, 1},
    };
    return cases;
}

bool IsInRoundRect(double x, double y, const Rect& rect, double radius) {
    const double r = std::min<double>({radius, rect.width / 2, rect.height / 2});
    if (x < rect.left || x > rect.Right() || y < rect.top || y > rect.Bottom()) return false;
    const double dx = x - std::clamp(x, rect.left + r, rect.Right() - r);
    const double dy = y - std::clamp(y, rect.top + r, rect.Bottom() - r);
    return dx * dx + dy * dy <= r * r;
}

// A pixel's coverage from the definition of the shape, by counting points on a fine grid inside the pixel.
int Coverage(const BoxCase& box, int pixelX, int pixelY) {
    constexpr int kGrid = 16;
    const double radius = std::min<double>({box.radius, box.rect.width / 2, box.rect.height / 2});
    const Rect inside = box.rect.Inset(box.lineWidth, box.lineWidth);
    int count = 0;
    for (int i = 0; i < kGrid * kGrid; ++i) {
        const double x = (pixelX + (i % kGrid + 0.5) / kGrid) / box.scale;
        const double y = (pixelY + (i / kGrid + 0.5) / kGrid) / box.scale;
        if (!IsInRoundRect(x, y, box.rect, radius)) continue;
        const bool isHole = box.lineWidth > 0 && !inside.IsEmpty() &&
                            IsInRoundRect(x, y, inside, std::max(0.0, radius - box.lineWidth));
        if (!isHole) ++count;
    }
    return static_cast<int>(std::lround(255.0 * count / (kGrid * kGrid)));
}

void DrawBox(Limner& limner, const BoxCase& box, const Color& color) {
    if (box.lineWidth > 0) {
        limner.FrameRoundRect(box.rect, box.radius, color, box.lineWidth);
    } else {
        limner.FillRoundRect(box.rect, box.radius, color);
    }
}

} // namespace

TEST(Box, RoundBoxCoversWhatItsGeometrySays) {
    // The rasteriser samples a pixel on a grid and approximates arcs by cubic curves.
    constexpr int kTolerance = 10;
    for (const BoxCase& box : BoxCases()) {
        const ImagePtr image = Drawn([&](Limner& limner) { DrawBox(limner, box, kWhite); }, box.scale);
        int worst = 0;
        for (int y = 0; y < image->PixelHeight(); ++y) {
            for (int x = 0; x < image->PixelWidth(); ++x) {
                worst = std::max(worst, std::abs(AlphaAt(*image, x, y) - Coverage(box, x, y)));
            }
        }
        EXPECT_LE(worst, kTolerance) << "box " << &box - BoxCases().data();
    }
}

TEST(Box, RoundBoxStampLooksLikeThePath) {
    for (const BoxCase& box : BoxCases()) {
        if (box.lineWidth > 0) continue;
        const Color color = Color::FromRGB(0x4DA3FF).WithAlpha(0.8F);
        const ImagePtr stamped = Drawn([&](Limner& limner) { DrawBox(limner, box, color); }, box.scale);
        const ImagePtr filled = Drawn(
            [&](Limner& limner) {
                limner.AddRoundRect(box.rect, box.radius);
                limner.Fill({color});
            },
            box.scale);
        EXPECT_LE(LargestDifference(*stamped, *filled), 2) << "box " << &box - BoxCases().data();
    }
}

TEST(Box, RoundBoxPartsDrawnThroughClipsMakeTheWhole) {
    for (const BoxCase& box : BoxCases()) {
        const auto drawPart = [&](Limner& limner, const Rect& part) {
            limner.Save();
            limner.ClipRect(part);
            DrawBox(limner, box, kWhite.WithAlpha(0.5F));
            limner.Restore();
        };
        const ImagePtr whole = Drawn([&](Limner& limner) { drawPart(limner, {0, 0, 100, 60}); }, box.scale);
        // 12 view units are whole pixels at each of the scales.
        const ImagePtr parts = Drawn(
            [&](Limner& limner) {
                drawPart(limner, {0, 0, 12, 12});
                drawPart(limner, {12, 0, 88, 12});
                drawPart(limner, {0, 12, 36, 48});
                drawPart(limner, {36, 12, 64, 48});
            },
            box.scale);
        EXPECT_EQ(LargestDifference(*whole, *parts), 0) << "box " << &box - BoxCases().data();
    }
}

TEST(Box, FillRectEdgesBetweenPixelsGetTheirShare) {
    const ImagePtr image = Drawn([](Limner& limner) { limner.FillRect({10.25F, 10, 5.25F, 8.5F}, kWhite); });
    EXPECT_EQ(AlphaAt(*image, 9, 12), 0);
    EXPECT_EQ(AlphaAt(*image, 10, 12), 191); // 0.75 * 255
    EXPECT_EQ(AlphaAt(*image, 11, 12), 255);
    EXPECT_EQ(AlphaAt(*image, 15, 12), 128); // 0.5 * 255
    EXPECT_EQ(AlphaAt(*image, 16, 12), 0);
    EXPECT_EQ(AlphaAt(*image, 12, 18), 128);
    EXPECT_EQ(AlphaAt(*image, 10, 18), 96); // 0.75 * 0.5 * 255
}

TEST(Box, FillRectWithoutSmoothingTakesPixelsWhoseCentreIsInside) {
    const ImagePtr image = Drawn([](Limner& limner) {
        limner.SetSmoothing(0);
        limner.FillRect({10.25F, 10, 5.5F, 8.25F}, kWhite);
    });
    EXPECT_EQ(Ink(*image), (RectT<int>{10, 10, 6, 8}));
    EXPECT_EQ(AlphaAt(*image, 10, 10), 255);
}

TEST(Box, TranslucentBlendsOverWhatIsThere) {
    // Two layers of half-transparent white over opaque black: 128, then 128 + 128 * 127 / 255 = 191.75.
    PixelSurface surface(Supplier());
    surface.SetSize({20, 10}, 1);
    surface.Draw({0, 0, 20, 10}, [](Limner& limner) {
        limner.FillRect({0, 0, 20, 10}, kWhite.WithAlpha(0.5F));
        limner.FillRoundRect({0, 0, 20, 10}, 2, kWhite.WithAlpha(0.5F));
    });
    const ImagePtr image = surface.Snapshot();
    EXPECT_EQ(PixelAt(*image, 0, 0) >> 24, 255U);
    EXPECT_NEAR(static_cast<int>(PixelAt(*image, 10, 5) & 255), 192, 1);
    EXPECT_NEAR(static_cast<int>(PixelAt(*image, 19, 5) & 255), 192, 1);
    EXPECT_TRUE(std::ranges::all_of(image->Pixels(), [](std::uint32_t pixel) { return pixel >> 24 == 255; }));
}

} // namespace kroui::limner::test
