#include "uit/controls/UI_CompExpList.h"

#include "krocore/Localizer.h"
#include "kroui/controls/TextMeasure.h"
#include "kroui/controls/UI_HotTextNumber.h"
#include "kroui/ui/PixelGrid.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace uit::controls {

using kroui::Rect;
using kroui::Size;
using kroui::limner::Limner;
using kroui::limner::TextAlignment;
using kroui::ui::MouseEvent;

namespace {

constexpr float kPadding = 4; // between the frame and the rows
constexpr float kRadius = 4;
constexpr float kRowRadius = 3;
constexpr float kTextInset = 8;
constexpr float kKindWidth = 84;
constexpr float kRatioWidth = 54;
constexpr float kColumnGap = 10;
constexpr float kBarWidth = 6; // of the scroll bar
constexpr float kBarGap = 3;
constexpr float kShortestThumb = 16;
constexpr float kRowsPerNotch = 2;
constexpr float kVisibleRows = 6; // that the natural height has room for

// Grounds of rows, so faint that dim and accent texts still stand out from them by 4.5 to 1 in both themes.
constexpr float kSelectedTint = 0.14F;
constexpr float kHoveredTint = 0.6F;
constexpr float kMarkWidth = 3; // of the bar before the selected row

constexpr double kRatioStep = 0.1;
// Bounds of the output levels that a ratio can lead to, in dB.
constexpr double kLowestOutput = -100;
constexpr double kHighestOutput = 0;

bool IsFinite(const TransferPoint& point) {
    return std::isfinite(point.input) && std::isfinite(point.output);
}

krocore::string16 LevelText(double level) {
    return krocore::FormatNumber(level, 1, krocore::kFormatNoTrailingZeros);
}

} // namespace

// Takes the value of TransferSegment::Compression; what it shows is the real ratio, which may be out of its bounds.
class UI_CompExpList::Ratio : public kroui::controls::UI_HotTextNumber {
public:
    Ratio(UI_CompExpList& list, int segment) : fList(list), fNumber(segment) {
        SetMinMaxValue(-TransferSegment::kMostCompression, TransferSegment::kMostCompression, 0);
        SetIncrement(kRatioStep);
        SetDecimalPlaces(1);
        NotifyWhenChangedInteractively([this](kroui::controls::UI_InteractiveControlChangedMessage* message) {
            fList.RatioChanged(fNumber, message->GetChangeMessage());
        });
    }

    void SetSegment(const TransferSegment& segment) {
        if (fShown != segment.RatioText()) UI_Invalidate();
        fSegment = segment;
        fShown = segment.RatioText();
        // The value that is being chosen stays with its gesture.
        if (!IsInGesture()) SetValue(segment.Compression());
    }
    void UI_FocusChanged(bool hasFocus) override {
        UI_HotTextNumber::UI_FocusChanged(hasFocus);
        if (hasFocus) fList.SetSelectedSegment(fNumber);
    }

protected:
    krocore::string16 ShownText() const override { return fShown; }
    krocore::string16 EntryText() const override { return fShown; }
    std::optional<double> ReadEntry(std::u16string_view typed) const override { return fSegment.ParseRatio(typed); }

private:
    UI_CompExpList& fList;
    TransferSegment fSegment;
    krocore::string16 fShown;
    int fNumber;
};

void UI_CompExpList::SetPoints(std::vector<TransferPoint> points) {
    std::erase_if(points, [](const TransferPoint& point) { return !IsFinite(point); });
    std::stable_sort(points.begin(), points.end(),
                     [](const TransferPoint& a, const TransferPoint& b) { return a.input < b.input; });
    if (points == fPoints) return;
    fPoints = std::move(points);
    UpdateRows();
}

void UI_CompExpList::SetSelectedSegment(int segment) {
    const int wanted = segment >= 0 && segment < SegmentCount() ? segment : -1;
    if (wanted == fSelected) return;
    for (const int changed : {std::exchange(fSelected, wanted), wanted})
        UI_InvalidateRect(Intersection(RowRect(changed), ListRect()));
    ScrollToSegment(wanted);
}

