#pragma once

#include "krocore/NumberFormat.h"
#include "kroui/controls/ValueGesture.h"
#include "kroui/ui/UI_Node.h"

#include <optional>

namespace kroui::controls {

// What every control of a number has in common: the value with its bounds, default, increments, scale and way of being
// written, and the gesture that changes it. A class derives from this next to its node class and hands events over.
// User-interface thread. Setters called from code send no messages.
class ValueControl : public ValueGestureTarget {
public:
    ValueControl(const ValueControl&) = delete;
    ValueControl& operator=(const ValueControl&) = delete;

    // How the range lies along a drag or a track.
    enum Scale : int { kLinear = 0, kLogarithmic = 1 };

    // The exact value, always within the bounds. Setting it holds it there; NaN leaves it as it is.
    void SetValue(double value);
    double GetValue() const { return fValue; }

    // Bounds, 0 and 100 at first; the value is held within new ones at once. NaN and infinity are refused. Bounds in
    // the wrong order count as exchanged.
    void SetMinValue(double value);
    void SetMaxValue(double value);
    double GetMinValue() const { return fMinValue; }
    double GetMaxValue() const { return fMaxValue; }
    void SetMinMaxValue(double minValue, double maxValue, double defaultValue);

    // What a reset goes to; without one, 0 or the bound next to it.
    void SetDefaultValue(double value);
    double GetDefaultValue() const;

    // Steps of keys and wheel, with Shift, with Ctrl. 0 or less: chosen from the range, and ten times or a tenth of the
    // plain one, but not below what is shown. What is not finite is refused.
    void SetIncrement(double increment);
    void SetShiftIncrement(double increment);
    void SetCommandIncrement(double increment);
    double GetIncrement() const { return fIncrement; }
    double GetShiftIncrement() const { return fShiftIncrement; }
    double GetCommandIncrement() const { return fCommandIncrement; }

    // Digits behind the point, 0...15; the value itself is not rounded by it, nor is a typed one; steps
    // and drags go by it.
    void SetDecimalPlaces(int places);
    int GetDecimalPlaces() const { return fDecimalPlaces; }
    // Digits altogether: a greater number shows fewer places. 0: as many as it takes.
    void SetMaxDigits(int digits);
    // krocore::NumberFormatFlags.
    void SetFormatFlags(std::uint32_t flags);
    std::uint32_t GetFormatFlags() const { return fFormatFlags; }

    // A logarithmic scale needs an upper bound above 0; a lower one of 0 or less then stands a ten-thousandth of it
    // away from the end.
    void SetScale(int scale);
    int GetScale() const { return fScale; }

    bool IsInGesture() const { return fGesture.IsActive(); }
    krocore::string16 FormatValue() const { return FormatOf(fValue); }
    // The value with its bounds and step, for AccessibleInfo.
    ui::AccessibleRange GetAccessibleRange() const;
    // Another value as this control would show it.
    krocore::string16 FormatOf(double value) const;

protected:
    ValueControl() : fGesture(*this) {}
    ~ValueControl() = default;

    // The node that this object is part of.
    virtual ui::UI_Node& ValueNode() = 0;
    // The value, or the way it looks, is another now: repaint.
    virtual void ValueChanged(double oldValue) = 0;
    virtual void ValueLookChanged() = 0;

    // Events that are the same for every control; true if handled.
    bool HandleWheel(const ui::MouseEvent& event);
    bool HandleTimer(long timerID);
    // Completes what a node tells of itself.
    void AddAccessibleRange(ui::AccessibleInfo& info) const;
    // Increase, decrease, reset and value, in the gestures of keys and typing; false for others.
    bool HandleAccessible(const ui::AccessibleRequest& request);
    // A typed text, as the control reads it; none if it is no value.
    virtual std::optional<double> ReadTyped(std::u16string_view typed) const = 0;
    // Ends what is going on: focus lost, disabled, taken out of the tree.
    void SettleGesture();
    // Positions on a scale of 0...1 between the bounds, whatever GesturePosition says.
    double ScalePosition(double value, int scale) const;
    double ScaleValueAt(double position, int scale) const;
    // Steps of the increment from bound to bound.
    double StepCount() const { return (GestureMaximum() - GestureMinimum()) / GestureIncrement(); }

    double GestureValue() const override { return fValue; }
    void SetGestureValue(double value) override { SetValue(value); }
    double GestureMinimum() const override { return fMinValue < fMaxValue ? fMinValue : fMaxValue; }
    double GestureMaximum() const override { return fMinValue < fMaxValue ? fMaxValue : fMinValue; }
    double GestureDefault() const override { return GetDefaultValue(); }
    double GestureIncrement() const override;
    double GestureShiftIncrement() const override;
    double GestureCommandIncrement() const override;
    double GesturePosition(double value) const override { return ScalePosition(value, fScale); }
    double GestureValueAt(double position) const override { return ScaleValueAt(position, fScale); }
    double GestureResolution() const override;
    void StartGestureTimer(float seconds) override;
    void StopGestureTimer() override;

    ValueGesture fGesture;

private:
    double Held(double value) const;
    int PlacesFor(double value) const;

    double fValue = 0;
    double fMinValue = 0;
    double fMaxValue = 100;
    double fDefaultValue = 0;
    double fIncrement = 0;
    double fShiftIncrement = 0;
    double fCommandIncrement = 0;
    std::uint32_t fFormatFlags = krocore::kFormatNormal;
    int fDecimalPlaces = 0;
    int fMaxDigits = 0;
    int fScale = kLinear;
    bool fTimerRuns = false;
};

// A row for a property of a node class that is also a ValueControl.
template <class Node, ui::PropertyType Type, auto Getter, auto Setter>
constexpr ui::PropertyRow MakeValueProperty(std::string_view key) {
    using Value = std::remove_cvref_t<decltype((std::declval<const Node&>().*Getter)())>;
    return {key, Type,
            [](const ui::UI_Node& node) {
                return ui::detail::MakeValue<Value, Type>((static_cast<const Node&>(node).*Getter)());
            },
            [](ui::UI_Node& node, const ui::PropertyValue& value) {
                (static_cast<Node&>(node).*Setter)(ui::detail::TakeValue<Value, Type>(value));
            }};
}

} // namespace kroui::controls
