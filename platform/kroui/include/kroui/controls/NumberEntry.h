#pragma once

#include "kroui/controls/UI_TextField.h"
#include "kroui/controls/ValueGesture.h"

#include <boost/function.hpp>

#include <optional>
#include <utility>

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

    // Reads what was typed; nothing if it is no value. In place of a plain number with its unit.
    using Reader = boost::function<std::optional<double>(std::u16string_view text)>;
    void SetReader(Reader reader) { fReader = std::move(reader); }

    // Shows the field with all of `text` selected. `unit` may be typed behind the number; `font` and `alignment` are
    // those of the number. A frame that reaches out of the node is shown over the window.
    void Open(const Rect& frame, std::u16string_view text, std::u16string_view unit, const limner::Font& font,
              limner::TextAlignment alignment);
    bool IsOpen() const { return fIsOpen; }
    // Leaves the value as it is.
    void Close();
    // While open; otherwise what it was then, or null.
    UI_TextField* Field() const { return fField.get(); }

    // Whether a typed text begins an entry: digits, signs, points.
    static bool IsNumberStart(std::u16string_view text);

private:
    void MakeField();
    void PlaceField(const Rect& frame);
    void RemoveField();
    void OnFinish(UI_TextField::Finish finish);
    std::optional<double> Read() const;
    void ShowError();

    ui::UI_Node& fNode;
    ValueGesture& fGesture;
    boost::intrusive_ptr<UI_TextField> fField; // made when first needed
    Reader fReader;
    krocore::string16 fUnit;
    krocore::string16 fTextBefore;
    bool fIsOpen = false;
};

} // namespace kroui::controls
