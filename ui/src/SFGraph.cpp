#include "qocui/ui/SFGraph.h"

#include "GraphRulers.h"

#include "krocore/Localizer.h"
#include "krocore/WholeNumber.h"
#include "qoc/components/ParameterIndices.h"
#include "qocui/controls/StoredSwitch.h"
#include "uit/controls/AxisText.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

namespace qocui::ui {

using kroui::Point;
using kroui::Rect;
using kroui::limner::Color;
using kroui::limner::Limner;
using kroui::ui::MouseEvent;
using qoc::components::kSFLevelRange;
using qoc::components::kSFLogarithmicAxis;
using qoc::components::kSFMasterGain;
using qoc::components::kSFView;
using qoc::components::kSFViewEnd;
using qoc::components::kSFViewStart;

namespace {

constexpr double kLowestFrequency = 20; // hertz

constexpr Color kBlack{0, 0, 0, 1};
constexpr Color kGridColor{0.25F, 0.25F, 0.25F, 1};
constexpr Color kPhaseColor = Color::FromRGB(0x6FD08C);
constexpr Color kGroupDelayColor = Color::FromRGB(0xE58AD9);

constexpr float kLineWidth = 1.5F;
constexpr float kFillOpacity = 0.12F;
constexpr float kSamplesPerPixel = 2;
constexpr float kBeyond = 1000; // pixels outside the content: farther places look the same

constexpr double kHalfTurn = 180; // degrees
constexpr float kDefaultLevelRange = 96;
// Decibels above the pass band, at least, and in what steps the axis moves: of the usual ranges and of short ones.
constexpr double kUsualRange = 24;
constexpr double kHeadroom = 3;
constexpr double kShortHeadroom = 1;
constexpr double kLevelStep = 6;
constexpr double kShortLevelStep = 1;
constexpr double kShortestDelay = 0.01; // milliseconds, that the axis of delays reaches

constexpr kroui::limner::Font kReadoutFont{11, false};
constexpr float kReadoutWidth = 136;
constexpr float kReadoutHeight = 20;
constexpr float kReadoutMargin = 4;    // from the content's corner
constexpr float kReadoutDistance = 12; // from the pointer
constexpr float kReadoutRadius = 3;
constexpr float kReadoutOpacity = 0.85F;

// The next of 1, 2, 5, 10, 20 ... that is no less.
double RoundedUp(double value) {
    const double power = std::pow(10.0, std::floor(std::log10(value)));
    for (const double multiple : {1.0, 2.0, 5.0}) {
        if (value <= multiple * power) return multiple * power;
    }
    return 10 * power;
}

} // namespace

SFGraph::SFGraph(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter)
    : UI_RulerGridBase(MakeLogRuler(false, kLowestFrequency, filter->GetSampleRate() * 0.5),
                       MakeLinearRuler(true, -kDefaultLevelRange, 0)),
      fFilter(std::move(filter)), fColors{ContentColor(kroui::ui::kColorCurve), kPhaseColor, kGroupDelayColor} {
    SetBackgroundColor(kBlack);
    SetGridColor(kGridColor);
    SetRulersSupportZooming(true);
    SetHorizontalLabel1(krocore::Localize("$$$/ScientificFilter/SFGraph/Hz=Hz"));
    SetWantsKeyboardFocus(false);
    UpdateGraph();
}

SFGraph::~SFGraph() = default;

void SFGraph::UpdateGraph() {
    TakeView();
    UpdateResponse();
}

void SFGraph::SetCurveColor(View view, const Color& color) {
    Color& present = fColors[static_cast<std::size_t>(view)];
    if (present == color) return;
    present = color;
    if (view == fView) UI_InvalidateRect(GetContentRect());
}

void SFGraph::SetCurrentRange(double horizontalStart, double horizontalEnd, double verticalStart, double verticalEnd) {
    UI_RulerGridBase::SetCurrentRange(horizontalStart, horizontalEnd, verticalStart, verticalEnd);
    if (const double nyquist = Nyquist(); nyquist > 0 && std::isfinite(nyquist)) {
        // The lowest frequency stays the lowest at another sample rate.
        const double start = GetHorizontalStart() > kLowestFrequency ? GetHorizontalStart() : 0;
        fFilter->SetParameterValueQuietly(kSFViewStart, static_cast<float>(start / nyquist));
        fFilter->SetParameterValueQuietly(kSFViewEnd, static_cast<float>(GetHorizontalEnd() / nyquist));
    }
    UpdateResponse();
}

bool SFGraph::UI_DoMouseEvent(UI_Node* node, const MouseEvent& event) {
    const bool isHandled = UI_RulerGridBase::UI_DoMouseEvent(node, event);
    if (event.IsAction(MouseEvent::Action::kMoved) || event.IsAction(MouseEvent::Action::kWheel)) {
        const bool isInside = GetContentRect().Contains(event.position);
        SetPointer(isInside ? std::optional(event.position) : std::nullopt);
    }
    if (event.IsAction(MouseEvent::Action::kLeft)) SetPointer({});
    return isHandled;
}

void SFGraph::UI_SizeChanged(const kroui::RectT<float>& rect) {
    UI_RulerGridBase::UI_SizeChanged(rect);
    UpdateResponse();
}

kroui::ui::AccessibleInfo SFGraph::UI_GetAccessibleInfo() const {
    static constexpr const char* kNames[kViewCount] = {"$$$/ScientificFilter/Magnitude=Magnitude",
                                                       "$$$/ScientificFilter/Phase=Phase",
                                                       "$$$/ScientificFilter/GroupDelay=Group Delay"};
    kroui::ui::AccessibleInfo info = UI_RulerGridBase::UI_GetAccessibleInfo();
    info.role = kroui::ui::Role::kGraph;
    info.name = krocore::Localize("$$$/ScientificFilter/SFGraph/Name=Frequency Response");
    info.value = krocore::Localize(kNames[static_cast<std::size_t>(fView)]);
    return info;
}

int SFGraph::UI_GetAccessiblePartCount() const {
    return static_cast<int>(LabelledTicks().size());
}

kroui::ui::AccessiblePart SFGraph::UI_GetAccessiblePart(int part) const {
    constexpr float kReach = 4; // pixels
    const kroui::utility::RulerTick tick = LabelledTicks()[static_cast<std::size_t>(part)];
    const float response = ResponseAt(tick.pixel);
    const float y = VerticalRuler().GetPixel(response);
    const Readout readout = ReadoutAt({tick.pixel, y});
    const auto [bottom, top] = std::minmax({GetVerticalStart(), GetVerticalEnd()});
    kroui::ui::AccessiblePart told;
    if (GetContentRect().Contains({tick.pixel, y}))
        told.bounds = {tick.pixel - kReach, y - kReach, 2 * kReach, 2 * kReach};
    told.info.role = kroui::ui::Role::kGraphPoint;
    told.info.name = readout.frequency;
    told.info.value = readout.value;
    told.info.position = {.value = tick.value, .minimum = GetHorizontalStart(), .maximum = GetHorizontalEnd()};
    told.info.range = {.value = std::clamp<double>(response, bottom, top), .minimum = bottom, .maximum = top};
    return told;
}

void SFGraph::DrawContent(Limner& limner) {
    const Color& color = GetCurveColor(fView);
    if (fView != View::kPhase)
        limner.FillFunction(fPoints, GetContentRect().Bottom(), {color.WithAlpha(color.alpha * kFillOpacity)});
    // Each piece for itself: in one stroke, pieces that meet in a pixel column would join there.
    const auto isBreak = [](const Point& point) { return std::isnan(point.y); };
    for (auto piece = fPoints.begin(); piece != fPoints.end();) {
        const auto end = std::find_if(piece, fPoints.end(), isBreak);
        limner.StrokeFunction({piece, end}, {color, kLineWidth});
        piece = std::find_if_not(end, fPoints.end(), isBreak);
    }
}

void SFGraph::DrawOverContent(Limner& limner) {
    if (!fPointer || fResponse.empty()) return;
    const Rect rect = ReadoutRect();
    limner.FillRoundRect(rect, kReadoutRadius, ContentColor(kroui::ui::kColorRaised).WithAlpha(kReadoutOpacity));
    limner.FrameRoundRect(rect, kReadoutRadius, ContentColor(kroui::ui::kColorLine), 1);
    limner.DrawText(ReadoutText(), kReadoutFont, ContentColor(kroui::ui::kColorText), rect,
                    {kroui::limner::TextAlignment::kCentre});
}

void SFGraph::TakeView() {
    constexpr int kLastView = kViewCount - 1;
    fView = static_cast<View>(krocore::TruncatedWithin(std::round(Parameter(kSFView) * kLastView), 0, kLastView));
    SetVerticalLabel1(Unit());
    const bool isLogarithmic = controls::IsSwitchOn(Parameter(kSFLogarithmicAxis));
    const double nyquist = Nyquist();
    if (isLogarithmic != fIsLogarithmic || nyquist != fNyquist) UpdateRulers(isLogarithmic);
    // As the filter understands its view parameters, whoever has set them.
    const double start = std::max(Parameter(kSFViewStart) * nyquist, kLowestFrequency);
    const double end = std::min(Parameter(kSFViewEnd) * nyquist, nyquist);
    const bool isUsable = start < end;
    UI_RulerGridBase::SetCurrentRange(isUsable ? start : kLowestFrequency, isUsable ? end : nyquist, GetVerticalStart(),
                                      GetVerticalEnd());
}

void SFGraph::UpdateRulers(bool isLogarithmic) {
    fIsLogarithmic = isLogarithmic;
    fNyquist = Nyquist();
    SetRulers(isLogarithmic ? MakeLogRuler(false, kLowestFrequency, fNyquist)
                            : MakeLinearRuler(false, kLowestFrequency, fNyquist),
              RulerPtr(&VerticalRuler()));
    SetRanges(kLowestFrequency, fNyquist, GetBound(2), GetBound(3));
    SetDrawHorizontalMinorTicks(isLogarithmic); // evenly spaced ones tell nothing
}

void SFGraph::UpdateResponse() {
    const auto count = static_cast<std::size_t>(std::ceil(GetContentRect().width * kSamplesPerPixel));
    std::vector<float> response;
    if (count != 0 && fFilter->GetResponseCurve(static_cast<int>(fView), count, response))
        fResponse = std::move(response);
    UpdateLevels();
    UpdatePoints();
    UI_InvalidateRect(GetContentRect());
}

void SFGraph::UpdateLevels() {
    const Levels levels = WantedLevels();
    if (levels == fLevels) return;
    SetRanges(kLowestFrequency, fNyquist, levels.top, levels.bottom);
    // A part of another view's axis is no part of this one's.
    if (levels.view != fLevels.view)
        UI_RulerGridBase::SetCurrentRange(GetHorizontalStart(), GetHorizontalEnd(), levels.top, levels.bottom);
    fLevels = levels;
}

SFGraph::Levels SFGraph::WantedLevels() const {
    switch (fView) {
    case View::kPhase: return {fView, kHalfTurn, -kHalfTurn};
    case View::kGroupDelay: {
        const auto longest = std::ranges::max_element(fResponse);
        const double delay = longest != fResponse.end() && std::isfinite(*longest) ? *longest : 0;
        return {fView, RoundedUp(std::max(delay, kShortestDelay)), 0};
    }
    case View::kMagnitude: break;
    }
    const double range = Natural(kSFLevelRange, kDefaultLevelRange);
    const bool isUsual = range >= kUsualRange;
    const double step = isUsual ? kLevelStep : kShortLevelStep;
    const double top = std::ceil((LevelInSight(range) + (isUsual ? kHeadroom : kShortHeadroom)) / step) * step;
    return {fView, top, top - range};
}

// What the axis reaches up to: 0 dB and the pass band, if the loudest that is shown is not much below it.
double SFGraph::LevelInSight(double range) const {
    constexpr double kLowestPeak = 0.25; // of the range, from the top
    const double passBand = std::max(Natural(kSFMasterGain, 0), 0.0F);
    const auto loudest = std::ranges::max_element(fResponse);
    if (loudest == fResponse.end() || !std::isfinite(*loudest)) return passBand;
    return std::clamp<double>(passBand, *loudest, *loudest + kLowestPeak * range);
}

void SFGraph::UpdatePoints() {
    const Rect content = GetContentRect();
    fPoints.clear();
    if (fResponse.size() < 2 || content.IsEmpty()) return;
    const float step = content.width / static_cast<float>(fResponse.size() - 1);
    float previous = fResponse.front();
    for (std::size_t i = 0; i < fResponse.size(); ++i) {
        const float x = content.left + static_cast<float>(i) * step;
        const float value = fResponse[i];
        // From one end of the turn to the other there is no way to be drawn.
        const bool isWrap = fView == View::kPhase && std::abs(value - previous) > kHalfTurn;
        if (isWrap) fPoints.push_back({x, std::numeric_limits<float>::quiet_NaN()});
        const float y = VerticalRuler().GetPixel(value);
        fPoints.push_back({x, std::clamp(y, content.top - kBeyond, content.Bottom() + kBeyond)});
        previous = value;
    }
}

void SFGraph::SetPointer(std::optional<Point> pointer) {
    if (pointer == fPointer) return;
    UI_InvalidateRect(ReadoutRect());
    fPointer = pointer;
    UI_InvalidateRect(ReadoutRect());
}

// In a corner at the top: the right one, unless that would cover what is read out.
Rect SFGraph::ReadoutRect() const {
    const Rect content = GetContentRect();
    Rect rect{content.Right() - kReadoutWidth - kReadoutMargin, content.top + kReadoutMargin, kReadoutWidth,
              kReadoutHeight};
    if (fPointer && fPointer->x > rect.left - kReadoutDistance) rect.left = content.left + kReadoutMargin;
    return rect;
}

krocore::string16 SFGraph::ReadoutText() const {
    const Readout readout = ReadoutAt(*fPointer);
    return krocore::ReplacePlaceholders(krocore::Localize("$$$/ScientificFilter/SFGraph/Readout=@0, @1"),
                                        {readout.frequency, readout.value});
}

float SFGraph::ResponseAt(float x) const {
    const Rect content = GetContentRect();
    const std::size_t last = fResponse.size() - 1;
    const double place = (x - content.left) / content.width;
    return fResponse[krocore::TruncatedWithin<std::size_t>(std::round(place * static_cast<double>(last)), 0, last)];
}

SFGraph::Readout SFGraph::ReadoutAt(Point pixel) const {
    const CoordinatePair here = GetCoordinatePairForPixel(pixel);
    const CoordinatePair next = GetCoordinatePairForPixel({pixel.x + 1, pixel.y + 1});
    uit::controls::AxisText frequency;
    uit::controls::AxisText value;
    frequency.unit = GetHorizontalLabel1();
    value.unit = Unit();
    return {frequency.Write(here.horizontal, next.horizontal - here.horizontal),
            value.Write(ResponseAt(pixel.x), next.vertical - here.vertical)};
}

std::vector<kroui::utility::RulerTick> SFGraph::LabelledTicks() const {
    const auto* const supplier = UI_GetDrawSupplier();
    std::vector<kroui::utility::RulerTick> labelled;
    if (!supplier || fResponse.empty() || GetContentRect().IsEmpty()) return labelled;
    std::ranges::copy_if(HorizontalRuler().GetTicks(supplier), std::back_inserter(labelled),
                         [](const auto& tick) { return !tick.text.empty(); });
    return labelled;
}

krocore::string16 SFGraph::Unit() const {
    switch (fView) {
    case View::kPhase: return krocore::Localize("$$$/ScientificFilter/SFGraph/deg=#{deg}");
    case View::kGroupDelay: return krocore::Localize("$$$/ScientificFilter/SFGraph/ms=ms");
    case View::kMagnitude: break;
    }
    return krocore::Localize("$$$/ScientificFilter/SFGraph/dB=dB");
}

float SFGraph::Natural(int index, float otherwise) const {
    const auto* const info = fFilter->GetParameterInfo(index);
    return info ? info->ToNatural(Parameter(index)) : otherwise;
}

} // namespace qocui::ui
