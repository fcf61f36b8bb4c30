// Moving and sizing windows.
#include "platform/access/access.h"
#include "platform/windows/windows.h"
#include "toolkit/core/alive.h"
#include "toolkit/core/post.h"
#include "toolkit/core/record.h"
#include "toolkit/core/saturate.h"
#include "toolkit/target/clip.h"
#include "toolkit/target/selection.h"
#include "toolkit/windows/control_bounds.h"
#include "toolkit/windows/item_texts.h"
#include "toolkit/windows/panes.h"

using namespace platform;

namespace {

constexpr int kComboButtonRoom = 25;  // to the right of the edit box

void SetBounds(XwWindow* w, int x, int y, int width, int height) {
  w->x = Sat16(x);
  w->y = Sat16(y);
  w->width = Sat16(width);
  w->height = Sat16(height);
}

void MoveSub(XwWindow* w, int x, int y, int width, int height) {
  if (w->x == Sat16(x) && w->y == Sat16(y) && w->width == Sat16(width) &&
      w->height == Sat16(height))
    return;
  SetBounds(w, x, y, width, height);
  w->origin_x = w->x;
  w->origin_y = w->y;
  UpdatePane(w);
  NoticeChange(w->serial, Change::kBounds);
  ResetClipMask(w->parent);
  ResetClipsFrom(w);
  PostExpose(w->parent);
  PostExpose(w);
  XwWindow* parent = w->parent;
  for (int i = 0; i < parent->child_count; ++i) {
    XwWindow* c = parent->children[i];
    if (c && IsSub(c)) PostExpose(c);
  }
}

void MoveControl(XwWindow* w, int x, int y, int width, int height) {
  x = Sat16(x);
  y = Sat16(y);
  width = Sat16(width);
  height = Sat16(height);
  auto control = static_cast<ControlRef>(w->platform);
  const bool shown = w->flags & XW_SHOWN;
  if (shown) RedrawInParent(w, {x, y, x + width, y + height});
  SetBounds(w, x, y, width, RecordedHeight(w->kind, w->style, height));
  SetControlBounds(control, ControlRect(w->kind, w->style, x, y, width, height));
  SetControlArea(control, {x, y, x + width, y + w->height});
  if (shown) Draw1Control(control);
  ResetClipMask(w->parent);
  if (IsEditableCombo(w) && w->linked)
    MoveControl(w->linked, x, y, width - kComboButtonRoom, height);
}

void MoveTopLevel(XwWindow* w, int x, int y, int width, int height) {
  WindowRef native = NativeWindow(w);
  SetWindowFullScreen(native, false);
  bool docked = w->flags2 & XW_DOCKED;
  if (docked) {
    x = Sat16(x) + w->parent->x;
    y = Sat16(y) + w->parent->y;
    // Out of the group for now, so that the first window does not follow.
    SetWindowGroup(native, GetWindowGroupOfClass(kDocumentWindowClass));
  }
  ResetClipMask(w);
  SetBounds(w, x, y, width, height);
  if (w->width < 1) w->width = 1;
  if (w->height < 1) w->height = 1;
  SetWindowBounds(native, {w->x, w->y, w->x + w->width, w->y + w->height});
  SetEventRect(w->x, w->y, w->width, w->height);
  XwSendEvent(w, XWE_CONFIGURE, 0, 0, 0);
  if (docked) SetWindowGroup(native, static_cast<WindowGroupRef>(XW_DockedWindowsGroup));
}

}  // namespace

void XwMove(XwWindow* w, int x, int y, int width, int height) {
  if (!CheckWindow(w)) return;
  TargetScope scope;
  if (IsSub(w))
    MoveSub(w, x, y, width, height);
  else if (IsTopLevel(w))
    MoveTopLevel(w, x, y, width, height);
  else
    MoveControl(w, x, y, width, height);
}

void XwCenter(XwWindow* w, XwWindow* reference) {
  if (!CheckWindow(w) || !CheckWindow(reference)) return;
  XwMove(w, reference->x + reference->width / 2 - w->width / 2,
         reference->y + reference->height / 2 - w->height / 2, w->width, w->height);
}

void XwSetFullScreen() {
  if (!CheckWindow(W_Start)) return;
  int top = GetMBarHeight();
  XwMove(W_Start, 0, top, XW_SCREENX, XW_SCREENY - top);
  SetSystemUIMode(kUIModeContentSuppressed, 0);
}

double XwGetScale(XwWindow* w) {
  return WindowScale(IsLive(w) ? NativeWindow(w) : nullptr);
}

void XwSetSizes(XwWindow* w, int min_width, int min_height, int max_width, int max_height,
                int step_x, int step_y) {
  if (!CheckWindow(w)) return;
  w->min_width = SatU16(min_width);
  w->min_height = SatU16(min_height);
  w->max_width = SatU16(max_width);
  w->max_height = SatU16(max_height);
  w->step_x = SatU16(step_x);
  w->step_y = SatU16(step_y);
  if (!IsTopLevel(w)) return;
  WindowRef native = NativeWindow(w);
  ChangeWindowAttributes(native, kWindowResizableAttribute, 0);
  SetWindowSizeLimits(
      native, {w->min_width, w->min_height, w->max_width, w->max_height, w->step_x, w->step_y});
}
