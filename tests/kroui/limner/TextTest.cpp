#include "Drawing.h"

#include "krocore/String.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace kroui::limner::test {

namespace {

const Font kFont{12};
constexpr Size kRoom{400, 30};

ImagePtr DrawnText(std::u16string_view text, const Rect& rect, const TextPlacement& placement = {}, float scale = 1) {
    return Drawn([&](Limner& limner) { limner.DrawText(text, kFont, kWhite, rect, placement); }, scale, kRoom);
}

float Width(std::u16string_view text) {
    return Supplier().MeasureText(text, kFont).width;
}

// The x position, in view units and to a fraction of a pixel, at which the ink of a text ends that ends in an upright
// stem.
double InkEnd(const Image& image) {
    const RectT<int> ink = Ink(image);
    const int last = ink.Right() - 1;
    const int row = ink.top + ink.height / 3;
    return (last + AlphaAt(image, last, row) / 255.0) / image.Scale();
}

} // namespace

TEST(Text, MeasuredWidthIsWhatDrawingTakesAtEveryScale) {
    // "H" ends in an upright stem: ten more of them move the end of the ink by ten advance widths.
    const std::u16string ten(10, u'H');
    const std::u16string twenty(20, u'H');
    EXPECT_NEAR(Width(twenty), 2 * Width(ten), 1e-3);
    for (const float scale : {1.0F, 1.25F, 1.5F, 2.0F, 3.0F}) {
        const Rect rect{10, 0, 380, 30};
        const double moved = InkEnd(*DrawnText(twenty, rect, {}, scale)) - InkEnd(*DrawnText(ten, rect, {}, scale));
        // A glyph stands on quarters of a pixel: each end is off by an eighth at most, and by what sampling loses.
        EXPECT_NEAR(moved, Width(ten), 0.3 / scale) << scale;
    }
}

TEST(Text, AlignmentPlacesTheMeasuredWidth) {
    const Rect rect{20, 0, 200, 30};
    const double left = InkEnd(*DrawnText(u"HHH", rect, {TextAlignment::kLeft}));
    const double centre = InkEnd(*DrawnText(u"HHH", rect, {TextAlignment::kCentre}));
    const double right = InkEnd(*DrawnText(u"HHH", rect, {TextAlignment::kRight}));
    EXPECT_NEAR(right - left, 200 - Width(u"HHH"), 0.3);
    EXPECT_NEAR(centre - left, (200 - Width(u"HHH")) / 2, 0.3);
}

TEST(Text, DigitsAreOfEqualWidth) {
    for (const bool bold : {false, true}) {
        const float zero = Supplier().MeasureText(u"0", {12, bold}).width;
        EXPECT_GT(zero, 0);
        for (char16_t digit = u'1'; digit <= u'9'; ++digit) {
            EXPECT_FLOAT_EQ(Supplier().MeasureText({&digit, 1}, {12, bold}).width, zero);
        }
    }
}

TEST(Text, BaselineStandsOnWholePixels) {
    const ImagePtr whole = DrawnText(u"Ex", {10, 5, 100, 20});
    // Whatever the fraction, the picture is the same or the same a pixel further down.
    for (const float top : {4.7F, 4.9F, 5.1F, 5.3F}) {
        const ImagePtr image = DrawnText(u"Ex", {10, top, 100, 20});
        const RectT<int> ink = Ink(*image);
        const RectT<int> expected = Ink(*whole);
        ASSERT_EQ(ink.width, expected.width);
        ASSERT_EQ(ink.height, expected.height);
        for (int i = 0; i < ink.width * ink.height; ++i) {
            const int x = ink.left + i % ink.width;
            const int y = i / ink.width;
            EXPECT_EQ(AlphaAt(*image, x, ink.top + y), AlphaAt(*whole, x, expected.top + y)) << top;
        }
    }
}

TEST(Text, EllipsisNeverExceedsTheWidth) {
    constexpr std::u16string_view kText = u"Splicing Frequency";
    constexpr float kLeft = 20;
    for (const TextTruncation truncation : {TextTruncation::kStart, TextTruncation::kEnd}) {
        for (float width = 0; width <= Width(kText) + 2; width += 1.5F) {
            const RectT<int> ink = Ink(*DrawnText(kText, {kLeft, 0, width, 30}, {TextAlignment::kLeft, truncation}));
            if (ink.IsEmpty()) continue;
            EXPECT_GE(ink.left, kLeft - 1) << width;
            EXPECT_LE(ink.Right(), kLeft + width + 1) << width;
        }
    }
}

