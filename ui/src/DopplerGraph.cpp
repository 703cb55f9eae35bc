#include "qocui/ui/DopplerGraph.h"

#include "krocore/Localizer.h"
#include "krocore/NumberFormat.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace qocui::ui {

using kroui::Point;
using kroui::Rect;
using kroui::limner::Color;
using kroui::limner::Limner;

namespace {

constexpr float kPi = 3.14159F;
constexpr float kRadiansPerDegree = kPi / 180.0F;
constexpr float kPixelCentre = 0.5F;
constexpr float kLineWidth = 1.0F;
constexpr Color kPathColor{0.3F, 0.6F, 1.0F, 1.0F};

constexpr float kMargin = 5;         // pixels that the path keeps free along the edges
constexpr float kSmallestExtent = 2; // shorter paths stay small instead of filling the view
constexpr float kExtentShare = 2.1F; // both halves of the view and a little air

constexpr float kSlowestDotted = 1;  // metres a second; slower paths have no dots
constexpr float kShortestDotted = 5; // pixels between two dots
constexpr float kDotRadius = 2;
constexpr float kArrowLength = 7;
constexpr float kArrowBar = 6; // where the bar crosses the two strokes
constexpr float kArrowHalfAngle = 45;

constexpr double kAlmostFullTurn = 6.1261; // radians; a circle never meets its own start
constexpr float kFewestSegments = 10;      // of an arc of one second
constexpr float kMostSegments = 1000;

constexpr float kManyLines = 2000; // from here on a path is not drawn at every repaint

Point operator+(Point a, Point b) {
    return {a.x + b.x, a.y + b.y};
}

float Distance(Point a, Point b) {
    return std::hypot(b.x - a.x, b.y - a.y);
}

// `length` into a direction: 0 points up, angles (radians) grow clockwise.
Point Towards(float angle, float length) {
    return {std::sin(angle) * length, -std::cos(angle) * length};
}

enum Place : int { kCentre, kStart, kEnd, kPlaceCount };

// In metres to the right and ahead.
krocore::string16 PlaceText(Point place) {
    const auto text = [](float metres, const char* key) {
        return krocore::ReplacePlaceholders(krocore::Localize(key), {krocore::FormatNumber(std::abs(metres), 1)});
    };
    const bool isBehind = place.y < 0;
    const bool isLeft = place.x < 0;
    return krocore::ReplacePlaceholders(
        krocore::Localize("$$$/DopplerGraph/Place=@0, @1"),
        {text(place.y, isBehind ? "$$$/DopplerGraph/Behind=@0 m behind" : "$$$/DopplerGraph/Ahead=@0 m ahead"),
         text(place.x,
              isLeft ? "$$$/DopplerGraph/Left=@0 m to the left" : "$$$/DopplerGraph/Right=@0 m to the right")});
}

int SegmentsFor(float velocity) {
    const float wanted = velocity * 0.5F;
    return static_cast<int>(wanted > kFewestSegments ? std::min(wanted, kMostSegments) : kFewestSegments);
}

} // namespace

// What one drawing is made with: the scale, the centre of the path, and the path's lines, which are collected because
// the dots are filled while the path is under way.
class DopplerGraph::Picture {
public:
    Picture(Limner& context, const Rect& bounds, float pixelsPerMetre, Point centre)
        : fContext(context), fBounds(bounds), fPixelsPerMetre(pixelsPerMetre), fCentre(centre) {}

    float PixelsPerMetre() const { return fPixelsPerMetre; }
    Point FromCentre(float angle, float metres) const { return fCentre + Towards(angle, metres * fPixelsPerMetre); }

    void MoveTo(Point p) { fPath.push_back({p, true}); }
    void LineTo(Point p) { fPath.push_back({p, false}); }
    void Dot(Point p);
    // `angle` in degrees: where the source has come from.
    void ArrowHead(Point tip, float angle);
    bool IsInside(Point p) const;
    void Stroke();

private:
    struct Step {
        Point to;
        bool isMove;
    };

    Limner& fContext;
    Rect fBounds;
    float fPixelsPerMetre;
    Point fCentre;
    std::vector<Step> fPath;
};

void DopplerGraph::Picture::Dot(Point p) {
    fContext.NewPath();
    fContext.Arc(p.x + kPixelCentre, p.y + kPixelCentre, kDotRadius, 0, 360);
    fContext.Fill({kPathColor});
}

void DopplerGraph::Picture::ArrowHead(Point tip, float angle) {
    const float right = (angle + kArrowHalfAngle) * kRadiansPerDegree;
    const float left = (angle - kArrowHalfAngle) * kRadiansPerDegree;
    MoveTo(tip);
    LineTo(tip + Towards(right, kArrowLength));
    MoveTo(tip + Towards(right, kArrowBar));
    LineTo(tip + Towards(left, kArrowBar));
    MoveTo(tip);
    LineTo(tip + Towards(left, kArrowLength));
}

