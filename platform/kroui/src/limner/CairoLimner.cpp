#include "CairoLimner.h"

#include "MemoryImage.h"
#include "RoundRectPath.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace kroui::limner {

namespace {

// Cairo computes in 24.8 fixed-point numbers; this keeps clear of their end.
double Clamped(double position) {
    return std::clamp<double>(position, -kFarthestPixel, kFarthestPixel);
}

template <class... T>
bool AreNumbers(T... values) {
    return !(... || std::isnan(values));
}

bool IsDrawable(const DeviceBox& box) {
    return box.Width() > 0 && box.Height() > 0;
}

// Without smoothing a pixel belongs to a shape if its centre does.
PixelRect NearestPixels(const DeviceBox& box) {
    const auto nearest = [](double edge) { return static_cast<int>(std::ceil(edge - 0.5)); };
    return {nearest(box.left), nearest(box.top), nearest(box.right), nearest(box.bottom)};
}

bool IsOn(const PixelRect& pixels, const DeviceBox& box) {
    const auto isOn = [](double edge, int pixel) { return std::abs(edge - pixel) <= 1.0 / 256; };
    return isOn(box.left, pixels.left) && isOn(box.top, pixels.top) && isOn(box.right, pixels.right) &&
           isOn(box.bottom, pixels.bottom);
}

void SetColor(cairo_t* context, const Color& color) {
    cairo_set_source_rgba(context, color.red, color.green, color.blue, color.alpha);
}

cairo_line_cap_t CairoCap(LineCap cap) {
    switch (cap) {
    case LineCap::kRound: return CAIRO_LINE_CAP_ROUND;
    case LineCap::kSquare: return CAIRO_LINE_CAP_SQUARE;
    case LineCap::kButt: break;
    }
    return CAIRO_LINE_CAP_BUTT;
}

cairo_line_join_t CairoJoin(LineJoin join) {
    switch (join) {
    case LineJoin::kRound: return CAIRO_LINE_JOIN_ROUND;
    case LineJoin::kBevel: return CAIRO_LINE_JOIN_BEVEL;
    case LineJoin::kMiter: break;
    }
    return CAIRO_LINE_JOIN_MITER;
}

void SetDash(cairo_t* context, double dash) {
    // Shorter dashes can't be seen apart.
    constexpr double kShortestDash = 0.25;
    cairo_set_dash(context, &dash, dash >= kShortestDash ? 1 : 0, 0);
}

// Sets the user's path aside while Cairo's is needed for something else, and brings it back.
class PathKeeper {
public:
    explicit PathKeeper(cairo_t* context) : fContext(context), fPath(cairo_copy_path(context)) {
        cairo_new_path(context);
    }
    ~PathKeeper() {
        cairo_new_path(fContext);
        cairo_append_path(fContext, fPath);
        cairo_path_destroy(fPath);
    }
    PathKeeper(const PathKeeper&) = delete;
    PathKeeper& operator=(const PathKeeper&) = delete;

private:
    cairo_t* fContext;
    cairo_path_t* fPath;
};

} // namespace

CairoLimner::CairoLimner(PixelBuffer& buffer, DrawingCaches& caches, float scale, const PixelRect& clip)
    : fBuffer(buffer), fCaches(caches), fScale(scale), fState{Intersection(clip, buffer.Bounds())} {
}

void CairoLimner::Save() {
    fSaved.push_back(fState);
}

void CairoLimner::Restore() {
    if (fSaved.empty()) return;
    fState = fSaved.back();
    fSaved.pop_back();
}

void CairoLimner::SetSmoothing(int flag) {
    fState.smooth = flag != 0;
}

void CairoLimner::ClipRect(const Rect& rect) {
    DeviceBox box;
    const bool isVisible = ToDevice(rect, box) && IsDrawable(box);
    fState.clip = isVisible ? Intersection(fState.clip, TouchedPixels(box)) : PixelRect{};
}

void CairoLimner::Translate(float dx, float dy) {
    if (!std::isfinite(dx) || !std::isfinite(dy)) return;
    fState.dx += dx;
    fState.dy += dy;
}

Rect CairoLimner::ClipBounds() const {
    const PixelRect& clip = fState.clip;
    if (clip.IsEmpty()) return {};
    const auto units = [this](double pixels, double offset) { return static_cast<float>(pixels / fScale - offset); };
    const float left = units(clip.left, fState.dx);
    const float top = units(clip.top, fState.dy);
    return {left, top, units(clip.right, fState.dx) - left, units(clip.bottom, fState.dy) - top};
}

void CairoLimner::FillRect(const Rect& rect, const Color& color) {
    DeviceBox box;
    if (!ToDevice(rect, box) || !IsDrawable(box)) return;
    const PixelRect touched = TouchedPixels(box);
    if (IsOn(touched, box)) {
        Canvas().Fill(touched, fState.clip, PixelFor(color));
    } else if (fState.smooth) {
        Canvas().FillExact(box, fState.clip, PixelFor(color));
    } else {
        Canvas().Fill(NearestPixels(box), fState.clip, PixelFor(color));
    }
}

