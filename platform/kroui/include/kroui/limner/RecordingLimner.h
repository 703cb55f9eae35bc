#pragma once

#include "kroui/limner/Limner.h"

#include <string>
#include <vector>

namespace kroui::limner {

// A context that lists what is drawn, an operation a line, for tests and inspection: "Save", "FillRect 0 0 10 20
// #2A2B2F", "MoveTo 1.5 2", "Stroke #4DA3FF 1", "Fill #4DA3FF", "Text \"Gain\" 12 #D7D9DE 0 0 40 16 left". Numbers have
// at most four decimals, without trailing zeros; a colour that is not opaque has a fourth pair of digits. What differs
// from the plain case follows in words: "Stroke #4DA3FF 1 cap round join bevel dash 3", "Text \"Gain\" 12 bold #D7D9DE
// 0 0 40 16 right end multiline". A picture is "Image 32x16 0 0 16 8 1": its pixels, the rectangle, the opacity. A
// function's points follow its colour and width, or colour and base: "StrokeFunction #FFC94D 1.5 0,10 1,12.5".
class RecordingLimner : public Limner {
public:
    explicit RecordingLimner(Rect clipBounds = {-1e6F, -1e6F, 2e6F, 2e6F}, float scaleFactor = 1);

    const std::vector<std::string>& Operations() const { return fOperations; }
    void Clear() { fOperations.clear(); }

    void Save() override;
    void Restore() override;
    void SetSmoothing(int flag) override;
    void ClipRect(const Rect& rect) override;
    void Translate(float dx, float dy) override;
    float ScaleFactor() const override;
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
        Rect clip;
    };
    void Record(std::string operation);

    std::vector<std::string> fOperations;
    std::vector<State> fSaved;
    State fState;
    float fScaleFactor;
};

} // namespace kroui::limner
