#pragma once

#include "kroui/controls/NumberDrag.h"
#include "kroui/controls/NumberEntry.h"
#include "kroui/controls/UI_HotText.h"
#include "kroui/controls/ValueControl.h"

namespace kroui::controls {

// A number that is dragged (to the right or upwards for more), stepped by wheel and keys, or typed after a
// double-click, Enter, F2 or the first digit. Ctrl-click resets. Its label is its unit.
class UI_HotTextNumber : public UI_HotText, public ValueControl {
public:
    UI_HotTextNumber();

    // Whether it can be typed.
    void SetNumericInput(bool on) { fNumericInput = on; }
    bool NumericInput() const { return fNumericInput; }
    // The field while the number is being typed; null otherwise.
    UI_TextField* EntryField() const { return fEntry.IsOpen() ? fEntry.Field() : nullptr; }

    void UI_Draw(limner::Limner* context) override;
    bool UI_DoMouseEvent(UI_Node* node, const ui::MouseEvent& event) override;
    bool UI_DoKeyEvent(const ui::KeyEvent& event) override;
    bool UI_DoTextEvent(const ui::TextEvent& event) override;
    bool UI_DoTimerNotify(long timerID) override;
    void UI_FocusChanged(bool hasFocus) override;
    void UI_NodeChanged(NodeChange change) override;
    ui::Cursor UI_GetCursor(Point point) const override;
    ui::AccessibleInfo UI_GetAccessibleInfo() const override;
    bool UI_DoAccessibleAction(const ui::AccessibleRequest& request) override;
    const ui::PropertyTable& UI_GetPropertyTable() const override;
    static const ui::PropertyTable& PropertiesOfHotTextNumber();

    // For property rows: a format flag each. "formatNormal" is the absence of all; it is only kept.
    template <std::uint32_t Flag>
    bool HasFormat() const {
        return (GetFormatFlags() & Flag) != 0;
    }
    template <std::uint32_t Flag>
    void SetFormat(bool on) {
        SetFormatFlags(on ? GetFormatFlags() | Flag : GetFormatFlags() & ~Flag);
    }
    void SetFormatNormal(bool on) { fFormatNormal = on; }
    bool FormatNormal() const { return fFormatNormal; }

protected:
    ~UI_HotTextNumber() override = default;

    krocore::string16 ShownText() const override { return FormatValue(); }
    float NaturalTextWidth() const override;
    // What stands in the field at first, and what a typed text means; for values that are no plain numbers.
    virtual krocore::string16 EntryText() const;
    virtual std::optional<double> ReadEntry(std::u16string_view typed) const;
    std::optional<double> ReadTyped(std::u16string_view typed) const override { return ReadEntry(typed); }
    ui::UI_Node& ValueNode() override { return *this; }
    void ValueChanged(double /*oldValue*/) override { UI_Invalidate(); }
    void ValueLookChanged() override { UI_Invalidate(); }
    void SendGesture(int changeMessage) override;
    void ControlStateChanged() override;

private:
    bool Press(const ui::MouseEvent& event);
    void Release(const ui::MouseEvent& event);
    bool OpenEntry();

    NumberEntry fEntry{*this, fGesture};
    NumberDrag fDrag;
    bool fNumericInput = true;
    bool fFormatNormal = false;
};

} // namespace kroui::controls