void CairoLimner::FillRoundRect(const Rect& rect, float radius, const Color& color) {
    DrawRoundRect(rect, radius, color, 0);
}

void CairoLimner::FrameRoundRect(const Rect& rect, float radius, const Color& color, float width) {
    if (width > 0) DrawRoundRect(rect, radius, color, width * fScale);
}

void CairoLimner::DrawRoundRect(const Rect& rect, float radius, const Color& color, double lineWidth) {
    DeviceBox box;
    if (!ToDevice(rect, box) || !IsDrawable(box)) return;
    const double mostRadius = std::min(box.Width(), box.Height()) / 2;
    const double deviceRadius = radius > 0 ? std::min(radius * fScale, mostRadius) : 0;
    const bool isFilled = lineWidth <= 0 || lineWidth >= mostRadius;
    if (fState.smooth) {
        const auto stamp = fCaches.stamps.Find(box, deviceRadius, isFilled ? 0 : lineWidth);
        if (stamp) {
            Canvas().BlendStretched(stamp->mask, stamp->rect, fState.clip, PixelFor(color));
            return;
        }
    }
    cairo_t* context = Context();
    const PathKeeper keeper(context);
    if (isFilled) {
        AddRoundRectPath(context, box, deviceRadius);
    } else {
        AddRoundFramePath(context, box, deviceRadius, lineWidth);
    }
    cairo_set_fill_rule(context, CAIRO_FILL_RULE_EVEN_ODD);
    Finish(color, cairo_fill);
    cairo_set_fill_rule(context, CAIRO_FILL_RULE_WINDING);
}

void CairoLimner::NewPath() {
    if (fContext) cairo_new_path(fContext.get());
}

void CairoLimner::MoveTo(float x, float y) {
    if (AreNumbers(x, y)) cairo_move_to(Context(), DeviceX(x), DeviceY(y));
}

void CairoLimner::LineTo(float x, float y) {
    if (AreNumbers(x, y)) cairo_line_to(Context(), DeviceX(x), DeviceY(y));
}

void CairoLimner::CurveTo(float x1, float y1, float x2, float y2, float x, float y) {
    if (!AreNumbers(x1, y1, x2, y2, x, y)) return;
    cairo_curve_to(Context(), DeviceX(x1), DeviceY(y1), DeviceX(x2), DeviceY(y2), DeviceX(x), DeviceY(y));
}

void CairoLimner::AddRect(const Rect& rect) {
    AddRoundRect(rect, 0);
}

void CairoLimner::AddRoundRect(const Rect& rect, float radius) {
    DeviceBox box;
    if (ToDevice(rect, box) && IsDrawable(box)) AddRoundRectPath(Context(), box, radius > 0 ? radius * fScale : 0);
}

void CairoLimner::Arc(float centreX, float centreY, float radius, float startDegrees, float endDegrees) {
    if (!AreNumbers(centreX, centreY) || !(radius >= 0) || !std::isfinite(startDegrees - endDegrees)) return;
    constexpr double kRadiansPerDegree = std::numbers::pi / 180;
    cairo_new_sub_path(Context());
    cairo_arc(fContext.get(), DeviceX(centreX), DeviceY(centreY), Clamped(radius * fScale),
              startDegrees * kRadiansPerDegree, endDegrees * kRadiansPerDegree);
}

void CairoLimner::ClosePath() {
    cairo_close_path(Context());
}

void CairoLimner::Stroke(const Pen& pen) {
    if (!(pen.width > 0)) {
        NewPath();
        return;
    }
    cairo_t* context = Context();
    cairo_set_line_width(context, Clamped(pen.width * fScale));
    cairo_set_line_cap(context, CairoCap(pen.cap));
    cairo_set_line_join(context, CairoJoin(pen.join));
    SetDash(context, pen.dash > 0 ? Clamped(pen.dash * fScale) : 0);
    Finish(pen.color, cairo_stroke);
}

void CairoLimner::Fill(const Brush& brush) {
    Finish(brush.color, cairo_fill);
}

void CairoLimner::StrokeFunction(std::span<const Point> points, const Pen& pen) {
    if (!(pen.width > 0) || fState.clip.IsEmpty()) return;
    const double radius = Clamped(pen.width * fScale) / 2;
    FunctionShape shape(fState.clip, radius);
    AddPieces(points, shape);
    shape.Stroke(Canvas(), PixelFor(pen.color), fState.smooth);
}

void CairoLimner::FillFunction(std::span<const Point> points, float base, const Brush& brush) {
    if (std::isnan(base) || fState.clip.IsEmpty()) return;
    FunctionShape shape(fState.clip, 0);
    AddPieces(points, shape);
    shape.Fill(Canvas(), DeviceY(base), PixelFor(brush.color));
}

