// The text operations of CairoLimner.

#include "CairoLimner.h"

#include <algorithm>
#include <cmath>

namespace kroui::limner {

namespace {

TextForm FormFor(const TextPlacement& placement) {
    if (placement.multiLine) return TextForm::kParagraph;
    switch (placement.truncation) {
    case TextTruncation::kStart: return TextForm::kEllipsisStart;
    case TextTruncation::kEnd: return TextForm::kEllipsisEnd;
    case TextTruncation::kNone: break;
    }
    return TextForm::kLine;
}

// The text as it fits the width. One that fits is found under its plain form, whatever the width; one of which not even
// the ellipsis fits is null.
const ShapedText* Fitted(TextCache& texts, std::u16string_view text, const Font& font, float width,
                         const TextPlacement& placement) {
    // What adding up widths in single precision may lose.
    constexpr float kSlack = 0.01F;
    const TextForm form = FormFor(placement);
    if (form == TextForm::kParagraph) return &texts.Find(text, {font, form, width});
    const ShapedText& line = texts.Find(text, {font});
    if (form == TextForm::kLine || line.extent.width <= width + kSlack) return &line;
    const ShapedText& shortened = texts.Find(text, {font, form, width});
    return shortened.extent.width <= width + kSlack ? &shortened : nullptr;
}

float ShareBefore(TextAlignment alignment) {
    switch (alignment) {
    case TextAlignment::kCentre: return 0.5F;
    case TextAlignment::kRight: return 1;
    case TextAlignment::kLeft: break;
    }
    return 0;
}

} // namespace

void CairoLimner::DrawText(std::u16string_view text, const Font& font, const Color& color, const Rect& rect,
                           const TextPlacement& placement) {
    DeviceBox box;
    if (text.empty() || !ToDevice(rect, box) || fState.clip.IsEmpty()) return;
    const ShapedText* shaped = Fitted(fCaches.texts, text, font, rect.width, placement);
    if (shaped == nullptr) return;
    const float top = placement.multiLine ? rect.top : rect.top + (rect.height - shaped->extent.height) / 2;
    const float shareBefore = ShareBefore(placement.alignment);
    const std::uint32_t pixel = PixelFor(color);
    for (const ShapedLine& line : shaped->lines) {
        DrawLine(*shaped, line, rect.left + (rect.width - line.width) * shareBefore, top, pixel);
    }
}

void CairoLimner::DrawLine(const ShapedText& text, const ShapedLine& line, float left, float top, std::uint32_t pixel) {
    // Whole pixels, so that the hinted stems of all letters stay sharp.
    const Origin origin{DeviceX(left), std::round(DeviceY(top + line.baseline))};
    // Ink may reach out of the line's box, but by less than the font's size.
    const double around = text.fontSize * fScale;
    const DeviceBox reach{origin.x - around, origin.y - 2 * around, origin.x + line.width * fScale + around,
                          origin.y + around};
    if (Intersection(TouchedPixels(reach), fState.clip).IsEmpty()) return;
    for (int run = line.beginRun; run < line.endRun; ++run)
        DrawRun(text, text.runs[run], origin, pixel);
}

void CairoLimner::DrawRun(const ShapedText& text, const ShapedRun& run, Origin origin, std::uint32_t pixel) {
    FontRaster& raster = fCaches.rasters.Find(run.typeface, fScale);
    PixelCanvas canvas = Canvas();
    for (int i = run.begin; i < run.end; ++i) {
        const ShapedGlyph& glyph = text.glyphs[i];
        if (glyph.index == kMissingGlyph) {
            DrawMissingGlyph(text, glyph, origin, pixel);
            continue;
        }
        const double x = (origin.x + glyph.x * fScale) * FontRaster::kPhases;
        const int quarters = static_cast<int>(std::floor(x + 0.5));
        const int phase = quarters & (FontRaster::kPhases - 1);
        const int y = static_cast<int>(std::lround(origin.y + glyph.y * fScale));
        const FontRaster::Glyph& drawn = raster.GlyphAt(glyph.index, phase);
        if (drawn.isPicture) {
            DrawPictureGlyph(raster.Font(), glyph.index, {x / FontRaster::kPhases, static_cast<double>(y)});
        } else {
            canvas.Blend(drawn.mask, (quarters - phase) / FontRaster::kPhases, y, fState.clip, pixel);
        }
    }
}

void CairoLimner::DrawPictureGlyph(cairo_scaled_font_t* font, std::uint32_t index, Origin origin) {
    cairo_t* context = Context();
    ApplyClip();
    const cairo_glyph_t glyph{index, origin.x, origin.y};
    cairo_set_scaled_font(context, font);
    cairo_show_glyphs(context, &glyph, 1);
    Canvas();
}

void CairoLimner::DrawMissingGlyph(const ShapedText& text, const ShapedGlyph& glyph, Origin origin,
                                   std::uint32_t pixel) {
    // An upright box as high as a capital, with room around it.
    constexpr double kHeight = 0.7;
    constexpr double kMargin = 0.1;
    const double line = std::max(1.0, std::round(fScale));
    const double left = std::round(origin.x + (glyph.x + glyph.advance * kMargin) * fScale);
    const double right = std::round(origin.x + (glyph.x + glyph.advance * (1 - kMargin)) * fScale);
    const double top = std::round(origin.y - text.fontSize * kHeight * fScale);
    PixelCanvas canvas = Canvas();
    canvas.FillExact({left, top, right, top + line}, fState.clip, pixel);
    canvas.FillExact({left, origin.y - line, right, origin.y}, fState.clip, pixel);
    canvas.FillExact({left, top + line, left + line, origin.y - line}, fState.clip, pixel);
    canvas.FillExact({right - line, top + line, right, origin.y - line}, fState.clip, pixel);
}

} // namespace kroui::limner
