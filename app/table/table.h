// A table: heads that sort, rows of columns, any number of them selected, scrolling. It draws its
// rows; the heads of columns that sort and the scroll bar are controls.
//
// The table knows nothing of what it shows: it asks for each visible cell to be drawn, and tells by
// results what the user wants. Its owner places it, enters its areas into the window's hits while
// drawing, and hands over keys, wheel, pointer and the reports of its controls.
#pragma once
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "app/look/hits.h"
#include "app/look/style.h"
#include "app/table/row_selection.h"

namespace console {

struct Column {
  const char* title;
  int width;      // with its padding; the least where the column takes of what is spare
  int share = 0;  // of the spare width, in proportion to the other columns' shares
  Align align = Align::kLeft;
  bool sorts = false;
  int rank = 0;      // columns of the highest rank go first where the room is too narrow; 0 stays
  int padding = 10;  // left and right
  int indent = 0;    // of the title, beyond the padding: over text behind an icon
};

// What a cell is drawn on and with.
struct CellLook {
  Area area;  // without the column's padding
  Align align;
  int32_t ink, second, background;
  bool selected;  // on the accent: colours of states give way to the ink
  bool muted;
};
// A colour that means something, on a cell: itself, but for selected and muted ones, which have one
// ink.
int32_t CellColor(const CellLook& c, int32_t colour);

class Table {
 public:
  static constexpr int kHeaderHeight = 22, kRowHeight = 22, kScrollBar = 15;
  // Parts of hits; the index is the column or the row. A border is that at a column's right.
  enum Part { kRow = 1, kBody, kBorder };

  using DrawCell = std::function<void(int row, int column, const CellLook&)>;
  // The selection lives as long as the table.
  Table(int owner, std::vector<Column> columns, DrawCell draw, RowSelection* selection)
      : owner_(owner),
        columns_(std::move(columns)),
        draw_(std::move(draw)),
        selection_(selection) {}

  // Makes its controls in the window: the bar with this id, the head of column n with n + 1 more.
  // Without them (a null window) it works, and cannot be scrolled or sorted by the pointer. They
  // end with the window.
  void MakeControls(XwWindow* window, int id, const char* name);
  // Whether its controls can be used.
  void Enable(bool on);
  // The column whose head has this id; -1 for other ids.
  int HeadOf(int id) const;
  // A report of its bar: false when the id is another's.
  bool Scrolled(int id, int value);

  // Laid out again; the row with the keyboard stays in sight if it was, and the first row whole.
  void Place(const Area& a);
  // The number of rows, once the selection knows them. Nothing is scrolled to.
  void SetRows(int rows);
  int rows() const { return rows_; }
  // That row alone, cut to what exists; below 0 is none. Scrolls it into sight.
  void Select(int row);
  // The selected row when it is the only one, else -1.
  int selected() const { return selection_->OnlyRow(); }
  bool IsSelected(int row) const { return selection_->Has(row); }
  // The row with the keyboard, -1: none.
  int focus() const { return selection_->FocusRow(); }
  void ScrollTo(int top);
  int top() const { return top_; }
  void Reveal(int row);

  void SetFocused(bool on) { focused_ = on; }
  // Whether its rows are old ones: they are grey, but for those of which `is_current` is true.
  void SetMuted(bool on, std::function<bool(int row)> is_current = {}) {
    muted_ = on;
    is_current_ = std::move(is_current);
  }
  // Shown in the middle of a table without rows, and below the rows where there is room; "": none.
  void SetNote(std::string text) { note_ = std::move(text); }
  // Where it stands; empty where there is none, or no room.
  Area NoteArea() const;
  // Where a button below the note stands; empty where there is no note, or no room.
  Area NoteButton() const;
  // The column that shows the arrow, -1 none.
  void SetSort(int column, bool descending);

  void Draw(const Hit& hover);
  // `words` says what a row is; the table is called as its bar is. `cut` gives, of a
  // row's cells with these widths, the whole texts that have no room, "" for others: they are the
  // tips of the cells. A width of 0 is that of a column that does not show.
  using CutTexts = std::function<std::vector<std::string>(int row, const std::vector<int>& widths)>;
  void AddHits(Hits* hits, const std::function<Words(int row)>& words = {},
               const CutTexts& cut = {}) const;

