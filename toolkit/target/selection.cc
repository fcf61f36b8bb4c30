#include "toolkit/target/selection.h"

#include <vector>

#include "platform/graphics/context.h"
#include "platform/graphics/region.h"
#include "toolkit/core/trace.h"
#include "toolkit/windows/windows.h"

using namespace platform;

XwWindow* XW;
XwWindow* XStack[kStackDepth];
int32_t XStackCount;

namespace {

ContextRef Native(XwContext* c) {
  return reinterpret_cast<ContextRef>(c);
}
Region* Native(XwRegion* r) {
  return reinterpret_cast<Region*>(r);
}

// A sub-window shows only while every sub-window above it does.
bool Hidden(const XwWindow* w) {
  for (; w && w->kind != 0; w = w->parent)
    if (!(w->flags & XW_SHOWN)) return true;
  return false;
}

// Where the target's own (0, 0) lies in the window's content.
Point Origin(const XwWindow* w) {
  Point p{0, 0};
  for (; w && IsControl(w); w = w->parent) p = {p.x + w->x, p.y + w->y};
  return w && IsSub(w) ? Point{p.x + w->origin_x, p.y + w->origin_y} : p;
}

// The target's clip in content coordinates: its clip rectangle or all of it, less its shown
// children.
Region* MakeClip(const XwWindow* w, Point origin) {
  auto* clip = new Region;
  if (!IsTopLevel(w) && Hidden(w)) return clip;
  Rect bounds{0, 0, w->width, w->height};
  if (w->clip_width && w->clip_height)
    bounds = Intersect(
        bounds, {w->clip_x, w->clip_y, w->clip_x + w->clip_width, w->clip_y + w->clip_height});
  clip->Add(bounds);
  std::vector<Rect> holes;
  for (int i = 0; i < w->child_count; ++i) {
    const XwWindow* c = w->children[i];
    if (c && c->kind != 0 && (c->flags & XW_SHOWN))
      holes.push_back({c->x, c->y, c->x + c->width, c->y + c->height});
  }
  clip->Subtract(holes);
  clip->Translate(origin.x, origin.y);
  return clip;
}

void Select(XwWindow* w) {
  WindowRef native = NativeWindow(w);
  // A context made for pixels that are gone paints nothing: it is made anew.
  uint32_t generation = WindowGeneration(native);
  if (w->context && w->generation == generation) return;
  ResetClipMask(w);
  Point origin = Origin(w);
  Region* clip = MakeClip(w, origin);
  ContextRef context = CreateContext(native);
  SetContextOrigin(context, origin.x, origin.y);
  ClipContextToRegion(context, *clip);
  w->context = reinterpret_cast<XwContext*>(context);
  w->generation = generation;
  w->clip_region = reinterpret_cast<XwRegion*>(clip);
}

}  // namespace

void XwSet(XwWindow* w) {
  if (w && !CheckWindow(w)) w = nullptr;
  // A sub-window's context goes back to the solid lines that it was made with.
  if (XW && XW != w && IsSub(XW)) SetContextDash(Native(XW->context), 0, nullptr, 0);
  // The selected window again: what was made for it may be out of date.
  XW = w;
  if (w) Select(w);
}

void XwPush(XwWindow* w) {
  if (XStackCount < kStackDepth)
    XStack[XStackCount] = XW;
  else
    Refuse(Refusal::kStackTooDeep);
  if (XStackCount < INT32_MAX) ++XStackCount;
  XwSet(w);
}

void XwPop() {
  if (XStackCount <= 0) return;
  if (--XStackCount < kStackDepth) XwSet(XStack[XStackCount]);
}

void ForgetTarget(XwWindow* w) {
  if (XW == w) XW = nullptr;
  for (int i = 0; i < XStackCount && i < kStackDepth; ++i)
    if (XStack[i] == w) XStack[i] = nullptr;
}

void ResetClipMask(XwWindow* w) {
  if (!IsLive(w)) return;
  ReleaseContext(Native(w->context));
  w->context = nullptr;
  delete Native(w->clip_region);
  w->clip_region = nullptr;
}

void ResetFamilyClips(XwWindow* parent) {
  if (!parent) return;
  ResetClipMask(parent);
  for (int i = 0; i < parent->child_count; ++i) ResetClipMask(parent->children[i]);
}

void ResetClipsBelow(XwWindow* w) {
  std::vector<XwWindow*> left{w};
  while (!left.empty()) {
    XwWindow* parent = left.back();
    left.pop_back();
    for (int i = 0; i < parent->child_count; ++i) {
      XwWindow* c = parent->children[i];
      if (!c) continue;
      ResetClipMask(c);
      if (c->child_count > 0) left.push_back(c);
    }
  }
}
