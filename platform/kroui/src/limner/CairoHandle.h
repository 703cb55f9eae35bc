#pragma once

#include <cairo.h>

#include <memory>

namespace kroui::limner {

// Owners of one reference to a Cairo object each.
template <auto Release>
struct CairoRelease {
    template <class T>
    void operator()(T* object) const {
        Release(object);
    }
};

using ContextHandle = std::unique_ptr<cairo_t, CairoRelease<cairo_destroy>>;
using SurfaceHandle = std::unique_ptr<cairo_surface_t, CairoRelease<cairo_surface_destroy>>;
using PatternHandle = std::unique_ptr<cairo_pattern_t, CairoRelease<cairo_pattern_destroy>>;
using ScaledFontHandle = std::unique_ptr<cairo_scaled_font_t, CairoRelease<cairo_scaled_font_destroy>>;
using FontOptionsHandle = std::unique_ptr<cairo_font_options_t, CairoRelease<cairo_font_options_destroy>>;

// How far a flattened curve may be off, in device pixels. Cairo's own 0.1 shows as uneven corners.
inline constexpr double kCurveTolerance = 0.03;

} // namespace kroui::limner
