// Making windows, and the tree that they hang in.
#include <algorithm>
#include <cstdlib>

#include "platform/windows/windows.h"
#include "toolkit/core/alive.h"
#include "toolkit/core/hooks.h"
#include "toolkit/core/record.h"
#include "toolkit/core/saturate.h"
#include "toolkit/core/trace.h"
#include "toolkit/drawing/fonts.h"
#include "toolkit/windows/panes.h"
#include "toolkit/windows/tree.h"

using namespace platform;

namespace {

constexpr int kSlotStep = 20;
constexpr int kStandardAttributes = kWindowStandardHandlerAttribute | kWindowCloseBoxAttribute |
                                    kWindowFullZoomAttribute | kWindowCollapseBoxAttribute;

struct StyleRow {
  int window_class;
  int16_t brush;
  bool modal_group, independent, select;
};
// By style index.
constexpr StyleRow kStyles[8] = {
    {kAlertWindowClass, 52, false, false, false},   {kDocumentWindowClass, 0, false, false, false},
    {kFloatingWindowClass, 7, false, false, false}, {kDocumentWindowClass, 1, true, false, true},
    {kFloatingWindowClass, 7, false, true, false},  {kDocumentWindowClass, 0, false, false, false},
    {kAlertWindowClass, 3, false, false, true},     {kToolbarWindowClass, 0, false, false, false},
};

struct Style {
  int window_class;
  uint32_t attributes;
  const StyleRow* row;
};

Style DecodeStyle(XwValue value) {
  if (value < -256 || value > -1)
    return {kDocumentWindowClass, uint32_t{kStandardAttributes}, &kStyles[0]};
  uint8_t bits = uint8_t(value);
  const StyleRow& row = kStyles[bits & 7];
  uint32_t attributes = kWindowStandardHandlerAttribute;
  if (bits & 8) attributes |= kWindowCollapseBoxAttribute;
  if (bits & 16) attributes |= kWindowFullZoomAttribute;
  if (bits & 32) attributes |= kWindowCloseBoxAttribute;
  return {row.window_class, attributes, &row};
}

void TakeContentBounds(XwWindow* w) {
  Rect c = GetWindowBounds(NativeWindow(w), kWindowContentRgn);
  w->x = Sat16(c.left);
  w->y = Sat16(c.top);
  w->width = Sat16(c.width());
  w->height = Sat16(c.height());
}

void FixSize(XwWindow* w) {
  w->min_width = w->max_width = SatU16(w->width);
  w->min_height = w->max_height = SatU16(w->height);
  w->step_x = w->step_y = 0;
}

void ApplyStyle(XwWindow* w, const StyleRow& row) {
  WindowRef native = NativeWindow(w);
  w->brush = row.brush;
  if (row.brush) SetThemeWindowBackground(native, row.brush, false);
  if (row.modal_group) {
    ChangeWindowAttributes(native, 0, kWindowInWindowMenuAttribute);
    SetWindowGroup(native, GetWindowGroupOfClass(kModalWindowClass));
  }
  if (row.independent) SetWindowActivationScope(native, 1);
  if (row.select) SelectWindow(native);
}

void BecomeFirst(XwWindow* w) {
  W_Start = W_End = w;
  XwSetText(w, SessionTitle);
  SetWindowGroup(NativeWindow(w), static_cast<WindowGroupRef>(XW_DockedWindowsGroup));
  ChangeWindowAttributes(NativeWindow(w), 0, kWindowInWindowMenuAttribute);
}

// Makes the native window; false, with the record freed, when the display refuses.
bool MakeNative(XwWindow* w, int window_class, uint32_t attributes, const Rect& content) {
  w->platform = CreateNewWindow(window_class, attributes, content);
  if (!w->platform) {
    Refuse(Refusal::kDisplayRefused);
    free(w);
    return false;
  }
  EnterLive(w);
  install_event_handlers(w);
  return true;
}

XwWindow* CreateTopLevel(XwValue value, int x, int y, int width, int height, XwHandler handler) {
  if (!W_Root || !HasRoom(W_Root)) return nullptr;
  XwWindow* w = NewRecord();
  Style style = DecodeStyle(value);
  bool full_screen = width == 0 || height == 0;
  if (full_screen) {
    x = 0;
    y = GetMBarHeight();
    width = XW_SCREENX;
    height = XW_SCREENY - y;
  }
  x = Sat16(x);
  y = Sat16(y);
  // A window has at least one pixel.
  width = Sat16(width) < 1 ? 1 : Sat16(width);
  height = Sat16(height) < 1 ? 1 : Sat16(height);
  if (!MakeNative(w, style.window_class, style.attributes, {x, y, x + width, y + height}))
    return nullptr;
  WindowRef native = NativeWindow(w);
  if (full_screen) {
    ChangeWindowAttributes(native, kWindowNoConstrainAttribute, 0);
    SetWindowFullScreen(native, true);
  }
  Rect structure = ConstrainWindowToScreen(native);
  MoveWindowStructure(native, structure.left, structure.top);
  TakeContentBounds(w);
  ApplyStyle(w, *style.row);
  FixSize(w);
  if (W_Start)
    EnterCreationList(w);
  else
    BecomeFirst(w);
  w->parent = W_Root;
  AddSubWindow(W_Root, w);
  w->handler = handler;
  w->cursor = XWcursors[0];
  Trace(Subject::kWindows, "create top-level %d %d %d %d", w->x, w->y, w->width, w->height);
  return w;
}

XwWindow* CreateSub(XwWindow* parent, int x, int y, int width, int height, XwHandler handler) {
  if (!CheckWindow(parent) || !HasRoom(parent)) return nullptr;
  XwWindow* w = NewRecord();
  w->kind = kSubWindow;
  w->x = Sat16(x);
  w->y = Sat16(y);
  w->width = Sat16(width);
  w->height = Sat16(height);
  int ox = w->x, oy = w->y;
  for (XwWindow* up = parent; up && up->kind != 0; up = up->parent) {
    ox += up->x;
    oy += up->y;
  }
  w->origin_x = Sat16(ox);
  w->origin_y = Sat16(oy);
  EnterCreationList(w);
  EnterLive(w);
  w->platform = NativeWindow(parent);
  parent->flags |= XW_HAS_SUBWINDOWS;
  AddSubWindow(parent, w);
  w->parent = parent;
  EnterPane(w);
  w->handler = handler;
  w->cursor = XWcursors[0];
  Trace(Subject::kWindows, "create sub-window %d %d %d %d", w->x, w->y, w->width, w->height);
  return w;
}

}  // namespace

