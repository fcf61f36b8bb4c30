// Erasing, redraw requests, and getting the pixels to the screen.
#include <algorithm>

#include "platform/display/screens.h"
#include "platform/events/clock.h"
#include "platform/theme/roles.h"
#include "platform/windows/state.h"

namespace platform {

ContextRef CreateContext(WindowRef w) {
  return IsValidWindow(w) ? CreateContext(&w->surface, w->menu_bar_height) : nullptr;
}

constexpr size_t kMostLost = 32;  // rectangles; beyond that their bounds stand for them

void ShowBackdrop(WindowRef w) {
  const uint32_t now = WindowBackground(w);
  if (w->parent || w->backdrop == now) return;
  w->backdrop = now;
  CurrentDisplay()->update(w, kUpdateBackdrop);
}

void SetThemeWindowBackground(WindowRef w, int brush, bool redraw) {
  if (!IsValidWindow(w)) return;
  w->brush = brush;
  ShowBackdrop(w);
  if (redraw && w->visible)
    InvalidateWindow(w, {0, 0, w->content.width(), w->content.height()}, true);
}

void SetWindowBackgroundColor(WindowRef w, uint32_t rgb) {
  if (!IsValidWindow(w)) return;
  w->background_color = rgb;
  ShowBackdrop(w);
}

bool PaintsActive(WindowRef w) {
  return w->active != w->recolor;
}

uint32_t WindowBackground(WindowRef w) {
  if (w->brush) return ThemeBrushColor(w->brush, PaintsActive(w));
  return w->background_color != kNoColor ? w->background_color : 0xFFFFFF;
}

void EraseRect(WindowRef w, const Rect& r) {
  if (!IsValidWindow(w)) return;
  double s = w->surface.scale;
  Rect c = Intersect(r, {0, 0, w->content.width(), w->content.height()});
  if (c.empty()) return;
  FillSurface(&w->surface,
              {DeviceEdge(c.left, s), DeviceEdge(c.top + w->menu_bar_height, s),
               DeviceEdge(c.right, s), DeviceEdge(c.bottom + w->menu_bar_height, s)},
              WindowBackground(w));
}

void InvalidateWindow(WindowRef w, const Rect& r, bool erase) {
  if (!IsValidWindow(w)) return;
  const Rect part = Intersect(r, {0, 0, w->content.width(), w->content.height()});
  if (part.empty()) return;
  if (erase) EraseRect(w, part);
  w->lost.Add(part);
  if (w->lost.boxes().size() > kMostLost) w->lost = Region(w->lost.extents());
  if (w->needs_draw) return;
  w->needs_draw = true;
  w->draw_since = GetCurrentEventTime();
}

void ValidateWindow(WindowRef w) {
  if (!IsValidWindow(w)) return;
  w->lost.Clear();
  w->needs_draw = false;
}

static void PresentWindow(WindowRef w) {
  std::vector<DeviceRect>& rects = Windows().rects;
  if (!w->visible || !w->surface.pixels || w->surface.damage.empty()) return;
  rects.clear();
  w->surface.damage.Take(&rects);
  CurrentDisplay()->present(w, rects.data(), int(rects.size()));
}

static bool (*recoloring_waits)(const Window* w);

void SetRecoloringWaits(bool (*waits)(const Window* w)) {
  recoloring_waits = waits;
}

static void RecolorWindows() {
  for (WindowRef w : WindowList()) {
    if (!w->recolor || (recoloring_waits && recoloring_waits(w))) continue;
    w->recolor = false;
    InvalidateWindow(w, {0, 0, w->content.width(), w->content.height()}, true);
  }
}

static WindowRef NextToDraw(double asked_before) {
  RecolorWindows();
  WindowRef found = nullptr;
  for (WindowRef w : WindowList())
    if (w->needs_draw && w->visible && w->draw_since <= asked_before &&
        (!found || w->draw_since < found->draw_since))
      found = w;
  return found;
}

bool TakeDrawEvent(double asked_before, Event* out) {
  WindowRef w = NextToDraw(asked_before);
  if (!w) return false;
  w->needs_draw = w->blank = false;
  *out = Event(kEventClassWindow, kEventWindowDrawContent, w);
  out->time = w->draw_since;
  out->bounds.current = w->lost.extents();
  w->lost.Clear();
  return true;
}

bool DrawEventWaits() {
  return NextToDraw(GetCurrentEventTime()) != nullptr;
}

// A window that is still blank shows its backdrop; sending its pixels would delay its first
// picture.
void PresentWindows() {
  for (WindowRef w : WindowList())
    if (!w->blank || !w->needs_draw) PresentWindow(w);
}

void FlushWindow(WindowRef w) {
  if (!CurrentDisplay()) return;
  if (!w)
    PresentWindows();
  else if (IsValidWindow(w))
    PresentWindow(w);
  CurrentDisplay()->flush(true);
}

}  // namespace platform
