#include "kroui/limner/RecordingLimner.h"

#include "krocore/String.h"

#include <array>
#include <charconv>
#include <cmath>
#include <concepts>

namespace kroui::limner {

namespace {

std::string Text(float number) {
    constexpr int kDecimals = 4;
    // The longest single-precision number in fixed notation has 39 digits before the point.
    std::array<char, 64> buffer{};
    const auto end = std::to_chars(buffer.begin(), buffer.end(), number, std::chars_format::fixed, kDecimals).ptr;
    std::string text(buffer.begin(), end);
    if (std::isfinite(number)) text.erase(text.find_last_not_of('0') + 1);
    if (text.ends_with('.')) text.pop_back();
    return text == "-0" ? "0" : text;
}

std::string Text(const Rect& rect) {
    return Text(rect.left) + ' ' + Text(rect.top) + ' ' + Text(rect.width) + ' ' + Text(rect.height);
}

std::string Text(const Color& color) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string text = "#";
    const auto add = [&](float component) {
        const auto value = static_cast<unsigned>(component > 0 ? std::lround(std::min(component, 1.0F) * 255) : 0);
        text += {kDigits[value / 16], kDigits[value % 16]};
    };
    add(color.red);
    add(color.green);
    add(color.blue);
    if (color.alpha < 1) add(color.alpha);
    return text;
}

std::string Quoted(std::u16string_view utf16) {
    std::string text = "\"";
    for (const char c : krocore::ToStdString(utf16)) {
        if (c == '"' || c == '\\') text += '\\';
        if (c == '\n') {
            text += "\\n";
        } else {
            text += c;
        }
    }
    return text + '"';
}

std::string Text(std::span<const Point> points) {
    std::string text;
    for (const Point& point : points) {
        if (!text.empty()) text += ' ';
        text += Text(point.x) + ',' + Text(point.y);
    }
    return text;
}

std::string Text(std::string word) {
    return word;
}

// The parts with a space between.
template <class... T>
std::string Words(std::string name, const T&... parts) {
    ((name += ' ', name += Text(parts)), ...);
    return name;
}

std::string PenExtras(const Pen& pen) {
    std::string extras;
    if (pen.cap != LineCap::kButt) extras += pen.cap == LineCap::kRound ? " cap round" : " cap square";
    if (pen.join != LineJoin::kMiter) extras += pen.join == LineJoin::kRound ? " join round" : " join bevel";
    if (pen.dash > 0) extras += " dash " + Text(pen.dash);
    return extras;
}

std::string PlacementWords(const TextPlacement& placement) {
    constexpr std::array<const char*, 3> kAlignments{"left", "centre", "right"};
    constexpr std::array<const char*, 3> kTruncations{"", " start", " end"};
    return kAlignments.at(static_cast<std::size_t>(placement.alignment)) +
           std::string(kTruncations.at(static_cast<std::size_t>(placement.truncation))) +
           (placement.multiLine ? " multiline" : "");
}

} // namespace

RecordingLimner::RecordingLimner(Rect clipBounds, float scaleFactor) : fState{clipBounds}, fScaleFactor(scaleFactor) {
}

void RecordingLimner::Save() {
    fSaved.push_back(fState);
    Record("Save");
}

void RecordingLimner::Restore() {
    if (!fSaved.empty()) {
        fState = fSaved.back();
        fSaved.pop_back();
    }
    Record("Restore");
}

void RecordingLimner::SetSmoothing(int flag) {
    Record(Words("SetSmoothing", std::to_string(flag)));
}

void RecordingLimner::ClipRect(const Rect& rect) {
    fState.clip = Intersection(fState.clip, rect);
    Record(Words("ClipRect", rect));
}

void RecordingLimner::Translate(float dx, float dy) {
    fState.clip = fState.clip.Offset(-dx, -dy);
    Record(Words("Translate", dx, dy));
}

float RecordingLimner::ScaleFactor() const {
    return fScaleFactor;
}

Rect RecordingLimner::ClipBounds() const {
    return fState.clip;
}

void RecordingLimner::FillRect(const Rect& rect, const Color& color) {
    Record(Words("FillRect", rect, color));
}

void RecordingLimner::FillRoundRect(const Rect& rect, float radius, const Color& color) {
    Record(Words("FillRoundRect", rect, radius, color));
}

void RecordingLimner::FrameRoundRect(const Rect& rect, float radius, const Color& color, float width) {
    Record(Words("FrameRoundRect", rect, radius, color, width));
}

void RecordingLimner::NewPath() {
    Record("NewPath");
}

void RecordingLimner::MoveTo(float x, float y) {
    Record(Words("MoveTo", x, y));
}

void RecordingLimner::LineTo(float x, float y) {
    Record(Words("LineTo", x, y));
}

void RecordingLimner::CurveTo(float x1, float y1, float x2, float y2, float x, float y) {
    Record(Words("CurveTo", x1, y1, x2, y2, x, y));
}

void RecordingLimner::AddRect(const Rect& rect) {
    Record(Words("AddRect", rect));
}

void RecordingLimner::AddRoundRect(const Rect& rect, float radius) {
    Record(Words("AddRoundRect", rect, radius));
}

void RecordingLimner::Arc(float centreX, float centreY, float radius, float startDegrees, float endDegrees) {
    Record(Words("Arc", centreX, centreY, radius, startDegrees, endDegrees));
}

void RecordingLimner::ClosePath() {
    Record("ClosePath");
}

void RecordingLimner::Stroke(const Pen& pen) {
    Record(Words("Stroke", pen.color, pen.width) + PenExtras(pen));
}

void RecordingLimner::Fill(const Brush& brush) {
    Record(Words("Fill", brush.color));
}

void RecordingLimner::StrokeFunction(std::span<const Point> points, const Pen& pen) {
    Record(Words("StrokeFunction", pen.color, pen.width, points));
}

void RecordingLimner::FillFunction(std::span<const Point> points, float base, const Brush& brush) {
    Record(Words("FillFunction", brush.color, base, points));
}

void RecordingLimner::DrawText(std::u16string_view text, const Font& font, const Color& color, const Rect& rect,
                               const TextPlacement& placement) {
    const std::string size = Text(font.size) + (font.bold ? " bold" : "");
    Record(Words("Text", Quoted(text), size, color, rect, PlacementWords(placement)));
}

void RecordingLimner::DrawImage(const Image& image, const Rect& rect, float opacity) {
    const std::string pixels = std::to_string(image.PixelWidth()) + 'x' + std::to_string(image.PixelHeight());
    Record(Words("Image", pixels, rect, opacity));
}

void RecordingLimner::Record(std::string operation) {
    fOperations.push_back(std::move(operation));
}

} // namespace kroui::limner
