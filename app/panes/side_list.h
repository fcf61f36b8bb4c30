// A list in a side pane: rows of one height that scroll, one of which the keyboard is at. Its owner
// draws the rows and says what they are; the bar is a control.
#pragma once
#include <functional>
#include <string>

#include "app/look/hits.h"
#include "app/model/type_ahead.h"
#include "app/panes/scrolled_area.h"

namespace console {

class SideList {
 public:
  // Parts of hits; the index is the row. A mark is a small thing in a row that is pressed by
  // itself.
  enum Part { kRow = 1, kBody, kMark };

  SideList(int owner, int row_height)
      : owner_(owner), row_height_(row_height), scroll_(row_height) {}
  // Its bar gets the id. It ends with the window.
  void MakeControls(XwWindow* window, int id, const char* name);
  // A report of the bar: false when the id is another's.
  bool Scrolled(int id, int value) { return scroll_.Scrolled(id, value); }
  void Enable(bool on) { scroll_.Enable(on); }

  // Empty: nothing shows. The row that the keyboard is at stays in sight if it was.
  void Place(const Area& a);
  // As many rows, the keyboard at that one, -1 none. Nothing scrolls but for what has gone.
  void SetRows(int rows, int at);
  int rows() const { return rows_; }
  int at() const { return at_; }
  // The same, cut to what exists, and scrolled into sight.
  void GoTo(int row);
  // Arrows, Home, End, Page Up, Page Down: true when the key was one of them.
  bool Key(int type);
  // A typed character goes to the next row whose name begins with what was typed. False when it is
  // none for that: a space that begins nothing.
  bool Type(int character, uint32_t now_ms, const std::function<std::string(int row)>& name);
  // Logical pixels, positive down. True when something moved.
  bool Wheel(float dy) { return scroll_.Wheel(dy); }

  const Area& area() const { return scroll_.area(); }
  // Whether the row that the keyboard is at is in sight.
  bool ShowsRow() const { return at_ >= 0 && !Visible(RowArea(at_)).Empty(); }
  // What the rows take.
  Area Body() const { return scroll_.Body(); }
  Area RowArea(int row) const;
  // What shows of a part of a row; empty when nothing does.
  Area Visible(const Area& a) const { return scroll_.Visible(a); }
  // Each row that shows, cut to the body.
  void DrawRows(const std::function<void(int row, const Area&)>& draw) const;
  // The body, then each row that shows with its words, then its mark, if `mark` has an area for it.
  void AddHits(Hits* hits, bool focused, const std::function<Words(int row)>& words,
               const std::function<void(int row)>& add_mark = {}) const;

 private:
  int First() const { return scroll_.top() / row_height_; }
  int Last() const;

  int owner_, row_height_;
  int rows_ = 0, at_ = -1;
  ScrolledArea scroll_;
  TypeAhead typed_;
  const char* name_ = "";
};

}  // namespace console
