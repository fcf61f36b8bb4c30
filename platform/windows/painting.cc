// Erasing, redraw requests, and getting the pixels to the screen.
#include <algorithm>

#include "platform/display/display.h"
#include "platform/display/window.h"
#include "platform/theme/roles.h"

namespace platform {

void SetThemeWindowBackground(WindowRef w, int brush, bool redraw) {
  if (!IsValidWindow(w)) return;
  w->brush = brush;
  if (redraw && w->visible)
    InvalidateWindow(w, {0, 0, w->content.width(), w->content.height()}, true);
}

void SetWindowBackgroundColor(WindowRef w, uint32_t rgb) {
  if (IsValidWindow(w)) w->ground_color = rgb;
}

uint32_t WindowGround(WindowRef w) {
  if (w->brush) return ThemeBrushColor(w->brush, w->active);
  return w->ground_color != kNoColor ? w->ground_color : 0xFFFFFF;
}

void EraseRect(WindowRef w, const Rect& r) {
  if (!IsValidWindow(w)) return;
  double s = w->surface.scale;
  Rect c = Intersect(r, {0, 0, w->content.width(), w->content.height()});
  if (c.empty()) return;
  FillSurface(&w->surface,
              {DeviceEdge(c.left, s), DeviceEdge(c.top + w->strip, s), DeviceEdge(c.right, s),
               DeviceEdge(c.bottom + w->strip, s)},
              WindowGround(w));
}

void InvalidateWindow(WindowRef w, const Rect& r, bool erase) {
  if (!IsValidWindow(w)) return;
  if (erase) EraseRect(w, r);
  if (w->needs_draw) return;
  w->needs_draw = true;
  w->draw_since = GetCurrentEventTime();
}

static void Present(WindowRef w) {
  static auto* rects = new std::vector<DeviceRect>;
  if (!w->visible || !w->surface.pixels || w->surface.damage.empty()) return;
  rects->clear();
  w->surface.damage.Take(rects);
  CurrentDisplay()->present(w, rects->data(), int(rects->size()));
}

void PresentWindows() {
  for (WindowRef w : WindowList()) Present(w);
}

void FlushWindow(WindowRef w) {
  if (!CurrentDisplay()) return;
  if (!w)
    PresentWindows();
  else if (IsValidWindow(w))
    Present(w);
  CurrentDisplay()->flush(true);
}

}  // namespace platform