bool DopplerGraph::Picture::IsInside(Point p) const {
    return !(p.x < fBounds.left + kMargin || p.x > fBounds.Right() - kMargin || p.y < fBounds.top + kMargin ||
             p.y > fBounds.Bottom() - kMargin);
}

void DopplerGraph::Picture::Stroke() {
    fContext.NewPath();
    for (const Step& step : fPath)
        if (step.isMove)
            fContext.MoveTo(step.to.x + kPixelCentre, step.to.y + kPixelCentre);
        else
            fContext.LineTo(step.to.x + kPixelCentre, step.to.y + kPixelCentre);
    fContext.Stroke({kPathColor, kLineWidth});
}

DopplerGraph::DopplerGraph(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter) : fFilter(std::move(filter)) {
}

DopplerGraph::~DopplerGraph() = default;

void DopplerGraph::SetStartingDistance(float distance) {
    fStartingDistance = distance;
    Changed();
}

void DopplerGraph::SetVelocity(float velocity) {
    fVelocity = velocity;
    Changed();
}

void DopplerGraph::SetDirection(float degrees) {
    fDirection = degrees;
    Changed();
}

void DopplerGraph::SetPassesFront(float distance) {
    fPassesFront = distance;
    Changed();
}

void DopplerGraph::SetPassesRight(float distance) {
    fPassesRight = distance;
    Changed();
}

void DopplerGraph::SetCircular(bool circular) {
    fCircular = circular;
    Changed();
}

void DopplerGraph::Changed() {
    fLongPath.Invalidate();
    UI_Invalidate();
}

void DopplerGraph::FollowDuration() {
    const float seconds = Seconds();
    if (seconds == fSeenSeconds) return;
    fSeenSeconds = seconds;
    Changed();
}

void DopplerGraph::UI_SizeChanged(const kroui::RectT<float>& rect) {
    UI_SubView::UI_SizeChanged(rect);
}

void DopplerGraph::UI_Draw(Limner* context) {
    const Rect bounds = UI_GetLocalRect();
    context->Save();
    context->SetSmoothing(1);
    context->ClipRect(bounds);
    context->FillRect(bounds, GetColor(kroui::ui::kColorPathBackground));
    DrawListener(*context);

    const float seconds = PathSeconds();
    if (seconds > 0 && IsLong(seconds)) {
        if (seconds != std::exchange(fLongSeconds, seconds)) fLongPath.Invalidate();
        fLongPath.Draw(*context, bounds, UI_GetDrawSupplier(), GetTheme(),
                       [&](Limner& picture) { DrawPath(picture, seconds); });
    } else if (seconds > 0) {
        DrawPath(*context, seconds);
    }
    context->Restore();
}

bool DopplerGraph::IsLong(float seconds) const {
    const float linesPerSecond = fCircular ? static_cast<float>(SegmentsFor(fVelocity)) : 1;
    return seconds * linesPerSecond > kManyLines;
}

void DopplerGraph::DrawPath(Limner& context, float seconds) const {
    const Rect bounds = UI_GetLocalRect();
    const float scale = PixelsPerMetre();
    const Point centre{bounds.left + bounds.width / 2 + fPassesRight * scale,
                       bounds.top + bounds.height / 2 - fPassesFront * scale};
    Picture picture(context, bounds, scale, centre);
    if (fCircular)
        DrawCircularPath(picture, seconds);
    else
        DrawStraightPath(picture, seconds);
    picture.Stroke();
}

kroui::ui::AccessibleInfo DopplerGraph::UI_GetAccessibleInfo() const {
    kroui::ui::AccessibleInfo info = UI_SubView::UI_GetAccessibleInfo();
    info.role = kroui::ui::Role::kGraph;
    info.name = UI_GetTooltip();
    return info;
}

int DopplerGraph::UI_GetAccessiblePartCount() const {
    return PathSeconds() > 0 ? kPlaceCount : kEnd;
}

