#include "uit/controls/UI_RulerGridBase.h"

#include <algorithm>
#include <cmath>

namespace uit::controls {

using kroui::Point;
using kroui::limner::Color;
using kroui::limner::Limner;
using kroui::ui::MouseEvent;
using kroui::utility::RulerBase;

namespace {

constexpr double kZoomPerNotch = 1.25;
constexpr double kSmallestPart = 1.0 / 1000; // of an axis, that zooming shows

bool IsUsable(double first, double last) {
    return std::isfinite(first) && std::isfinite(last) && first != last;
}

double Held(double value, double a, double b) {
    return std::clamp(value, std::min(a, b), std::max(a, b));
}

} // namespace

UI_RulerGridBase::UI_RulerGridBase(RulerPtr horizontal, RulerPtr vertical)
    : fHorizontal(std::move(horizontal)), fVertical(std::move(vertical)) {
    const double low = std::min(fVertical->GetFirstValue(), fVertical->GetLastValue());
    const double high = std::max(fVertical->GetFirstValue(), fVertical->GetLastValue());
    SetRanges(fHorizontal->GetFirstValue(), fHorizontal->GetLastValue(), high, low);
    AxesChanged();
}

UI_RulerGridBase::~UI_RulerGridBase() = default;

void UI_RulerGridBase::SetRulers(RulerPtr horizontal, RulerPtr vertical) {
    if (!horizontal || !vertical) return;
    fHorizontal = std::move(horizontal);
    fVertical = std::move(vertical);
    AxesChanged();
}

void UI_RulerGridBase::SetRanges(double horizontalStart, double horizontalEnd, double verticalStart,
                                 double verticalEnd) {
    SetBounds(kHorizontalAxis, {horizontalStart, horizontalEnd});
    SetBounds(kVerticalAxis, {verticalStart, verticalEnd});
    AxesChanged();
}

void UI_RulerGridBase::SetBounds(Axis axis, Range range) {
    if (!IsUsable(range.first, range.last)) return;
    const Range before = Bounds(axis);
    const Range shown = Shown(axis);
    const bool showedAll = shown.first == before.first && shown.last == before.last;
    fBounds[2 * axis] = range.first;
    fBounds[2 * axis + 1] = range.last;
    if (showedAll || !SetShown(axis, shown)) SetShown(axis, range);
}

void UI_RulerGridBase::SetCurrentRange(double horizontalStart, double horizontalEnd, double verticalStart,
                                       double verticalEnd) {
    const double before[4] = {fCurrent[0], fCurrent[1], fCurrent[2], fCurrent[3]};
    SetShown(kHorizontalAxis, {horizontalStart, horizontalEnd});
    SetShown(kVerticalAxis, {verticalStart, verticalEnd});
    if (!std::equal(std::begin(before), std::end(before), std::begin(fCurrent))) AxesChanged();
}

// False, and nothing set, if no part of the axis would be shown.
bool UI_RulerGridBase::SetShown(Axis axis, Range range) {
    if (!IsUsable(range.first, range.last)) return false;
    const Range bounds = Bounds(axis);
    if ((range.Length() < 0) != (bounds.Length() < 0)) std::swap(range.first, range.last);
    const double first = Held(range.first, bounds.first, bounds.last);
    const double last = Held(range.last, bounds.first, bounds.last);
    if (first == last) return false;
    fCurrent[2 * axis] = first;
    fCurrent[2 * axis + 1] = last;
    return true;
}

void UI_RulerGridBase::SetBackgroundColor(const Color& color) {
    if (color == fBackground) return;
    fBackground = color;
    InvalidateGrid();
}

void UI_RulerGridBase::SetRulerBackgroundColor(const Color& color) {
    if (fRulerBackground == color) return;
    fRulerBackground = color;
    InvalidateGrid();
}

void UI_RulerGridBase::SetGridColor(const Color& color) {
    if (color == fGridColor) return;
    fGridColor = color;
    InvalidateGrid();
}

void UI_RulerGridBase::SetHorizontalLabel1(std::u16string_view text) {
    if (text == fHorizontalLabel) return;
    fHorizontalLabel = text;
    UpdateContent();
}

void UI_RulerGridBase::SetVerticalLabel1(std::u16string_view text) {
    if (text == fVerticalLabel) return;
    fVerticalLabel = text;
    UpdateContent();
}

void UI_RulerGridBase::SetDrawHorizontalMinorTicks(bool draw) {
    if (draw == fDrawHorizontalMinorTicks) return;
    fDrawHorizontalMinorTicks = draw;
    InvalidateGrid();
}

void UI_RulerGridBase::SetDrawVerticalMinorTicks(bool draw) {
    if (draw == fDrawVerticalMinorTicks) return;
    fDrawVerticalMinorTicks = draw;
    InvalidateGrid();
}

Point UI_RulerGridBase::GetPixelForCoordinatePair(const CoordinatePair& pair) const {
    return {fHorizontal->GetPixel(pair.horizontal), fVertical->GetPixel(pair.vertical)};
}

UI_RulerGridBase::CoordinatePair UI_RulerGridBase::GetCoordinatePairForPixel(Point pixel) const {
    return {fHorizontal->GetValue(pixel.x), fVertical->GetValue(pixel.y)};
}

bool UI_RulerGridBase::UI_DoMouseEvent(UI_Node* node, const MouseEvent& event) {
    const bool isHandled = UI_InteractiveControlView::UI_DoMouseEvent(node, event);
    if (event.IsAction(MouseEvent::Action::kCaptureLost)) return CancelPan() || isHandled;
    if (node || !IsEnabled()) return isHandled;
    switch (event.action) {
    case MouseEvent::Action::kPressed: return PressRuler(event) || isHandled;
    case MouseEvent::Action::kDragged:
        if (fPan.axis == kNoAxis) return isHandled;
        DragRuler(event.position);
        return true;
    case MouseEvent::Action::kReleased: return std::exchange(fPan, {}).axis != kNoAxis || isHandled;
    case MouseEvent::Action::kWheel: return Wheel(event) || isHandled;
    default: return isHandled;
    }
}

kroui::ui::Cursor UI_RulerGridBase::UI_GetCursor(Point point) const {
    if (!fRulersSupportZooming || !IsEnabled()) return kroui::ui::Cursor::kArrow;
    switch (RulerAt(point)) {
    case kHorizontalAxis: return kroui::ui::Cursor::kHorizontal;
    case kVerticalAxis: return kroui::ui::Cursor::kVertical;
    case kNoAxis: break;
    }
    return kroui::ui::Cursor::kArrow;
}

void UI_RulerGridBase::UI_SizeChanged(const kroui::RectT<float>& rect) {
    UI_InteractiveControlView::UI_SizeChanged(rect);
    UpdateContent();
}

void UI_RulerGridBase::UI_NodeChanged(NodeChange change) {
    UI_InteractiveControlView::UI_NodeChanged(change);
    if (change == kAttached || change == kThemeChanged) InvalidateGrid();
}

void UI_RulerGridBase::DrawContent(Limner& /*limner*/) {
}

void UI_RulerGridBase::DrawOverContent(Limner& /*limner*/) {
}

void UI_RulerGridBase::InvalidateGrid() {
    fCache.Invalidate();
    UI_Invalidate();
}

bool UI_RulerGridBase::CancelPan() {
    const Pan pan = std::exchange(fPan, {});
    if (pan.axis == kNoAxis) return false;
    Show(pan.axis, pan.shown);
    return true;
}

void UI_RulerGridBase::Show(Axis axis, Range range) {
    const Range other = Shown(axis == kHorizontalAxis ? kVerticalAxis : kHorizontalAxis);
    if (axis == kHorizontalAxis) {
        SetCurrentRange(range.first, range.last, other.first, other.last);
    } else {
        SetCurrentRange(other.first, other.last, range.first, range.last);
    }
}

// The range between two places of the ruler as it stands, moved within the bounds, in the ruler's own measure.
UI_RulerGridBase::Range UI_RulerGridBase::HeldOnRuler(Axis axis, Range fractions) const {
    const RulerBase& ruler = Ruler(axis);
    const Range bounds = Bounds(axis);
    const Range whole{ruler.GetFraction(bounds.first), ruler.GetFraction(bounds.last)};
    const double length = fractions.Length();
    if (length >= whole.Length()) return bounds;
    const double first = std::clamp(fractions.first, whole.first, whole.last - length);
    const bool isAtStart = first <= whole.first;
    const bool isAtEnd = first >= whole.last - length;
    return {isAtStart ? bounds.first : ruler.GetValueAt(first),
            isAtEnd ? bounds.last : ruler.GetValueAt(first + length)};
}

double UI_RulerGridBase::FractionAt(Axis axis, Point point) const {
    if (axis == kHorizontalAxis) return (point.x - fContent.left) / fContent.width;
    return (point.y - fContent.top) / fContent.height;
}

void UI_RulerGridBase::AxesChanged() {
    ++fAxesVersion;
    fHorizontal->SetVertical(false);
    fHorizontal->SetValueRange(fCurrent[0], fCurrent[1]);
    fHorizontal->SetPixelRange(fContent.left, fContent.Right());
    fVertical->SetVertical(true);
    fVertical->SetValueRange(fCurrent[2], fCurrent[3]);
    fVertical->SetPixelRange(fContent.top, fContent.Bottom());
    InvalidateGrid();
}

bool UI_RulerGridBase::Wheel(const MouseEvent& event) {
    if (!fRulersSupportZooming || event.wheelY == 0 || !std::isfinite(event.wheelY)) return false;
    const Axis axis = RulerAt(event.position);
    const bool isOverContent = fContent.Contains(event.position) && event.Has(kroui::ui::kCommand);
    if (axis == kNoAxis && !isOverContent) return false;
    const double factor = std::pow(kZoomPerNotch, -event.wheelY);
    const auto zoomed = [&](Axis which) {
        return axis == kNoAxis || axis == which ? Zoomed(which, factor, event.position) : Shown(which);
    };
    const Range horizontal = zoomed(kHorizontalAxis);
    const Range vertical = zoomed(kVerticalAxis);
    SetCurrentRange(horizontal.first, horizontal.last, vertical.first, vertical.last);
    return true;
}

UI_RulerGridBase::Range UI_RulerGridBase::Zoomed(Axis axis, double factor, Point about) const {
    const RulerBase& ruler = Ruler(axis);
    if (ruler.IsDegenerate() || fContent.IsEmpty()) return Shown(axis);
    const Range bounds = Bounds(axis);
    const double whole = ruler.GetFraction(bounds.last) - ruler.GetFraction(bounds.first);
    const double length = std::max(factor, kSmallestPart * whole);
    if (factor < 1 && length >= 1) return Shown(axis);
    const double centre = std::clamp(FractionAt(axis, about), 0.0, 1.0);
    const double first = centre - centre * length;
    return HeldOnRuler(axis, {first, first + length});
}

bool UI_RulerGridBase::PressRuler(const MouseEvent& event) {
    const Axis axis = RulerAt(event.position);
    if (!fRulersSupportZooming || axis == kNoAxis || event.button != 1) return false;
    if (event.clickCount == 2) {
        Show(axis, Bounds(axis));
        return true;
    }
    fPan = {axis, event.position, Shown(axis)};
    return true;
}

// Counted from where the drag began, so that nothing is lost at the bounds.
void UI_RulerGridBase::DragRuler(Point point) {
    const RulerBase& ruler = Ruler(fPan.axis);
    if (ruler.IsDegenerate() || fContent.IsEmpty()) return;
    const double moved = FractionAt(fPan.axis, point) - FractionAt(fPan.axis, fPan.press);
    const double first = ruler.GetFraction(fPan.shown.first);
    const double last = ruler.GetFraction(fPan.shown.last);
    Show(fPan.axis, HeldOnRuler(fPan.axis, {first - moved * (last - first), last - moved * (last - first)}));
}

} // namespace uit::controls