UI_CompExpList::Ratio& UI_CompExpList::RatioOf(int segment) const {
    return static_cast<Ratio&>(*Child(static_cast<std::size_t>(segment)));
}

Rect UI_CompExpList::ListRect() const {
    return UI_GetLocalRect().Inset(kPadding, kPadding);
}

// The loudest segment stands first.
Rect UI_CompExpList::RowRect(int segment) const {
    if (segment < 0 || segment >= SegmentCount()) return {};
    const Rect list = ListRect();
    const float bar = MostScroll() > 0 ? kBarWidth + kBarGap : 0;
    const float top = list.top + static_cast<float>(SegmentCount() - 1 - segment) * kRowHeight - fScroll;
    return {list.left, top, list.width - bar, kRowHeight};
}

Rect UI_CompExpList::RatioRect(int segment) const {
    const Rect row = RowRect(segment);
    return {row.left + kKindWidth, row.top, kRatioWidth, row.height};
}

float UI_CompExpList::MostScroll() const {
    return std::max(0.0F, static_cast<float>(SegmentCount()) * kRowHeight - ListRect().height);
}

Rect UI_CompExpList::ThumbRect() const {
    if (!(MostScroll() > 0)) return {};
    const Rect list = ListRect();
    const float all = list.height + MostScroll();
    const float length = std::max(kShortestThumb, list.height * list.height / all);
    const float top = list.top + (list.height - length) * fScroll / MostScroll();
    return {list.Right() - kBarWidth, top, kBarWidth, length};
}

int UI_CompExpList::SegmentAt(kroui::Point point) const {
    if (!ListRect().Contains(point)) return -1;
    for (int segment = 0; segment < SegmentCount(); ++segment)
        if (RowRect(segment).Contains(point)) return segment;
    return -1;
}

void UI_CompExpList::UpdateRows() {
    const auto wanted = static_cast<std::size_t>(SegmentCount());
    while (ChildCount() > wanted)
        ChildRemove(Child(ChildCount() - 1));
    while (ChildCount() < wanted)
        ChildPushBack(boost::intrusive_ptr<UI_Node>(new Ratio(*this, static_cast<int>(ChildCount()))));
    for (int i = 0; i < SegmentCount(); ++i) {
        const TransferSegment segment{fPoints[i], fPoints[i + 1]};
        RatioOf(i).SetSegment(segment);
        RatioOf(i).SetEnabled(IsEnabled());
        RatioOf(i).SetName(segment.KindText());
    }
    if (fSelected >= SegmentCount()) fSelected = -1;
    if (fHovered >= SegmentCount()) fHovered = -1;
    fScroll = std::clamp(fScroll, 0.0F, MostScroll());
    PlaceRows();
    UI_Invalidate();
}

void UI_CompExpList::PlaceRows() {
    for (int i = 0; i < SegmentCount(); ++i)
        RatioOf(i).UI_SetFrame(RatioRect(i));
}

void UI_CompExpList::ScrollTo(float scroll) {
    const float held = std::clamp(std::round(scroll), 0.0F, MostScroll());
    if (held == fScroll) return;
    fScroll = held;
    PlaceRows();
    UI_Invalidate();
}

void UI_CompExpList::ScrollToSegment(int segment) {
    if (segment < 0) return;
    const Rect list = ListRect();
    const Rect row = RowRect(segment);
    if (row.top < list.top) ScrollTo(fScroll - (list.top - row.top));
    if (row.Bottom() > list.Bottom()) ScrollTo(fScroll + row.Bottom() - list.Bottom());
}

void UI_CompExpList::SetHovered(int segment) {
    if (segment == fHovered) return;
    for (const int changed : {std::exchange(fHovered, segment), segment})
        UI_InvalidateRect(Intersection(RowRect(changed), ListRect()));
}