TEST(Text, EllipsisKeepsTheEndThatTruncationLeaves) {
    constexpr std::u16string_view kText = u"Splicing Frequency";
    const float width = Width(kText) - 20;
    const auto sameColumns = [](const Image& a, const Image& b, int from, int to) {
        for (int x = from; x < to; ++x) {
            for (int y = 0; y < a.PixelHeight(); ++y) {
                if (AlphaAt(a, x, y) != AlphaAt(b, x, y)) return false;
            }
        }
        return true;
    };
    const ImagePtr plain = DrawnText(kText, {20, 0, width, 30});
    const ImagePtr cutAtEnd = DrawnText(kText, {20, 0, width, 30}, {TextAlignment::kLeft, TextTruncation::kEnd});
    EXPECT_TRUE(sameColumns(*plain, *cutAtEnd, 0, 60));
    EXPECT_FALSE(sameColumns(*plain, *cutAtEnd, 0, 200));
    const ImagePtr plainRight = DrawnText(kText, {20, 0, width, 30}, {TextAlignment::kRight});
    const ImagePtr cutAtStart = DrawnText(kText, {20, 0, width, 30}, {TextAlignment::kRight, TextTruncation::kStart});
    const int right = 20 + static_cast<int>(width) + 1;
    EXPECT_TRUE(sameColumns(*plainRight, *cutAtStart, right - 50, right));
    EXPECT_FALSE(sameColumns(*plainRight, *cutAtStart, 0, right));
}

TEST(Text, EllipsisIsLeftOutWhereTheTextFits) {
    constexpr std::u16string_view kText = u"Gain";
    const Rect rect{20, 0, Width(kText), 30};
    EXPECT_EQ(LargestDifference(*DrawnText(kText, rect),
                                *DrawnText(kText, rect, {TextAlignment::kLeft, TextTruncation::kEnd})),
              0);
    EXPECT_TRUE(Ink(*DrawnText(kText, {20, 0, 3, 30}, {TextAlignment::kLeft, TextTruncation::kEnd})).IsEmpty());
}

TEST(Text, CaretPositionsGoFromZeroToTheWidth) {
    std::vector<float> positions;
    Supplier().CaretPositions(u"12.5", kFont, positions);
    ASSERT_EQ(positions.size(), 5U);
    EXPECT_EQ(positions[0], 0);
    EXPECT_NEAR(positions[1], Width(u"1"), 0.01);
    EXPECT_NEAR(positions[2], Width(u"12"), 0.01);
    EXPECT_NEAR(positions[4], Width(u"12.5"), 0.01);

    // No caret stands inside a surrogate pair.
    Supplier().CaretPositions(u"a\xD835\xDC00z", kFont, positions);
    ASSERT_EQ(positions.size(), 5U);
    EXPECT_EQ(positions[1], positions[2]);
    EXPECT_GT(positions[3], positions[2]);

    Supplier().CaretPositions(u"", kFont, positions);
    EXPECT_EQ(positions, std::vector<float>{0});
}

TEST(Text, ParagraphWrapsAndBreaks) {
    const float line = Supplier().MeasureText(u"x", kFont).height;
    const auto height = [](std::u16string_view text, float width) {
        return Supplier().MeasureParagraph(text, kFont, width).height;
    };
    EXPECT_NEAR(height(u"one two", Width(u"one two") + 1), line, 0.01);
    EXPECT_NEAR(height(u"one two", Width(u"one") + 1), 2 * line, 0.01);
    EXPECT_NEAR(height(u"one\ntwo\n\nfour", 500), 4 * line, 0.01);
    EXPECT_NEAR(height(u"HHHHHH", Width(u"HHH") + 1), 2 * line, 0.01);
    EXPECT_LE(Supplier().MeasureParagraph(u"several words in a row", kFont, 50).width, 50);
}

TEST(Text, UnusualUnitsAreDrawnAsSomethingAndKeepTheLineWhole) {
    EXPECT_FLOAT_EQ(Width(u"a\nb\tc"), Width(u"a b c"));
    EXPECT_FLOAT_EQ(Width(std::u16string_view(u"a\0b", 3)), Width(u"a b"));
    EXPECT_FLOAT_EQ(Width(u"a\xD800z"), Width(u"a\xFFFDz"));
    EXPECT_FLOAT_EQ(Width(u"\xDC00\xD800"), Width(u"\xFFFD\xFFFD"));
    // A character that no font can have (a noncharacter of plane 15) still leaves a mark.
    EXPECT_FALSE(Ink(*DrawnText(u"\xDBBF\xDFFE", {20, 0, 100, 30})).IsEmpty());
}

