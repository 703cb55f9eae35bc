#pragma once

#include "krocore/String.h"
#include "krocore/utility/RefCountedObject.h"
#include "kroui/limner/Limner.h"
#include "kroui/ui/Theme.h"

#include <boost/intrusive_ptr.hpp>

#include <span>
#include <vector>

namespace kroui::utility {

// One mark of a ruler.
struct RulerTick {
    float pixel = 0; // along the ruler, not rounded
    double value = 0;
    bool major = false;     // labelled, or would be if there were room
    krocore::string16 text; // empty for none
    // Where the text lies along the ruler: its width on a horizontal one, its line's height on a vertical one.
    float textStart = 0;
    float textLength = 0;
};

struct RulerColors {
    limner::Color tick;
    limner::Color text;

    static RulerColors Of(const ui::ThemeClient& client) {
        return {client.GetColor(ui::kColorRulerTick), client.GetColor(ui::kColorDimText)};
    }
};

// A scale of values along a line of pixels: tells where a value lies, which values to mark and label, and draws them.
// The first value of the range lies at the first pixel, the last at the last, so both directions can be turned by
// exchanging either pair. Labels never overlap, whatever the length. Marks are computed when asked for and kept until
// something changes. User-interface thread.
class RulerBase : public krocore::utility::RefCountedObject {
public:
    // 0: marks grow from an edge. 1: the same; a decibel ruler follows the law of a fader. 2: marks cross what they
    // measure, over the spans below.
    enum Style : int { kPlain = 0, kFader = 1, kSpan = 2 };
    // The edge of the rectangle that marks grow from, that is where the content is.
    enum class Edge : std::uint8_t { kLeftTop, kRightBottom };
    enum Parts : unsigned { kTicks = 1, kTexts = 2, kAllParts = 3 };

    void SetVertical(bool vertical) { Assign(fVertical, vertical); }
    bool IsVertical() const { return fVertical; }
    // Wanted distance in pixels between labelled marks, at least.
    void SetStepFactor(double pixels);
    double GetStepFactor() const { return fStepFactor; }
    // Values at the first and the last pixel, in either order. A range that holds NaN or infinity is refused; one of
    // which nothing can be told (equal ends, a logarithmic one at or below 0) has no marks.
    void SetValueRange(double first, double last);
    double GetFirstValue() const { return fFirstValue; }
    double GetLastValue() const { return fLastValue; }
    void SetPixelRange(float first, float last);

    // Style 2 only: whether texts stand before the start of the major span (left of it, above it) or behind its end.
    void SetTextNearTickStart(bool near) { Assign(fTextNearTickStart, near); }
    // A label that would reach out of the rectangle drawn in is left out; otherwise it is moved inside.
    void HideTruncatedStrings(bool hide) { Assign(fHidesTruncated, hide); }
    void SetFontSize(float size);
    void SetStyle(int style) { Assign(fStyle, style); }
    int GetStyle() const { return fStyle; }
    // Writes thousands as "1k". On at first.
    void SetAbbreviateNumbers(bool abbreviate) { Assign(fAbbreviates, abbreviate); }
    // Texts that stand at the first and the last value in place of numbers.
    void SetLabel1(std::u16string_view text);
    void SetLabel2(std::u16string_view text);
    const krocore::string16& GetLabel1() const { return fLabel1; }
    const krocore::string16& GetLabel2() const { return fLabel2; }
    // Style 2: from where to where marks reach across the ruler, in the coordinates drawn in.
    void SetMajorTickSpan(float from, float to);
    void SetMinorTickSpan(float from, float to);

    // Where a value lies, and which value lies at a pixel; not held within the range. The first pixel or value if the
    // range tells nothing.
    float GetPixel(double value) const;
    double GetValue(float pixel) const;
    // The same for many values, into as many pixels.
    void GetPixels(std::span<const double> values, std::span<float> pixels) const;
    // The same as parts of the range: 0 for the first value, 1 for the last.
    double GetFraction(double value) const;
    double GetValueAt(double fraction) const;
    bool IsDegenerate() const;

    // The marks, ascending by pixel. Texts are measured with the supplier; without one their size is estimated.
    const std::vector<RulerTick>& GetTicks(const limner::SupplierInterface* supplier) const;

