#include "kroui/controls/UI_TextField.h"

#include "controls/base/ControlDrawing.h"

#include "kroui/ui/UI_NodeManager.h"
#include "kroui/ui/UI_Window.h"

#include <algorithm>
#include <cmath>

namespace kroui::controls {

using ui::Key;
using ui::MouseEvent;

namespace {

constexpr float kPadding = 6;
constexpr float kRadius = 3;
constexpr float kBlinkSeconds = 0.5F;
constexpr float kCaretInset = 3; // from the field's top and bottom edge

long BlinkTimerID() {
    static const long sTimerID = ui::UI_NodeManager::Get().GetUniqueTimerID();
    return sTimerID;
}

} // namespace

UI_TextField::UI_TextField() {
    SetWantsKeyboardFocus(true);
}

void UI_TextField::SetText(std::u16string_view text) {
    if (text == GetText()) return;
    fBuffer.SetText(text);
    fTextBefore = fBuffer.Text();
    fError.clear();
    fCaretPositions.clear();
    ScrollToCaret();
    UI_Invalidate();
}

void UI_TextField::SetPlaceholder(std::u16string_view text) {
    if (text == fPlaceholder) return;
    fPlaceholder = text;
    UI_Invalidate();
}

void UI_TextField::SetFontSize(float size) {
    const float held = drawing::Bounded(size, drawing::kSmallestFont, drawing::kLargestFont);
    if (!drawing::Assign(fFont.size, held)) return;
    fCaretPositions.clear();
    UI_Invalidate();
}

void UI_TextField::SetAlignment(limner::TextAlignment alignment) {
    if (drawing::Assign(fAlignment, drawing::KnownAlignment(alignment))) UI_Invalidate();
}

void UI_TextField::SelectAll() {
    fBuffer.SelectAll();
    ShowCaret();
}

void UI_TextField::SetError(std::u16string_view message) {
    if (message == fError) return;
    fError = message;
    UI_Invalidate();
}

void UI_TextField::TypeText(std::u16string_view text) {
    Edited(fBuffer.Insert(text));
}

void UI_TextField::UI_Draw(limner::Limner* context) {
    const ui::PixelGrid grid(*this, *context);
    const Rect box = grid.Snap(UI_GetLocalRect());
    const bool isMarked = HasError() || ShowsFocus();
    const int frame = HasError() ? ui::kColorWarning : isMarked ? ui::kColorAccent : ui::kColorLine;
    context->FillRoundRect(box, kRadius, GetColor(ui::kColorField));
    context->FrameRoundRect(box, kRadius, GetColor(frame), grid.Line(isMarked ? 1.5F : 1.0F));
    context->Save();
    context->ClipRect(TextArea().Inset(-1, 0));
    DrawContent(*context, box);
    context->Restore();
}

void UI_TextField::DrawContent(limner::Limner& context, const Rect& area) {
    const ui::PixelGrid grid(*this, context);
    const limner::TextPlacement placement{fAlignment, limner::TextTruncation::kNone, false};
    const auto colorOf = [this](int role) { return GetColor(IsEnabled() ? role : ui::kColorDisabledText); };
    if (GetText().empty() && !fPlaceholder.empty())
        context.DrawText(fPlaceholder, fFont, colorOf(ui::kColorDimText), TextArea(), placement);
    const float left = TextLeft();
    if (UI_HasFocus() && fBuffer.HasSelection()) {
        const std::vector<float>& carets = CaretPositions();
        const float start = left + carets[fBuffer.SelectionStart()];
        const float end = left + carets[fBuffer.SelectionEnd()];
        const Rect marked{start, area.top + kCaretInset, end - start, area.height - 2 * kCaretInset};
        context.FillRect(grid.Snap(marked), GetColor(ui::kColorSelection));
    }
    context.DrawText(GetText(), fFont, colorOf(ui::kColorText), {left, area.top, TextWidth(), area.height}, {});
    if (UI_HasFocus() && fCaretIsOn) context.FillRect(grid.Snap(CaretRect()), GetColor(ui::kColorText));
}

bool UI_TextField::UI_DoMouseEvent(UI_Node* node, const MouseEvent& event) {
    UI_InteractiveControlView::UI_DoMouseEvent(node, event);
    if (node || !IsEnabled()) return false;
    if (event.IsAction(MouseEvent::Action::kPressed) && event.button == 1) {
        UI_TakeFocus();
        const std::size_t position = PositionAt(event.position.x);
        if (event.clickCount == 1) fBuffer.MoveTo(position, event.Has(ui::kShift));
        if (event.clickCount == 2) fBuffer.SelectWordAt(position);
        if (event.clickCount > 2) fBuffer.SelectAll();
        ShowCaret();
        return true;
    }
    if (event.IsAction(MouseEvent::Action::kDragged)) {
        fBuffer.MoveTo(PositionAt(event.position.x), true);
        ShowCaret();
        return true;
    }
    return event.IsAction(MouseEvent::Action::kReleased) || event.IsAction(MouseEvent::Action::kWheel);
}

bool UI_TextField::UI_DoKeyEvent(const ui::KeyEvent& event) {
    if (!IsEnabled() || event.Has(ui::kAlt)) return false;
    switch (event.key) {
    case Key::kEnter: return FinishBy(Finish::kEnter);
    case Key::kEscape: return FinishBy(Finish::kEscape);
    case Key::kTab:
        if (event.Has(ui::kCommand)) return false;
        return FinishBy(event.Has(ui::kShift) ? Finish::kBackTab : Finish::kTab);
    case Key::kCharacter: return !event.Has(ui::kCommand) || ShortcutKey(event.character, event.Has(ui::kShift));
    case Key::kSpace: return !event.Has(ui::kCommand); // comes as text too
    default: return MoveKey(event) || EditKey(event);
    }
}

bool UI_TextField::MoveKey(const ui::KeyEvent& event) {
    const bool extend = event.Has(ui::kShift);
    const bool byWord = event.Has(ui::kCommand);
    switch (event.key) {
    case Key::kLeft: byWord ? fBuffer.MoveWordBack(extend) : fBuffer.MoveBack(extend); break;
    case Key::kRight: byWord ? fBuffer.MoveWordForward(extend) : fBuffer.MoveForward(extend); break;
    case Key::kHome:
    case Key::kUp: fBuffer.MoveHome(extend); break;
    case Key::kEnd:
    case Key::kDown: fBuffer.MoveEnd(extend); break;
    default: return false;
    }
    ShowCaret();
    return true;
}

bool UI_TextField::EditKey(const ui::KeyEvent& event) {
    const bool byWord = event.Has(ui::kCommand);
    if (event.key == Key::kBackspace) {
        Edited(byWord ? fBuffer.DeleteWordBack() : fBuffer.DeleteBack());
    } else if (event.key == Key::kDelete && event.Has(ui::kShift)) {
        if (CopySelection()) Edited(fBuffer.DeleteSelection());
    } else if (event.key == Key::kDelete) {
        Edited(byWord ? fBuffer.DeleteWordForward() : fBuffer.DeleteForward());
    } else {
        return false;
    }
    return true;
}

bool UI_TextField::ShortcutKey(char16_t character, bool shift) {
    switch (character) {
    case u'a': SelectAll(); return true;
    case u'c': CopySelection(); return true;
    case u'x':
        if (CopySelection()) Edited(fBuffer.DeleteSelection());
        return true;
    case u'v': return Paste();
    case u'z': Edited(shift ? fBuffer.Redo() : fBuffer.Undo()); return true;
    case u'y': Edited(fBuffer.Redo()); return true;
    default: return false;
    }
}

bool UI_TextField::CopySelection() {
    if (!fBuffer.HasSelection() || !UI_GetWindow()) return false;
    UI_GetWindow()->Backend().SetClipboardText(fBuffer.SelectedText());
    return true;
}

bool UI_TextField::Paste() {
    if (UI_GetWindow()) TypeText(UI_GetWindow()->Backend().ClipboardText());
    return true;
}

bool UI_TextField::UI_DoTextEvent(const ui::TextEvent& event) {
    if (!IsEnabled()) return false;
    TypeText(event.text);
    return true;
}

bool UI_TextField::UI_DoTimerNotify(long timerID) {
    if (timerID != BlinkTimerID()) return UI_InteractiveControlView::UI_DoTimerNotify(timerID);
    fCaretIsOn = !fCaretIsOn;
    UI_InvalidateRect(CaretRect().Inset(-1, 0));
    return true;
}

void UI_TextField::UI_FocusChanged(bool hasFocus) {
    if (hasFocus) {
        fTextBefore = GetText();
        fHasSent = false;
        ShowCaret();
    } else {
        UI_RemoveTimer(BlinkTimerID(), false);
        if (UI_GetWindow()) UI_GetWindow()->Backend().SetTextInput(false, {});
        FinishBy(Finish::kFocusLost);
    }
    UI_InteractiveControlView::UI_FocusChanged(hasFocus);
}

ui::Cursor UI_TextField::UI_GetCursor(Point /*point*/) const {
    return IsEnabled() ? ui::Cursor::kText : ui::Cursor::kArrow;
}

const krocore::string16& UI_TextField::UI_GetTooltip() const {
    return HasError() ? fError : UI_InteractiveControlView::UI_GetTooltip();
}

ui::AccessibleInfo UI_TextField::UI_GetAccessibleInfo() const {
    ui::AccessibleInfo info = UI_InteractiveControlView::UI_GetAccessibleInfo();
    info.role = ui::Role::kTextField;
    info.value = GetText();
    info.caret = {fBuffer.Caret(), fBuffer.SelectionStart(), fBuffer.SelectionEnd()};
    using Action = ui::AccessibleAction;
    if (IsEnabled()) info.actions = ui::AccessibleActions(Action::kPress, Action::kSetText);
    return info;
}

// A text is an entry of its own, unless who owns the field decides how an entry ends, as at Enter.
bool UI_TextField::UI_DoAccessibleAction(const ui::AccessibleRequest& request) {
    if (!IsEnabled()) return false;
    if (request.action == ui::AccessibleAction::kPress) return FinishBy(Finish::kEnter);
    if (request.action != ui::AccessibleAction::kSetText) return false;
    if (!UI_HasFocus()) fTextBefore = GetText();
    fBuffer.SelectAll();
    Edited(request.text.empty() ? fBuffer.DeleteSelection() : fBuffer.Insert(request.text));
    if (!fFinishHandler) Commit();
    return true;
}

Rect UI_TextField::TextArea() const {
    return UI_GetLocalRect().Inset(kPadding, 0);
}

const std::vector<float>& UI_TextField::CaretPositions() const {
    const limner::SupplierInterface* const supplier = UI_GetDrawSupplier();
    const std::size_t wanted = GetText().size() + 1;
    if (fCaretPositions.size() != wanted && supplier) supplier->CaretPositions(GetText(), fFont, fCaretPositions);
    if (fCaretPositions.size() != wanted) fCaretPositions.resize(wanted);
    return fCaretPositions;
}

// Asked for at every paint, of texts that the supplier knows; the carets' places are another question, and a dear one.
float UI_TextField::TextWidth() const {
    const limner::SupplierInterface* const supplier = UI_GetDrawSupplier();
    return supplier ? supplier->MeasureText(GetText(), fFont).width : 0;
}

// A text that fits stands by its alignment; a longer one is scrolled.
float UI_TextField::TextLeft() const {
    const Rect area = TextArea();
    const float room = area.width - TextWidth();
    if (room < 0) return area.left - fScroll;
    if (fAlignment == limner::TextAlignment::kLeft) return area.left;
    return area.left + (fAlignment == limner::TextAlignment::kCentre ? std::round(room / 2) : room);
}

Rect UI_TextField::CaretRect() const {
    const float x = TextLeft() + CaretPositions()[fBuffer.Caret()];
    return {x, kCaretInset, 1, UI_GetLocalRect().height - 2 * kCaretInset};
}

std::size_t UI_TextField::PositionAt(float x) const {
    const std::vector<float>& carets = CaretPositions();
    const float inText = x - TextLeft();
    const auto right = std::lower_bound(carets.begin(), carets.end(), inText);
    if (right == carets.begin()) return 0;
    if (right == carets.end()) return carets.size() - 1;
    const auto left = right - 1;
    return static_cast<std::size_t>((inText - *left < *right - inText ? left : right) - carets.begin());
}

void UI_TextField::Edited(bool changed) {
    if (!changed) return;
    fError.clear();
    fCaretPositions.clear();
    ShowCaret();
    using Message = UI_InteractiveControlChangedMessage;
    if (!fHasSent) SendInteractive(Message::kStarted);
    fHasSent = true;
    SendInteractive(Message::kChanged);
}

void UI_TextField::ShowCaret() {
    ScrollToCaret();
    UI_Invalidate();
    if (!UI_HasFocus()) return;
    fCaretIsOn = true;
    UI_InstallTimer(kBlinkSeconds, BlinkTimerID());
    const Point origin = UI_LocalToWindow({});
    UI_GetWindow()->Backend().SetTextInput(true, CaretRect().Offset(origin.x, origin.y));
}

void UI_TextField::ScrollToCaret() {
    if (!UI_GetDrawSupplier()) return;
    const float width = TextArea().width;
    const float hidden = TextWidth() - width;
    if (hidden <= 0) {
        fScroll = 0;
        return;
    }
    const float caret = CaretPositions()[fBuffer.Caret()];
    fScroll = std::clamp(fScroll, caret - width, std::max(caret, caret - width));
    fScroll = std::clamp(fScroll, 0.0F, hidden);
}

void UI_TextField::Commit() {
    using Message = UI_InteractiveControlChangedMessage;
    const bool isChanged = GetText() != fTextBefore;
    fTextBefore = GetText();
    if (!std::exchange(fHasSent, false)) return;
    SendInteractive(Message::kEnded);
    if (isChanged) SendChanged();
}

void UI_TextField::Cancel() {
    using Message = UI_InteractiveControlChangedMessage;
    const krocore::string16 before = fTextBefore;
    SetText(before);
    SelectAll();
    if (std::exchange(fHasSent, false)) SendInteractive(Message::kAbandoned);
}

// The handler may take the focus away, which ends the entry a second time; that is passed over.
bool UI_TextField::FinishBy(Finish finish) {
    if (fIsFinishing) return true;
    if (fFinishHandler) {
        fIsFinishing = true;
        fFinishHandler(finish);
        fIsFinishing = false;
        return true;
    }
    if (finish == Finish::kEscape) {
        const bool isChanged = GetText() != fTextBefore;
        Cancel();
        return isChanged;
    }
    Commit();
    return finish == Finish::kEnter;
}

} // namespace kroui::controls
