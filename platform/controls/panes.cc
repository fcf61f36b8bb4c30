#include <algorithm>

#include "platform/controls/control.h"
#include "platform/windows/internal.h"

namespace platform {

PaneRef RootPane(WindowRef w) {
  if (!IsValidWindow(w)) return nullptr;
  if (!w->controls) {
    w->controls = new WindowControls;
    w->controls->window = w;
    w->controls->root.owner = w->controls;
    w->controls->root.shown = true;
  }
  return &w->controls->root;
}

PaneRef CreatePane(PaneRef parent, const Rect& bounds, int order) {
  if (!parent) return nullptr;
  auto* p = new Pane;
  p->owner = parent->owner;
  p->parent = parent;
  p->bounds = bounds;
  p->order = order;
  parent->children.push_back(p);
  return p;
}

namespace {

bool LiesIn(const Pane* p, const Pane* above) {
  for (; p; p = p->parent)
    if (p == above) return true;
  return false;
}

void DeletePane(Pane* p) {
  for (Pane* child : p->children) DeletePane(child);
  delete p;
}

template <typename Function>
void ForEachIn(const Pane* p, Function function) {
  for (Control* c = p->owner->first; c;) {
    Control* next = c->next;
    if (LiesIn(c->pane, p)) function(c);
    c = next;
  }
}

}  // namespace

void DisposePane(PaneRef p) {
  if (!p || !p->parent) return;
  ForEachIn(p, DisposeControl);
  std::erase(p->parent->children, p);
  DeletePane(p);
}

void SetPaneBounds(PaneRef p, const Rect& bounds) {
  if (!p || p->bounds == bounds) return;
  p->bounds = bounds;
  if (PaneShows(p))
    ForEachIn(p, [](Control* c) {
      if (IsControlVisible(c))
        RedrawArea(OwnerOf(c), c->pane, OwnerOf(c).focus == c ? RingArea(c) : ControlArea(c));
    });
}

void ShowPane(PaneRef p, bool shown) {
  if (!p || p->shown == shown) return;
  p->shown = shown;
  if (shown)
    ForEachIn(p, Draw1Control);
  else
    ForEachIn(p, LoseFocus);
}

void SetPaneBackground(PaneRef p, int brush, uint32_t rgb) {
  if (!p) return;
  p->brush = brush;
  p->color = rgb;
}

bool PaneShows(const Pane* p) {
  for (; p; p = p->parent)
    if (!p->shown) return false;
  return true;
}

Region PaneArea(const Pane* p) {
  const Rect& content = p->owner->window->content;
  Rect bounds{0, 0, content.width(), content.height()};
  if (p->parent) bounds = Intersect(bounds, p->bounds);
  if (bounds.empty()) return Region();
  Region area(bounds);
  std::vector<Rect> over;
  for (const Pane* child : p->children)
    if (child->shown) over.push_back(child->bounds);
  if (!over.empty()) area.Subtract(over);
  return area;
}

namespace {

Control* FindIn(const Pane* p, Point where) {
  const Pane* over = nullptr;
  for (const Pane* child : p->children)
    if (child->shown && child->bounds.contains(where) && (!over || child->order >= over->order))
      over = child;
  if (over) return FindIn(over, where);
  for (Control* c = p->owner->last; c; c = c->previous)
    if (c->pane == p && c->shown && PressArea(c).contains(where)) return c;
  return nullptr;
}

}  // namespace

ControlRef FindControlUnderMouse(Point where, WindowRef w) {
  WindowControls* all = ControlsOf(w);
  return all ? FindIn(&all->root, where) : nullptr;
}

}  // namespace platform
