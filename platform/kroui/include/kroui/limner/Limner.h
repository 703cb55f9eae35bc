#pragma once

#include "kroui/limner/Image.h"
#include "kroui/limner/Types.h"

#include <boost/function.hpp>

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kroui::limner {

// The drawing context. Coordinates are view units in the current user space; a context is valid during the draw call
// that receives it. Save and Restore keep smoothing, clip and translation, and nest. The current path is not part of
// that state; Stroke and Fill use it up. User-interface thread only.
class Limner {
public:
    virtual ~Limner() = default;

    virtual void Save() = 0;
    virtual void Restore() = 0;
    // 1 draws with antialiasing, 0 without. Contexts start with 1.
    virtual void SetSmoothing(int flag) = 0;
    virtual void ClipRect(const Rect& rect) = 0;
    virtual void Translate(float dx, float dy) = 0;

    // Pixels a view unit of the surface drawn on (1...3 and anything between).
    virtual float ScaleFactor() const = 0;
    // The part of user space that can still be seen through the clip. Draw operations may skip what lies outside.
    virtual Rect ClipBounds() const = 0;

    virtual void FillRect(const Rect& rect, const Color& color) = 0;
    // Corners are arcs of `radius`, at most half of the smaller side. Drawn from a cached stamp.
    virtual void FillRoundRect(const Rect& rect, float radius, const Color& color) = 0;
    // A line of `width` inside the rectangle's edge.
    virtual void FrameRoundRect(const Rect& rect, float radius, const Color& color, float width) = 0;

    virtual void NewPath() = 0;
    virtual void MoveTo(float x, float y) = 0;
    virtual void LineTo(float x, float y) = 0;
    virtual void CurveTo(float x1, float y1, float x2, float y2, float x, float y) = 0;
    virtual void AddRect(const Rect& rect) = 0;
    virtual void AddRoundRect(const Rect& rect, float radius) = 0;
    // Clockwise on screen from startDegrees to endDegrees; 0 degrees points right. Begins a new sub-path.
    virtual void Arc(float centreX, float centreY, float radius, float startDegrees, float endDegrees) = 0;
    virtual void ClosePath() = 0;
    virtual void Stroke(const Pen& pen) = 0;
    virtual void Fill(const Brush& brush) = 0;

    // A line that is a function of x: through points whose x never descends; one that is no number interrupts it. With
    // round joins and ends, in the pen's colour and width. Costs a small part of a path of as many points. The current
    // path stays as it is.
    virtual void StrokeFunction(std::span<const Point> points, const Pen& pen) = 0;
    // Fills what lies between such a line and the horizontal at `base`.
    virtual void FillFunction(std::span<const Point> points, float base, const Brush& brush) = 0;

    // A line of text (or, with multiLine, a paragraph) in a rectangle, clipped to nothing: truncation "end" and "start"
    // put an ellipsis where the text would be wider than the rectangle.
    virtual void DrawText(std::u16string_view text, const Font& font, const Color& color, const Rect& rect,
                          const TextPlacement& placement) = 0;

    // Scales the picture into the rectangle.
    virtual void DrawImage(const Image& image, const Rect& rect, float opacity) = 0;
};

// What a host hands to everything that draws: measures text, makes and decodes pictures, makes contexts on pictures.
// Lives longer than all that uses it. User-interface thread only.
class SupplierInterface {
public:
    virtual ~SupplierInterface() = default;

    virtual TextExtent MeasureText(std::u16string_view text, const Font& font) const = 0;
    // Height of a paragraph wrapped at `width`.
    virtual TextExtent MeasureParagraph(std::u16string_view text, const Font& font, float width) const = 0;
    // The x position of the caret before each UTF-16 unit and behind the last: text.size() + 1 values.
    virtual void CaretPositions(std::u16string_view text, const Font& font, std::vector<float>& positions) const = 0;

    // A picture from the bytes of a PNG file; null if they are none. `scale`: pixels a view unit.
    virtual ImagePtr DecodePNG(std::span<const std::byte> bytes, float scale) const = 0;

    // Calls `draw` with a context on a new picture of ceil(size * scale) pixels, transparent at first, and returns it;
    // null for an empty size or one above 16384 pixels a side.
    virtual ImagePtr DrawImage(Size size, float scale, const boost::function<void(Limner&)>& draw) const = 0;
};

// The bytes of a picture as a PNG file.
std::string EncodePNG(const Image& image);

// Writes a picture as a PNG file, as krocore::ReplaceFile does. Throws krocore::config::Error naming the file when that
// fails.
void WritePNG(const Image& image, const std::filesystem::path& file);

} // namespace kroui::limner
