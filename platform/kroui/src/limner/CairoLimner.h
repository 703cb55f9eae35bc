#pragma once

#include "CairoHandle.h"
#include "DrawingCaches.h"
#include "FunctionShape.h"
#include "PixelCanvas.h"
#include "kroui/limner/Limner.h"

#include <vector>

namespace kroui::limner {

// The drawing context on a buffer of pixels. Rectangles, stamps and glyphs are blended straight into the pixels; paths
// and pictures go through Cairo, whose context is made when the first of them comes. Cairo sees device pixels only:
// translation and scale are applied here. Clips are whole pixels, rounded outward.
class CairoLimner : public Limner {
public:
    // The buffer and the caches must outlive the context. Nothing outside `clip` is touched.
    CairoLimner(PixelBuffer& buffer, DrawingCaches& caches, float scale, const PixelRect& clip);

    void Save() override;
    void Restore() override;
    void SetSmoothing(int flag) override;
    void ClipRect(const Rect& rect) override;
    void Translate(float dx, float dy) override;
    float ScaleFactor() const override { return static_cast<float>(fScale); }
    Rect ClipBounds() const override;
    void FillRect(const Rect& rect, const Color& color) override;
    void FillRoundRect(const Rect& rect, float radius, const Color& color) override;
    void FrameRoundRect(const Rect& rect, float radius, const Color& color, float width) override;
    void NewPath() override;
    void MoveTo(float x, float y) override;
    void LineTo(float x, float y) override;
    void CurveTo(float x1, float y1, float x2, float y2, float x, float y) override;
    void AddRect(const Rect& rect) override;
    void AddRoundRect(const Rect& rect, float radius) override;
    void Arc(float centreX, float centreY, float radius, float startDegrees, float endDegrees) override;
    void ClosePath() override;
    void Stroke(const Pen& pen) override;
    void Fill(const Brush& brush) override;
    void StrokeFunction(std::span<const Point> points, const Pen& pen) override;
    void FillFunction(std::span<const Point> points, float base, const Brush& brush) override;
    void DrawText(std::u16string_view text, const Font& font, const Color& color, const Rect& rect,
                  const TextPlacement& placement) override;
    void DrawImage(const Image& image, const Rect& rect, float opacity) override;

private:
    struct State {
        PixelRect clip;
        double dx = 0; // view units
        double dy = 0;
        bool smooth = true;
    };

    double DeviceX(double x) const;
    double DeviceY(double y) const;
    // False if a coordinate is no number.
    bool ToDevice(const Rect& rect, DeviceBox& box) const;

    // The pixels for direct drawing, and Cairo's context with the clip in place: each first brings over what the other
    // has drawn.
    PixelCanvas Canvas();
    cairo_t* Context();
    void ApplyClip();

    void DrawRoundRect(const Rect& rect, float radius, const Color& color, double lineWidth);
    // Draws the path with what `draw` sets up and leaves it empty.
    void Finish(const Color& color, void (*draw)(cairo_t*));

    void AddPieces(std::span<const Point> points, FunctionShape& shape) const;

    struct Origin {
        double x;
        double y;
    };
    void DrawLine(const ShapedText& text, const ShapedLine& line, float left, float top, std::uint32_t pixel);
    void DrawRun(const ShapedText& text, const ShapedRun& run, Origin origin, std::uint32_t pixel);
    void DrawPictureGlyph(cairo_scaled_font_t* font, std::uint32_t index, Origin origin);
    void DrawMissingGlyph(const ShapedText& text, const ShapedGlyph& glyph, Origin origin, std::uint32_t pixel);

    PixelBuffer& fBuffer;
    DrawingCaches& fCaches;
    double fScale;
    State fState;
    std::vector<State> fSaved;

    SurfaceHandle fSurface;
    ContextHandle fContext;
    PixelRect fContextClip;
    bool fPixelsTouched = false;
};

} // namespace kroui::limner
