#include "kroui/limner/RecordingLimner.h"
#include "Drawing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kroui::limner::test {

TEST(Recording, OperationsAreALineEach) {
    RecordingLimner limner;
    const Color blue = Color::FromRGB(0x4DA3FF);
    limner.Save();
    limner.SetSmoothing(0);
    limner.Translate(-0.00001F, 2);
    limner.ClipRect({0, 0, 100, 50.5F});
    limner.FillRect({0, 0, 10, 20}, Color::FromRGB(0x2A2B2F));
    limner.FillRoundRect({1.23456F, 0, 10, 20}, 4, blue.WithAlpha(0.5F));
    limner.FrameRoundRect({0, 0, 10, 20}, 4, blue, 1);
    limner.MoveTo(1.5F, 2);
    limner.LineTo(100, 1000000);
    limner.Stroke({blue});
    limner.Stroke({blue, 2, LineCap::kRound, LineJoin::kBevel, 3});
    limner.Fill({blue});
    limner.Arc(5, 6, 7, 0, 90);
    limner.DrawText(u"Gain", {12}, Color::FromRGB(0xD7D9DE), {0, 0, 40, 16}, {});
    limner.DrawText(u"\"\u00B5\"\n", {9.5F, true}, blue, {0, 0, 40, 16},
                    {TextAlignment::kRight, TextTruncation::kEnd, true});
    limner.DrawImage(*Drawn([](Limner&) {}, 2, {3, 4}), {0, 0, 3, 4}, 0.25F);
    limner.Restore();
    EXPECT_THAT(limner.Operations(),
                testing::ElementsAre("Save", "SetSmoothing 0", "Translate 0 2", "ClipRect 0 0 100 50.5",
                                     "FillRect 0 0 10 20 #2A2B2F", "FillRoundRect 1.2346 0 10 20 4 #4DA3FF80",
                                     "FrameRoundRect 0 0 10 20 4 #4DA3FF 1", "MoveTo 1.5 2", "LineTo 100 1000000",
                                     "Stroke #4DA3FF 1", "Stroke #4DA3FF 2 cap round join bevel dash 3", "Fill #4DA3FF",
                                     "Arc 5 6 7 0 90", "Text \"Gain\" 12 #D7D9DE 0 0 40 16 left",
                                     "Text \"\\\"\u00B5\\\"\\n\" 9.5 bold #4DA3FF 0 0 40 16 right end multiline",
                                     "Image 6x8 0 0 3 4 0.25", "Restore"));
}

TEST(Recording, ClipBoundsFollowClipAndTranslation) {
    RecordingLimner limner({0, 0, 100, 60}, 2);
    limner.Restore(); // without a Save: nothing
    limner.Save();
    limner.Translate(10, 20);
    EXPECT_EQ(limner.ClipBounds(), (Rect{-10, -20, 100, 60}));
    limner.ClipRect({0, 0, 400, 10});
    EXPECT_EQ(limner.ClipBounds(), (Rect{0, 0, 90, 10}));
    limner.Translate(0, 5);
    EXPECT_EQ(limner.ClipBounds(), (Rect{0, -5, 90, 10}));
    limner.ClipRect({200, 0, 10, 10});
    EXPECT_TRUE(limner.ClipBounds().IsEmpty());
    limner.Restore();
    EXPECT_EQ(limner.ClipBounds(), (Rect{0, 0, 100, 60}));
}

TEST(Geometry, RectanglesIntersectUniteAndRoundOutward) {
    const Rect a{0, 0, 10, 10};
    EXPECT_EQ(Intersection(a, {5, -5, 10, 10}), (Rect{5, 0, 5, 5}));
    EXPECT_EQ(Intersection(a, {10, 0, 5, 5}), Rect{});
    EXPECT_EQ(Union(a, {20, 5, 5, 10}), (Rect{0, 0, 25, 15}));
    EXPECT_EQ(Union(a, {20, 5, 0, 10}), a);
    EXPECT_EQ(Union({3, 3, -1, 5}, {20, 5, 0, 10}), Rect{});
    EXPECT_EQ(RoundedOut({-0.5F, 0.25F, 1, 1}), (Rect{-1, 0, 2, 2}));
}

} // namespace kroui::limner::test
