#pragma once

#include "kroaudiofilterhost/AudioFilter.h"
#include "qolv2/HostFeatures.h"

#include <lv2/atom/atom.h>
#include <lv2/atom/forge.h>

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace qolv2 {

// Curves between a plug-in and its panel, each one value: LV2's patch:Set of the property "urn:qoaudio:curve:ID", a
// vector of floats, x and y of the points by turns in natural units; and patch:Get, which asks for all of them. Nothing
// here allocates but the constructor.
class CurveEvents {
public:
    static constexpr std::size_t kMostValues = 256;

    // For the curves of the effect, which it outlives.
    CurveEvents(const HostFeatures& host, const kroaudiofilterhost::AudioFilter& filter);

    struct Setting {
        std::size_t curve = 0;
        std::span<const float> values;
    };
    // Nothing for other objects.
    std::optional<Setting> ReadSet(const LV2_Atom_Object& object) const noexcept;
    bool IsGet(const LV2_Atom_Object& object) const noexcept;
    bool IsObject(const LV2_Atom& atom) const noexcept { return atom.type == fObject; }

    void WriteSet(LV2_Atom_Forge& forge, const Setting& setting) const noexcept;
    void WriteGet(LV2_Atom_Forge& forge) const noexcept;

    // The curve as it is stored. How many values of the array count comes back. Any thread.
    using Values = std::array<float, kMostValues>;
    std::size_t ValuesOf(const kroaudiofilterhost::AudioFilter& filter, std::size_t curve,
                         Values& values) const noexcept;
    std::size_t Count() const noexcept { return fCurves.size(); }

private:
    struct Curve {
        LV2_URID property = 0;
        const kroaudiofilterhost::AudioFilterCurve* described = nullptr;
    };

    std::vector<Curve> fCurves;
    LV2_URID fObject;
    LV2_URID fVector;
    LV2_URID fFloat;
    LV2_URID fURID;
    LV2_URID fSet;
    LV2_URID fGet;
    LV2_URID fProperty;
    LV2_URID fValue;
};

} // namespace qolv2
