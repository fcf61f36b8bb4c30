// What the pointer does to a list: the row under it is selected while it is held, and the list
// scrolls while it is held above or below.
#include <algorithm>
#include <cstdlib>

#include "platform/lists/list.h"

namespace platform {
namespace {

constexpr double kScrollPeriod = 0.05;

// -1 where no row is.
int RowAt(const Control* c, Point at) {
  const Rect area = RowsArea(c);
  if (!area.contains(at)) return -1;
  const int place = (at.y - area.top) / kListRow, row = ListOf(c).top + place;
  return place < RowsInView(c) && row < ListOf(c).rows.count() ? row : -1;
}

// Rows to scroll by at the pointer's place: the farther it is, the more; 0 inside.
int StepsOutside(const Control* c) {
  const Rect area = RowsArea(c);
  const int y = ListOf(c).pointer.y;
  if (y < area.top) return -1 - (area.top - y) / kListRow;
  return y >= area.bottom ? 1 + (y - area.bottom) / kListRow : 0;
}

// Selects the row in view that is nearest to the pointer.
void Follow(Control* c) {
  List& l = ListOf(c);
  if (l.rows.count() == 0) return;
  const int place = (l.pointer.y - RowsArea(c).top) / kListRow;
  const int row = l.top + std::clamp(place, 0, RowsInView(c) - 1);
  ListSelectRow(c, std::min(row, l.rows.count() - 1));
  Draw1Control(c);
}

void ScrollOn(EventLoopTimerRef, void* control) {
  auto* c = static_cast<Control*>(control);
  if (!IsValidControl(c) || !c->active) return;
  ScrollList(c, ListOf(c).top + StepsOutside(c));
  Follow(c);
}

}  // namespace

void StopListScrolling(List* list) {
  RemoveEventLoopTimer(list->scroll_timer);
  list->scroll_timer = nullptr;
}

bool PressList(Control* c, Point at) {
  List& l = ListOf(c);
  const int row = RowAt(c, at);
  if (row < 0) return false;
  l.selected_before = l.selected;
  l.pointer = at;
  Follow(c);
  return true;
}

void DragList(Control* c, Point at) {
  List& l = ListOf(c);
  if (!c->active) return;
  l.pointer = at;
  Follow(c);
  if (StepsOutside(c) == 0)
    StopListScrolling(&l);
  else if (!l.scroll_timer)
    l.scroll_timer = InstallEventLoopTimer(kScrollPeriod, kScrollPeriod, ScrollOn, c);
}

bool ReleaseList(Control* c, bool) {
  if (!c->active) return LoseList(c), false;
  StopListScrolling(&ListOf(c));
  if (ListOf(c).selected >= 0) HitRow(c, false);
  return false;  // the hit has been sent
}

void LoseList(Control* c) {
  StopListScrolling(&ListOf(c));
  ListSelectRow(c, ListOf(c).selected_before);
  Draw1Control(c);
}

}  // namespace platform
