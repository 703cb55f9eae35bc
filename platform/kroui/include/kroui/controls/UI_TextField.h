#pragma once

#include "kroui/controls/TextEditBuffer.h"
#include "kroui/controls/UI_InteractiveControlView.h"

#include <boost/function.hpp>

#include <vector>

namespace kroui::controls {

// A field for one line of text. Typing sends the interactive messages 0 (with the first change), 1, and 2 at Enter or
// when the focus goes; Escape brings the old text back and sends 3. A committed change follows message 2 if the text is
// another than before. A longer text scrolls.
class UI_TextField : public UI_InteractiveControlView {
public:
    // Why an entry has ended.
    enum class Finish : std::uint8_t { kEnter, kEscape, kTab, kBackTab, kFocusLost };
    // Told that the user ends the entry, in place of the field's own way of ending it. The text is still what the user
    // wrote; what the handler causes by hiding the field or moving the focus is not reported again.
    using FinishHandler = boost::function<void(Finish)>;

    UI_TextField();

    // From code: no messages, no history; caret behind the text.
    void SetText(std::u16string_view text);
    const krocore::string16& GetText() const { return fBuffer.Text(); }
    void SetMaxLength(std::size_t length) { fBuffer.SetMaxLength(length); }
    void SetPlaceholder(std::u16string_view text);
    void SetFontSize(float size);
    float FontSize() const { return fFont.size; }
    void SetAlignment(limner::TextAlignment alignment);
    void SelectAll();
    std::size_t SelectionStart() const { return fBuffer.SelectionStart(); }
    std::size_t SelectionEnd() const { return fBuffer.SelectionEnd(); }
    std::u16string_view SelectedText() const { return fBuffer.SelectedText(); }

    // Shows that the text is not accepted, and why (as the tip), until it is edited. Empty: all is well.
    void SetError(std::u16string_view message);
    bool HasError() const { return !fError.empty(); }

    void SetFinishHandler(FinishHandler handler) { fFinishHandler = std::move(handler); }
    // Enters text as the user would.
    void TypeText(std::u16string_view text);

    void UI_Draw(limner::Limner* context) override;
    bool UI_DoMouseEvent(UI_Node* node, const ui::MouseEvent& event) override;
    bool UI_DoKeyEvent(const ui::KeyEvent& event) override;
    bool UI_DoTextEvent(const ui::TextEvent& event) override;
    bool UI_DoTimerNotify(long timerID) override;
    void UI_FocusChanged(bool hasFocus) override;
    ui::Cursor UI_GetCursor(Point point) const override;
    const krocore::string16& UI_GetTooltip() const override;
    ui::AccessibleInfo UI_GetAccessibleInfo() const override;
    bool UI_DoAccessibleAction(const ui::AccessibleRequest& request) override;

protected:
    ~UI_TextField() override = default;

    krocore::string16 ShownName() const override { return fPlaceholder; }

private:
    Rect TextArea() const;
    const std::vector<float>& CaretPositions() const;
    float TextWidth() const;
    float TextLeft() const;
    Rect CaretRect() const;
    std::size_t PositionAt(float x) const;

    void DrawContent(limner::Limner& context, const Rect& area);
    bool MoveKey(const ui::KeyEvent& event);
    bool EditKey(const ui::KeyEvent& event);
    bool ShortcutKey(char16_t character, bool shift);
    bool CopySelection();
    bool Paste();
    void Edited(bool changed);
    void ShowCaret();
    void ScrollToCaret();
    void Commit();
    void Cancel();
    bool FinishBy(Finish finish);

    TextEditBuffer fBuffer;
    krocore::string16 fTextBefore; // when the focus came
    krocore::string16 fPlaceholder;
    krocore::string16 fError;
    FinishHandler fFinishHandler;
    mutable std::vector<float> fCaretPositions; // empty: to be measured
    limner::Font fFont;
    limner::TextAlignment fAlignment = limner::TextAlignment::kLeft;
    float fScroll = 0;
    bool fCaretIsOn = false;
    bool fHasSent = false;
    bool fIsFinishing = false;
};

} // namespace kroui::controls
