#include "uit/ImageProvider.h"

#include "kroui/limner/CairoSupplier.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

namespace uit {

namespace {

using kroui::limner::ImagePtr;

// Resources by name; what was asked for is counted.
class Resources : public kroui::utility::ResourceManager {
public:
    void Add(const std::string& name, std::string bytes) { fResources[name] = std::move(bytes); }
    std::span<const std::byte> GetResource(std::string_view name, std::string_view type) const override {
        ++requests;
        const auto found = fResources.find(std::string(name));
        if (type != "PNG" || found == fResources.end()) return {};
        return std::as_bytes(std::span(found->second));
    }
    mutable int requests = 0;

private:
    std::map<std::string, std::string> fResources;
};

// A PNG of `width` pixels in a row.
std::string PNG(const kroui::limner::CairoSupplier& supplier, float width) {
    const auto file = std::filesystem::temp_directory_path() /
                      ("qo-image-provider-" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) + "-" +
                       std::to_string(static_cast<int>(width)) + ".png");
    const auto image = supplier.DrawImage({width, 1}, 1, [&](auto& limner) {
        limner.FillRect({0, 0, width, 1}, {1, 0, 0, 1});
    });
    kroui::limner::WritePNG(*image, file);
    std::ifstream stream(file, std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(stream), {}};
    std::filesystem::remove(file);
    return bytes;
}

int WidthOf(const ImagePtr& image) {
    return image ? image->PixelWidth() : 0;
}

} // namespace

TEST(ImageProvider, BestVariantThatExistsStandsIn) {
    const kroui::limner::CairoSupplier supplier;
    Resources resources;
    resources.Add("ALL", PNG(supplier, 1));
    resources.Add("ALL_2X", PNG(supplier, 2));
    resources.Add("ALL_DISABLED", PNG(supplier, 3));
    resources.Add("ALL_DISABLED_2X", PNG(supplier, 4));
    resources.Add("PLAIN", PNG(supplier, 5));
    resources.Add("DIM", PNG(supplier, 6));
    resources.Add("DIM_DISABLED", PNG(supplier, 7));
    resources.Add("SHARP", PNG(supplier, 8));
    resources.Add("SHARP_2X", PNG(supplier, 9));
    resources.Add("BROKEN", "no picture");
    ImageProvider provider(&resources, &supplier);
    const struct {
        const char* name;
        bool enabled;
        float scale;
        int width; // 0: no picture
    } cases[] = {
        {"all", true, 1, 1},    {"All", true, 1.25F, 1}, {"ALL", true, 1.5F, 2}, {"all", false, 1, 3},
        {"all", false, 2, 4},   {"plain", true, 2, 5},   {"plain", false, 1, 5}, {"plain", false, 2, 5},
        {"dim", false, 2, 7},   {"dim", true, 2, 6},     {"sharp", false, 2, 9}, {"sharp", false, 1, 8},
        {"broken", true, 1, 0}, {"nothing", true, 1, 0}, {"", true, 1, 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(WidthOf(provider.ProvideImage(c.name, c.enabled, c.scale)), c.width)
            << c.name << " " << c.enabled << " " << c.scale;
    }
    EXPECT_EQ(provider.ProvideImage("all", true, 2)->Scale(), 2);
    EXPECT_EQ(provider.ProvideImage("all", true, 1)->Scale(), 1);
}

TEST(ImageProvider, PicturesAreDecodedOnce) {
    const kroui::limner::CairoSupplier supplier;
    Resources resources;
    resources.Add("PLUS", PNG(supplier, 3));
    ImageProvider provider(&resources, &supplier);
    const auto first = provider.ProvideImage("Plus", false, 2);
    provider.ProvideImage("Missing", true, 1);
    const auto requests = resources.requests;
    EXPECT_EQ(provider.ProvideImage("PLUS", false, 2), first);
    EXPECT_EQ(provider.ProvideImage("plus", true, 1), first);
    EXPECT_FALSE(provider.ProvideImage("Missing", true, 1));
    EXPECT_EQ(resources.requests, requests);
}

} // namespace uit
