// How the caret moves in an edit box: by characters, by words, to the ends.
#include <algorithm>
#include <numeric>

#include "platform/controls/edit_state.h"
#include "platform/text/characters.h"
#include "platform/text/utf8.h"

namespace platform {
namespace {

size_t PlaceBefore(const std::vector<size_t>& places, size_t at) {
  auto after = std::upper_bound(places.begin(), places.end(), at);
  return after == places.begin() ? 0 : after[-1];
}

enum class WordClass : uint8_t { kSpace, kLetter, kSign };

WordClass ClassAt(std::string_view text, size_t at) {
  std::string_view rest = text.substr(at);
  const char32_t c = TakeUtf8(&rest);
  if (c == ' ' || c == 0xA0 || c == 0x3000 || (c >= 0x2000 && c <= 0x200A))
    return WordClass::kSpace;
  if (c < 0x80) {
    const bool letter = (c >= '0' && c <= '9') || ((c | 32) >= 'a' && (c | 32) <= 'z') || c == '_';
    return letter ? WordClass::kLetter : WordClass::kSign;
  }
  const bool sign = (c < 0xC0 && c != 0xAA && c != 0xB5 && c != 0xBA) || c == 0xD7 || c == 0xF7 ||
                    (c >= 0x2010 && c <= 0x206F) || (c >= 0x3001 && c <= 0x303F);
  return sign ? WordClass::kSign : WordClass::kLetter;
}

// The far end of the next word on that side of a place; spaces before it are skipped.
size_t WordEnd(std::string_view text, const std::vector<size_t>& places, size_t at, bool back) {
  size_t i = size_t(std::lower_bound(places.begin(), places.end(), at) - places.begin());
  const size_t end = back ? 0 : places.size() - 1;
  auto next = [&] { return ClassAt(text, places[back ? i - 1 : i]); };
  while (i != end && next() == WordClass::kSpace) i += back ? -1 : 1;
  if (i == end) return places[end];
  const WordClass word = next();
  while (i != end && next() == word) i += back ? -1 : 1;
  return places[i];
}

}  // namespace

std::vector<size_t> CaretPlaces(const EditState& e, std::string_view text) {
  if (IsAscii(text)) {
    std::vector<size_t> places(text.size() + 1);
    std::iota(places.begin(), places.end(), size_t{0});
    return places;
  }
  TextLine line;
  LayOutText(e.font, text, &line);
  std::vector<size_t> places;
  places.reserve(line.clusters.size());
  for (const TextCluster& c : line.clusters) places.push_back(c.start);
  return places;
}

size_t EditMoveTarget(const EditState& e, EditMove move) {
  const std::vector<size_t> places = CaretPlaces(e, e.text);
  auto here = std::lower_bound(places.begin(), places.end(), e.caret);
  switch (move) {
    case EditMove::kLeft:
      return here == places.begin() ? 0 : here[-1];
    case EditMove::kRight:
      return e.caret >= e.text.size() ? e.text.size() : *std::next(here);
    case EditMove::kWordLeft:
      return WordEnd(e.text, places, e.caret, true);
    case EditMove::kWordRight:
      return WordEnd(e.text, places, e.caret, false);
    case EditMove::kHome:
      return 0;
    case EditMove::kEnd:
      break;
  }
  return e.text.size();
}

void PlaceEditCaret(EditState* e, size_t caret) {
  e->caret = e->anchor = caret;
  e->joins = false;
}

bool IsWordSpace(std::string_view text, size_t at) {
  return ClassAt(text, at) == WordClass::kSpace;
}

void SelectEdit(EditState* e, size_t anchor, size_t caret) {
  const std::vector<size_t> places = CaretPlaces(*e, e->text);
  e->anchor = PlaceBefore(places, anchor);
  e->caret = PlaceBefore(places, caret);
  e->joins = false;
}

void SelectEditWord(EditState* e, size_t at) {
  if (e->text.empty()) return;
  const std::vector<size_t> places = CaretPlaces(*e, e->text);
  size_t first = size_t(std::upper_bound(places.begin(), places.end(), at) - places.begin()) - 1;
  first = std::min(first, places.size() - 2);
  const WordClass word = ClassAt(e->text, places[first]);
  size_t last = first + 1;
  while (first > 0 && ClassAt(e->text, places[first - 1]) == word) --first;
  while (last + 1 < places.size() && ClassAt(e->text, places[last]) == word) ++last;
  SelectEdit(e, places[first], places[last]);
}

size_t EditOffset(const EditState& e, size_t characters) {
  std::string_view rest = e.text;
  while (characters-- && !rest.empty()) TakeUtf8(&rest);
  return e.text.size() - rest.size();
}

void MoveEditCaret(EditState* e, EditMove move, bool extend) {
  const size_t anchor = e->anchor;
  const bool sideways = move == EditMove::kLeft || move == EditMove::kRight;
  const size_t to = sideways && e->selects() && !extend
                        ? (move == EditMove::kLeft ? e->first() : e->last())
                        : EditMoveTarget(*e, move);
  PlaceEditCaret(e, to);
  if (extend) e->anchor = anchor;
}

}  // namespace platform
