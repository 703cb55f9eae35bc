#include "workbench/views/WaveformView.h"

#include "krocore/Localizer.h"
#include "kroui/ui/PixelGrid.h"
#include "kroui/ui/UI_Window.h"
#include "workbench/commands/TextOfSound.h"
#include "workbench/views/EdgeLines.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace workbench {

using kroui::ui::Key;
using kroui::ui::MouseEvent;

namespace {

constexpr float kSideMargin = 24;
constexpr float kTopMargin = 8;
constexpr float kRulerHeight = 20;
constexpr float kPlayheadWidth = 2;
constexpr float kFocusWidth = 2;
constexpr kroui::limner::Font kRulerFont{10};
constexpr float kLeastLabelDistance = 80;
constexpr double kKeyStep = 1;      // seconds
constexpr float kDragThreshold = 3; // view units that a click may tremble
constexpr float kSelectionOpacity = 0.2F;
constexpr float kUnknownOpacity = 0.5F;

// The shortest time between labels that leaves them room.
double LabelStep(double seconds, float width) {
    static constexpr std::array<double, 15> kSteps = {0.1, 0.2, 0.5, 1,   2,   5,    10,  20,
                                                      30,  60,  120, 300, 600, 1800, 3600};
    const double least = seconds * kLeastLabelDistance / std::max(1.0F, width);
    const auto step = std::find_if(kSteps.begin(), kSteps.end(), [least](double s) { return s >= least; });
    return step != kSteps.end() ? *step : least;
}

// With as many decimals as it needs.
krocore::string16 LabelText(double seconds) {
    krocore::string16 text = TimeText(seconds);
    text.resize(text.find_last_not_of(u'0') + 1);
    if (text.ends_with(u'.')) text.pop_back();
    return text;
}

} // namespace

WaveformView::WaveformView(Actions actions) : fActions(std::move(actions)) {
    UI_SetID("waveform");
    UI_SetStateFlags(kStateWantsKeyboardFocus);
}

void WaveformView::SetSound(const qohost::SoundSource& sound, std::shared_ptr<const WaveformPeaks> peaks) {
    fPeaks = std::move(peaks);
    fKnownSeconds = 0;
    fSampleRate = sound.SampleRate();
    fSeconds = sound.Seconds();
    fPosition = 0;
    fSelection = {};
    UI_Invalidate();
}

double WaveformView::KnownSeconds() const {
    return fPeaks->IsComplete() ? fSeconds : static_cast<double>(fPeaks->KnownFrames()) / fSampleRate;
}

void WaveformView::FollowPeaks() {
    const double known = KnownSeconds();
    if (known == fKnownSeconds) return;
    const kroui::Rect wave = WaveRect();
    const float begin = PlaceOf(std::exchange(fKnownSeconds, known)) - 1;
    UI_InvalidateRect({begin, 0, PlaceOf(known) + 1 - begin, wave.Bottom()});
}

void WaveformView::SetSelection(const TimeRange& range) {
    fSelection = range;
    UI_Invalidate();
}

void WaveformView::SetPosition(double seconds) {
    fPosition = seconds;
    const float place = PlaceOf(seconds);
    if (std::abs(place - fDrawnAt) * (UI_GetWindow() ? UI_GetWindow()->ScaleFactor() : 1) < 1) return;
    // What lies between changes its colour.
    const kroui::Rect from = PlayheadRect(fDrawnAt);
    UI_InvalidateRect(kroui::Union(from, PlayheadRect(place)));
    fDrawnAt = place;
}

kroui::Rect WaveformView::WaveRect() const {
    const kroui::Rect rect = UI_GetLocalRect();
    return {kSideMargin, kTopMargin, std::max(1.0F, rect.width - 2 * kSideMargin),
            std::max(1.0F, rect.height - kTopMargin - kRulerHeight)};
}

float WaveformView::PlaceOf(double seconds) const {
    const kroui::Rect wave = WaveRect();
    if (fSeconds <= 0) return wave.left;
    return wave.left + wave.width * static_cast<float>(std::clamp(seconds / fSeconds, 0.0, 1.0));
}

double WaveformView::TimeAt(float x) const {
    const kroui::Rect wave = WaveRect();
    return fSeconds * std::clamp(static_cast<double>(x - wave.left) / wave.width, 0.0, 1.0);
}

