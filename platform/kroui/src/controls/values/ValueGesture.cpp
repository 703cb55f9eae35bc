#include "kroui/controls/ValueGesture.h"

#include <algorithm>
#include <cmath>

namespace kroui::controls {

namespace {

constexpr int kStarted = 0;
constexpr int kChanged = 1;
constexpr int kEnded = 2;
constexpr int kAbandoned = 3;

constexpr double kCoarsePace = 10;
constexpr double kFinePace = 0.1;
constexpr double kPageSteps = 10;

double PaceOf(std::uint8_t modifiers) {
    if ((modifiers & ui::kCommand) != 0) return kFinePace;
    return (modifiers & ui::kShift) != 0 ? kCoarsePace : 1;
}

// The nearest multiple of `grid`. Grids like 0.1 are multiplied by their whole reciprocal, which keeps 3 * 0.1 at 0.3.
double RoundedToGrid(double value, double grid) {
    const double reciprocal = std::round(1 / grid);
    const bool isWholePart = std::abs(reciprocal * grid - 1) < 1e-9;
    return isWholePart ? std::round(value * reciprocal) / reciprocal : std::round(value / grid) * grid;
}

} // namespace

double ValueGestureTarget::GesturePosition(double value) const {
    const double range = GestureMaximum() - GestureMinimum();
    return range > 0 ? (value - GestureMinimum()) / range : 0;
}

double ValueGestureTarget::GestureValueAt(double position) const {
    return GestureMinimum() + position * (GestureMaximum() - GestureMinimum());
}

void ValueGesture::BeginDrag(bool inSteps) {
    Flush();
    if (IsActive()) return;
    Begin(Kind::kDrag);
    fInSteps = inSteps;
    fModifiers = ui::kNoModifier;
    fStepBase = fStart;
    fPosition = fTarget.GesturePosition(fStart);
}

void ValueGesture::DragBy(double fractionOfRange, std::uint8_t modifiers) {
    if (!IsDragging() || !std::isfinite(fractionOfRange)) return;
    ChangePace(modifiers & (ui::kShift | ui::kCommand));
    if (fractionOfRange == 0) return;
    fPosition += fractionOfRange * PaceOf(fModifiers);
    Change(DragValue());
}

void ValueGesture::DragTo(double value) {
    if (!IsDragging() || std::isnan(value)) return;
    fPosition = fTarget.GesturePosition(value);
    Change(DragValue());
}

void ValueGesture::EndDrag() {
    if (IsDragging()) Finish(kEnded);
}

void ValueGesture::Abandon() {
    if (!IsDragging()) return;
    if (fHasSent) fTarget.SetGestureValue(fStart);
    Finish(kAbandoned);
}

void ValueGesture::Wheel(double notches, std::uint8_t modifiers) {
    if (IsDragging() || !std::isfinite(notches)) return;
    if (notches * fWheelRest < 0) fWheelRest = 0;
    fWheelRest += notches;
    const double whole = std::trunc(fWheelRest);
    fWheelRest -= whole;
    if (whole != 0) {
        Step(whole, Increment(modifiers));
    } else {
        fTarget.StartGestureTimer(kRunSeconds);
    }
}

bool ValueGesture::Key(const ui::KeyEvent& event) {
    using ui::Key;
    if (event.Has(ui::kAlt)) return false;
    if (event.key == Key::kEscape) {
        const bool wasDragging = IsDragging();
        Abandon();
        return wasDragging;
    }
    switch (event.key) {
    case Key::kRight:
    case Key::kUp: Step(1, Increment(event.modifiers)); return true;
    case Key::kLeft:
    case Key::kDown: Step(-1, Increment(event.modifiers)); return true;
    case Key::kPageUp: Step(kPageSteps, fTarget.GestureIncrement()); return true;
    case Key::kPageDown: Step(-kPageSteps, fTarget.GestureIncrement()); return true;
    case Key::kHome: GoTo(fTarget.GestureMinimum()); return true;
    case Key::kEnd: GoTo(fTarget.GestureMaximum()); return true;
    default: return false;
    }
}

void ValueGesture::TimerFired() {
    fTarget.StopGestureTimer();
    Flush();
}

void ValueGesture::Flush() {
    fWheelRest = 0;
    if (fKind == Kind::kRun) Finish(kEnded);
}

void ValueGesture::SetOnce(double value) {
    if (std::isnan(value)) return;
    Flush();
    EndDrag();
    if (IsActive()) return;
    Begin(Kind::kRun);
    Change(value);
    Flush();
}

void ValueGesture::Begin(Kind kind) {
    fKind = kind;
    fHasSent = false;
    fStart = fLast = fRunning = fTarget.GestureValue();
}

// A listener may end the gesture from inside a message (by disabling the control); then nothing more is sent.
void ValueGesture::Change(double value) {
    const double held = std::clamp(value, fTarget.GestureMinimum(), fTarget.GestureMaximum());
    if (held == fLast) return;
    if (!fHasSent) {
        fHasSent = true;
        fTarget.SendGesture(kStarted);
        if (!IsActive()) return;
    }
    fLast = held;
    fTarget.SetGestureValue(held);
    fTarget.SendGesture(kChanged);
}

void ValueGesture::Step(double increments, double increment) {
    const double from = fKind == Kind::kRun && fHasSent ? fRunning : fTarget.GestureValue();
    const double to = from + increments * increment;
    if (IsDragging()) return;
    if (!IsActive()) Begin(Kind::kRun);
    fRunning = std::clamp(to, fTarget.GestureMinimum(), fTarget.GestureMaximum());
    // An end of the range is reached even where it does not lie on the grid.
    Change(fRunning == to ? Rounded(to, increment) : fRunning);
    fTarget.StartGestureTimer(kRunSeconds);
}

void ValueGesture::GoTo(double value) {
    if (IsDragging()) return;
    if (!IsActive()) Begin(Kind::kRun);
    fRunning = value;
    Change(value);
    fTarget.StartGestureTimer(kRunSeconds);
}

void ValueGesture::Finish(int message) {
    fKind = Kind::kNone;
    fTarget.StopGestureTimer();
    if (fHasSent) fTarget.SendGesture(message);
}

void ValueGesture::ChangePace(std::uint8_t modifiers) {
    if (modifiers == fModifiers) return;
    fModifiers = modifiers;
    fStepBase = fLast;
    fPosition = fTarget.GesturePosition(fLast);
}

double ValueGesture::Increment(std::uint8_t modifiers) const {
    if ((modifiers & ui::kCommand) != 0) return fTarget.GestureCommandIncrement();
    return (modifiers & ui::kShift) != 0 ? fTarget.GestureShiftIncrement() : fTarget.GestureIncrement();
}

double ValueGesture::DragValue() const {
    if (fPosition <= 0) return fTarget.GestureMinimum();
    if (fPosition >= 1) return fTarget.GestureMaximum();
    const double value = fTarget.GestureValueAt(fPosition);
    const double increment = Increment(fModifiers);
    if (!fInSteps) return Rounded(value, increment);
    return Rounded(fStepBase + std::round((value - fStepBase) / increment) * increment, increment);
}

double ValueGesture::Rounded(double value, double increment) const {
    const double resolution = fTarget.GestureResolution();
    return resolution > 0 ? RoundedToGrid(value, std::min(resolution, increment)) : value;
}

} // namespace kroui::controls
