// What a table does while a row or a border is held: ranges, what is carried, widths of columns.
#include <algorithm>

#include "app/table/table.h"

namespace console {
namespace {

// Of scrolling by a drag, pixels at a time.
constexpr int kFastest = 3 * Table::kRowHeight;
// How far beyond its rows the table scrolls for what is carried.
constexpr int kCarryReach = 2 * Table::kHeaderHeight;

}  // namespace

bool Table::Press(const Hit& hit, int px, SelectionKeys keys) {
  switch (hit.part) {
    case kRow:
    case kBody:
      held_ = kARow;
      top_before_ = top_;
      from_below_ = hit.part == kBody;
      held_row_ = from_below_ ? rows_ : hit.index;
      may_carry_ =
          carries_ && !from_below_ && !keys.shift && !keys.control && selection_->Has(held_row_);
      selection_->Press(held_row_, keys);
      return true;
    case kBorder:
      if (ColumnArea(hit.index).Empty()) return false;
      held_ = kABorder;
      border_ = hit.index;
      grip_ = px - ColumnArea(border_).right();
      asked_before_ = asked_;
      return true;
    default:
      return false;
  }
}

bool Table::Drag(int px, int py) {
  if (held_ == kABorder) return DragBorder(px);
  if (!HoldsRow()) return false;
  const int before = gap();
  drag_x_ = px;
  if (held_ == kAway && area_.Holds(px, py)) {
    held_ = kRows;
    held_row_ = -1;  // whichever row is there, it ends a range
  }
  return DragRows(py) || gap() != before;
}

bool Table::TakeUp() {
  if (from_below_ || (held_ != kARow && held_ != kRows)) return false;
  held_ = kAway;
  ScrollTo(top_before_);
  selection_->TakeUp();
  return true;
}

void Table::Release() {
  if (HoldsRow()) selection_->Release();
  held_ = kNothing;
}

bool Table::Cancel() {
  if (held_ == kNothing) return false;
  if (held_ == kABorder) {
    asked_ = asked_before_;
    LayOutColumns();
    PlaceControls();
  } else {
    selection_->Cancel();
  }
  held_ = kNothing;
  return true;
}

// The row under the pointer, or at the edge that it is beyond. After a press below the rows, the
// room there counts as one more row.
bool Table::DragRows(int py) {
  const Area body = Body();
  drag_y_ = py;
  if (rows_ == 0 || body.Empty() || held_ == kAway) return false;
  const int y = std::clamp(py, body.y, body.bottom() - 1) - body.y;
  const int last = from_below_ ? rows_ : rows_ - 1;
  const int row = int(std::min<int64_t>((int64_t{top_} + y) / kRowHeight, last));
  const bool leaves = row != held_row_ || !area_.Holds(drag_x_, py);
  if (held_ == kCarried || (may_carry_ && leaves)) return CarryTo(y);
  if (row == held_row_) return false;
  held_ = kRows;
  held_row_ = row;
  selection_->DragTo(row);
  return true;
}

// To the border of two rows that is the nearest.
bool Table::CarryTo(int y) {
  const int64_t at = (int64_t{top_} + y + kRowHeight / 2) / kRowHeight;
  const bool begins = held_ != kCarried;
  const int before = gap_;
  if (begins) selection_->TakeUp();
  held_ = kCarried;
  gap_ = int(std::clamp<int64_t>(at, std::min(first_gap_, rows_), rows_));
  return begins || gap_ != before;
}

bool Table::ScrollsByDrag() const {
  const Area body = Body();
  // What is carried far away goes somewhere else.
  if (held_ != kRows && held_ != kCarried) return false;
  const int reach = held_ == kCarried ? kCarryReach : INT32_MAX / 2;
  return (drag_y_ < body.y && drag_y_ >= body.y - reach) ||
         (drag_y_ >= body.bottom() && drag_y_ < body.bottom() + reach);
}

// The faster the farther away the pointer is.
bool Table::ScrollByDrag() {
  if (!ScrollsByDrag()) return false;
  const Area body = Body();
  const int beyond = drag_y_ < body.y ? drag_y_ - body.y : drag_y_ - body.bottom() + 1;
  const int before = top_;
  ScrollTo(top_ + std::clamp(beyond, -kFastest, kFastest));
  return DragRows(drag_y_) || top_ != before;
}

bool Table::DragBorder(int px) {
  const int next = NextColumn(border_);
  const Area a = ColumnArea(border_);
  if (next < 0 || a.Empty()) return false;
  const int both = a.w + width_[size_t(next)], least = LeastWidth(border_);
  const int most = std::max(least, both - LeastWidth(next));
  const int w = std::clamp(px - grip_ - a.x, least, most);
  if (w == a.w) return false;
  // What is seen is what was asked for.
  for (size_t i = 0; i < columns_.size(); ++i)
    if (width_[i] > 0) asked_[i] = width_[i];
  asked_[size_t(border_)] = w;
  asked_[size_t(next)] = both - w;
  LayOutColumns();
  PlaceControls();
  return true;
}

}  // namespace console
