#include "FontRasters.h"

#include "MaskSurface.h"
#include "MemoryImage.h"
#include "PixelSpans.h"

#if CAIRO_HAS_FT_FONT
#include <cairo-ft.h>
#endif

#include <algorithm>

namespace kroui::limner {

namespace {

constexpr std::size_t kMostRasters = 48;
constexpr std::size_t kMostGlyphsOfRaster = 8192;
constexpr double kLargestProbe = 512;

ScaledFontHandle AtScale(cairo_scaled_font_t* typeface, double scale) {
    cairo_matrix_t fontMatrix;
    cairo_scaled_font_get_font_matrix(typeface, &fontMatrix);
    cairo_matrix_t toDevice;
    cairo_matrix_init_scale(&toDevice, scale, scale);
    cairo_matrix_multiply(&fontMatrix, &fontMatrix, &toDevice);
    cairo_matrix_t identity;
    cairo_matrix_init_identity(&identity);
    const FontOptionsHandle options(cairo_font_options_create());
    cairo_scaled_font_get_font_options(typeface, options.get());
    return ScaledFontHandle(
        cairo_scaled_font_create(cairo_scaled_font_get_font_face(typeface), &fontMatrix, &identity, options.get()));
}

// The pixels that a glyph's outline touches; none for a blank.
PixelRect OutlinePixels(cairo_scaled_font_t* font, const cairo_glyph_t& glyph) {
    const SurfaceHandle surface(cairo_image_surface_create(CAIRO_FORMAT_A8, 1, 1));
    const ContextHandle context(cairo_create(surface.get()));
    cairo_set_scaled_font(context.get(), font);
    cairo_glyph_path(context.get(), &glyph, 1);
    DeviceBox box;
    cairo_path_extents(context.get(), &box.left, &box.top, &box.right, &box.bottom);
    return TouchedPixels(box);
}

// Few fonts have any, and looking at every glyph takes as long as rendering it.
bool MayHavePictures(cairo_scaled_font_t* font) {
#if CAIRO_HAS_FT_FONT
    if (cairo_scaled_font_get_type(font) == CAIRO_FONT_TYPE_FT) {
        const FT_Face face = cairo_ft_scaled_font_lock_face(font);
        const bool may = face == nullptr || FT_HAS_COLOR(face) || FT_HAS_SVG(face);
        if (face != nullptr) cairo_ft_scaled_font_unlock_face(font);
        return may;
    }
#endif
    return true;
}

// Drawn in white, an outline gives nothing but white of some opacity.
bool IsPicture(cairo_scaled_font_t* font, const cairo_glyph_t& glyph) {
    cairo_text_extents_t extents;
    cairo_scaled_font_glyph_extents(font, &glyph, 1, &extents);
    PixelBuffer buffer = MakePixelBuffer(static_cast<int>(std::clamp(extents.width, 0.0, kLargestProbe)),
                                         static_cast<int>(std::clamp(extents.height, 0.0, kLargestProbe)), 0);
    if (buffer.Bounds().IsEmpty()) return false;
    const SurfaceHandle surface = SurfaceOn(buffer);
    const ContextHandle context(cairo_create(surface.get()));
    cairo_set_source_rgb(context.get(), 1, 1, 1);
    cairo_translate(context.get(), -extents.x_bearing, -extents.y_bearing);
    cairo_set_scaled_font(context.get(), font);
    cairo_show_glyphs(context.get(), &glyph, 1);
    cairo_surface_flush(surface.get());
    return std::ranges::any_of(buffer.pixels, [](std::uint32_t p) { return (p & 0xFFFFFF) != (p >> 24) * 0x010101; });
}

} // namespace

FontRaster::FontRaster(cairo_scaled_font_t* typeface, double scale)
    : fFont(AtScale(typeface, scale)), fMayHavePictures(MayHavePictures(fFont.get())) {
}

const FontRaster::Glyph& FontRaster::GlyphAt(std::uint32_t index, int phase) {
    std::unique_ptr<Page>& page = fPages[index / kPageSize % kPages];
    if (!page) page = std::make_unique<Page>();
    std::unique_ptr<Glyph>& glyph = (*page)[index % kPageSize * kPhases + phase];
    if (!glyph) {
        glyph = Render(index, phase);
        ++fGlyphCount;
    }
    return *glyph;
}

std::unique_ptr<FontRaster::Glyph> FontRaster::Render(std::uint32_t index, int phase) const {
    const cairo_glyph_t glyph{index, static_cast<double>(phase) / kPhases, 0};
    PixelRect pixels = OutlinePixels(fFont.get(), glyph);
    auto rendered = std::make_unique<Glyph>();
    rendered->isPicture = fMayHavePictures && IsPicture(fFont.get(), glyph);
    if (rendered->isPicture || pixels.IsEmpty()) return rendered;
    // Rows of whole groups spare the blending of single pixels at their ends.
    pixels.right = pixels.left + (pixels.Width() + kPixelsAtOnce - 1) / kPixelsAtOnce * kPixelsAtOnce;
    rendered->mask = RenderMask(pixels, [&](cairo_t* context) {
        cairo_set_scaled_font(context, fFont.get());
        cairo_glyph_path(context, &glyph, 1);
        cairo_fill(context);
    });
    return rendered;
}

int FontRasters::TypefaceOf(cairo_scaled_font_t* font) {
    const auto known =
        std::find_if(fTypefaces.begin(), fTypefaces.end(), [font](const auto& handle) { return handle.get() == font; });
    if (known != fTypefaces.end()) return static_cast<int>(known - fTypefaces.begin());
    fTypefaces.emplace_back(cairo_scaled_font_reference(font));
    return static_cast<int>(fTypefaces.size()) - 1;
}

FontRaster& FontRasters::Find(int typeface, double scale) {
    auto entry = std::find_if(fEntries.begin(), fEntries.end(),
                              [&](const Entry& e) { return e.typeface == typeface && e.scale == scale; });
    Entry& found = entry != fEntries.end() ? *entry : Add(typeface, scale);
    found.lastUse = ++fUses;
    if (found.raster->GlyphCount() > kMostGlyphsOfRaster) {
        found.raster = std::make_unique<FontRaster>(fTypefaces[typeface].get(), scale);
    }
    return *found.raster;
}

FontRasters::Entry& FontRasters::Add(int typeface, double scale) {
    if (fEntries.size() < kMostRasters) {
        fEntries.emplace_back();
    } else {
        std::iter_swap(std::min_element(fEntries.begin(), fEntries.end(),
                                        [](const Entry& a, const Entry& b) { return a.lastUse < b.lastUse; }),
                       fEntries.end() - 1);
    }
    fEntries.back() = {typeface, scale, 0, std::make_unique<FontRaster>(fTypefaces[typeface].get(), scale)};
    return fEntries.back();
}

} // namespace kroui::limner
