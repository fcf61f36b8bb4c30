// What the keyboard does to a list.
#include <algorithm>

#include "platform/events/key_characters.h"
#include "platform/lists/list.h"
#include "platform/text/letters.h"
#include "platform/text/utf8.h"

namespace platform {
namespace {

constexpr double kTypingTime = 1;  // between two keys of one beginning
constexpr size_t kLongestTyped = 256;

void Choose(Control* c, int row) {
  const int count = ListOf(c).rows.count();
  if (count == 0) return;
  row = std::clamp(row, 0, count - 1);
  const bool changes = row != ListOf(c).selected;
  SelectAndShow(c, row);
  if (changes) HitRow(c, true);
}

// The row that a key which moves goes to; -2 for other keys.
int RowByKey(const Control* c, uint8_t key) {
  const List& l = ListOf(c);
  const int last = l.rows.count() - 1, page = std::max(1, RowsInView(c) - 1);
  switch (key) {
    case kHomeKey:
      return 0;
    case kEndKey:
      return last;
    case kUpKey:
      return l.selected < 0 ? last : l.selected - 1;
    case kDownKey:
      return l.selected + 1;
    case kPageUpKey:
      return std::max(0, l.selected - page);
    case kPageDownKey:
      return std::max(0, l.selected) + page;
    default:
      return -2;
  }
}

// A new search starts behind the selected row; a longer text may match that row again.
void Type(Control* c, const Event& e) {
  List& l = ListOf(c);
  const bool fresh = l.typed.empty() || e.time - l.typed_at > kTypingTime;
  if (fresh) l.typed.clear();
  l.typed_at = e.time;
  for (std::string_view text = e.key.text; !text.empty() && l.typed.size() < kLongestTyped;)
    l.typed += FoldTyped(TakeUtf8(&text));
  const int count = l.rows.count(), from = std::max(0, l.selected + (fresh ? 1 : 0));
  for (int i = 0; i < count; ++i) {
    const int row = int((int64_t{from} + i) % count);
    if (BeginsWithTyped(l.rows[row], l.typed)) return Choose(c, row);
  }
}

}  // namespace

bool ListKey(Control* c, const Event& e) {
  if (e.key.modifiers & kShortcut) return false;
  if (const int row = RowByKey(c, e.key.character); row != -2) {
    Choose(c, row);
    return true;
  }
  if (!e.key.text[0]) return false;
  if (e.kind == kEventRawKeyDown) Type(c, e);
  return true;
}

}  // namespace platform