kroui::Rect WaveformView::PlayheadRect(float x) const {
    return {x - kPlayheadWidth, 0, 2 * kPlayheadWidth, UI_GetFrame().height - kRulerHeight};
}

void WaveformView::UI_Draw(kroui::limner::Limner* limner) {
    const kroui::Rect rect = UI_GetLocalRect();
    limner->FillRect(rect, GetColor(kroui::ui::kColorPanel));
    DrawTopLine(*this, *limner);
    DrawUnknown(*limner);
    DrawSelection(*limner);
    DrawWave(*limner);
    DrawRuler(*limner);
    fDrawnAt = PlaceOf(fPosition);
    const kroui::Rect playhead = {fDrawnAt - 1, kTopMargin / 2, kPlayheadWidth,
                                  rect.height - kRulerHeight - kTopMargin / 2};
    limner->FillRect(kroui::ui::PixelGrid(*this, *limner).Snap(playhead), GetColor(kroui::ui::kColorText));
    if (UI_HasFocus()) limner->FrameRoundRect(rect, 0, GetColor(kroui::ui::kColorAccent), kFocusWidth);
}

void WaveformView::DrawSelection(kroui::limner::Limner& limner) const {
    if (fSelection.IsEmpty()) return;
    const kroui::Rect wave = WaveRect();
    const float left = PlaceOf(fSelection.begin);
    const kroui::Rect rect = {left, wave.top, PlaceOf(fSelection.end) - left, wave.height};
    limner.FillRect(kroui::ui::PixelGrid(*this, limner).Snap(rect),
                    GetColor(kroui::ui::kColorAccent).WithAlpha(kSelectionOpacity));
}

// What will be heard: the selection, or else what was heard already stands out.
bool WaveformView::IsLit(float x) const {
    if (fSelection.IsEmpty()) return x < PlaceOf(fPosition);
    return x >= PlaceOf(fSelection.begin) && x < PlaceOf(fSelection.end);
}

void WaveformView::DrawWave(kroui::limner::Limner& limner) const {
    const kroui::Rect wave = kroui::ui::PixelGrid(*this, limner).Snap(WaveRect());
    const kroui::Rect visible = kroui::Intersection(wave, limner.ClipBounds());
    const float pixel = 1 / limner.ScaleFactor();
    const float middle = wave.Centre().y;
    const double framesAUnit = fSeconds * fSampleRate / wave.width;
    const auto accent = GetColor(kroui::ui::kColorAccent);
    const auto quiet = GetColor(kroui::ui::kColorDimText);
    const auto first = static_cast<int>(std::floor((visible.left - wave.left) / pixel));
    const float end = std::min(visible.Right(), PlaceOf(KnownSeconds()));
    const auto behind = static_cast<int>(std::ceil((end - wave.left) / pixel));
    for (int column = first; column < behind; ++column) {
        const float x = wave.left + static_cast<float>(column) * pixel;
        const double begin = (x - wave.left) * framesAUnit;
        const WaveformPeaks::Range range = fPeaks->Between(begin, begin + pixel * framesAUnit);
        const float top = middle - std::min(1.0F, range.high) * wave.height / 2;
        const float bottom = middle - std::max(-1.0F, range.low) * wave.height / 2;
        limner.FillRect({x, top, pixel, std::max(pixel, bottom - top)}, IsLit(x) ? accent : quiet);
    }
}

// Not the line that silence is.
void WaveformView::DrawUnknown(kroui::limner::Limner& limner) const {
    const double known = KnownSeconds();
    if (known >= fSeconds) return;
    const kroui::Rect wave = WaveRect();
    const float left = PlaceOf(known);
    const kroui::Rect rect = {left, wave.top, wave.Right() - left, wave.height};
    limner.FillRect(kroui::ui::PixelGrid(*this, limner).Snap(rect),
                    GetColor(kroui::ui::kColorTrack).WithAlpha(kUnknownOpacity));
}

