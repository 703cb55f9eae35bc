#include "kroui/controls/ValueControl.h"

#include "kroui/ui/UI_NodeManager.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace kroui::controls {

namespace {

constexpr int kMostDecimalPlaces = 15;
constexpr double kLogarithmicRest = 1e-4; // stands for 0 on a logarithmic scale, as a part of the upper bound

constexpr std::array<double, kMostDecimalPlaces + 1> kPowersOfTen = {1,   1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                                     1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

long GestureTimerID() {
    static const long sTimerID = ui::UI_NodeManager::Get().GetUniqueTimerID();
    return sTimerID;
}

double LogarithmicFloor(double minimum, double maximum) {
    return minimum > 0 ? minimum : maximum * kLogarithmicRest;
}

} // namespace

void ValueControl::SetValue(double value) {
    if (value == fValue || std::isnan(value)) return;
    const double held = Held(value);
    if (held == fValue) return;
    const double old = fValue;
    fValue = held;
    ValueChanged(old);
}

void ValueControl::SetMinValue(double value) {
    if (!std::isfinite(value) || value == fMinValue) return;
    fMinValue = value;
    SetValue(Held(fValue));
    ValueLookChanged();
}

void ValueControl::SetMaxValue(double value) {
    if (!std::isfinite(value) || value == fMaxValue) return;
    fMaxValue = value;
    SetValue(Held(fValue));
    ValueLookChanged();
}

void ValueControl::SetMinMaxValue(double minValue, double maxValue, double defaultValue) {
    SetMinValue(minValue);
    SetMaxValue(maxValue);
    SetDefaultValue(defaultValue);
}

void ValueControl::SetIncrement(double increment) {
    if (std::isfinite(increment)) fIncrement = increment;
}

void ValueControl::SetShiftIncrement(double increment) {
    if (std::isfinite(increment)) fShiftIncrement = increment;
}

void ValueControl::SetCommandIncrement(double increment) {
    if (std::isfinite(increment)) fCommandIncrement = increment;
}

void ValueControl::SetDefaultValue(double value) {
    if (!std::isnan(value)) fDefaultValue = value;
}

double ValueControl::GetDefaultValue() const {
    return Held(fDefaultValue);
}

void ValueControl::SetDecimalPlaces(int places) {
    const int held = std::clamp(places, 0, kMostDecimalPlaces);
    if (held == fDecimalPlaces) return;
    fDecimalPlaces = held;
    ValueLookChanged();
}

void ValueControl::SetMaxDigits(int digits) {
    if (digits == fMaxDigits) return;
    fMaxDigits = digits;
    ValueLookChanged();
}

void ValueControl::SetFormatFlags(std::uint32_t flags) {
    if (flags == fFormatFlags) return;
    fFormatFlags = flags;
    ValueLookChanged();
}

void ValueControl::SetScale(int scale) {
    if (scale == fScale) return;
    fScale = scale;
    ValueLookChanged();
}

ui::AccessibleRange ValueControl::GetAccessibleRange() const {
    return {fValue, GestureMinimum(), GestureMaximum(), GestureIncrement()};
}

void ValueControl::AddAccessibleRange(ui::AccessibleInfo& info) const {
    using Action = ui::AccessibleAction;
    info.range = GetAccessibleRange();
    if (!info.enabled) return;
    info.actions.Add(ui::AccessibleActions(Action::kIncrease, Action::kDecrease, Action::kReset, Action::kSetValue,
                                           Action::kSetText));
}

bool ValueControl::HandleAccessible(const ui::AccessibleRequest& request) {
    // What the user is dragging or typing elsewhere goes first.
    if (fGesture.IsDragging()) return false;
    switch (request.action) {
    case ui::AccessibleAction::kIncrease: return fGesture.Key({.key = ui::Key::kUp});
    case ui::AccessibleAction::kDecrease: return fGesture.Key({.key = ui::Key::kDown});
    case ui::AccessibleAction::kReset: fGesture.Reset(); return true;
    case ui::AccessibleAction::kSetValue:
        if (std::isnan(request.value)) return false;
        fGesture.SetOnce(request.value);
        return true;
    case ui::AccessibleAction::kSetText: {
        const std::optional<double> value = ReadTyped(request.text);
        if (value) fGesture.SetOnce(*value);
        return value.has_value();
    }
    default: return false;
    }
}

krocore::string16 ValueControl::FormatOf(double value) const {
    return krocore::FormatNumber(value, PlacesFor(value), fFormatFlags);
}

int ValueControl::PlacesFor(double value) const {
    int places = fDecimalPlaces;
    if (fMaxDigits <= 0 || !std::isfinite(value)) return places;
    // With the places that are left the number may round up to one more digit.
    const auto isTooLong = [&] {
        const double limit = std::pow(10.0, fMaxDigits - places);
        return std::abs(value) >= limit - 0.5 / kPowersOfTen[static_cast<std::size_t>(places)];
    };
    while (places > 0 && isTooLong())
        --places;
    return places;
}

bool ValueControl::HandleWheel(const ui::MouseEvent& event) {
    fGesture.Wheel(event.wheelY != 0 ? event.wheelY : event.wheelX, event.modifiers);
    return true;
}

bool ValueControl::HandleTimer(long timerID) {
    if (timerID != GestureTimerID()) return false;
    fGesture.TimerFired();
    return true;
}

void ValueControl::SettleGesture() {
    fGesture.EndDrag();
    fGesture.Flush();
}

double ValueControl::ScalePosition(double value, int scale) const {
    const double minimum = GestureMinimum();
    const double maximum = GestureMaximum();
    if (!(maximum > minimum)) return 0;
    if (scale != kLogarithmic || maximum <= 0) return (value - minimum) / (maximum - minimum);
    const double floor = LogarithmicFloor(minimum, maximum);
    return value <= floor ? 0 : std::log(value / floor) / std::log(maximum / floor);
}

double ValueControl::ScaleValueAt(double position, int scale) const {
    const double minimum = GestureMinimum();
    const double maximum = GestureMaximum();
    if (scale != kLogarithmic || maximum <= 0) return minimum + position * (maximum - minimum);
    if (position <= 0) return minimum;
    const double floor = LogarithmicFloor(minimum, maximum);
    return floor * std::pow(maximum / floor, std::min(position, 1.0));
}

double ValueControl::GestureIncrement() const {
    if (fIncrement > 0) return fIncrement;
    constexpr double kStepsInRange = 100;
    const double smallest = GestureResolution();
    const double range = GestureMaximum() - GestureMinimum();
    if (!(range > smallest * kStepsInRange)) return smallest;
    return std::max(smallest, std::pow(10.0, std::floor(std::log10(range / kStepsInRange))));
}

double ValueControl::GestureShiftIncrement() const {
    constexpr double kShiftSteps = 10;
    return fShiftIncrement > 0 ? fShiftIncrement : GestureIncrement() * kShiftSteps;
}

double ValueControl::GestureCommandIncrement() const {
    constexpr double kCommandPart = 0.1;
    if (fCommandIncrement > 0) return fCommandIncrement;
    const double increment = GestureIncrement();
    return std::max(increment * kCommandPart, std::min(increment, GestureResolution()));
}

double ValueControl::GestureResolution() const {
    return 1 / kPowersOfTen[static_cast<std::size_t>(fDecimalPlaces)];
}

void ValueControl::StartGestureTimer(float seconds) {
    fTimerRuns = true;
    ValueNode().UI_InstallTimer(seconds, GestureTimerID());
}

void ValueControl::StopGestureTimer() {
    if (!fTimerRuns) return;
    fTimerRuns = false;
    ValueNode().UI_RemoveTimer(GestureTimerID(), false);
}

double ValueControl::Held(double value) const {
    return std::clamp(value, GestureMinimum(), GestureMaximum());
}

} // namespace kroui::controls
