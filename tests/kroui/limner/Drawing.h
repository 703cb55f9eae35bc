#pragma once

#include "kroui/limner/CairoSupplier.h"
#include "kroui/limner/PixelSurface.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace kroui::limner::test {

inline const Color kWhite = Color::FromRGB(0xFFFFFF);

// One supplier for all tests, as a program has it.
inline const CairoSupplier& Supplier() {
    static const CairoSupplier supplier;
    return supplier;
}

// A transparent picture of 100 x 60 view units with something drawn on it.
inline ImagePtr Drawn(const boost::function<void(Limner&)>& draw, float scale = 1, Size size = {100, 60}) {
    return Supplier().DrawImage(size, scale, draw);
}

inline std::uint32_t PixelAt(const Image& image, int x, int y) {
    return image.Pixels()[static_cast<std::size_t>(y) * image.PixelWidth() + x];
}

inline int AlphaAt(const Image& image, int x, int y) {
    return static_cast<int>(PixelAt(image, x, y) >> 24);
}

// The largest difference of any component of any pixel; 256 if the sizes differ.
inline int LargestDifference(const Image& a, const Image& b) {
    if (a.PixelWidth() != b.PixelWidth() || a.PixelHeight() != b.PixelHeight()) return 256;
    int largest = 0;
    for (std::size_t i = 0; i < a.Pixels().size(); ++i) {
        for (int shift = 0; shift < 32; shift += 8) {
            const int difference =
                static_cast<int>(a.Pixels()[i] >> shift & 255) - static_cast<int>(b.Pixels()[i] >> shift & 255);
            largest = std::max(largest, std::abs(difference));
        }
    }
    return largest;
}

// The pixels with any ink: left, top, width, height; empty if there are none.
inline RectT<int> Ink(const Image& image) {
    int left = image.PixelWidth();
    int top = image.PixelHeight();
    int right = 0;
    int bottom = 0;
    for (int y = 0; y < image.PixelHeight(); ++y) {
        for (int x = 0; x < image.PixelWidth(); ++x) {
            if (AlphaAt(image, x, y) == 0) continue;
            left = std::min(left, x);
            right = std::max(right, x + 1);
            top = std::min(top, y);
            bottom = std::max(bottom, y + 1);
        }
    }
    return right > left ? RectT<int>{left, top, right - left, bottom - top} : RectT<int>{};
}

} // namespace kroui::limner::test
