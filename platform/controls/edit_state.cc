#include "platform/controls/edit_state.h"

#include <algorithm>

#include "platform/text/characters.h"
#include "platform/text/utf8.h"

namespace platform {
namespace {

constexpr size_t kLongestLine = 64 << 10;
constexpr size_t kMostChanges = 500;

// Whether the typed text continues the word of the newest change, so that one undo removes both.
bool GoesOn(const EditState& e, std::string_view text) {
  if (!e.joins || e.undo.empty() || e.selects()) return false;
  const EditChange& newest = e.undo.back();
  if (!newest.typed || newest.at + newest.inserted.size() != e.caret) return false;
  // A space belongs to the word before it.
  const bool after_space = IsWordSpace(newest.inserted, CaretPlaces(e, newest.inserted).end()[-2]);
  return !after_space || IsWordSpace(text, 0);
}

// All changes go through here; `text` may join with what stands around it, so the caret moves on to
// the next place that there is.
void Change(EditState* e, size_t first, size_t last, std::string_view text, bool typed) {
  if (typed && first == last && GoesOn(*e, text)) {
    e->undo.back().inserted += text;
  } else {
    EditChange change{
        first, e->text.substr(first, last - first), std::string(text), e->caret, e->anchor, typed};
    if (e->undo.size() == kMostChanges) e->undo.erase(e->undo.begin());
    e->undo.push_back(std::move(change));
  }
  e->redo.clear();
  e->text.replace(first, last - first, text);
  const std::vector<size_t> places = CaretPlaces(*e, e->text);
  PlaceEditCaret(e, *std::lower_bound(places.begin(), places.end(), first + text.size()));
  e->joins = typed;
}

}  // namespace

std::string EditLine(std::string_view text) {
  const size_t end = text.find_first_of("\r\n");
  text = text.substr(0, std::min(end, text.size()));
  text = text.substr(0, CutUtf8(text, kLongestLine));
  std::string line;
  while (!text.empty()) {
    const char32_t c = TakeUtf8(&text);
    char bytes[4];
    if (KindOf(c) != CharacterKind::kControl) line.append(bytes, size_t(PutUtf8(c, bytes)));
  }
  return line;
}

void SetEditState(EditState* e, std::string_view text) {
  const SizedFont* font = e->font;
  *e = EditState();
  e->font = font;
  e->text = text;
  PlaceEditCaret(e, e->text.size());
}

bool InsertEdit(EditState* e, std::string_view text, bool typed) {
  if (text.empty()) return false;
  Change(e, e->first(), e->last(), text, typed);
  return true;
}

bool DeleteEdit(EditState* e, EditMove move) {
  const size_t from = e->selects() ? e->anchor : EditMoveTarget(*e, move);
  const size_t first = std::min(from, e->caret), last = std::max(from, e->caret);
  if (first == last) return false;
  Change(e, first, last, "", false);
  return true;
}

bool UndoEdit(EditState* e) {
  if (e->undo.empty()) return false;
  EditChange change = std::move(e->undo.back());
  e->undo.pop_back();
  e->text.replace(change.at, change.inserted.size(), change.removed);
  e->caret = change.caret;
  e->anchor = change.anchor;
  e->joins = false;
  e->redo.push_back(std::move(change));
  return true;
}

bool RedoEdit(EditState* e) {
  if (e->redo.empty()) return false;
  EditChange change = std::move(e->redo.back());
  e->redo.pop_back();
  e->text.replace(change.at, change.removed.size(), change.inserted);
  const std::vector<size_t> places = CaretPlaces(*e, e->text);
  PlaceEditCaret(
      e, *std::lower_bound(places.begin(), places.end(), change.at + change.inserted.size()));
  e->undo.push_back(std::move(change));
  return true;
}

}  // namespace platform
