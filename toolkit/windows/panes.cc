#include "toolkit/windows/panes.h"

#include <vector>

#include "platform/windows/windows.h"
#include "toolkit/core/record.h"
#include "toolkit/target/colors.h"

using namespace platform;

namespace {

Rect InContent(const XwWindow* w) {
  return {w->origin_x, w->origin_y, w->origin_x + w->width, w->origin_y + w->height};
}

PaneRef Known(const XwWindow* w) {
  return IsTopLevel(w) ? RootPane(NativeWindow(w)) : static_cast<PaneRef>(w->pane);
}

void Make(XwWindow* w) {
  const XwWindow* above = w->parent;
  while (IsControl(above)) above = above->parent;
  w->pane = CreatePane(Known(above), InContent(w), w->slot);
  UpdatePane(w);
}

void MakeBelow(XwWindow* top) {
  std::vector<XwWindow*> left{top};
  while (!left.empty()) {
    XwWindow* at = left.back();
    left.pop_back();
    for (int i = 0; i < at->child_count; ++i) {
      XwWindow* c = at->children[i];
      if (!c || !IsSub(c)) continue;
      Make(c);
      left.push_back(c);
    }
  }
}

}  // namespace

PaneRef PaneOf(XwWindow* w) {
  if (!w || IsControl(w)) return nullptr;
  XwWindow* top = TopLevel(w);
  if (!top) return nullptr;
  if (!(top->flags2 & XW_HAS_PANES)) {
    top->flags2 |= XW_HAS_PANES;
    MakeBelow(top);
  }
  return Known(w);
}

void EnterPane(XwWindow* w) {
  const XwWindow* top = TopLevel(w);
  if (top && (top->flags2 & XW_HAS_PANES)) Make(w);
}

void UpdatePane(XwWindow* w) {
  auto pane = static_cast<PaneRef>(w->pane);
  if (!pane) return;
  SetPaneBackground(pane, w->brush, IsRealColor(w->color) ? ColorToRgb(w->color) : kNoColor);
  SetPaneBounds(pane, InContent(w));
  ShowPane(pane, w->flags & XW_SHOWN);
}

void LeavePane(XwWindow* w) {
  DisposePane(static_cast<PaneRef>(w->pane));
  w->pane = nullptr;
}

void RedrawInParent(XwWindow* control, const Rect& area) {
  XwWindow* parent = control->parent;
  const bool sub = parent && IsSub(parent);
  RedrawPane(PaneOf(parent), Offset(area, sub ? parent->origin_x : 0, sub ? parent->origin_y : 0));
}
