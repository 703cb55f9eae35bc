#include "controls/colors/HSVColor.h"

#include <algorithm>
#include <cmath>

namespace uit::controls {

namespace {

constexpr float kSectors = 6; // red, yellow, green, cyan, blue, magenta

// How much of a channel whose peak is at `peak` (in sectors) a pure hue has.
float PureChannel(float hue, float peak) {
    const float distance = std::abs(std::remainder(hue * kSectors - peak, kSectors));
    return std::clamp(2 - distance, 0.0F, 1.0F);
}

float HueOf(const kroui::limner::Color& c, float largest, float range) {
    float sector = 0;
    if (largest == c.red) {
        sector = (c.green - c.blue) / range;
    } else if (largest == c.green) {
        sector = 2 + (c.blue - c.red) / range;
    } else {
        sector = 4 + (c.red - c.green) / range;
    }
    const float hue = sector / kSectors;
    return hue < 0 ? hue + 1 : hue;
}

} // namespace

// Smith, "Color Gamut Transform Pairs", 1978: the hexcone model.
kroui::limner::Color HSVColor::ToColor() const {
    const auto channel = [this](float peak) { return value * (1 - saturation * (1 - PureChannel(hue, peak))); };
    return {channel(0), channel(2), channel(4), 1};
}

HSVColor HSVColor::FromColor(const kroui::limner::Color& color, const HSVColor& before) {
    const auto [smallest, largest] = std::minmax({color.red, color.green, color.blue});
    HSVColor hsv{before.hue, before.saturation, largest};
    if (largest <= 0) return hsv;
    const float range = largest - smallest;
    hsv.saturation = range / largest;
    if (range > 0) hsv.hue = HueOf(color, largest, range);
    return hsv;
}

} // namespace uit::controls
