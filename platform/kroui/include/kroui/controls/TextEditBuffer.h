#pragma once

#include "krocore/String.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace kroui::controls {

// The text of a single-line editor with caret, selection and history; knows no screen. Positions count UTF-16 units and
// never stand inside a surrogate pair or before a combining mark. Operations that edit return whether the text changed.
class TextEditBuffer {
public:
    static constexpr std::size_t kNoLimit = static_cast<std::size_t>(-1);

    const krocore::string16& Text() const { return fState.text; }
    // Replaces everything, forgets the history, caret behind the text.
    void SetText(std::u16string_view text);
    // In UTF-16 units; longer insertions are cut.
    void SetMaxLength(std::size_t length) { fMaxLength = length; }

    // The end of the selection that moves, and the one that stays.
    std::size_t Caret() const { return fState.caret; }
    std::size_t SelectionStart() const;
    std::size_t SelectionEnd() const;
    bool HasSelection() const { return fState.caret != fState.anchor; }
    std::u16string_view SelectedText() const;

    // `extend` keeps the anchor; otherwise a selection collapses, towards the side of the move.
    void MoveTo(std::size_t position, bool extend);
    void MoveBack(bool extend);
    void MoveForward(bool extend);
    void MoveWordBack(bool extend);
    void MoveWordForward(bool extend);
    void MoveHome(bool extend) { MoveTo(0, extend); }
    void MoveEnd(bool extend) { MoveTo(fState.text.size(), extend); }
    void SelectAll();
    // The run of letters and digits, of space, or of other characters around a position.
    void SelectWordAt(std::size_t position);

    // Replaces the selection. Line ends and tabs become spaces, other control characters and lone surrogates are
    // dropped. A run of single characters is one step of the history.
    bool Insert(std::u16string_view text);
    bool DeleteBack();
    bool DeleteForward();
    bool DeleteWordBack();
    bool DeleteWordForward();
    bool DeleteSelection();

    bool Undo();
    bool Redo();

private:
    enum class Edit : unsigned char { kNone, kType, kDelete, kOther };
    struct State {
        krocore::string16 text;
        std::size_t caret = 0;
        std::size_t anchor = 0;
    };

    std::size_t Aligned(std::size_t position) const;
    std::size_t Before(std::size_t position) const;
    std::size_t After(std::size_t position) const;
    std::size_t WordBefore(std::size_t position) const;
    std::size_t WordAfter(std::size_t position) const;
    void Remember(Edit edit);
    bool Replace(std::size_t from, std::size_t to, std::u16string_view text, Edit edit);

    State fState;
    std::vector<State> fUndo;
    std::vector<State> fRedo;
    std::size_t fMaxLength = kNoLimit;
    Edit fLastEdit = Edit::kNone;
};

} // namespace kroui::controls