void CairoLimner::AddPieces(std::span<const Point> points, FunctionShape& shape) const {
    const auto isPoint = [](const Point& point) { return AreNumbers(point.x, point.y); };
    for (std::size_t i = 1; i < points.size(); ++i) {
        const Point& from = points[i - 1];
        const Point& to = points[i];
        if (isPoint(from) && isPoint(to))
            shape.AddPiece(DeviceX(from.x), DeviceY(from.y), DeviceX(to.x), DeviceY(to.y));
    }
}

void CairoLimner::Finish(const Color& color, void (*draw)(cairo_t*)) {
    cairo_t* context = Context();
    ApplyClip();
    if (fState.clip.IsEmpty()) {
        cairo_new_path(context);
        return;
    }
    cairo_set_antialias(context, fState.smooth ? CAIRO_ANTIALIAS_DEFAULT : CAIRO_ANTIALIAS_NONE);
    SetColor(context, color);
    draw(context);
}

void CairoLimner::DrawImage(const Image& image, const Rect& rect, float opacity) {
    DeviceBox box;
    if (!ToDevice(rect, box) || !IsDrawable(box) || !(opacity > 0) || image.Pixels().empty()) return;
    if (fState.clip.IsEmpty()) return;
    const PixelRect touched = TouchedPixels(box);
    const bool isPixelForPixel = touched.Width() == image.PixelWidth() && touched.Height() == image.PixelHeight();
    if (opacity >= 1 && isPixelForPixel && IsOn(touched, box)) {
        Canvas().Paint(image.Pixels(), touched, fState.clip);
        return;
    }
    // Cairo has no surface for reading only; a source is never written to.
    auto* pixels = const_cast<std::uint32_t*>(image.Pixels().data());
    const SurfaceHandle source(cairo_image_surface_create_for_data(reinterpret_cast<unsigned char*>(pixels),
                                                                   CAIRO_FORMAT_ARGB32, image.PixelWidth(),
                                                                   image.PixelHeight(), image.Stride()));
    const PatternHandle pattern(cairo_pattern_create_for_surface(source.get()));
    const double perPixelX = image.PixelWidth() / box.Width();
    const double perPixelY = image.PixelHeight() / box.Height();
    cairo_matrix_t toImage;
    cairo_matrix_init(&toImage, perPixelX, 0, 0, perPixelY, -box.left * perPixelX, -box.top * perPixelY);
    cairo_pattern_set_matrix(pattern.get(), &toImage);
    cairo_pattern_set_extend(pattern.get(), CAIRO_EXTEND_PAD);

    cairo_t* context = Context();
    ApplyClip();
    const PathKeeper keeper(context);
    cairo_save(context);
    cairo_rectangle(context, box.left, box.top, box.Width(), box.Height());
    cairo_clip(context);
    cairo_set_source(context, pattern.get());
    cairo_paint_with_alpha(context, std::min(opacity, 1.0F));
    cairo_restore(context);
}

double CairoLimner::DeviceX(double x) const {
    return Clamped((x + fState.dx) * fScale);
}

double CairoLimner::DeviceY(double y) const {
    return Clamped((y + fState.dy) * fScale);
}

bool CairoLimner::ToDevice(const Rect& rect, DeviceBox& box) const {
    if (!AreNumbers(rect.left, rect.top, rect.width, rect.height)) return false;
    const double left = rect.left;
    const double top = rect.top;
    box = {DeviceX(left), DeviceY(top), DeviceX(left + rect.width), DeviceY(top + rect.height)};
    return AreNumbers(box.left, box.top, box.right, box.bottom);
}

PixelCanvas CairoLimner::Canvas() {
    if (fContext && !fPixelsTouched) cairo_surface_flush(fSurface.get());
    fPixelsTouched = true;
    return PixelCanvas(fBuffer);
}

cairo_t* CairoLimner::Context() {
    if (!fContext) {
        fSurface = SurfaceOn(fBuffer);
        fContext.reset(cairo_create(fSurface.get()));
        cairo_set_tolerance(fContext.get(), kCurveTolerance);
        fContextClip = fBuffer.Bounds();
    }
    if (fPixelsTouched) cairo_surface_mark_dirty(fSurface.get());
    fPixelsTouched = false;
    return fContext.get();
}

void CairoLimner::ApplyClip() {
    if (fContextClip == fState.clip) return;
    cairo_t* context = fContext.get();
    const PathKeeper keeper(context);
    cairo_reset_clip(context);
    cairo_rectangle(context, fState.clip.left, fState.clip.top, std::max(0, fState.clip.Width()),
                    std::max(0, fState.clip.Height()));
    cairo_clip(context);
    fContextClip = fState.clip;
}

} // namespace kroui::limner
