#include "kroui/utility/RulerBase.h"

#include "RoundStep.h"

#include "krocore/NumberFormat.h"

#include <algorithm>
#include <cmath>

namespace kroui::utility {

namespace {

constexpr float kTextGap = 6;           // between labels beside each other
constexpr float kTextGapVertical = 3;   // between labels above each other
constexpr float kClosestMarks = 2;      // pixels; a mark closer to another is left out
constexpr float kRoundingSlack = 0.99F; // for distances that were chosen to be just long enough
constexpr double kBeyondEnd = 1e-6;     // of the range, for values that rounding has moved past an end
constexpr float kGreatestLength = 1e5F;
constexpr double kFinestIndex = 1e12; // multiples beyond can't be told apart

// For measuring without a supplier: wide enough for the sans faces in use.
constexpr float kEstimatedAdvance = 0.66F;
constexpr float kEstimatedHeight = 1.2F;

float Snapped(float value, float scale) {
    return std::round(value * scale) / scale;
}

} // namespace

// What the functions that draw share.
struct RulerBase::Drawing {
    limner::Limner& context;
    const Rect& rect;
    const RulerColors& colors;
    Edge edge;
    float scale;
};

void RulerBase::SetStepFactor(double pixels) {
    if (std::isfinite(pixels)) Assign(fStepFactor, std::max(1.0, pixels));
}

void RulerBase::SetValueRange(double first, double last) {
    if (!std::isfinite(first) || !std::isfinite(last)) return;
    Assign(fFirstValue, first);
    Assign(fLastValue, last);
}

void RulerBase::SetPixelRange(float first, float last) {
    if (!std::isfinite(first) || !std::isfinite(last)) return;
    Assign(fFirstPixel, first);
    Assign(fLastPixel, last);
}

void RulerBase::SetFontSize(float size) {
    if (std::isfinite(size) && size > 0) Assign(fFontSize, size);
}

void RulerBase::SetLabel1(std::u16string_view text) {
    Assign(fLabel1, krocore::string16(text));
}

void RulerBase::SetLabel2(std::u16string_view text) {
    Assign(fLabel2, krocore::string16(text));
}

void RulerBase::SetMajorTickSpan(float from, float to) {
    fMajorFrom = from;
    fMajorTo = to;
}

void RulerBase::SetMinorTickSpan(float from, float to) {
    fMinorFrom = from;
    fMinorTo = to;
}

float RulerBase::GetPixel(double value) const {
    return PixelAt(GetFraction(value));
}

void RulerBase::GetPixels(std::span<const double> values, std::span<float> pixels) const {
    std::ranges::transform(values, pixels.begin(),
                           [this, ends = EndsOnAxis()](double value) { return PixelAt(FractionBetween(ends, value)); });
}

double RulerBase::GetValue(float pixel) const {
    const float length = fLastPixel - fFirstPixel;
    return length == 0 ? fFirstValue : GetValueAt((pixel - fFirstPixel) / length);
}

double RulerBase::GetFraction(double value) const {
    return FractionBetween(EndsOnAxis(), value);
}

double RulerBase::FractionBetween(const Ends& ends, double value) const {
    const double fraction = (ToAxis(value) - ends.first) / (ends.last - ends.first);
    return std::isfinite(fraction) ? fraction : 0;
}

double RulerBase::GetValueAt(double fraction) const {
    if (fraction == 0 || IsDegenerate()) return fFirstValue;
    if (fraction == 1) return fLastValue;
    const double first = ToAxis(fFirstValue);
    const double value = FromAxis(first + fraction * (ToAxis(fLastValue) - first));
    return std::isfinite(value) ? value : fFirstValue;
}

bool RulerBase::IsDegenerate() const {
    const double length = ToAxis(fLastValue) - ToAxis(fFirstValue);
    return !std::isfinite(length) || length == 0;
}

const std::vector<RulerTick>& RulerBase::GetTicks(const limner::SupplierInterface* supplier) const {
    if (supplier != fSupplier) {
        fSupplier = supplier;
        fTicksAreValid = false;
    }
    if (!fTicksAreValid) UpdateTicks();
    return fTicks;
}

void RulerBase::Draw(limner::Limner& context, const Rect& rect, const RulerColors& colors,
                     const limner::SupplierInterface* supplier, Edge edge, unsigned parts) const {
    if (rect.IsEmpty() || !context.ClipBounds().Intersects(rect)) return;
    SetRoom(fVertical ? rect.top : rect.left, fVertical ? rect.Bottom() : rect.Right(), supplier);
    const Drawing drawing{context, rect, colors, edge, context.ScaleFactor()};
    for (const RulerTick& tick : GetTicks(supplier)) {
        if ((parts & kTicks) != 0) DrawTick(drawing, tick);
        if ((parts & kTexts) != 0 && !tick.text.empty()) DrawTickText(drawing, tick);
    }
}

float RulerBase::TextHeight() const {
    return std::ceil(fFontSize * kEstimatedHeight);
}

float RulerBase::NeededLength(std::u16string_view text) const {
    return MeasuredLength(text) + (fVertical ? kTextGapVertical : kTextGap);
}

krocore::string16 RulerBase::NumberText(double value, int decimals) const {
    constexpr int kMostPlaces = 6;
    constexpr std::array<std::pair<double, char16_t>, 2> kUnits = {{{1e6, u'M'}, {1e3, u'k'}}};
    for (const auto& [unit, letter] : kUnits) {
        if (!fAbbreviates || !std::isfinite(value) || std::abs(value) < unit || decimals > 0) continue;
        const std::uint32_t flags = krocore::kFormatNoTrailingZeros;
        krocore::string16 text = krocore::FormatNumber(value / unit, kMostPlaces, flags);
        text += letter;
        return text;
    }
    return krocore::FormatNumber(value, std::min(decimals, kMostPlaces));
}

void RulerBase::CollectLinear(std::vector<Candidate>& candidates, double pixelsPerUnit) const {
    constexpr int kMostAttempts = 16;
    const double low = LowValue();
    const double high = HighValue();
    if (!(pixelsPerUnit > 0) || !std::isfinite(pixelsPerUnit)) return;
    double wanted = fStepFactor;
    RoundStep step;
    for (int attempt = 0; attempt < kMostAttempts; ++attempt) {
        step = RoundStep::Choose(low, high, wanted / pixelsPerUnit);
        const double needed =
            std::max(NeededLength(NumberText(step.Multiple(std::ceil(low / step.Value())), step.Decimals())),
                     NeededLength(NumberText(step.Multiple(std::floor(high / step.Value())), step.Decimals())));
        if (step.Value() * pixelsPerUnit >= needed) break;
        wanted = std::max(needed, wanted * 1.05);
    }
    const double distance = step.Value();
    if (!(std::max(std::abs(low), std::abs(high)) / distance < kFinestIndex)) return;
    const int parts = step.Parts(kMinorDistance / pixelsPerUnit);
    const double slack = 1e-9 * parts;
    const double firstIndex = std::ceil(low / distance * parts - slack);
    const double lastIndex = std::floor(high / distance * parts + slack);
    if (lastIndex - firstIndex >= static_cast<double>(kMostTicks)) return;
    for (int i = 0; i <= static_cast<int>(lastIndex - firstIndex); ++i) {
        const double index = firstIndex + i;
        const bool isMajor = std::fmod(index, parts) == 0;
        const double value = step.Multiple(index / parts) + 0.0;
        if (isMajor) {
            candidates.push_back({value, value == 0 ? 0 : 1, NumberText(value, step.Decimals())});
        } else {
            candidates.push_back({value, kUnlabelled, {}});
        }
    }
}

void RulerBase::UpdateTicks() const {
    fTicks.clear();
    fTicksAreValid = true;
    const float length = PixelLength();
    if (IsDegenerate() || !(length >= 1 && length < kGreatestLength)) return;
    AddEndLabels();
    std::vector<Candidate> candidates;
    CollectTicks(candidates);
    PlaceTexts(candidates);
    std::sort(fTicks.begin(), fTicks.end(), [](const RulerTick& a, const RulerTick& b) { return a.pixel < b.pixel; });
}

// Labels first, best rank first, so that a label never gives way to a mark or a lesser one.
void RulerBase::PlaceTexts(const std::vector<Candidate>& candidates) const {
    std::vector<const Candidate*> order;
    order.reserve(candidates.size());
    for (const Candidate& candidate : candidates)
        order.push_back(&candidate);
    std::stable_sort(order.begin(), order.end(),
                     [](const Candidate* a, const Candidate* b) { return a->rank < b->rank; });
    for (const Candidate* const candidate : order) {
        const double fraction = GetFraction(candidate->value);
        if (fraction < -kBeyondEnd || fraction > 1 + kBeyondEnd) continue;
        RulerTick tick;
        tick.value = candidate->value;
        tick.pixel = GetPixel(candidate->value);
        if (candidate->rank <= kLastLabelRank) tick.text = candidate->text;
        if (!tick.text.empty() && !PlaceText(tick)) tick.text.clear();
        tick.major = !tick.text.empty() || candidate->rank <= kLastMajorRank;
        if (!tick.text.empty() || !IsCrowded(tick)) fTicks.push_back(std::move(tick));
    }
}

bool RulerBase::IsCrowded(const RulerTick& tick) const {
    return std::any_of(fTicks.begin(), fTicks.end(),
                       [&](const RulerTick& other) { return std::abs(other.pixel - tick.pixel) < kClosestMarks; });
}

bool RulerBase::PlaceText(RulerTick& tick) const {
    tick.textLength = MeasuredLength(tick.text);
    tick.textStart = tick.pixel - tick.textLength / 2;
    const float inside = std::clamp(tick.textStart, fRoomFrom, std::max(fRoomFrom, fRoomTo - tick.textLength));
    const bool isCut = inside != tick.textStart;
    if (isCut && (fHidesTruncated || tick.textLength > fRoomTo - fRoomFrom)) return false;
    tick.textStart = inside;
    return !Overlaps(tick);
}

bool RulerBase::Overlaps(const RulerTick& tick) const {
    const float gap = fVertical ? kTextGapVertical : kTextGap;
    return std::any_of(fTicks.begin(), fTicks.end(), [&](const RulerTick& other) {
        if (other.text.empty()) return false;
        if (std::abs(other.pixel - tick.pixel) < static_cast<float>(fStepFactor) * kRoundingSlack) return true;
        return tick.textStart < other.textStart + other.textLength + gap &&
               other.textStart < tick.textStart + tick.textLength + gap;
    });
}

void RulerBase::AddEndLabels() const {
    AddEndLabel(fFirstValue, fLabel1);
    AddEndLabel(fLastValue, fLabel2);
}

// A word given for an end is moved inside rather than hidden: nothing else says what it says.
void RulerBase::AddEndLabel(double value, const krocore::string16& text) const {
    if (text.empty()) return;
    RulerTick tick{GetPixel(value), value, true, text, 0, MeasuredLength(text)};
    tick.textStart =
        std::clamp(tick.pixel - tick.textLength / 2, fRoomFrom, std::max(fRoomFrom, fRoomTo - tick.textLength));
    if (Overlaps(tick)) tick.text.clear();
    fTicks.push_back(std::move(tick));
}

float RulerBase::MeasuredLength(std::u16string_view text) const {
    if (fVertical) return TextHeight();
    if (fSupplier) return std::ceil(fSupplier->MeasureText(text, {fFontSize, false}).width);
    return std::ceil(static_cast<float>(text.size()) * fFontSize * kEstimatedAdvance);
}

void RulerBase::SetRoom(float from, float to, const limner::SupplierInterface* supplier) const {
    if (from == fRoomFrom && to == fRoomTo && supplier == fSupplier) return;
    fRoomFrom = from;
    fRoomTo = to;
    fSupplier = supplier;
    fTicksAreValid = false;
}

void RulerBase::DrawTick(const Drawing& drawing, const RulerTick& tick) const {
    const Rect& rect = drawing.rect;
    const float line = std::max(1.0F, std::floor(drawing.scale)) / drawing.scale;
    // The middle of the line stands where the value does, as near as whole pixels allow.
    const float along = Snapped(tick.pixel - line / 2, drawing.scale);
    float from = tick.major ? fMajorFrom : fMinorFrom;
    float to = tick.major ? fMajorTo : fMinorTo;
    if (fStyle != kSpan) {
        const float length = tick.major ? kMajorTickLength : kMinorTickLength;
        const float low = fVertical ? rect.left : rect.top;
        const float high = fVertical ? rect.Right() : rect.Bottom();
        from = drawing.edge == Edge::kLeftTop ? low : high - length;
        to = from + length;
    }
    const Rect mark = fVertical ? Rect{from, along, to - from, line} : Rect{along, from, line, to - from};
    const float opacity = tick.major ? 1.0F : 0.6F;
    drawing.context.FillRect(mark, drawing.colors.tick.WithAlpha(drawing.colors.tick.alpha * opacity));
}

void RulerBase::DrawTickText(const Drawing& drawing, const RulerTick& tick) const {
    const Rect& rect = drawing.rect;
    const float low = fVertical ? rect.left : rect.top;
    const float high = fVertical ? rect.Right() : rect.Bottom();
    constexpr float kGap = kTextDistance - kMajorTickLength;
    // Texts stand on the far side of the marks, except before marks that cross.
    bool isBefore = drawing.edge == Edge::kRightBottom;
    float limit = isBefore ? high - kTextDistance : low + kTextDistance;
    if (fStyle == kSpan) {
        isBefore = fTextNearTickStart;
        limit = isBefore ? fMajorFrom - kGap : fMajorTo + kGap;
    }
    const float from = isBefore ? low : limit;
    const float to = isBefore ? limit : high;
    limner::TextPlacement placement;
    const limner::Font font{fFontSize, false};
    if (fVertical) {
        if (fHidesTruncated && fSupplier && fSupplier->MeasureText(tick.text, font).width > to - from) return;
        placement.alignment = isBefore ? limner::TextAlignment::kRight : limner::TextAlignment::kLeft;
        drawing.context.DrawText(tick.text, font, drawing.colors.text,
                                 {from, tick.textStart, to - from, tick.textLength}, placement);
        return;
    }
    placement.alignment = limner::TextAlignment::kCentre;
    const float height = TextHeight();
    const float top = isBefore ? to - height : from;
    drawing.context.DrawText(tick.text, font, drawing.colors.text, {tick.textStart, top, tick.textLength, height},
                             placement);
}

} // namespace kroui::utility