void WaveformView::DrawRuler(kroui::limner::Limner& limner) const {
    constexpr float kTickLength = 4;
    constexpr float kLabelWidth = 76;
    if (fSeconds <= 0) return;
    const kroui::Rect wave = WaveRect();
    const double step = LabelStep(fSeconds, wave.width);
    for (int i = 0; i * step <= fSeconds; ++i) {
        const float x = PlaceOf(i * step);
        limner.FillRect(kroui::ui::PixelGrid(*this, limner).Snap({x, wave.Bottom(), 1, kTickLength}),
                        GetColor(kroui::ui::kColorRulerTick));
        const kroui::Rect label = {x + kTickLength, wave.Bottom(), kLabelWidth, kRulerHeight};
        // A label at the very end would be cut off.
        if (label.left + kLabelWidth / 2 > UI_GetFrame().width) continue;
        limner.DrawText(LabelText(i * step), kRulerFont, GetColor(kroui::ui::kColorDimText), label, {});
    }
}

bool WaveformView::UI_DoMouseEvent(kroui::ui::UI_Node* node, const MouseEvent& event) {
    switch (event.action) {
    case MouseEvent::Action::kPressed: return event.button == 1 && Press(event);
    case MouseEvent::Action::kDragged: return DragTo(event.position.x);
    case MouseEvent::Action::kReleased: return Release();
    default: return UI_Node::UI_DoMouseEvent(node, event);
    }
}

bool WaveformView::Press(const MouseEvent& event) {
    fPressedAt = event.position.x;
    fIsSelecting = event.Has(kroui::ui::kShift);
    const double time = TimeAt(event.position.x);
    if (!fIsSelecting) {
        fAnchor = time;
        return true;
    }
    // The nearer end follows.
    if (fSelection.IsEmpty())
        fAnchor = fPosition;
    else
        fAnchor = time < (fSelection.begin + fSelection.end) / 2 ? fSelection.end : fSelection.begin;
    return SelectTo(time);
}

bool WaveformView::DragTo(float x) {
    fIsSelecting = fIsSelecting || std::abs(x - fPressedAt) > kDragThreshold;
    return !fIsSelecting || SelectTo(TimeAt(x));
}

bool WaveformView::Release() {
    if (fIsSelecting) return SeekTo(fSelection.IsEmpty() ? fAnchor : fSelection.begin);
    SelectTo(fAnchor); // nothing
    return SeekTo(fAnchor);
}

bool WaveformView::SelectTo(double seconds) {
    SetSelection({std::min(fAnchor, seconds), std::max(fAnchor, seconds)});
    fActions.select(fSelection);
    return true;
}

bool WaveformView::SelectByKey(double step) {
    if (fSelection.IsEmpty()) fAnchor = fPosition;
    const double moving = fSelection.IsEmpty()          ? fAnchor
                          : fAnchor == fSelection.begin ? fSelection.end
                                                        : fSelection.begin;
    return SelectTo(std::clamp(moving + step, 0.0, fSeconds));
}

bool WaveformView::UI_DoKeyEvent(const kroui::ui::KeyEvent& event) {
    if (event.modifiers == kroui::ui::kShift && event.key == Key::kLeft) return SelectByKey(-kKeyStep);
    if (event.modifiers == kroui::ui::kShift && event.key == Key::kRight) return SelectByKey(kKeyStep);
    if (event.modifiers != kroui::ui::kNoModifier) return false;
    switch (event.key) {
    case Key::kLeft: return SeekTo(fPosition - kKeyStep);
    case Key::kRight: return SeekTo(fPosition + kKeyStep);
    case Key::kHome: return SeekTo(0);
    case Key::kEnd: return SeekTo(fSeconds);
    default: return false;
    }
}

bool WaveformView::SeekTo(double seconds) {
    fActions.seek(std::clamp(seconds, 0.0, fSeconds));
    return true;
}

void WaveformView::UI_FocusChanged(bool hasFocus) {
    UI_Node::UI_FocusChanged(hasFocus);
    UI_Invalidate();
}

kroui::ui::AccessibleInfo WaveformView::UI_GetAccessibleInfo() const {
    kroui::ui::AccessibleInfo info = UI_Node::UI_GetAccessibleInfo();
    info.role = kroui::ui::Role::kSlider;
    info.name = krocore::Localize("$$$/Workbench/Position=Position");
    info.value = TimeText(fPosition);
    if (!fSelection.IsEmpty()) info.value += u", " + RangeText(fSelection.begin, fSelection.end);
    info.focusable = true;
    return info;
}

} // namespace workbench