kroui::ui::AccessiblePart DopplerGraph::UI_GetAccessiblePart(int part) const {
    static constexpr const char* kNames[kPlaceCount] = {"$$$/DopplerGraph/Centre=Centre of the path",
                                                        "$$$/DopplerGraph/Start=Start", "$$$/DopplerGraph/End=End"};
    constexpr float kReach = 4; // pixels
    const float seconds = part == kEnd ? PathSeconds() : 0;
    const Point place = part == kCentre ? Point{fPassesRight, fPassesFront} : SourceAfter(seconds);
    const Rect bounds = UI_GetLocalRect();
    const Point pixel = bounds.Centre() + Point{place.x * PixelsPerMetre(), -place.y * PixelsPerMetre()};
    kroui::ui::AccessiblePart told;
    if (bounds.Contains(pixel)) told.bounds = {pixel.x - kReach, pixel.y - kReach, 2 * kReach, 2 * kReach};
    told.info.role = kroui::ui::Role::kGraphPoint;
    told.info.name = krocore::Localize(kNames[part]);
    told.info.value = PlaceText(place);
    return told;
}

Point DopplerGraph::SourceAfter(float seconds) const {
    const float way = fVelocity * seconds;
    const float angle =
        fDirection * kRadiansPerDegree + (fCircular && fStartingDistance != 0 ? way / fStartingDistance : 0);
    const Point fromCentre = Towards(angle, fCircular ? fStartingDistance : fStartingDistance - way);
    return {fPassesRight + fromCentre.x, fPassesFront - fromCentre.y};
}

float DopplerGraph::PixelsPerMetre() const {
    const Rect bounds = UI_GetLocalRect();
    const float room = std::min(bounds.width, bounds.height) - 2 * kMargin;
    return room / Extent() / kExtentShare;
}

float DopplerGraph::PathSeconds() const {
    return fCircular && fStartingDistance == 0 ? 0 : Seconds();
}

void DopplerGraph::DrawListener(Limner& context) const {
    const Rect bounds = UI_GetLocalRect();
    const Point centre = bounds.Centre();
    context.NewPath();
    context.MoveTo(centre.x + kPixelCentre, bounds.top + kPixelCentre);
    context.LineTo(centre.x + kPixelCentre, bounds.Bottom() + kPixelCentre);
    context.MoveTo(bounds.left + kPixelCentre, centre.y + kPixelCentre);
    context.LineTo(bounds.Right() + kPixelCentre, centre.y + kPixelCentre);
    context.Stroke({GetColor(kroui::ui::kColorGridLine), kLineWidth});
}

void DopplerGraph::DrawStraightPath(Picture& picture, float seconds) const {
    const float direction = fDirection * kRadiansPerDegree;
    const float length = fVelocity * picture.PixelsPerMetre();
    const Point step = Towards(direction, -length);
    Point at = picture.FromCentre(direction, fStartingDistance);
    const bool hasDots = fVelocity >= kSlowestDotted && Distance({}, step) >= kShortestDotted;
    if (hasDots) picture.Dot(at);
    for (double second = 1; true; ++second) {
        picture.MoveTo(at);
        at = at + step;
        picture.LineTo(at);
        if (!picture.IsInside(at + step) || second >= seconds) break;
        if (hasDots) picture.Dot(at);
    }
    picture.ArrowHead(at, fDirection);
}

void DopplerGraph::DrawCircularPath(Picture& picture, float seconds) const {
    const auto pointAt = [&](float angle) { return picture.FromCentre(angle, fStartingDistance); };
    const float step = fVelocity / fStartingDistance;
    const int segments = SegmentsFor(fVelocity);
    float angle = fDirection * kRadiansPerDegree;
    float swept = 0;
    const bool hasDots =
        fVelocity >= kSlowestDotted && Distance(pointAt(angle), pointAt(angle + step)) >= kShortestDotted;
    if (hasDots) picture.Dot(pointAt(angle));
    for (double second = 1; true; ++second) {
        picture.MoveTo(pointAt(angle));
        for (int j = 0; j <= segments; ++j)
            picture.LineTo(pointAt(angle + static_cast<float>(j) * step / static_cast<float>(segments)));
        angle += step;
        swept += step;
        if (static_cast<double>(swept) + step > kAlmostFullTurn || second >= seconds) break;
        if (hasDots) picture.Dot(pointAt(angle));
    }
    picture.ArrowHead(pointAt(angle), angle * 180.0F / kPi - 90.0F);
}

float DopplerGraph::Extent() const {
    float extent = std::max(std::abs(fPassesFront), std::abs(fPassesRight)) + fStartingDistance;
    if (fCircular)
        extent = std::max({std::abs(fPassesRight - fStartingDistance), std::abs(fStartingDistance + fPassesRight),
                           std::abs(fPassesFront + fStartingDistance), std::abs(fPassesFront - fStartingDistance)});
    return std::max(extent, kSmallestExtent);
}

float DopplerGraph::Seconds() const {
    if (!fFilter || !(fFilter->GetSampleRate() > 0)) return 0;
    return static_cast<float>(fFilter->GetDuration() / static_cast<double>(fFilter->GetSampleRate()));
}

} // namespace qocui::ui
