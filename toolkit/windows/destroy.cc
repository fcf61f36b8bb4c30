// Tear-down of a window and everything below it. No pointer to the window is left behind.
#include <cstdlib>
#include <utility>
#include <vector>

#include "platform/controls/controls.h"
#include "platform/graphics/context.h"
#include "platform/menus/menus.h"
#include "platform/windows/windows.h"
#include "toolkit/core/alive.h"
#include "toolkit/core/post.h"
#include "toolkit/core/record.h"
#include "toolkit/core/state.h"
#include "toolkit/core/trace.h"
#include "toolkit/target/selection.h"
#include "toolkit/windows/boxes.h"
#include "toolkit/windows/described.h"
#include "toolkit/windows/panes.h"
#include "toolkit/windows/tips.h"

using namespace platform;
using toolkit::state;

namespace {

void ReleaseInput(XwWindow* w) {
  if (GrabWindow == w) {
    // An active grab's flag and cursor stay until the program ends the grab.
    GrabWindow = nullptr;
    PassiveGrab = false;
  }
  if (Inp.focus == w) Inp.focus = nullptr;
  if (Inp.window == w) Inp.window = nullptr;
  if (W_MenuBar == w) W_MenuBar = nullptr;
}

void FreeContents(XwWindow* w) {
  free(w->children);
  w->children = nullptr;
  w->child_count = 0;
  w->capacity = w->free_slot = 0;
  XFreebl(w->boxes);
  w->boxes = nullptr;
  ForgetDescribed(w);
  ForgetTips(w);
  if (!(w->flags & XW_DATA_NOT_OWNED)) free(w->user_data);
  w->user_data = nullptr;
  free(w->text);
  w->text = nullptr;
}

// A box that is destroyed with the focus sends no event.
void EndControl(XwWindow* w) {
  w->flags &= uint8_t(~XW_EDITING);
  DisposeControl(static_cast<ControlRef>(w->platform));
}

void EndNative(XwWindow* w) {
  ResetClipMask(w);
  if ((w->flags2 & XW_DOCKED) && IsLive(W_Start) && !state.first_window_ended)
    ActivateWindow(NativeWindow(W_Start), true);
  if (IsTopLevel(w))
    DisposeWindow(static_cast<WindowRef>(w->platform));
  else if (IsSub(w))
    LeavePane(w);
  else
    EndControl(w);
  DisposeMenu(static_cast<MenuRef>(w->menu));
  w->menu = nullptr;
  w->platform = nullptr;
}

void LeaveCreationList(XwWindow* w) {
  if (w->previous) w->previous->next = w->next;
  if (w->next)
    w->next->previous = w->previous;
  else
    W_End = w->previous;
}

void LeaveParent(XwWindow* w) {
  XwWindow* parent = w->parent;
  if (!parent) return;
  if (parent->toolbar == w) parent->toolbar = nullptr;
  if (w->slot >= 0 && w->slot < parent->child_count && parent->children[w->slot] == w) {
    parent->children[w->slot] = nullptr;
    if (w->slot < parent->free_slot) parent->free_slot = w->slot;
    if (w->kind == kSubWindow && --parent->subwindows == 0) parent->flags &= ~XW_HAS_SUBWINDOWS;
  }
}

void Unlink(XwWindow* w) {
  if (w->linked_by) w->linked_by->linked = nullptr;
  if (w->linked) w->linked->linked_by = nullptr;
}

// The first window's record stays, empty, at the head of the creation list.
void EmptyRecord(XwWindow* w) {
  XwWindow *next = w->next, *previous = w->previous;
  *w = XwWindow();
  w->color = -1;
  w->slot = -1;
  w->next = next;
  w->previous = previous;
}

// What comes before the children end.
void Begin(XwWindow* w) {
  if (w == W_Start) state.first_window_ended = true;
  XwTimer(w, 0, 0);
  for (XwTimerSlot& slot : Timers)
    if (slot.window == w) slot.window = nullptr;
  ResetClipMask(w->parent);
  ReleaseInput(w);
}

// What comes after; the record itself stays.
void Finish(XwWindow* w) {
  FreeContents(w);
  ForgetTarget(w);
  EndNative(w);
  Unlink(w);
  LeaveParent(w);
  if (w != W_Start) LeaveCreationList(w);
  LeaveLive(w);
}

void FreeRecord(XwWindow* w) {
  Trace(Subject::kWindows, "destroy");
  if (w == W_Start)
    EmptyRecord(w);
  else
    free(w);
}

// Ends everything below a window, each after its children. Windows may be nested as deep as memory
// allows, so the way down is kept here and not on the stack.
void DestroyBelow(XwWindow* top) {
  struct Level {
    XwWindow* w;
    int next;  // child to look at
  };
  std::vector<Level> way{{top, 0}};
  while (!way.empty()) {
    Level& level = way.back();
    if (level.next < level.w->child_count) {
      XwWindow* child = level.w->children[level.next++];
      if (!child || !CheckWindow(child)) continue;
      Begin(child);
      if (child->child_count > 0) {
        way.push_back({child, 0});
      } else {
        Finish(child);
        FreeRecord(child);
      }
      continue;
    }
    XwWindow* done = level.w;
    way.pop_back();
    if (way.empty()) break;
    Finish(done);
    FreeRecord(done);
  }
}

}  // namespace

// Files that are over it are over it no more. Its handler may destroy it, too; the event that is
// being handled stays as it is.
static void EndDrag(XwWindow* w) {
  state.dragged_over = nullptr;
  if (!w->drag_handler) return;
  TargetScope scope;
  XwWindow* const window = std::exchange(Inp.window, w);
  const auto item = std::exchange(Inp.item, 0);
  w->drag_handler(XW_DRAG_LEFT);
  Inp.window = IsLive(window) ? window : nullptr;
  Inp.item = item;
}

void XwDestroy(XwWindow* w) {
  if (!w || !CheckWindow(w)) return;
  if (w == state.dragged_over) EndDrag(w);
  if (!IsLive(w)) return;
  Begin(w);
  if (w->child_count > 0) DestroyBelow(w);
  Finish(w);
  PurgeEvents(w);
  FreeRecord(w);
}
