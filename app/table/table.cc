#include "app/table/table.h"

#include <algorithm>
#include <utility>

#include "app/look/controls.h"

namespace console {
namespace {

// The line of a border is the last pixel of its column. It is taken hold of up to four pixels
// beside that line, and the buttons of the heads leave so much free before and behind it.
constexpr int kBeforeBorder = 5, kBehindBorder = 4;
// The text of a head is this far from its side.
constexpr int kHeadText = 5;
// The height of a note with a button below it.
constexpr int kNoteWithButton = 20 + 10 + 26;
// The table draws the lines between heads.
constexpr uint32_t kHeadStyle = XWC_ENABLED | XWC_HEADER | XWC_VARIANT;

// How far a head's button ends before its column.
int HeadEnd(const Column& c) {
  return c.align == Align::kRight ? std::max(kBeforeBorder, c.padding - kHeadText) : kBeforeBorder;
}

}  // namespace

// --- Controls

void Table::MakeControls(XwWindow* window, int id, const char* name) {
  id_ = id;
  bar_ = XwScrollBar(window, id, 0, 0, 0, 0, XWC_ENABLED | XWC_EDGE, 0, 0, kRowHeight, 1, 0);
  name_ = name;
  XwDescribeControl(bar_, name);
  for (size_t i = 0; i < columns_.size(); ++i) {
    const Column& c = columns_[i];
    const uint32_t align = c.align == Align::kRight ? XWC_RIGHT : XWC_LEFT;
    heads_.push_back(
        c.sorts ? XwButton(window, c.title, id + 1 + int(i), 0, 0, 0, 0, kHeadStyle | align, 0)
                : nullptr);
  }
}

void Table::Enable(bool on) {
  EnableControl(bar_, on);
  for (XwWindow* head : heads_)
    if (head) EnableControl(head, on);
}

int Table::HeadOf(int id) const {
  const int column = id - id_ - 1;
  const bool own = bar_ && column >= 0 && size_t(column) < heads_.size();
  return own && heads_[size_t(column)] ? column : -1;
}

bool Table::Scrolled(int id, int value) {
  if (!bar_ || id != id_) return false;
  ScrollTo(value);
  return true;
}

void Table::SetSort(int column, bool descending) {
  const int sort_before = std::exchange(sort_, column);
  descending_ = descending;
  for (size_t i = 0; i < heads_.size(); ++i) {
    if (!heads_[i]) continue;
    uint32_t& style = heads_[i]->style;
    const uint32_t before = style;
    const bool sorts = int(i) == column, sorted = int(i) == sort_before;
    style = descending ? style | XWC_SORT_DOWN : style & ~uint32_t{XWC_SORT_DOWN};
    if (style != before || sorts != sorted) XwSetValue(heads_[i], sorts ? 1 : 0);
  }
}

void Table::PlaceControls() {
  for (size_t i = 0; i < heads_.size(); ++i) PlaceControl(heads_[i], HeadArea(int(i)));
  PlaceControl(bar_, Bar());
  const int64_t all = std::min<int64_t>(int64_t{rows_} * kRowHeight, INT32_MAX);
  if (Scrolls()) XwSetScrollRange(bar_, 0, int(all) - 1, kRowHeight, Body().h, top_);
}

// --- Geometry

void Table::Place(const Area& a) {
  const int kept = focus();
  const bool whole = top_ % kRowHeight == 0;
  const bool seen =
      kept >= 0 && RowArea(kept).bottom() > Body().y && RowArea(kept).y < Body().bottom();
  area_ = a;
  LayOutColumns();
  top_ = std::clamp(top_, 0, MostTop());
  PlaceControls();
  if (seen) Reveal(kept);
  if (whole) StandAtARow(seen ? kept : -1);
}

// The first row shows as a whole, unless `kept` would lose its end by that.
void Table::StandAtARow(int kept) {
  const int part = top_ % kRowHeight;
  if (part == 0) return;
  const int64_t end = (int64_t{kept} + 1) * kRowHeight - Body().h;
  if (top_ - part + kRowHeight <= MostTop())
    ScrollTo(top_ - part + kRowHeight);
  else if (top_ - part >= end)
    ScrollTo(top_ - part);
}

void Table::SetRows(int rows) {
  rows_ = rows < 0 ? 0 : rows;
  top_ = std::clamp(top_, 0, MostTop());
  PlaceControls();
}

bool Table::Scrolls() const {
  return int64_t{rows_} * kRowHeight > area_.h - kHeaderHeight;
}

Area Table::Body() const {
  Area a = area_;
  a.TakeTop(kHeaderHeight);
  if (Scrolls()) a.TakeRight(kScrollBar);
  return a;
}

Area Table::Bar() const {
  Area a = area_;
  a.TakeTop(kHeaderHeight);
  if (!Scrolls()) return {};
  a = a.TakeRight(kScrollBar);
  if (framed_) a.TakeRight(kFrameWidth), a.TakeBottom(kFrameWidth);
  return a;
}

void Table::SetFramed(bool on) {
  if (std::exchange(framed_, on) != on) PlaceControls();
}

int Table::MostTop() const {
  return int(std::clamp<int64_t>(int64_t{rows_} * kRowHeight - Body().h, 0, INT32_MAX));
}

Area Table::RowArea(int row) const {
  const Area body = Body();
  const int64_t y = body.y + int64_t{row} * kRowHeight - top_;
  return {body.x, int(std::clamp<int64_t>(y, INT32_MIN / 2, INT32_MAX / 2)), body.w, kRowHeight};
}

// Columns above that rank have no room.
int Table::ShownRank(int room) const {
  int rank = 0;
  for (const Column& c : columns_) rank = std::max(rank, c.rank);
  for (; rank > 0; --rank) {
    int need = 0;
    for (const Column& c : columns_) need += c.rank <= rank ? c.width : 0;
    if (need <= room) break;
  }
  return rank;
}

// Drops columns until the rest has room, then gives away what is spare, or takes what is missing.
// The bar's room is never theirs, so that they stay where they are when it comes.
void Table::LayOutColumns() {
  const int room = std::max(0, area_.w - kScrollBar), rank = ShownRank(room);
  left_.assign(columns_.size(), 0);
  width_.assign(columns_.size(), 0);
  asked_.resize(columns_.size());
  int need = 0, shares = 0;
  for (size_t i = 0; i < columns_.size(); ++i) {
    if (columns_[i].rank > rank) continue;
    width_[i] = asked_[i] ? asked_[i] : columns_[i].width;
    need += width_[i];
    shares += columns_[i].share;
  }
  int spare = std::max(0, room - need), x = Body().x;
  for (size_t i = 0; i < columns_.size(); ++i) {
    if (width_[i] == 0 || shares == 0) continue;
    const int more = spare * columns_[i].share / shares;
    spare -= more;
    shares -= columns_[i].share;
    width_[i] += more;
  }
  ShrinkColumns(need - room);
  for (size_t i = 0; i < columns_.size(); ++i) {
    left_[i] = x;
    x += width_[i];
  }
}

// From those that the user has made wider first, then from any.
void Table::ShrinkColumns(int excess) {
  for (const bool any : {false, true}) {
    for (size_t i = 0; i < columns_.size() && excess > 0; ++i) {
      if (width_[i] == 0 || !asked_[i]) continue;
      const int least = any ? LeastWidth(int(i)) : columns_[i].width;
      const int less = std::clamp(width_[i] - least, 0, excess);
      width_[i] -= less;
      excess -= less;
    }
  }
}

int Table::LeastWidth(int column) const {
  const Column& c = columns_[size_t(column)];
  return std::min(c.width, 2 * c.padding + c.indent + 26);
}

int Table::NextColumn(int column) const {
  for (int i = column + 1; i < int(columns_.size()); ++i)
    if (width_[size_t(i)] > 0) return i;
  return -1;
}

void Table::ResetColumns() {
  asked_.assign(columns_.size(), 0);
  LayOutColumns();
  PlaceControls();
}

std::vector<int> Table::AskedWidths() const {
  const bool any = std::any_of(asked_.begin(), asked_.end(), [](int width) { return width > 0; });
  return any ? asked_ : std::vector<int>();
}

void Table::AskWidths(std::vector<int> widths) {
  widths.resize(columns_.size());
  for (size_t i = 0; i < widths.size(); ++i)
    if (widths[i] > 0) widths[i] = std::max(widths[i], LeastWidth(int(i)));
  asked_ = std::move(widths);
  LayOutColumns();
  PlaceControls();
}

Area Table::ColumnArea(int column) const {
  if (column < 0 || size_t(column) >= width_.size() || width_[size_t(column)] == 0) return {};
  return {left_[size_t(column)], area_.y, width_[size_t(column)], area_.h};
}

Area Table::NoteArea() const {
  constexpr int kLine = 20, kMostAbove = 26;
  const Area body = Body();
  const Area last = RowArea(rows_);
  Area below = body.Inset(12, 0);
  below.TakeTop(std::max(0, last.y - body.y));
  if (note_.empty() || below.h < kLine) return {};
  const int all = below.h < kNoteWithButton ? kLine : kNoteWithButton;
  if (rows_ > 0 && all == kLine) return {};
  below.TakeTop(std::min((below.h - all) / 2, rows_ > 0 ? kMostAbove : below.h));
  return below.TakeTop(kLine);
}

Area Table::NoteButton() const {
  constexpr int kButtonWidth = 120, kButtonHeight = 26;
  const Area note = NoteArea(), body = Body();
  const Area button{body.x + (body.w - kButtonWidth) / 2, note.bottom() + 10, kButtonWidth,
                    kButtonHeight};
  return note.Empty() || button.bottom() > body.bottom() ? Area{} : button;
}

// The head's button: its text stands over that of the cells, and the borders beside it are free.
Area Table::HeadArea(int column) const {
  const Area c = ColumnArea(column);
  if (c.Empty() || area_.h < kHeaderHeight) return {};
  const Column& shape = columns_[size_t(column)];
  const int before = std::max(kBehindBorder, shape.padding + shape.indent - kHeadText);
  const bool to_the_edge = NextColumn(column) < 0 && shape.align != Align::kRight;
  const int right =
      std::min(to_the_edge ? c.right() + 1 : c.right() - HeadEnd(shape), area_.right());
  return {c.x + before, area_.y, right - c.x - before, kHeaderHeight};
}

Area Table::BorderArea(int column) const {
  const Area c = ColumnArea(column);
  if (c.Empty() || NextColumn(column) < 0) return {};
  return {c.right() - kBeforeBorder, area_.y, kBeforeBorder + kBehindBorder,
          std::min(kHeaderHeight, area_.h)};
}

Area Table::CellArea(int column, int y, int h) const {
  const int padding = columns_[size_t(column)].padding;
  const Area c = ColumnArea(column);
  Area cell{c.x + padding, y, c.w - 2 * padding, h};
  cell.w = std::min(cell.w, Body().right() - cell.x);
  return cell;
}

// --- Selection and scrolling

void Table::ScrollTo(int top) {
  const int before = top_;
  top_ = std::clamp(top, 0, MostTop());
  if (top_ != before && top_ != XwGetValue(bar_)) PlaceControls();
}

void Table::Reveal(int row) {
  if (row < 0) return;
  const int64_t y = int64_t{row} * kRowHeight;
  if (y < top_)
    ScrollTo(int(y));
  else if (y + kRowHeight > int64_t{top_} + Body().h)
    ScrollTo(int(y + kRowHeight - Body().h));
}

void Table::Select(int row) {
  if (row < 0 || rows_ == 0) return selection_->Clear();
  selection_->MoveTo(std::min(row, rows_ - 1), {});
  Reveal(focus());
}

bool Table::Key(int type, SelectionKeys keys) {
  const int page = std::max(1, Fits() - 1), now = focus();
  // Where nothing is selected, the row that has the keyboard is the first one.
  const bool begins = now >= 0 && !keys.control && !selection_->Any();
  int to = 0;
  switch (type) {
    case XWE_UP:
      to = now < 0 ? rows_ - 1 : begins ? now : now - 1;
      break;
    case XWE_DOWN:
      to = begins ? now : now + 1;
      break;
    case XWE_PAGE_UP:
      to = now - page;
      break;
    case XWE_PAGE_DOWN:
      to = std::max(0, now) + page;
      break;
    case XWE_HOME:
      break;
    case XWE_END:
      to = rows_ - 1;
      break;
    case ' ':
      if (keys.control) selection_->ToggleFocus();
      return keys.control;
    default:
      return false;
  }
  selection_->MoveTo(to, keys);
  Reveal(focus());
  return true;
}

bool Table::Wheel(float dy) {
  const int before = top_;
  wheel_ += dy;
  const int whole = int(std::clamp(wheel_, -1e6f, 1e6f));
  wheel_ -= float(whole);
  ScrollTo(int(std::clamp<int64_t>(int64_t{top_} + whole, 0, INT32_MAX)));
  if (whole != 0 && top_ == before) wheel_ = 0;
  return top_ != before;
}

// --- Drawing

int32_t CellColor(const CellLook& c, int32_t colour) {
  const Style& l = TheStyle();
  if (c.selected || c.muted) return c.ink;
  // What reads well on white is faint there.
  return c.background == l.inactive_selection ? Mix(colour, l.ink, 75) : colour;
}

void Table::AddTips(Hits* hits, int row, const Area& shown,
                    const std::vector<std::string>& cut) const {
  for (int i = 0; i < int(cut.size()); ++i)
    if (!cut[size_t(i)].empty())
      hits->Add({owner_, kRow, row}, CellArea(i, shown.y, shown.h), {0, 0, "", "", cut[size_t(i)]});
}

void Table::AddHits(Hits* hits, const std::function<Words(int row)>& words,
                    const CutTexts& cut) const {
  if (area_.Empty()) return;
  std::vector<int> widths;
  for (int i = 0; i < int(columns_.size()); ++i)
    widths.push_back(ColumnArea(i).Empty() ? 0 : CellArea(i, area_.y, kRowHeight).w);
  const Area body = Body();
  const uint32_t state = XWT_FOCUSABLE | (focused_ ? uint32_t{XWT_FOCUSED} : 0);
  hits->Add({owner_, kBody, 0}, body, {XWA_TABLE, state, name_, std::to_string(rows_)});
  if (!body.Empty()) {
    const int last = std::min<int64_t>(rows_, (int64_t{top_} + body.h - 1) / kRowHeight + 1);
    for (int row = top_ / kRowHeight; row < last; ++row) {
      Area a = RowArea(row);
      if (a.y < body.y) a.h -= body.y - a.y, a.y = body.y;
      a.h = std::min(a.h, body.bottom() - a.y);
      Words said = words ? words(row) : Words{};
      if (IsSelected(row)) said.state |= XWT_SELECTED;
      hits->Add({owner_, kRow, row}, a, said);
      if (cut) AddTips(hits, row, a, cut(row, widths));
    }
  }
  for (int i = 0; i < int(columns_.size()); ++i) hits->Add({owner_, kBorder, i}, BorderArea(i));
}

// What lies around a head's button, or stands in its place.
void Table::DrawHead(int column) const {
  const Style& l = TheStyle();
  const Column& c = columns_[size_t(column)];
  const Area all = ColumnArea(column);
  Area head{all.x, area_.y, all.w, std::min(kHeaderHeight, area_.h) - 1};
  // From border to border: each is the end of a head.
  if (column == sort_) Fill(head, XwThemeColor(XWR_UTILITY));
  if (NextColumn(column) >= 0) LineDown(all.right() - 1, head.y + 4, head.h - 8);
  if (c.sorts) return;  // its button has all else
  Area text = CellArea(column, head.y, head.h);
  text.TakeLeft(c.indent);
  DrawLabel(l.small_text, c.align, text, c.title, l.ink);
}

void Table::DrawHeader(const Hit& hover) const {
  const Style& l = TheStyle();
  Area head = area_;
  head.h = std::min(kHeaderHeight, area_.h);
  Fill(head, l.tool_bar);
  LineAtBottom(head);
  bool lit = false;
  for (int i = 0; i < int(columns_.size()); ++i) {
    if (ColumnArea(i).Empty()) continue;
    DrawHead(i);
    // The border that is under the pointer, at the left of the column behind it.
    if (lit) Fill({ColumnArea(i).x - 1, head.y + 3, 2, head.h - 7}, l.accent);
    lit = hover == Hit{owner_, kBorder, i} || (held_ == kABorder && border_ == i);
  }
}

void Table::DrawRow(int row, const Hit& hover) const {
  const Style& l = TheStyle();
  const Area a = RowArea(row);
  CellLook cell{};
  cell.muted = IsMuted(row);
  const bool chosen = IsSelected(row);
  cell.selected = chosen && focused_ && !cell.muted;
  cell.background = row % 2 ? l.row : l.document;
  if (chosen)
    cell.background = cell.selected ? l.accent : l.inactive_selection;
  else if (hover == Hit{owner_, kRow, row})
    cell.background = Mix(l.accent, cell.background, 7);
  cell.ink = cell.selected ? l.on_accent : cell.muted ? Dimmed(l.ink, cell.background) : l.ink;
  cell.second = cell.selected ? Mix(l.on_accent, l.accent, 80)
                : cell.muted  ? cell.ink
                : chosen      ? Mix(l.second, l.ink, 75)
                              : l.second;
  Fill(a, cell.background);
  for (int i = 0; i < int(columns_.size()); ++i) {
    if (ColumnArea(i).Empty()) continue;
    cell.area = CellArea(i, a.y, a.h);
    cell.align = columns_[size_t(i)].align;
    draw_(row, i, cell);
  }
  // Where a key would go on from, when the background does not tell.
  if (focused_ && row == focus() && selected() != row) {
    XwSetColor(cell.selected ? Mix(l.on_accent, l.accent, 60) : Mix(l.accent, l.document, 70));
    XwDrawRect(a.x, a.y, a.w, a.h);
  }
}

bool Table::ShowsFocus() const {
  const int first = top_ / kRowHeight;
  for (int row = first; row < rows_ && RowArea(row).y < Body().bottom(); ++row)
    if (IsSelected(row) && !IsMuted(row)) return true;
  return false;
}

void Table::DrawGap() const {
  const Style& l = TheStyle();
  const Area body = Body();
  const int y = std::clamp(RowArea(gap()).y, body.y + 2, body.bottom() - 2);
  Fill({body.x + 6, y - 1, body.w - 8, 2}, l.dark_accent);
  XwRoundBox(body.x + 2, y - 3, 6, 6, 3, l.document, l.dark_accent);
}

void Table::Draw(const Hit& hover) {
  if (area_.Empty()) return;
  const Style& l = TheStyle();
  const Area body = Body();
  XwClip(uint16_t(area_.x), uint16_t(area_.y), uint16_t(area_.w), uint16_t(area_.h));
  DrawHeader(hover);
  if (!body.Empty()) {
    XwClip(uint16_t(body.x), uint16_t(body.y), uint16_t(body.w), uint16_t(body.h));
    const int last = std::min<int64_t>(rows_, (int64_t{top_} + body.h - 1) / kRowHeight + 1);
    for (int row = top_ / kRowHeight; row < last; ++row) DrawRow(row, hover);
    const int below = std::max(body.y, RowArea(last).y);
    Fill({body.x, below, body.w, body.bottom() - below}, l.document);
    DrawLabel(l.view, Align::kCenter, NoteArea(), note_, l.second);
    if (gap() >= 0 && shows_gap_) DrawGap();
    if (focused_ && !ShowsFocus()) DrawFocusRing(body, l.document);
  }
  XwClip(0, 0, 0, 0);
}

}  // namespace console