void UI_CompExpList::RatioChanged(int segment, ChangeMessage change) {
    using Message = kroui::controls::UI_InteractiveControlChangedMessage;
    if (change == Message::kStarted) fPointsBefore = fPoints;
    if (change == Message::kAbandoned) fPoints = fPointsBefore;
    if (change == Message::kChanged && segment < SegmentCount()) {
        // Always from the points before the gesture: a bound that was met leaves no trace.
        if (fPointsBefore.size() == fPoints.size()) fPoints = fPointsBefore;
        TransferPoint& lower = fPoints[segment];
        TransferPoint& upper = fPoints[segment + 1];
        const double rise = TransferSegment::SlopeOf(RatioOf(segment).GetValue()) * (upper.input - lower.input);
        const bool movesLower = segment == 0 && SegmentCount() > 1;
        double& moved = movesLower ? lower.output : upper.output;
        moved = std::clamp(movesLower ? upper.output - rise : lower.output + rise, kLowestOutput, kHighestOutput);
    }
    if (change == Message::kChanged || change == Message::kAbandoned) UpdateRows();
    SendInteractive(change);
    if (change != Message::kEnded) return;
    // The gesture is over: the number takes the value that the bounds have left.
    UpdateRows();
    SendChanged();
}

Size UI_CompExpList::UI_GetNaturalSize() const {
    return {fWidth, kVisibleRows * kRowHeight + 2 * kPadding};
}

bool UI_CompExpList::UI_DoMouseEvent(UI_Node* node, const MouseEvent& event) {
    UI_InteractiveControlView::UI_DoMouseEvent(node, event);
    if (!IsEnabled()) return false;
    switch (event.action) {
    case MouseEvent::Action::kEntered:
    case MouseEvent::Action::kMoved: SetHovered(SegmentAt(event.position)); return false;
    case MouseEvent::Action::kLeft:
        if (!node) SetHovered(-1);
        return false;
    case MouseEvent::Action::kWheel:
        if (!(MostScroll() > 0)) return false;
        ScrollTo(fScroll - event.wheelY * kRowsPerNotch * kRowHeight);
        return true;
    case MouseEvent::Action::kPressed: return !node && event.button == 1 && PressAt(event.position);
    case MouseEvent::Action::kDragged:
        if (fThumbGrip >= 0) {
            const float way = ListRect().height - ThumbRect().height;
            ScrollTo((event.position.y - fThumbGrip - ListRect().top) / std::max(1.0F, way) * MostScroll());
        }
        return true;
    case MouseEvent::Action::kReleased:
    case MouseEvent::Action::kCaptureLost:
        if (fThumbGrip >= 0) UI_Invalidate();
        fThumbGrip = -1;
        return true;
    default: return false;
    }
}

bool UI_CompExpList::PressAt(kroui::Point point) {
    const Rect thumb = ThumbRect();
    const Rect bar{thumb.left - kBarGap, ListRect().top, kBarWidth + kBarGap + kPadding, ListRect().height};
    if (!thumb.IsEmpty() && bar.Contains(point)) {
        fThumbGrip = point.y >= thumb.top && point.y < thumb.Bottom() ? point.y - thumb.top : thumb.height / 2;
        ScrollTo((point.y - fThumbGrip - ListRect().top) / std::max(1.0F, ListRect().height - thumb.height) *
                 MostScroll());
        UI_Invalidate();
        return true;
    }
    const int segment = SegmentAt(point);
    if (segment < 0) return false;
    SetSelectedSegment(segment);
    // The keys go to the ratio of the row.
    if (segment < SegmentCount()) RatioOf(segment).UI_TakeFocus();
    return true;
}

void UI_CompExpList::UI_SizeChanged(const kroui::RectT<float>& rect) {
    UI_InteractiveControlView::UI_SizeChanged(rect);
    fScroll = std::clamp(fScroll, 0.0F, MostScroll());
    PlaceRows();
}

