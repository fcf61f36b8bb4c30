// The line of text that an edit box holds: caret, selection, and what can be undone. It knows no
// windows. Carets stand between the clusters of the layout (platform/fonts/fonts.h).
#pragma once
#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "platform/fonts/fonts.h"

namespace platform {

// One step of undo: at `at`, `removed` gave place to `inserted`.
struct EditChange {
  size_t at = 0;
  std::string removed, inserted;
  size_t caret = 0, anchor = 0;  // before it
  bool typed = false;
};

enum class EditMove : uint8_t { kLeft, kRight, kWordLeft, kWordRight, kHome, kEnd };

// Offsets are bytes of `text`, which is valid UTF-8.
struct EditState {
  const SizedFont* font = nullptr;
  std::string text;
  size_t caret = 0, anchor = 0;  // what lies between them is selected
  std::string preedit;           // of an input method: shown at the caret, not yet in the text
  std::vector<EditChange> undo, redo;
  bool joins = false;  // the next typed character belongs to the newest change

  size_t first() const { return std::min(caret, anchor); }
  size_t last() const { return std::max(caret, anchor); }
  bool selects() const { return caret != anchor; }
  std::string_view selected() const {
    return std::string_view(text).substr(first(), last() - first());
  }
};

// What a box takes of a text from outside, which is UTF-8: its first line, at most 64 KiB, without
// control characters.
std::string EditLine(std::string_view text);

// All of the text, from a program: the caret goes to its end, and nothing can be undone.
void SetEditState(EditState* e, std::string_view text);

// --- edit_moves.cc
// The ends of the selection; both are moved to the nearest place for a caret before them.
void SelectEdit(EditState* e, size_t anchor, size_t caret);
// The word, the run of spaces or of other signs around a place.
void SelectEditWord(EditState* e, size_t at);
// The end of a character that is the n-th; the end of the text when there are fewer.
size_t EditOffset(const EditState& e, size_t characters);
// `extend` leaves the other end of the selection; else a move sideways first goes to the end of the
// selection on that side.
void MoveEditCaret(EditState* e, EditMove move, bool extend);
// The places for a caret in a text that this box's font lays out, ascending.
std::vector<size_t> CaretPlaces(const EditState& e, std::string_view text);
// Where a move of the caret goes.
size_t EditMoveTarget(const EditState& e, EditMove move);
// Nothing is selected, and the next typed character begins a change.
void PlaceEditCaret(EditState* e, size_t caret);
// Whether the character at this offset is a space that ends a word.
bool IsWordSpace(std::string_view text, size_t at);

// --- edit_state.cc

// These change the text; false when nothing changed. An insertion replaces the selection; `typed`
// joins it to the characters of the word typed before.
bool InsertEdit(EditState* e, std::string_view text, bool typed);
// The selection, else from the caret to where the move goes.
bool DeleteEdit(EditState* e, EditMove move);
bool UndoEdit(EditState* e);
bool RedoEdit(EditState* e);

}  // namespace platform
