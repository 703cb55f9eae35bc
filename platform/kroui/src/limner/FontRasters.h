#pragma once

#include "CairoHandle.h"
#include "PixelCanvas.h"

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

namespace kroui::limner {

// A typeface at one size in device pixels, with the masks of its glyphs. Outlines are hinted vertically only, and each
// glyph has a mask for every quarter of a pixel across, so that letters keep their distances at small sizes.
class FontRaster {
public:
    static constexpr int kPhases = 4;

    struct Glyph {
        Mask mask;
        bool isPicture = false; // has colours of its own; to be drawn with Font()
    };

    FontRaster(cairo_scaled_font_t* typeface, double scale);

    // Valid as long as the raster. `phase`: quarters of a pixel to the right.
    const Glyph& GlyphAt(std::uint32_t index, int phase);
    cairo_scaled_font_t* Font() const { return fFont.get(); }
    std::size_t GlyphCount() const { return fGlyphCount; }

private:
    // Glyph numbers are 16 bits wide and used in clusters.
    static constexpr std::uint32_t kPageSize = 64;
    static constexpr std::uint32_t kPages = 65536 / kPageSize;
    using Page = std::array<std::unique_ptr<Glyph>, static_cast<std::size_t>(kPageSize) * kPhases>;

    std::unique_ptr<Glyph> Render(std::uint32_t index, int phase) const;

    ScaledFontHandle fFont;
    bool fMayHavePictures;
    std::array<std::unique_ptr<Page>, kPages> fPages;
    std::size_t fGlyphCount = 0;
};

// The typefaces that text was shaped with and their rasters at the sizes in use. Kept by the supplier; user-interface
// thread only.
class FontRasters {
public:
    // The number of a typeface at its size in view units; the same for as long as this object lives.
    int TypefaceOf(cairo_scaled_font_t* font);
    // The raster for drawing a typeface at a scale. Valid until the next call.
    FontRaster& Find(int typeface, double scale);

private:
    struct Entry {
        int typeface = 0;
        double scale = 1;
        std::uint64_t lastUse = 0;
        std::unique_ptr<FontRaster> raster;
    };
    Entry& Add(int typeface, double scale);

    std::vector<ScaledFontHandle> fTypefaces;
    std::vector<Entry> fEntries;
    std::uint64_t fUses = 0;
};

} // namespace kroui::limner
