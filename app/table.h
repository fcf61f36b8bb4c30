// A table that the program draws: a header that sorts, rows of columns, a selection, scrolling.
//
// The table knows nothing of what it shows: it asks for each visible cell to be drawn, and tells by
// results what the user wants. Its owner places it, enters its areas into the window's hits
// while drawing, and hands over keys, wheel and pointer.
#pragma once
#include <cstdint>
#include <functional>
#include <vector>

#include "app/hits.h"
#include "app/style.h"

namespace console {

struct Column {
  const char* title;
  int width;      // with its padding; the least where the column takes of what is spare
  int share = 0;  // of the spare width, in proportion to the other columns' shares
  Align align = Align::kLeft;
  bool sorts = false;
  int rank = 0;      // columns of the highest rank go first where the room is too narrow; 0 stays
  int padding = 10;  // left and right
  int indent = 0;    // of the title, beyond the padding: over the text of cells with an icon
};

// What a cell is drawn on and with.
struct CellLook {
  Area area;  // without the column's padding
  Align align;
  int32_t ink, second, background;
  bool selected;  // on the accent: colours of states give way to the ink
  bool muted;
};
// A colour that means something, on a cell: itself, but for selected and muted ones.
int32_t CellColor(const CellLook& c, int32_t colour);

class Table {
 public:
  static constexpr int kHeaderHeight = 22, kRowHeight = 22, kScrollBar = 15;
  // Parts of hits; the index is the column or the row. A border is that at a column's right.
  enum Part { kHeader = 1, kRow, kBody, kThumb, kBefore, kAfter, kBorder };

  using DrawCell = std::function<void(int row, int column, const CellLook&)>;
  Table(int owner, std::vector<Column> columns, DrawCell draw)
      : owner_(owner), columns_(std::move(columns)), draw_(std::move(draw)) {}

  // Laid out again; the selection stays in sight if it was.
  void Place(const Area& a);
  void SetRows(int rows);
  int rows() const { return rows_; }
  // The row is cut to what exists; below 0 is none. Scrolls it into sight.
  void Select(int row);
  // The same without scrolling: for a list that was filled again.
  void KeepSelected(int row) { selected_ = row < rows_ ? row : -1; }
  int selected() const { return selected_; }
  void ScrollTo(int top);
  int top() const { return top_; }
  void Reveal(int row);

  void SetFocused(bool on) { focused_ = on; }
  void SetMuted(bool on) { muted_ = on; }
  // Shown in the middle of a table without rows.
  void SetEmptyText(const char* text) { empty_ = text; }
  // The column that shows the arrow, -1 none.
  void SetSort(int column, bool descending) {
    sort_ = column;
    descending_ = descending;
  }

  void Draw(const Hit& hover);
  void AddHits(Hits* hits) const;

  // Arrows, Home, End, Page Up, Page Down: true when the key was one of them.
  bool Key(int type);
  // Logical pixels, positive down. True when something moved.
  bool Wheel(float dy);
  // A press on a part, at (px, py); then each motion while it is held. True when to be redrawn.
  // The border of two columns moves room from one to the other; the widths stay in proportion to
  // the table's from then on.
  bool Press(const Hit& hit, int px, int py);
  bool Drag(int px, int py);
  void Release() { dragging_ = 0; }
  // Columns as wide as they were at first.
  void ResetColumns();

  const Area& area() const { return area_; }
  // What the rows take: without header and scroll bar.
  Area Body() const;
  Area RowArea(int row) const;
  // Of a shown column; empty for one that has gone.
  Area ColumnArea(int column) const;

 private:
  void LayOutColumns();
  int ShownRank(int room) const;
  void ShrinkColumns(int excess);
  int LeastWidth(int column) const;
  // The next shown column, -1 for none.
  int NextColumn(int column) const;
  bool DragBorder(int px);
  bool DragThumb(int py);
  int Fits() const { return Body().h / kRowHeight; }
  int MostTop() const;
  bool Scrolls() const;
  Area Bar() const;
  Area Thumb() const;
  Area CellArea(int column, int y, int h) const;
  void DrawHeader(const Hit& hover) const;
  void DrawRow(int row, const Hit& hover) const;
  void DrawBar(const Hit& hover) const;

  int owner_;
  std::vector<Column> columns_;
  DrawCell draw_;
  std::vector<int> left_, width_;
  std::vector<int> asked_;  // widths that the user has given, 0: none
  Area area_;
  int rows_ = 0, selected_ = -1, top_ = 0;
  int sort_ = -1;
  bool descending_ = false, focused_ = false, muted_ = false;
  int dragging_ = 0;  // the part that is held: kThumb, kBorder, 0
  int border_ = 0;    // of which column
  int grip_ = 0;      // where in the thumb, or beside the border, it was pressed
  float wheel_ = 0;   // of a pixel not yet moved
  const char* empty_ = "";
};

}  // namespace console
