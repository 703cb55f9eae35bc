#include "Drawing.h"
#include "EveryVectorTarget.h"

#include "krocore/config/Error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <vector>

namespace kroui::limner::test {

namespace {

class Picture : public testing::Test {
protected:
    Picture() { std::filesystem::create_directories(fFolder); }
    ~Picture() override { std::filesystem::remove_all(fFolder); }

    std::filesystem::path In(const char* name) const { return fFolder / name; }

    static std::vector<std::byte> BytesOf(const std::filesystem::path& file) {
        std::ifstream stream(file, std::ios::binary);
        const std::vector<char> chars{std::istreambuf_iterator<char>(stream), {}};
        const auto bytes = std::as_bytes(std::span(chars));
        return {bytes.begin(), bytes.end()};
    }

    std::vector<std::byte> SmallPNG() const {
        WritePNG(*Drawn(
                     [](Limner& limner) {
                         limner.FillRoundRect({1, 1, 8, 8}, 3, kWhite);
                     },
                     1, {10, 10}),
                 In("small"));
        return BytesOf(In("small"));
    }

private:
    std::filesystem::path fFolder =
        std::filesystem::path(testing::TempDir()) / testing::UnitTest::GetInstance()->current_test_info()->name();
};

} // namespace

TEST_F(Picture, PNGKeepsEveryPixel) {
    const ImagePtr written = Drawn(
        [](Limner& limner) {
            limner.FillRoundRect({2, 2, 50, 40}, 9, Color::FromRGB(0x4DA3FF));
            limner.FillRect({20, 20, 70, 30}, Color::FromRGB(0xFFC94D).WithAlpha(0.4F));
        },
        1.5F);
    WritePNG(*written, In("picture.png"));
    const ImagePtr read = Supplier().DecodePNG(BytesOf(In("picture.png")), 1.5F);
    ASSERT_TRUE(read);
    // PNG stores colours that are not premultiplied, which costs a rounding.
    EXPECT_LE(LargestDifference(*written, *read), 1);
    EXPECT_EQ(read->ViewSize(), (Size{100, 60}));
}

TEST_F(Picture, DecodePNGRejectsWhatIsNoCompletePicture) {
    const std::vector<std::byte> whole = SmallPNG();
    ASSERT_TRUE(Supplier().DecodePNG(whole, 1));
    constexpr std::size_t kEndChunk = 12; // an empty last chunk, which readers may do without
    for (std::size_t length = 0; length < whole.size() - kEndChunk; ++length) {
        EXPECT_FALSE(Supplier().DecodePNG(std::span(whole).first(length), 1)) << length;
    }
    EXPECT_FALSE(Supplier().DecodePNG(std::vector<std::byte>(1000, std::byte{0x55}), 1));

    // 0x00FFFFFF pixels wide, and one more row than a picture may have.
    for (const auto& [position, value] : {std::pair{17, 0xFF}, std::pair{22, 0x40}}) {
        std::vector<std::byte> huge = whole;
        huge[position] = std::byte(value);
        EXPECT_FALSE(Supplier().DecodePNG(huge, 1)) << position;
    }
    EXPECT_FALSE(Supplier().DecodePNG(whole, 0));
}

TEST_F(Picture, WritePNGTellsWhyItFailsAndLeavesNothing) {
    const ImagePtr image = Drawn([](Limner&) {});
    const auto messageFor = [&](const std::filesystem::path& file) -> std::string {
        try {
            WritePNG(*image, file);
        } catch (const krocore::config::Error& error) {
            return error.what();
        }
        return "no error";
    };
    EXPECT_THAT(messageFor(In("missing/picture.png")),
                testing::AllOf(testing::HasSubstr(In("missing/picture.png").string()), testing::HasSubstr("No such")));

    std::filesystem::create_directories(In("taken.png/inside"));
    EXPECT_THAT(messageFor(In("taken.png")), testing::HasSubstr("taken.png"));
    EXPECT_TRUE(std::filesystem::exists(In("taken.png/inside")));
    EXPECT_FALSE(std::filesystem::exists(In("taken.png.part")));
}

TEST_F(Picture, DrawImageOfASizeThatCannotBeIsNull) {
    constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
    for (const Size size :
         {Size{0, 10}, Size{10, -1}, Size{kNaN, 10}, Size{1e9F, 1}, Size{16385, 1}, Size{16384, 16384}}) {
        EXPECT_FALSE(Drawn([](Limner&) { ADD_FAILURE() << "nothing to draw on"; }, 1, size)) << size.width;
    }
    for (const float scale : {0.0F, -1.0F, kNaN})
        EXPECT_FALSE(Drawn([](Limner&) {}, scale)) << scale;
    EXPECT_EQ(Drawn([](Limner&) {}, 1.1F, {100, 7})->PixelWidth(), 110);
    EXPECT_EQ(Drawn([](Limner&) {}, 1.5F, {33, 7})->PixelHeight(), 11);
}

TEST_F(Picture, DrawImageScalesIntoTheRectangle) {
    const ImagePtr source = Drawn([](Limner& limner) { limner.FillRect({0, 0, 8, 4}, kWhite); }, 2, {8, 4});
    const ImagePtr image = Drawn([&](Limner& limner) {
        limner.MoveTo(90, 0);
        limner.DrawImage(*source, {10, 10, 8, 4}, 1);
        limner.DrawImage(*source, {30, 10, 40, 30}, 0.5F);
        limner.FillRoundRect({0.01F, 50, 5, 5}, 2, kWhite);
        limner.LineTo(90, 60); // the path begun before is still there
        limner.Stroke({kWhite, 2});
    });
    for (const auto& [x, y, alpha] : {std::tuple{9, 11, 0},
                                      {10, 10, 255},
                                      {17, 13, 255},
                                      {18, 13, 0},
                                      {30, 10, 128},
                                      {69, 39, 128},
                                      {70, 39, 0},
                                      {89, 30, 255}}) {
        EXPECT_NEAR(AlphaAt(*image, x, y), alpha, 1) << x << ' ' << y;
    }
}

TEST_F(Picture, PixelSurfaceTakesAnySize) {
    constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
    PixelSurface surface(Supplier());
    for (const Size size : {Size{0, 0}, Size{-5, 10}, Size{kNaN, 10}, Size{10, kNaN}}) {
        surface.SetSize(size, 1);
        EXPECT_EQ(surface.PixelWidth() * surface.PixelHeight(), 0);
        surface.Draw({0, 0, 10, 10}, [](Limner&) { ADD_FAILURE() << "nothing to draw on"; });
        EXPECT_EQ(surface.Snapshot()->PixelWidth(), surface.PixelWidth());
    }
    surface.SetSize({1e9F, 3}, 1);
    EXPECT_EQ(surface.PixelWidth(), 16384);
    for (const float scale : {kNaN, 0.0F, -2.0F}) {
        surface.SetSize({20, 10}, scale);
        EXPECT_EQ(surface.PixelWidth(), 20);
    }
    surface.SetSize({20, 10}, 1.25F);
    EXPECT_EQ(surface.PixelWidth(), 25);
    EXPECT_EQ(surface.PixelHeight(), 13);
}

TEST_F(Picture, PixelSurfaceDrawsOnThePartOnlyAndKeepsTheRest) {
    PixelSurface surface(Supplier());
    surface.SetSize({20, 10}, 2);
    surface.Draw({5, 2, 4, 3}, [](Limner& limner) {
        EXPECT_EQ(limner.ClipBounds(), (Rect{5, 2, 4, 3}));
        limner.FillRect({0, 0, 20, 10}, kWhite);
    });
    surface.SetSize({20, 10}, 2);
    const ImagePtr image = surface.Snapshot();
    for (int y = 0; y < 20; ++y) {
        for (int x = 0; x < 40; ++x) {
            const bool isDrawn = x >= 10 && x < 18 && y >= 4 && y < 10;
            EXPECT_EQ(PixelAt(*image, x, y), isDrawn ? 0xFFFFFFFF : 0xFF000000) << x << ' ' << y;
        }
    }
    surface.SetSize({20, 11}, 2);
    EXPECT_EQ(surface.Pixels()[4 * 40 + 10], 0xFF000000);
}

// Fills and masks of every width and coverage, over an opaque and a translucent ground.
void DrawOfEverything(Limner& limner) {
    limner.FillRect({0, 0, 100, 30}, Color::FromRGB(0x3070A0));
    for (int i = 0; i < 25; ++i) {
        const float place = static_cast<float>(i);
        const Color color{0.9F, 0.5F, 0.1F, 0.04F * place};
        limner.FillRect({place, 2 * place, 3 * place, 1}, color);
        limner.FillRect({60 + place / 7, 2 * place, place / 3, 1.4F}, color);
        limner.FillRoundRect({40 + place / 3, 2 * place, 4 + place, 5}, 2, color);
    }
    const ImagePtr rainbow = Drawn(
        [](Limner& picture) {
            for (int i = 0; i < 37; ++i)
                picture.FillRect({static_cast<float>(i), static_cast<float>(i / 4), 1, 9},
                                 {1, 0.02F * static_cast<float>(i), 0, 0.03F * static_cast<float>(i)});
        },
        1, {37, 18});
    limner.DrawImage(*rainbow, {57, 11, 37, 18}, 1);
    limner.DrawText(u"Every width of letters", {11, false}, {1, 1, 1, 0.8F}, {3, 20, 97, 20}, {});
}

// With what rounds each component once: a * b / 255.
TEST_F(Picture, IsTheSameWithEveryKindOfVectorsAndRoundsOnce) {
    const ImagePtr expected = Drawn(DrawOfEverything);
    ::test::WithEveryVectorTarget([&](const std::string& target) {
        EXPECT_EQ(LargestDifference(*Drawn(DrawOfEverything), *expected), 0) << target;
        for (int width = 1; width <= 20; ++width) {
            const ImagePtr row = Drawn([width](Limner& limner) {
                limner.FillRect({0, 0, 100, 60}, Color::FromRGB(0x3070A0));
                limner.FillRect({1, 0, static_cast<float>(width), 60}, {0, 1, 0, 0.4F});
            });
            for (const int x : {0, 1, width, width + 1}) // 102 / 255: 0x30 * 0.6 = 28.8, 102 + 0x70 * 0.6 = 169.2
                EXPECT_EQ(PixelAt(*row, x, 7), x >= 1 && x <= width ? 0xFF1DA960 : 0xFF3070A0)
                    << target << ' ' << width;
        }
    });
}

} // namespace kroui::limner::test
