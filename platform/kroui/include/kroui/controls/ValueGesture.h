#pragma once

#include "kroui/ui/Events.h"

#include <boost/function.hpp>

namespace kroui::controls {

// What a gesture changes: a number with bounds and steps, and somebody who is told of each step.
class ValueGestureTarget {
public:
    virtual double GestureValue() const = 0;
    // Sets the value that the user is choosing; within the bounds.
    virtual void SetGestureValue(double value) = 0;
    // 0 started, 1 changed, 2 ended, 3 abandoned (the value has been set back before).
    virtual void SendGesture(int changeMessage) = 0;

    virtual double GestureMinimum() const = 0;
    virtual double GestureMaximum() const = 0;
    virtual double GestureDefault() const = 0;
    // The step of an arrow key or a wheel notch, with Shift, and with Ctrl; above 0.
    virtual double GestureIncrement() const = 0;
    virtual double GestureShiftIncrement() const = 0;
    virtual double GestureCommandIncrement() const = 0;

    // Where a value stands between the bounds, 0...1, and back. Linear unless the target has another scale.
    virtual double GesturePosition(double value) const;
    virtual double GestureValueAt(double position) const;
    // The grid that chosen values are rounded to: the places that are shown. 0 for none.
    virtual double GestureResolution() const { return 0; }

    // Starts or stops a one-shot timer that calls ValueGesture::TimerFired; the seam to the node's timers.
    virtual void StartGestureTimer(float seconds) = 0;
    virtual void StopGestureTimer() = 0;

protected:
    ~ValueGestureTarget() = default;
};

// The one place where edits begin, proceed and end: drag, wheel, keys, typing, reset. Sends message 0 before the first
// change, 1 for every change of the value, and 2 or 3 at the end, never nested and never unpaired; a gesture that
// changes nothing sends nothing. The value is computed from where the gesture began, so what others write to the
// control meanwhile does not disturb it.
class ValueGesture {
public:
    // The target owns the gesture and lives longer.
    explicit ValueGesture(ValueGestureTarget& target) : fTarget(target) {}

    bool IsActive() const { return fKind != Kind::kNone; }
    bool IsDragging() const { return fKind == Kind::kDrag; }

    // A drag. Amounts are movements of the value's position: the target's owner turns pixels into a fraction of the
    // value's range (0...1, positive up). Shift makes ten steps of one, Ctrl a tenth; a modifier that goes down or up
    // in mid-drag changes the pace from there on, the value does not jump. `inSteps`: the value moves in whole
    // increments from where it began, for ranges of few steps.
    void BeginDrag(bool inSteps = false);
    void DragBy(double fractionOfRange, std::uint8_t modifiers);
    void DragTo(double value); // absolute, for clicks on a track
    void EndDrag();
    void Abandon(); // Escape or a lost capture in a drag: the old value, message 3

    // Wheel notches (fractions accumulate) and keys: steps that close as one gesture kRunSeconds after the last.
    void Wheel(double notches, std::uint8_t modifiers);
    // Arrow, Page, Home and End keys, Escape in a drag; false for others.
    bool Key(const ui::KeyEvent& event);
    void TimerFired();
    // Ends a run at once (focus lost, a drag begins, the control is disabled).
    void Flush();

    // A whole gesture with one change: typed values and resets.
    void SetOnce(double value);
    void Reset() { SetOnce(fTarget.GestureDefault()); }

    static constexpr float kRunSeconds = 0.5F;

private:
    enum class Kind : unsigned char { kNone, kDrag, kRun };

    void Begin(Kind kind);
    void Change(double value);
    void Step(double increments, double increment);
    void GoTo(double value);
    void Finish(int message);
    void ChangePace(std::uint8_t modifiers);
    double Increment(std::uint8_t modifiers) const;
    double DragValue() const;
    double Rounded(double value, double increment) const;

    ValueGestureTarget& fTarget;
    double fStart = 0;     // the value before the gesture
    double fLast = 0;      // the value that the gesture has set last
    double fRunning = 0;   // in a run: not yet rounded
    double fPosition = 0;  // in a drag: not yet rounded or held; may lie outside 0...1
    double fStepBase = 0;  // in a drag: where the present pace began
    double fWheelRest = 0; // part of a notch that has made no step yet
    Kind fKind = Kind::kNone;
    std::uint8_t fModifiers = ui::kNoModifier;
    bool fInSteps = false;
    bool fHasSent = false;
};

} // namespace kroui::controls