// A window holds at most 32767 children, since the count has 16 bits.
bool HasRoom(const XwWindow* parent) {
  if (parent->child_count < INT16_MAX) return true;
  for (int i = parent->free_slot; i < parent->child_count; ++i)
    if (!parent->children[i]) return true;
  Refuse(Refusal::kTooManyChildren);
  return false;
}

void EnterCreationList(XwWindow* w) {
  w->previous = W_End;
  if (W_End) W_End->next = w;
  W_End = w;
}

XwWindow* XwCreate(XwValue parent_or_style, int x, int y, int width, int height,
                   XwHandler handler) {
  if (parent_or_style > 0)
    return CreateSub(reinterpret_cast<XwWindow*>(parent_or_style), x, y, width, height, handler);
  return CreateTopLevel(parent_or_style, x, y, width, height, handler);
}

XwWindow* XwCreateDocked(XwWindow* parent, int x, int y, int width, int height, XwHandler handler) {
  if (!CheckWindow(parent) || !HasRoom(parent)) return nullptr;
  XwWindow* w = NewRecord();
  x = Sat16(x);
  y = Sat16(y);
  width = Sat16(width) < 1 ? 1 : Sat16(width);
  height = Sat16(height) < 1 ? 1 : Sat16(height);
  if (!MakeNative(w, kSimpleWindowClass, kWindowStandardHandlerAttribute | kWindowNoShadowAttribute,
                  {x, y, x + width, y + height}))
    return nullptr;
  TakeContentBounds(w);
  w->brush = 3;
  SetThemeWindowBackground(NativeWindow(w), 3, false);
  SetWindowGroup(NativeWindow(w), static_cast<WindowGroupRef>(XW_DockedWindowsGroup));
  FixSize(w);
  EnterCreationList(w);
  AddSubWindow(parent, w);
  w->parent = parent;
  w->handler = handler;
  w->flags2 |= XW_DOCKED;
  w->cursor = XWcursors[0];
  return w;
}

void AddSubWindow(XwWindow* parent, XwWindow* child) {
  if (parent != W_Root && !CheckWindow(parent)) return;
  // A record stands in one list only.
  if (!parent || !CheckWindow(child) || child == parent || child->slot >= 0) return;
  int i = parent->free_slot;
  while (i < parent->child_count && parent->children[i]) ++i;
  if (i == parent->child_count) {
    if (parent->child_count == INT16_MAX) return;
    if (parent->child_count == parent->capacity) {
      // Big families grow by half, so that a child costs the same in each.
      parent->capacity += std::max(kSlotStep, parent->capacity / 2 / kSlotStep * kSlotStep);
      parent->children = static_cast<XwWindow**>(
          realloc(parent->children, size_t(parent->capacity) * sizeof(XwWindow*)));
    }
    ++parent->child_count;
  }
  parent->children[i] = child;
  parent->free_slot = i + 1;
  child->slot = i;
  if (child->kind == kSubWindow) ++parent->subwindows;
}

XwWindow* XwFind(XwWindow* parent, int32_t id) {
  if (!parent || (parent != W_Root && !IsLive(parent))) return nullptr;
  for (int i = 0; i < parent->child_count; ++i) {
    XwWindow* c = parent->children[i];
    if (c && c->id == id) return c;
  }
  return nullptr;
}

int IsSubWindow(XwWindow* window, XwWindow* candidate) {
  if (!IsLive(candidate) || !window) return 0;
  for (XwWindow* up = candidate->parent; up; up = up->parent)
    if (up == window) return 1;
  return 0;
}
