#include "kroui/controls/TextEditBuffer.h"

#include <algorithm>
#include <utility>

namespace kroui::controls {

namespace {

constexpr std::size_t kMostUndoSteps = 100;

bool IsHighSurrogate(char16_t c) {
    return c >= 0xD800 && c < 0xDC00;
}

bool IsLowSurrogate(char16_t c) {
    return c >= 0xDC00 && c < 0xE000;
}

// Marks that belong to the character before: combining diacritics, variation selectors, the joiner.
bool IsCombining(char16_t c) {
    return (c >= 0x0300 && c < 0x0370) || (c >= 0x1AB0 && c < 0x1B00) || (c >= 0x20D0 && c < 0x2100) ||
           (c >= 0xFE00 && c < 0xFE10) || (c >= 0xFE20 && c < 0xFE30) || c == 0x200D;
}

enum class CharClass : unsigned char { kSpace, kWord, kOther };

CharClass ClassOf(char16_t c) {
    constexpr char16_t kNoBreakSpace = 0x00A0;
    constexpr char16_t kFirstBeyondASCII = 0x0080;
    if (c == u' ' || c == kNoBreakSpace) return CharClass::kSpace;
    const bool isLetter = (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') || c == u'_';
    return isLetter || c >= kFirstBeyondASCII ? CharClass::kWord : CharClass::kOther;
}

krocore::string16 Cleaned(std::u16string_view text) {
    krocore::string16 result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t c = text[i];
        if (IsHighSurrogate(c) && i + 1 < text.size() && IsLowSurrogate(text[i + 1])) {
            result += text.substr(i++, 2);
        } else if (c == u'\t' || c == u'\n' || c == u'\r') {
            if (c != u'\n' || i == 0 || text[i - 1] != u'\r') result += u' ';
        } else if (c >= u' ' && c != 0x7F && !IsHighSurrogate(c) && !IsLowSurrogate(c)) {
            result += c;
        }
    }
    return result;
}

} // namespace

void TextEditBuffer::SetText(std::u16string_view text) {
    fState.text = Cleaned(text);
    fState.caret = fState.anchor = fState.text.size();
    fUndo.clear();
    fRedo.clear();
    fLastEdit = Edit::kNone;
}

std::size_t TextEditBuffer::SelectionStart() const {
    return std::min(fState.caret, fState.anchor);
}

std::size_t TextEditBuffer::SelectionEnd() const {
    return std::max(fState.caret, fState.anchor);
}

std::u16string_view TextEditBuffer::SelectedText() const {
    return std::u16string_view(fState.text).substr(SelectionStart(), SelectionEnd() - SelectionStart());
}

void TextEditBuffer::MoveTo(std::size_t position, bool extend) {
    fState.caret = Aligned(position);
    if (!extend) fState.anchor = fState.caret;
    fLastEdit = Edit::kNone;
}

void TextEditBuffer::MoveBack(bool extend) {
    MoveTo(!extend && HasSelection() ? SelectionStart() : Before(fState.caret), extend);
}

void TextEditBuffer::MoveForward(bool extend) {
    MoveTo(!extend && HasSelection() ? SelectionEnd() : After(fState.caret), extend);
}

void TextEditBuffer::MoveWordBack(bool extend) {
    MoveTo(WordBefore(fState.caret), extend);
}

void TextEditBuffer::MoveWordForward(bool extend) {
    MoveTo(WordAfter(fState.caret), extend);
}

void TextEditBuffer::SelectAll() {
    fState.anchor = 0;
    fState.caret = fState.text.size();
    fLastEdit = Edit::kNone;
}

void TextEditBuffer::SelectWordAt(std::size_t position) {
    const krocore::string16& text = fState.text;
    if (text.empty()) return;
    std::size_t start = std::min(position, text.size() - 1);
    const CharClass wanted = ClassOf(text[start]);
    std::size_t end = start + 1;
    while (start > 0 && ClassOf(text[start - 1]) == wanted)
        --start;
    while (end < text.size() && ClassOf(text[end]) == wanted)
        ++end;
    fState.anchor = start;
    fState.caret = end;
    fLastEdit = Edit::kNone;
}

bool TextEditBuffer::Insert(std::u16string_view text) {
    krocore::string16 cleaned = Cleaned(text);
    const std::size_t rest = fState.text.size() - (SelectionEnd() - SelectionStart());
    const std::size_t room = fMaxLength > rest ? fMaxLength - rest : 0;
    if (cleaned.size() > room) cleaned.resize(room > 0 && IsHighSurrogate(cleaned[room - 1]) ? room - 1 : room);
    if (cleaned.empty() && !text.empty()) return false;
    const Edit edit = cleaned.size() <= 2 && !HasSelection() ? Edit::kType : Edit::kOther;
    return Replace(SelectionStart(), SelectionEnd(), cleaned, edit);
}

bool TextEditBuffer::DeleteBack() {
    return HasSelection() ? DeleteSelection() : Replace(Before(fState.caret), fState.caret, {}, Edit::kDelete);
}

bool TextEditBuffer::DeleteForward() {
    return HasSelection() ? DeleteSelection() : Replace(fState.caret, After(fState.caret), {}, Edit::kDelete);
}

bool TextEditBuffer::DeleteWordBack() {
    return HasSelection() ? DeleteSelection() : Replace(WordBefore(fState.caret), fState.caret, {}, Edit::kOther);
}

bool TextEditBuffer::DeleteWordForward() {
    return HasSelection() ? DeleteSelection() : Replace(fState.caret, WordAfter(fState.caret), {}, Edit::kOther);
}

bool TextEditBuffer::DeleteSelection() {
    return Replace(SelectionStart(), SelectionEnd(), {}, Edit::kOther);
}

bool TextEditBuffer::Undo() {
    if (fUndo.empty()) return false;
    fRedo.push_back(std::exchange(fState, std::move(fUndo.back())));
    fUndo.pop_back();
    fLastEdit = Edit::kNone;
    return true;
}

bool TextEditBuffer::Redo() {
    if (fRedo.empty()) return false;
    fUndo.push_back(std::exchange(fState, std::move(fRedo.back())));
    fRedo.pop_back();
    fLastEdit = Edit::kNone;
    return true;
}

std::size_t TextEditBuffer::Aligned(std::size_t position) const {
    position = std::min(position, fState.text.size());
    while (position > 0 && position < fState.text.size() &&
           (IsLowSurrogate(fState.text[position]) || IsCombining(fState.text[position])))
        --position;
    return position;
}

std::size_t TextEditBuffer::Before(std::size_t position) const {
    return position == 0 ? 0 : Aligned(position - 1);
}

std::size_t TextEditBuffer::After(std::size_t position) const {
    if (position < fState.text.size()) ++position;
    while (position < fState.text.size() &&
           (IsLowSurrogate(fState.text[position]) || IsCombining(fState.text[position])))
        ++position;
    return position;
}

std::size_t TextEditBuffer::WordBefore(std::size_t position) const {
    const krocore::string16& text = fState.text;
    while (position > 0 && ClassOf(text[position - 1]) == CharClass::kSpace)
        --position;
    if (position == 0) return 0;
    const CharClass wanted = ClassOf(text[position - 1]);
    while (position > 0 && ClassOf(text[position - 1]) == wanted)
        --position;
    return position;
}

std::size_t TextEditBuffer::WordAfter(std::size_t position) const {
    const krocore::string16& text = fState.text;
    if (position < text.size() && ClassOf(text[position]) != CharClass::kSpace) {
        const CharClass wanted = ClassOf(text[position]);
        while (position < text.size() && ClassOf(text[position]) == wanted)
            ++position;
    }
    while (position < text.size() && ClassOf(text[position]) == CharClass::kSpace)
        ++position;
    return position;
}

void TextEditBuffer::Remember(Edit edit) {
    fRedo.clear();
    const bool continues = edit == fLastEdit && edit != Edit::kOther;
    fLastEdit = edit;
    if (continues) return;
    if (fUndo.size() == kMostUndoSteps) fUndo.erase(fUndo.begin());
    fUndo.push_back(fState);
}

bool TextEditBuffer::Replace(std::size_t from, std::size_t to, std::u16string_view text, Edit edit) {
    if (from == to && text.empty()) return false;
    Remember(edit);
    fState.text.replace(from, to - from, text);
    fState.caret = fState.anchor = from + text.size();
    return true;
}

} // namespace kroui::controls
