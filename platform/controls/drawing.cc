// Drawing: each control is painted over its background, in the order of creation.
#include <algorithm>

#include "platform/controls/control.h"
#include "platform/graphics/context.h"
#include "platform/theme/roles.h"
#include "platform/windows/internal.h"

namespace platform {
namespace {

bool Meets(const Rect& a, const Rect& b) {
  return !Intersect(a, b).empty();
}

uint32_t PaneBackground(const Pane* p) {
  const WindowRef w = p->owner->window;
  for (; p->parent; p = p->parent) {
    if (p->brush) return ThemeBrushColor(p->brush, PaintsActive(w));
    if (p->color != kNoColor) return p->color;
  }
  return WindowBackground(w);
}

ContextRef ContextOf(WindowControls& all) {
  const uint32_t generation = WindowGeneration(all.window);
  if (!all.context || all.generation != generation) {
    ReleaseContext(all.context);
    all.context = CreateContext(all.window);
    all.generation = generation;
  }
  return all.context;
}

void Erase(ContextRef context, const Pane* pane, const Rect& r) {
  SetContextColor(context, PaneBackground(pane));
  FillRect(context, r.left, r.top, r.width(), r.height());
}

bool RingShows(const WindowControls& all) {
  return all.focus && all.window->active && IsControlVisible(all.focus);
}

// What the ring goes around.
Rect BorderOf(const Control* c, int* corner) {
  *corner = c->corner;
  Rect border = GetControlBounds(const_cast<Control*>(c));
  if (c->kind->border) c->kind->border(c, &border, corner);
  return border;
}

void DrawRing(ContextRef context, const Control* c) {
  int corner;
  const Rect border = BorderOf(c, &corner);
  DrawThemeFocusRing(context, border, corner);
}

// Whether some of the ring may lie in an area.
bool RingMeets(const Control* c, const Rect& area) {
  if (!Meets(RingArea(c), area)) return false;
  int corner;
  Rect inside = BorderOf(c, &corner);
  // The ring's corners cover a part of the border's corners.
  inside.left += corner;
  inside.right -= corner;
  return Intersect(inside, area) != area;
}

// The clip of the context: a part of a pane.
class PaneClip {
 public:
  PaneClip(ContextRef context, const Rect& area) : context_(context), area_(area) {}
  // False when nothing of the pane shows there.
  bool Use(const Pane* pane) {
    if (pane == pane_) return shows_;
    pane_ = pane;
    Region region = PaneArea(pane);
    region.Intersect(area_);
    shows_ = !region.empty();
    if (shows_) ClipContextToRegion(context_, region);
    return shows_;
  }

 private:
  ContextRef context_;
  Rect area_;
  const Pane* pane_ = nullptr;
  bool shows_ = false;
};

void Draw(ContextRef context, Control* c) {
  if (c->kind->draw) c->kind->draw(c, context);
}

// Draws the controls from `first` on that meet the area, of one pane or (null) of all of them, and
// the ring.
void Paint(WindowControls& all, const Pane* only, const Rect& area, Control* first, bool erase) {
  if (!all.window->visible || area.empty()) return;
  ContextRef context = ContextOf(all);
  PaneClip clip(context, area);
  const bool ring =
      RingShows(all) && (!only || only == all.focus->pane) && RingMeets(all.focus, area);
  if (erase && clip.Use(only)) Erase(context, only, area);
  if (!erase && ring && clip.Use(all.focus->pane))
    Erase(context, all.focus->pane, RingArea(all.focus));
  auto paint = [&](Control* c) {
    const Rect own = ControlArea(c);
    if (!c->shown || !Meets(own, area) || !PaneShows(c->pane) || !clip.Use(c->pane)) return;
    Erase(context, c->pane, own);
    Draw(context, c);
  };
  if (only && first) {
    const Rect inside = Offset(area, -only->bounds.left, -only->bounds.top);
    for (Control* c : FindInBands(only, inside, first->object.serial)) paint(c);
  } else {
    for (Control* c = first; c; c = c->next) paint(c);
  }
  if (ring && clip.Use(all.focus->pane)) DrawRing(context, all.focus);
}

}  // namespace

Rect ControlArea(const Control* c) {
  return Offset(c->area, c->pane->bounds.left, c->pane->bounds.top);
}

Rect RingArea(const Control* c) {
  const Rect r = ControlArea(c);
  return {r.left - kFocusRingSpace, r.top - kFocusRingSpace, r.right + kFocusRingSpace,
          r.bottom + kFocusRingSpace};
}

void ReleaseControlContext(WindowControls& all) {
  ReleaseContext(all.context);
  all.context = nullptr;
}

ContextRef GetControlContext(ControlRef c) {
  return IsValidControl(c) ? OwnerOf(c).context : nullptr;
}

void RedrawArea(WindowControls& all, const Pane* pane, const Rect& area) {
  if (PaneShows(pane)) Paint(all, pane, area, all.first, true);
}

void RedrawPane(PaneRef p, const Rect& area) {
  if (p) RedrawArea(*p->owner, p, area);
}

void RedrawWithRing(Control* c) {
  if (OwnerOf(c).focus != c) return Draw1Control(c);
  if (IsControlVisible(c)) RedrawArea(OwnerOf(c), c->pane, RingArea(c));
}

void Draw1Control(ControlRef c) {
  if (!IsControlVisible(c)) return;
  Paint(OwnerOf(c), c->pane, ControlArea(c), c, true);
}

void DrawControls(WindowRef w, const Rect& lost) {
  WindowControls* all = ControlsOf(w);
  if (!all || !all->first) return;
  Rect area = lost;
  if (all->focus) {
    const Rect ring = RingArea(all->focus);
    if (Meets(ring, area))
      area = {std::min(area.left, ring.left), std::min(area.top, ring.top),
              std::max(area.right, ring.right), std::max(area.bottom, ring.bottom)};
  }
  Paint(*all, nullptr, area, all->first, false);
}

void Uncover(const Control* c, const Rect& area) {
  WindowControls& all = OwnerOf(c);
  if (!all.window->visible) return;
  Region part = PaneArea(c->pane);
  part.Intersect(area);
  if (part.empty()) return;
  ContextRef context = ContextOf(all);
  ClipContextToRegion(context, part);
  Erase(context, c->pane, area);
  InvalidateWindow(all.window, part.extents(), false);
}

}  // namespace platform
