// The record of this room, and what its files share.
#pragma once
#include <string>
#include <unordered_map>

#include "platform/controls/control.h"
#include "platform/events/timers.h"
#include "platform/lists/lists.h"
#include "platform/lists/rows.h"

namespace platform {

struct List {
  ListRows rows;
  int top = 0;  // the first row in view
  int selected = -1;
  int last_click = -1;
  // While the pointer holds it.
  int selected_before = -1;
  Point pointer;
  EventLoopTimerRef scroll_timer = nullptr;
  // What has been typed to find a row by its beginning, without case.
  std::u32string typed;
  double typed_at = 0;
  // Of the rows that were described.
  std::unordered_map<int, uint64_t> serials;
};

extern const KindRow kListKind;
inline List& ListOf(const Control* c) {
  return *static_cast<List*>(c->data);
}

// --- lists.cc
// In the content of the window: where rows show, and whole rows that there is room for, at least 1.
Rect RowsArea(const Control* c);
int RowsInView(const Control* c);
// Cuts `top` to the range of the scroll bar.
void ScrollList(Control* c, int top);
// Selects a row as the user does, and scrolls to it.
void SelectAndShow(Control* c, int row);
// Reports the selected row as chosen.
void HitRow(Control* c, bool by_key);

// --- pointer.cc
bool PressList(Control* c, Point at);
void DragList(Control* c, Point at);
bool ReleaseList(Control* c, bool inside);
void LoseList(Control* c);
void StopListScrolling(List* list);

// --- keys.cc
bool ListKey(Control* c, const Event& e);

}  // namespace platform
