#pragma once

#include "kroui/controls/UI_TextField.h"
#include "kroui/controls/ValueGesture.h"

namespace kroui::controls {

// Typing a number in place: a text field over the control that shows the number. Enter, Tab or a click elsewhere sets
// the value in one gesture, Escape leaves it. A text that is no number leaves it too; Enter and Tab then stay in the
// field, which says so.
class NumberEntry {
public:
    // Both belong to the control that owns this.
    NumberEntry(ui::UI_Node& node, ValueGesture& gesture) : fNode(node), fGesture(gesture) {}
    ~NumberEntry();
    NumberEntry(const NumberEntry&) = delete;
    NumberEntry& operator=(const NumberEntry&) = delete;

    // Shows the field with all of `text` selected. `unit` may be typed behind the number; `font` and `alignment` are
    // those of the number.
    void Open(const Rect& frame, std::u16string_view text, std::u16string_view unit, const limner::Font& font,
              limner::TextAlignment alignment);
    bool IsOpen() const { return fField && fField->UI_IsVisible(); }
    // Leaves the value as it is.
    void Close();
    // While open; otherwise what it was then, or null.
    UI_TextField* Field() const { return fField.get(); }

    // Whether a typed text begins an entry: digits, signs, points.
    static bool IsNumberStart(std::u16string_view text);

private:
    void MakeField();
    void OnFinish(UI_TextField::Finish finish);
    bool Read(double& value) const;
    void ShowError();

    ui::UI_Node& fNode;
    ValueGesture& fGesture;
    boost::intrusive_ptr<UI_TextField> fField; // made when first needed
    krocore::string16 fUnit;
    krocore::string16 fTextBefore;
};

} // namespace kroui::controls