    // Draws into a rectangle: marks from the edge towards the other, texts beyond them. The pixel range counts in the
    // same coordinates. Labels stay inside the rectangle.
    void Draw(limner::Limner& context, const Rect& rect, const RulerColors& colors,
              const limner::SupplierInterface* supplier, Edge edge = Edge::kLeftTop, unsigned parts = kAllParts) const;

    static constexpr float kMajorTickLength = 5;
    static constexpr float kMinorTickLength = 3;
    // What a strip with marks and texts takes across the ruler, without the texts' own height or width.
    static constexpr float kTextDistance = kMajorTickLength + 2;
    float TextHeight() const;

protected:
    RulerBase() = default;
    ~RulerBase() override = default;

    // A value to be marked. Labels of a lower rank win where there is no room for all; marks up to kLastMajorRank are
    // long even without their label; no label above kLastLabelRank.
    struct Candidate {
        double value;
        int rank;
        krocore::string16 text;
    };
    static constexpr int kLastMajorRank = 1;
    static constexpr int kLastLabelRank = 100;
    static constexpr int kUnlabelled = kLastLabelRank + 1;
    static constexpr std::size_t kMostTicks = 4096;
    static constexpr float kMinorDistance = 4; // pixels, at least

    // The axis on which equal distances are equal numbers of pixels. NaN for values that have no place on it.
    virtual double ToAxis(double value) const { return value; }
    virtual double FromAxis(double axis) const { return axis; }
    // Appends what is to be marked, at most kMostTicks.
    virtual void CollectTicks(std::vector<Candidate>& candidates) const = 0;

    template <class T>
    void Assign(T& member, const T& value) {
        if (member == value) return;
        member = value;
        fTicksAreValid = false;
    }

    double LowValue() const { return fFirstValue < fLastValue ? fFirstValue : fLastValue; }
    double HighValue() const { return fFirstValue < fLastValue ? fLastValue : fFirstValue; }
    float PixelLength() const { return std::abs(fLastPixel - fFirstPixel); }
    // What a label takes along the ruler, with the distance to the next.
    float NeededLength(std::u16string_view text) const;
    // A number as a label, its places as `step` needs them.
    krocore::string16 NumberText(double value, int decimals) const;
    // Appends labelled multiples of a round step and marks between them. `pixelsPerUnit` where they are densest.
    void CollectLinear(std::vector<Candidate>& candidates, double pixelsPerUnit) const;

private:
    struct Drawing;
    // The ends of the range on the axis.
    struct Ends {
        double first;
        double last;
    };

    Ends EndsOnAxis() const { return {ToAxis(fFirstValue), ToAxis(fLastValue)}; }
    double FractionBetween(const Ends& ends, double value) const;
    float PixelAt(double fraction) const {
        return fFirstPixel + static_cast<float>(fraction * (fLastPixel - fFirstPixel));
    }
    void UpdateTicks() const;
    void PlaceTexts(const std::vector<Candidate>& candidates) const;
    bool PlaceText(RulerTick& tick) const;
    bool Overlaps(const RulerTick& tick) const;
    bool IsCrowded(const RulerTick& tick) const;
    void AddEndLabels() const;
    void AddEndLabel(double value, const krocore::string16& text) const;
    float MeasuredLength(std::u16string_view text) const;
    void SetRoom(float from, float to, const limner::SupplierInterface* supplier) const;
    void DrawTick(const Drawing& drawing, const RulerTick& tick) const;
    void DrawTickText(const Drawing& drawing, const RulerTick& tick) const;

    double fFirstValue = 0;
    double fLastValue = 1;
    double fStepFactor = 50;
    krocore::string16 fLabel1;
    krocore::string16 fLabel2;
    float fFirstPixel = 0;
    float fLastPixel = 0;
    float fFontSize = 9;
    float fMajorFrom = 0;
    float fMajorTo = 0;
    float fMinorFrom = 0;
    float fMinorTo = 0;
    int fStyle = kPlain;
    bool fVertical = false;
    bool fTextNearTickStart = false;
    bool fHidesTruncated = false;
    bool fAbbreviates = true;

    // Kept between drawings.
    mutable std::vector<RulerTick> fTicks;
    mutable const limner::SupplierInterface* fSupplier = nullptr;
    mutable float fRoomFrom = -1e9F;
    mutable float fRoomTo = 1e9F;
    mutable bool fTicksAreValid = false;
};

} // namespace kroui::utility
