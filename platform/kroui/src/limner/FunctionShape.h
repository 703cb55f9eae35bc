#pragma once

#include "PixelCanvas.h"

#include <vector>

namespace kroui::limner {

// A line that is a function of x, in device pixels: the heights that it passes in every part of a pixel column. What
// is drawn of it is computed a column at a time, so the cost goes with the columns and not with the number of points.
class FunctionShape {
public:
    // Only what lies in the clip is drawn. `radius`: half of the line's width.
    FunctionShape(const PixelRect& clip, double radius);

    // A straight piece; one that runs to the left is passed over.
    void AddPiece(double fromX, double fromY, double toX, double toY);

    // Draws all that is no farther from the line than the radius.
    void Stroke(PixelCanvas canvas, std::uint32_t pixel, bool smooth);
    // Draws what lies between the line and a horizontal.
    void Fill(PixelCanvas canvas, double base, std::uint32_t pixel) const;

private:
    // Top and bottom of something at one part of a column; none if top is greater.
    struct Heights {
        std::vector<float> top;
        std::vector<float> bottom;
    };

    // What each column of the clip fills, and how much of its width the line passes, in full coverage.
    struct Columns {
        std::vector<float> top;
        std::vector<float> bottom;
        std::vector<float> weight;
    };

    // Rows of pixels, the end not among them.
    struct Rows {
        int begin;
        int end;
        std::size_t Count() const { return end > begin ? static_cast<std::size_t>(end - begin) : 0; }
    };

    static Heights NoHeights(std::size_t count);
    Heights Widened() const;
    void StrokeBlock(PixelCanvas canvas, const Heights& widened, int begin, int end, std::uint32_t pixel, bool smooth);
    Rows RowsOfColumns(const Heights& widened, int begin, int end) const;
    void CoverColumn(const Heights& widened, int column, const Rows& rows);
    void AddToColumn(float from, float to);
    Columns ColumnsTo(float base) const;
    void FillBlock(PixelCanvas canvas, const Columns& columns, int begin, int end, std::uint32_t pixel) const;

    PixelRect fClip;
    double fRadius;
    int fMargin;    // columns outside the clip from which the line reaches in
    double fOrigin; // the device position of the first part
    int fParts;     // of a column
    Heights fLine;
    std::vector<float> fColumn;
    std::vector<std::uint8_t> fCoverage;
};

} // namespace kroui::limner
