#include "uit/controls/UI_CurveEditor.h"

#include "controls/curves/CurveGesture.h"
#include "controls/curves/CurveMove.h"
#include "controls/curves/CurvePress.h"
#include "controls/curves/CurveReadout.h"
#include "controls/curves/PointEditDialog.h"
#include "controls/curves/ResponseCurve.h"
#include "uit/controls/CurveLine.h"

#include "krocore/Localizer.h"

#include <algorithm>
#include <cmath>

namespace uit::controls {

using kroui::Point;
using kroui::Rect;

namespace {

constexpr float kHandleReach = 9; // how far what belongs to a point reaches out of the content

} // namespace

UI_CurveEditor::UI_CurveEditor(RulerPtr horizontal, RulerPtr vertical)
    : UI_RulerGridBase(std::move(horizontal), std::move(vertical)), fReadout(std::make_unique<CurveReadout>(*this)) {
    const auto send = [this](CurveGesture::ChangeMessage message) {
        SendInteractive(message);
        if (message == CurveGesture::ChangeMessage::kEnded) SendChanged();
    };
    fGesture = std::make_unique<CurveGesture>(
        fPoints, [this] { PointsChanged(); }, send);
    SetWantsKeyboardFocus(true);
}

UI_CurveEditor::~UI_CurveEditor() = default;

void UI_CurveEditor::SetCurvePoints(const CurvePoints& points) {
    CurvePoints usable = Usable(points);
    if (usable == fPoints.All()) return;
    std::vector<Point> before;
    for (const int index : fPoints.Selection())
        before.push_back(PixelOf(index));
    fPoints.SetPoints(std::move(usable));
    // What an owner rounds is no new place.
    constexpr float kSamePlace = 0.5F;
    const auto& selection = fPoints.Selection();
    bool isMoved = before.size() != selection.size();
    for (std::size_t i = 0; !isMoved && i < selection.size(); ++i) {
        const Point pixel = PixelOf(selection[i]);
        isMoved = std::abs(pixel.x - before[i].x) > kSamePlace || std::abs(pixel.y - before[i].y) > kSamePlace;
    }
    if (isMoved) RememberBases();
    PointsChanged();
}

void UI_CurveEditor::SetSelectedNode(int index) {
    if (index == fPoints.LastSelected() && fPoints.Selection().size() <= 1) return;
    fPoints.Select(index);
    RememberBases();
    InvalidateContent();
}

void UI_CurveEditor::SelectAll() {
    fPoints.SelectAllVisible();
    RememberBases();
    InvalidateContent();
}

void UI_CurveEditor::SetVisiblePoints(const Flags& visible) {
    SetFlags(CurvePointSet::kVisible, visible);
}

void UI_CurveEditor::SetMoveablePoints(const Flags& moveable, bool horizontally) {
    SetFlags(horizontally ? CurvePointSet::kHorizontal : CurvePointSet::kVertical, moveable);
}

void UI_CurveEditor::SetDeletablePoints(const Flags& deletable) {
    SetFlags(CurvePointSet::kDeletable, deletable);
}

void UI_CurveEditor::SetFlags(CurvePointSet::Permission permission, const Flags& flags) {
    if (!fPoints.SetFlags(permission, flags)) return;
    UI_AccessibleInfoChanged();
    if (permission == CurvePointSet::kVisible) PointsChanged();
}

void UI_CurveEditor::SetMaxPointCount(std::size_t count) {
    fMaxPointCount = count;
    if (fPoints.Count() > count) SetCurvePoints(fPoints.All());
}

void UI_CurveEditor::SetDrawLinearReference(bool draw) {
    if (std::exchange(fDrawLinearReference, draw) != draw) InvalidateContent();
}

void UI_CurveEditor::SetPointLabels(const std::vector<krocore::string16>& labels) {
    if (labels == fPointLabels) return;
    fPointLabels = labels;
    InvalidateContent();
}

void UI_CurveEditor::SetDrawPointLabelsAtBottom(bool atBottom) {
    if (std::exchange(fLabelsAtBottom, atBottom) != atBottom) InvalidateContent();
}

void UI_CurveEditor::SetResponseData(const std::vector<double>& values, int curve) {
    if (curve < 0 || curve >= kResponseCount) return;
    if (fResponses.empty()) fResponses.resize(kResponseCount);
    if (fResponses[static_cast<std::size_t>(curve)].SetValues(values)) UI_InvalidateRect(GetContentRect());
}

void UI_CurveEditor::SetResponseTranslator(const Translator& responseToAxis) {
    fResponseToAxis = responseToAxis;
    for (ResponseCurve& response : fResponses)
        response.Invalidate();
    UI_InvalidateRect(GetContentRect());
}

void UI_CurveEditor::SetDrawCurve(bool draw) {
    if (std::exchange(fDrawCurve, draw) != draw) InvalidateContent();
}

void UI_CurveEditor::SetUseSplines(bool splines) {
    if (std::exchange(fUseSplines, splines) != splines) PointsChanged();
}

void UI_CurveEditor::SetHorizontalEditDialogTranslators(const Translator& typedToAxis, const Translator& axisToTyped) {
    fHorizontalText.typedToAxis = typedToAxis;
    fHorizontalText.axisToTyped = axisToTyped;
}

void UI_CurveEditor::SetVerticalEditDialogTranslators(const Translator& typedToAxis, const Translator& axisToTyped) {
    fVerticalText.typedToAxis = typedToAxis;
    fVerticalText.axisToTyped = axisToTyped;
}

bool UI_CurveEditor::AddNewPoint() {
    FlushRun();
    const CoordinatePair place = MiddleOfWidestGap();
    if (!CanAddAt(place)) return false;
    InsertPoint(place);
    return true;
}

bool UI_CurveEditor::DeleteSelectedPoints() {
    FlushRun();
    if (!fDeleteEnabled || !fPoints.EraseSelected()) return false;
    PointsChanged();
    return true;
}

bool UI_CurveEditor::Invert() {
    FlushRun();
    CurvePoints points = fPoints.All();
    for (CurvePoint& point : points)
        point.coordinates = HeldWithinBounds({point.coordinates.vertical, point.coordinates.horizontal});
    if (fUniquePositions)
        std::stable_sort(points.begin(), points.end(), [](const CurvePoint& a, const CurvePoint& b) {
            return a.coordinates.horizontal < b.coordinates.horizontal;
        });
    if (points == fPoints.All()) return false;
    fPoints.SetPoints(std::move(points));
    RememberBases();
    PointsChanged();
    return true;
}

void UI_CurveEditor::NotifyChanged() {
    const kroui::ui::MessageScope scope;
    FlushRun();
    fGesture->Announce();
}

kroui::limner::Color UI_CurveEditor::GetCurveColor() const {
    return Dimmed(GetColor(kroui::ui::kColorCurve));
}

float UI_CurveEditor::GetContentLineThickness() const {
    return 1.5F;
}

const std::vector<Point>& UI_CurveEditor::GetCurveLine() const {
    if (fCurveLineIsValid && fCurveLineAxes == GetAxesVersion()) return fCurveLine;
    std::vector<Point> pixels;
    for (int index = fPoints.NextVisible(-1, true); index >= 0; index = fPoints.NextVisible(index, true))
        pixels.push_back(GetPixelForCoordinatePair(HeldWithinBounds(fPoints.At(index).coordinates)));
    const Rect content = GetContentRect();
    const auto& ruler = HorizontalRuler();
    const float axisLength = std::abs(ruler.GetPixel(GetBound(1)) - ruler.GetPixel(GetBound(0)));
    fCurveLine = fUseSplines ? CurveLine::Spline(pixels, content.left, content.Right(), 1, axisLength)
                             : CurveLine::Straight(pixels, content.left, content.Right());
    fCurveLineAxes = GetAxesVersion();
    fCurveLineIsValid = true;
    return fCurveLine;
}

// Enabled or focused changed; being under the pointer alone changes nothing here.
void UI_CurveEditor::ControlStateChanged() {
    if (!IsEnabled()) {
        FlushRun();
        if (fDialog) fDialog->Close();
        fHovered = -1;
    }
    const bool isEnabled = IsEnabled();
    const bool showsFocus = ShowsFocus();
    if (std::exchange(fWasEnabled, isEnabled) == isEnabled && std::exchange(fShowedFocus, showsFocus) == showsFocus)
        return;
    fShowedFocus = showsFocus;
    UpdateReadout();
    UI_Invalidate();
}

bool UI_CurveEditor::IsInSight(int index) const {
    constexpr float kSlack = 0.5F;
    if (!fPoints.May(CurvePointSet::kVisible, index) || GetContentRect().IsEmpty()) return false;
    return GetContentRect().Inset(-kSlack, -kSlack).Contains(PixelOf(index));
}

UI_CurveEditor::CoordinatePair UI_CurveEditor::HeldWithinBounds(const CoordinatePair& place) const {
    const auto held = [this](double value, int bound) {
        const auto [low, high] = std::minmax({GetBound(bound), GetBound(bound + 1)});
        return std::clamp(value, low, high);
    };
    return {held(place.horizontal, 0), held(place.vertical, 2)};
}

UI_CurveEditor::CurvePoints UI_CurveEditor::Usable(const CurvePoints& points) const {
    CurvePoints usable;
    usable.reserve(std::min(points.size(), fMaxPointCount));
    for (const CurvePoint& point : points) {
        const auto& [horizontal, vertical] = point.coordinates;
        if (usable.size() < fMaxPointCount && std::isfinite(horizontal) && std::isfinite(vertical))
            usable.push_back(point);
    }
    return usable;
}

CurveMove UI_CurveEditor::Mover(bool withinShown) const {
    const double distance = fUniquePositions ? CurveMove::LeastDistance(GetBound(0), GetBound(1)) : -1;
    const kroui::Size size{GetContentRect().width, GetContentRect().height};
    CurveMove::Axes axes{HorizontalRuler(), VerticalRuler(), size, {}, {}, distance};
    axes.shownHorizontal = {GetBound(0), GetBound(1)};
    axes.shownVertical = {GetBound(2), GetBound(3)};
    if (withinShown) {
        axes.shownHorizontal = {GetHorizontalStart(), GetHorizontalEnd()};
        axes.shownVertical = {GetVerticalStart(), GetVerticalEnd()};
    }
    return CurveMove(axes);
}

bool UI_CurveEditor::CanAddAt(const CoordinatePair& place) const {
    if (!fAddEnabled || fPoints.Count() >= fMaxPointCount) return false;
    if (!std::isfinite(place.horizontal) || !std::isfinite(place.vertical)) return false;
    if (!fUniquePositions) return true;
    constexpr float kOccupied = 0.5F; // pixels
    const double distance = CurveMove::LeastDistance(GetBound(0), GetBound(1));
    const float pixel = GetPixelForCoordinatePair(place).x;
    const auto& points = fPoints.All();
    return std::none_of(points.begin(), points.end(), [&](const CurvePoint& point) {
        return std::abs(point.coordinates.horizontal - place.horizontal) < distance ||
               std::abs(GetPixelForCoordinatePair(point.coordinates).x - pixel) < kOccupied;
    });
}

// On a curve of unique positions at its place in the order, otherwise behind the others.
int UI_CurveEditor::IndexFor(const CoordinatePair& place) const {
    return fUniquePositions ? fPoints.IndexFor(place.horizontal) : static_cast<int>(fPoints.Count());
}

int UI_CurveEditor::InsertPoint(const CoordinatePair& place) {
    const int index = IndexFor(place);
    fPoints.Insert(index, {fPoints.NewIdentifier(), place});
    PointsChanged();
    return index;
}

UI_CurveEditor::CoordinatePair UI_CurveEditor::MiddleOfWidestGap() const {
    const auto& ruler = HorizontalRuler();
    std::vector<double> places = {ruler.GetFraction(GetHorizontalStart()), ruler.GetFraction(GetHorizontalEnd())};
    for (const CurvePoint& point : fPoints.All()) {
        const double place = ruler.GetFraction(point.coordinates.horizontal);
        if (place > places[0] && place < places[1]) places.push_back(place);
    }
    std::sort(places.begin(), places.end());
    std::size_t widest = 1;
    for (std::size_t i = 2; i < places.size(); ++i)
        if (places[i] - places[i - 1] > places[widest] - places[widest - 1]) widest = i;
    const double horizontal = ruler.GetValueAt((places[widest - 1] + places[widest]) / 2);
    return {horizontal, HeightOnCurve(horizontal)};
}

// Without points, the middle of what is shown.
double UI_CurveEditor::HeightOnCurve(double horizontal) const {
    const double middle = VerticalRuler().GetValueAt(0.5);
    if (fPoints.NextVisible(-1, true) < 0) return middle;
    const float pixel = CurveLine::HeightAt(GetCurveLine(), HorizontalRuler().GetPixel(horizontal));
    const double height = VerticalRuler().GetValue(pixel);
    const auto [low, high] = std::minmax({GetVerticalStart(), GetVerticalEnd()});
    return std::isfinite(height) ? std::clamp(height, low, high) : middle;
}

AxisText UI_CurveEditor::HorizontalText() const {
    AxisText text = fHorizontalText;
    if (text.label.empty()) text.label = krocore::Localize("$$$/uit/CurveEditor/Horizontal=X:");
    if (text.unit.empty()) text.unit = GetHorizontalLabel1();
    return text;
}

AxisText UI_CurveEditor::VerticalText() const {
    AxisText text = fVerticalText;
    if (text.label.empty()) text.label = krocore::Localize("$$$/uit/CurveEditor/Vertical=Y:");
    if (text.unit.empty()) text.unit = GetVerticalLabel1();
    return text;
}

krocore::string16 UI_CurveEditor::PositionText(const CoordinatePair& place) const {
    const CoordinatePair pixel = PixelLength(place);
    return HorizontalText().Write(place.horizontal, pixel.horizontal) + u", " +
           VerticalText().Write(place.vertical, pixel.vertical);
}

// How far the next pixels' values are.
UI_CurveEditor::CoordinatePair UI_CurveEditor::PixelLength(const CoordinatePair& place) const {
    const Point pixel = GetPixelForCoordinatePair(place);
    const CoordinatePair next = GetCoordinatePairForPixel({pixel.x + 1, pixel.y - 1});
    return {next.horizontal - place.horizontal, next.vertical - place.vertical};
}

void UI_CurveEditor::PointsChanged() {
    fCurveLineIsValid = false;
    if (fPointerIsInside || fGesture->IsActive()) {
        fHovered = fPointerIsInside ? PointAt(fPointer) : -1;
        UpdateReadout();
    }
    InvalidateContent();
}

void UI_CurveEditor::InvalidateContent() {
    if (!GetContentRect().IsEmpty()) UI_InvalidateRect(GetContentRect().Inset(-kHandleReach, -kHandleReach));
}

} // namespace uit::controls