void UI_CompExpList::ControlStateChanged() {
    for (int i = 0; i < SegmentCount(); ++i)
        RatioOf(i).SetEnabled(IsEnabled());
    if (!IsEnabled()) fHovered = -1, fThumbGrip = -1;
    UI_InteractiveControlView::ControlStateChanged();
}

void UI_CompExpList::UI_Draw(Limner* context) {
    const kroui::ui::PixelGrid grid(*this, *context);
    const Rect box = grid.Snap(UI_GetLocalRect());
    context->FillRoundRect(box, kRadius, GetColor(kroui::ui::kColorField));
    context->FrameRoundRect(box, kRadius, GetColor(kroui::ui::kColorLine), grid.Line());
    context->Save();
    context->ClipRect(ListRect());
    for (int segment = 0; segment < SegmentCount(); ++segment)
        if (RowRect(segment).Intersects(context->ClipBounds())) DrawRow(*context, segment);
    context->Restore();
    const Rect thumb = grid.Snap(ThumbRect());
    const int color = fThumbGrip >= 0 ? kroui::ui::kColorAccent : kroui::ui::kColorKnobLine;
    if (!thumb.IsEmpty()) context->FillRoundRect(thumb, thumb.width / 2, GetColor(color).WithAlpha(0.7F));
}

void UI_CompExpList::DrawRow(Limner& context, int index) const {
    const kroui::ui::PixelGrid grid(*this, context);
    const Rect row = grid.Snap(RowRect(index));
    const kroui::limner::Color accent = GetColor(kroui::ui::kColorAccent);
    if (index == fSelected) {
        context.FillRoundRect(row, kRowRadius, accent.WithAlpha(kSelectedTint));
        context.FillRoundRect(grid.Snap({row.left, row.top, kMarkWidth, row.height}), kMarkWidth / 2, accent);
    } else if (index == fHovered) {
        context.FillRoundRect(row, kRowRadius, GetColor(kroui::ui::kColorRaisedHover).WithAlpha(kHoveredTint));
    }
    const TransferSegment segment{fPoints[index], fPoints[index + 1]};
    const bool isFirst = index + 1 == SegmentCount();
    const bool isLast = index == 0;
    const char* const key = isFirst && !isLast   ? "$$$/uit/CompExpList/Above=above @0 dB"
                            : isLast && !isFirst ? "$$$/uit/CompExpList/Below=below @1 dB"
                                                 : "$$$/uit/CompExpList/Between=@0 to @1 dB";
    const krocore::string16 levels = krocore::ReplacePlaceholders(
        krocore::Localize(key), {LevelText(segment.lower.input), LevelText(segment.upper.input)});
    const auto colorOf = [this](int role) { return GetColor(IsEnabled() ? role : kroui::ui::kColorDisabledText); };
    const kroui::limner::TextPlacement placement{TextAlignment::kLeft, kroui::limner::TextTruncation::kEnd, false};
    context.DrawText(segment.KindText(), {}, colorOf(kroui::ui::kColorText),
                     {row.left + kTextInset, row.top, kKindWidth - kTextInset, row.height}, placement);
    const float left = RatioRect(index).Right() + kColumnGap;
    context.DrawText(levels, {}, colorOf(kroui::ui::kColorDimText),
                     {left, row.top, row.Right() - left - kPadding, row.height}, placement);
}

kroui::ui::AccessibleInfo UI_CompExpList::UI_GetAccessibleInfo() const {
    kroui::ui::AccessibleInfo info = UI_InteractiveControlView::UI_GetAccessibleInfo();
    info.role = kroui::ui::Role::kList;
    if (fSelected < 0) return info;
    const TransferSegment segment{fPoints[fSelected], fPoints[fSelected + 1]};
    info.value = segment.KindText() + u" " + segment.RatioText();
    return info;
}

} // namespace uit::controls