TEST(Text, MeasuringIsTheSameAfterACacheFullOfOtherTexts) {
    const TextExtent first = Supplier().MeasureText(u"Kept aside", kFont);
    for (int i = 0; i < 5000; ++i) {
        const std::string digits = std::to_string(i);
        Supplier().MeasureText(std::u16string(digits.begin(), digits.end()), kFont);
    }
    const TextExtent again = Supplier().MeasureText(u"Kept aside", kFont);
    EXPECT_EQ(first.width, again.width);
    EXPECT_EQ(first.height, again.height);
    EXPECT_GT(Width(std::u16string(3000, u'i')), 2.9F * Width(std::u16string(1000, u'i')));
}

TEST(Text, UnusableSizesMeasureAsSomethingFinite) {
    for (const float size : {0.0F, -3.0F, std::numeric_limits<float>::quiet_NaN(), 1e9F}) {
        EXPECT_TRUE(std::isfinite(Supplier().MeasureText(u"Gain", {size}).width)) << size;
        EXPECT_TRUE(std::isfinite(Supplier().MeasureParagraph(u"Gain", kFont, size).height)) << size;
    }
}

TEST(Text, CaretPositionsStandAtTheEdgesOfWhatIsReadAsOneCharacter) {
    const auto positions = [](std::u16string_view text) {
        std::vector<float> carets;
        Supplier().CaretPositions(text, kFont, carets);
        return carets;
    };
    // The mark has no place of its own; what follows stands behind the letter with its mark.
    const std::vector<float> marked = positions(u"e\u0301x");
    EXPECT_EQ(marked[1], marked[0]);
    EXPECT_NEAR(marked[2], Width(u"e\u0301x") - Width(u"x"), 0.01);
    // From right to left the first character is at the right; behind the text is the end of the line.
    const std::vector<float> hebrew = positions(u"\u05D0\u05D1\u05D2");
    EXPECT_NEAR(hebrew[0], Width(u"\u05D0\u05D1\u05D2"), 0.01);
    EXPECT_GT(hebrew[0], hebrew[1]);
    EXPECT_GT(hebrew[1], hebrew[2]);
    EXPECT_GT(hebrew[2], 0);
    EXPECT_EQ(hebrew[3], hebrew[0]);
    // Runs stand in the order in which they are seen.
    const std::vector<float> mixed = positions(u"12\u05D0\u05D134");
    EXPECT_NEAR(mixed.back(), Width(u"12\u05D0\u05D134"), 0.01);
    for (const float caret : mixed)
        EXPECT_TRUE(caret >= 0 && caret <= mixed.back() + 0.01F);
}

TEST(Text, CaretPositionsOfALongTextAreThoseOfItsCharacters) {
    std::vector<float> carets;
    Supplier().CaretPositions(std::u16string(20'000, u'7'), kFont, carets);
    ASSERT_EQ(carets.size(), 20'001U);
    for (const std::size_t place : {std::size_t{1}, std::size_t{9'999}, std::size_t{20'000}})
        EXPECT_NEAR(carets[place], static_cast<float>(place) * Width(u"7"), 0.5) << place;
}

TEST(Text, PaintedAgainIsNotShapedAgainHoweverMuchIsInSight) {
    const CairoSupplier supplier;
    const auto paint = [&] {
        supplier.DrawImage(kRoom, 1, [](Limner& limner) {
            for (int i = 0; i < 5'000; ++i)
                limner.DrawText(krocore::FromASCII(std::to_string(i)), kFont, kWhite, {0, 0, 100, 20}, {});
        });
    };
    paint();
    EXPECT_EQ(supplier.ShapedTextCount(), 5'000U);
    paint();
    EXPECT_EQ(supplier.ShapedTextCount(), 5'000U);
}

TEST(Text, CacheForgetsWhatWasNotUsedForLongest) {
    const CairoSupplier supplier;
    const auto measure = [&](int number) {
        std::u16string text(1'000, u'.');
        text += krocore::FromASCII(std::to_string(number));
        supplier.MeasureText(text, kFont);
    };
    measure(0);
    measure(1);
    for (int number = 2; number < 600; ++number) { // some 2,000 glyphs of room each, of a million
        measure(number);
        measure(0);
    }
    EXPECT_EQ(supplier.ShapedTextCount(), 600U);
    measure(0);
    measure(599);
    EXPECT_EQ(supplier.ShapedTextCount(), 600U);
    measure(1);
    EXPECT_EQ(supplier.ShapedTextCount(), 601U);
}

} // namespace kroui::limner::test
