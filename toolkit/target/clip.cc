#include "toolkit/target/clip.h"
#include "toolkit/core/trace.h"

#include <vector>

#include "platform/controls/controls.h"
#include "platform/graphics/context.h"
#include "toolkit/core/alive.h"
#include "toolkit/core/record.h"
#include "toolkit/core/saturate.h"

using namespace platform;

namespace {

// A sub-window shows only while every sub-window above it does.
bool Hidden(const XwWindow* w) {
  for (; w && w->kind != 0; w = w->parent)
    if (!(w->flags & XW_SHOWN)) return true;
  return false;
}

}  // namespace

Point ContentOrigin(const XwWindow* w) {
  Point p{0, 0};
  for (; w && IsControl(w); w = w->parent) p = {p.x + w->x, p.y + w->y};
  return w && IsSub(w) ? Point{p.x + w->origin_x, p.y + w->origin_y} : p;
}

Region* MakeClip(const XwWindow* w, Point origin) {
  auto* clip = new Region;
  if (!IsTopLevel(w) && Hidden(w)) return clip;
  Rect bounds{0, 0, w->width, w->height};
  if (w->clip_width && w->clip_height)
    bounds = Intersect(
        bounds, {w->clip_x, w->clip_y, w->clip_x + w->clip_width, w->clip_y + w->clip_height});
  clip->Add(bounds);
  std::vector<Rect> holes;
  const ControlRef focus = GetKeyboardFocus(NativeWindow(w));
  for (int i = 0; i < w->child_count; ++i) {
    const XwWindow* c = w->children[i];
    if (!c || c->kind == 0 || !(c->flags & XW_SHOWN)) continue;
    Rect r{c->x, c->y, c->x + c->width, c->y + c->height};
    // Some controls reach farther than their records.
    if (IsControl(c))
      r = Offset(GetControlArea(static_cast<ControlRef>(c->platform)), -origin.x, -origin.y);
    // The ring around the control with the keyboard is the platform's.
    const int ring = focus && c->platform == focus ? kFocusRingSpace : 0;
    holes.push_back({r.left - ring, r.top - ring, r.right + ring, r.bottom + ring});
  }
  clip->Subtract(holes);
  clip->Translate(origin.x, origin.y);
  return clip;
}

void XwClip(uint16_t x, uint16_t y, uint16_t width, uint16_t height) {
  TraceDrawing("XwClip", x, y, width, height);
  if (!XW) return;
  XwWindow* w = XW;
  w->clip_x = Sat16(x);
  w->clip_y = Sat16(y);
  w->clip_width = Sat16(width);
  w->clip_height = Sat16(height);
  XwSet(nullptr);
  ResetClipMask(w);
  XwSet(w);
}

void ResetClipMask(XwWindow* w) {
  if (!IsLive(w)) return;
  ReleaseContext(reinterpret_cast<ContextRef>(w->context));
  w->context = nullptr;
  delete reinterpret_cast<Region*>(w->clip_region);
  w->clip_region = nullptr;
}

void ResetClipsFrom(XwWindow* w) {
  if (w->child_count == 0) return ResetClipMask(w);
  std::vector<XwWindow*> left{w};
  while (!left.empty()) {
    XwWindow* at = left.back();
    left.pop_back();
    ResetClipMask(at);
    for (int i = 0; i < at->child_count; ++i)
      if (at->children[i]) left.push_back(at->children[i]);
  }
}