  // Arrows, Home, End, Page Up, Page Down, with Shift and Control; Control with Space: true when
  // the key was one of them.
  bool Key(int type, SelectionKeys keys = {});
  // Logical pixels, positive down. True when something moved.
  bool Wheel(float dy);
  // A press on a part, in column px of the window; then each motion while it is held. True when to
  // be redrawn. The border of two columns moves room from one to the other; the widths stay in
  // proportion to the table's from then on. From row to row all between them are selected, and from
  // below the rows all from the last one on.
  bool Press(const Hit& hit, int px, SelectionKeys keys = {});
  bool Drag(int px, int py);
  void Release();
  // Ends what is held as if it had not been pressed: selection and columns are as they were. False
  // when nothing is held.
  bool Cancel();
  // A row, or the room below the rows, is held: no other one may come under the pointer now.
  bool HoldsRow() const { return held_ >= kARow; }
  // Whether rows that are selected can be carried to another place in the table instead, and a line
  // shows where that is.
  void SetCarries(bool carries, bool shows_gap) {
    carries_ = carries;
    shows_gap_ = shows_gap;
  }
  // Nothing is carried to before this row.
  void SetFirstGap(int row) { first_gap_ = row; }
  bool Carries() const { return held_ >= kCarried; }
  // The pointer has left the table for something that takes its rows: what was pressed is carried
  // until the pointer comes back, when it selects a range again. It is scrolled as it was at the
  // press. False when no row was pressed, or rows are carried already.
  bool TakeUp();
  // The row before which what is being carried would go, rows() behind the last; -1: nothing is, or
  // the pointer is not over the table.
  int gap() const { return held_ == kCarried && area_.Holds(drag_x_, drag_y_) ? gap_ : -1; }
  // Rows are being dragged over, and the pointer is above or below them: from time to time the
  // table is to be scrolled on.
  bool ScrollsByDrag() const;
  bool ScrollByDrag();
  // Whether a frame is drawn around the pane that the table ends: its bar, which would cover that,
  // leaves room for it.
  void SetFramed(bool on);
  // Columns as wide as they were at first.
  void ResetColumns();
  // The widths that the user has given, a number a column, 0 where it is the usual one; empty when
  // all are. Too few ask nothing of the other columns, and those too many are passed over.
  std::vector<int> AskedWidths() const;
  void AskWidths(std::vector<int> widths);

  const Area& area() const { return area_; }
  // What the rows take: without header and scroll bar.
  Area Body() const;
  Area RowArea(int row) const;
  // Of a shown column; empty for one that has gone.
  Area ColumnArea(int column) const;

 private:
  void LayOutColumns();
  void StandAtARow(int kept);
  int ShownRank(int room) const;
  void ShrinkColumns(int excess);
  int LeastWidth(int column) const;
  // The next shown column, -1 for none.
  int NextColumn(int column) const;
  bool DragBorder(int px);
  bool DragRows(int py);
  bool CarryTo(int y);
  void DrawGap() const;
  int Fits() const { return Body().h / kRowHeight; }
  int MostTop() const;
  bool Scrolls() const;
  Area Bar() const;
  Area HeadArea(int column) const;
  Area BorderArea(int column) const;
  void PlaceControls();
  Area CellArea(int column, int y, int h) const;
  void AddTips(Hits* hits, int row, const Area& shown, const std::vector<std::string>& cut) const;
  void DrawHead(int column) const;
  void DrawHeader(const Hit& hover) const;
  void DrawRow(int row, const Hit& hover) const;
  bool IsMuted(int row) const { return muted_ && !(is_current_ && is_current_(row)); }
  // Whether a row that shows tells by its colour that the keyboard is here.
  bool ShowsFocus() const;

  int owner_;
  std::vector<Column> columns_;
  DrawCell draw_;
  std::vector<int> left_, width_;
  std::vector<int> asked_;         // widths that the user has given, 0: none
  std::vector<int> asked_before_;  // before a border was pressed
  Area area_;
  RowSelection* selection_;
  int rows_ = 0, top_ = 0;
  int sort_ = -1;
  bool descending_ = false, focused_ = false, muted_ = false;
  std::function<bool(int row)> is_current_;
  // kRows: a range is being selected. kAway: it was, before what was pressed was carried away.
  enum Held : uint8_t { kNothing, kABorder, kARow, kRows, kCarried, kAway } held_ = kNothing;
  bool framed_ = false;
  bool carries_ = false, shows_gap_ = false;
  bool may_carry_ = false;  // what is held
  int gap_ = 0, first_gap_ = 0;
  int held_row_ = -1;            // that was pressed, or was dragged to last
  bool from_below_ = false;      // the press was below the rows
  int drag_x_ = 0, drag_y_ = 0;  // where the pointer is
  int top_before_ = 0;           // before a row was pressed
  int border_ = 0;               // of which column
  int grip_ = 0;                 // where beside the border it was pressed
  float wheel_ = 0;              // of a pixel not yet moved
  std::string note_;
  int id_ = 0;
  std::string name_;
  XwWindow* bar_ = nullptr;
  std::vector<XwWindow*> heads_;  // null for columns that do not sort
};

}  // namespace console
