#pragma once

#include "kroui/limner/Types.h"

namespace uit::controls {

// A colour as people choose one: hue 0...1 around the circle from red, saturation and value 0...1.
struct HSVColor {
    float hue = 0;
    float saturation = 0;
    float value = 0;

    kroui::limner::Color ToColor() const;
    // A grey has no hue, and black no saturation: they keep those of `before`.
    static HSVColor FromColor(const kroui::limner::Color& color, const HSVColor& before);
};

} // namespace uit::controls
