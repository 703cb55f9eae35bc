#pragma once

#include "kroui/limner/Limner.h"
#include "kroui/utility/ResourceManager.h"

#include <cstdint>
#include <string>
#include <unordered_map>

namespace uit {

// Provides the pictures of buttons and images from PNG resources, decoded once and kept until a resource is overridden.
// A picture NAME may have variants of its own beside it: NAME_DISABLED for controls that are disabled, NAME_2X with two
// pixels a view unit, and NAME_DISABLED_2X; where one is missing the next best stands in. Case does not matter.
// User-interface thread only.
class ImageProvider {
public:
    // Resources and supplier are not owned and live longer.
    ImageProvider(kroui::utility::ResourceManager* resources, const kroui::limner::SupplierInterface* supplier);
    virtual ~ImageProvider();
    ImageProvider(const ImageProvider&) = delete;
    ImageProvider& operator=(const ImageProvider&) = delete;

    // The picture for a control's state and the scale that it is drawn at (pixels a view unit); null if there is none
    // of that name, or none that is a PNG.
    virtual kroui::limner::ImagePtr ProvideImage(const krocore::string8& name, bool enabled, float scale);

    // Above this scale the variant with two pixels a view unit looks better.
    static constexpr float kDoubleResolutionScale = 1.25F;

private:
    kroui::limner::ImagePtr Decoded(const std::string& resourceName, float scale);

    kroui::utility::ResourceManager* fResources;
    const kroui::limner::SupplierInterface* fSupplier;
    std::unordered_map<std::string, kroui::limner::ImagePtr> fDecoded; // null: there is no such picture
    std::uint32_t fGeneration = 0;                                     // of the resources that they were decoded from
};

} // namespace uit
