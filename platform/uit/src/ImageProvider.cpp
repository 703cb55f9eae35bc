#include "uit/ImageProvider.h"

#include <algorithm>
#include <array>
#include <utility>

namespace uit {

namespace {

constexpr std::string_view kResourceType = "PNG";

struct Variant {
    std::string_view suffix;
    float scale;
    bool isDisabled;
};

// The best first for a disabled control at double resolution; other requests skip what is not for them.
constexpr std::array kVariants = {
    Variant{"_DISABLED_2X", 2, true},
    Variant{"_DISABLED", 1, true},
    Variant{"_2X", 2, false},
    Variant{"", 1, false},
};

std::string UpperCase(std::string_view name) {
    std::string upper(name);
    std::ranges::transform(upper, upper.begin(),
                           [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
    return upper;
}

} // namespace

ImageProvider::ImageProvider(kroui::utility::ResourceManager* resources,
                             const kroui::limner::SupplierInterface* supplier)
    : fResources(resources), fSupplier(supplier) {
}

ImageProvider::~ImageProvider() = default;

kroui::limner::ImagePtr ImageProvider::ProvideImage(const krocore::string8& name, bool enabled, float scale) {
    if (fResources == nullptr || fSupplier == nullptr || name.empty()) return {};
    const auto base = UpperCase(name);
    const bool isDouble = scale > kDoubleResolutionScale;
    for (const auto& variant : kVariants) {
        if ((variant.isDisabled && enabled) || (variant.scale > 1 && !isDouble)) continue;
        if (auto image = Decoded(base + std::string(variant.suffix), variant.scale)) return image;
    }
    return {};
}

kroui::limner::ImagePtr ImageProvider::Decoded(const std::string& resourceName, float scale) {
    const std::uint32_t generation = krocore::ResourceGeneration();
    if (std::exchange(fGeneration, generation) != generation) fDecoded.clear();
    const auto [entry, isNew] = fDecoded.try_emplace(resourceName);
    if (isNew) {
        const auto bytes = fResources->GetResource(resourceName, kResourceType);
        if (bytes.data() != nullptr) entry->second = fSupplier->DecodePNG(bytes, scale);
    }
    return entry->second;
}

} // namespace uit
