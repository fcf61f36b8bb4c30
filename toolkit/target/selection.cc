#include "toolkit/target/selection.h"

#include "platform/graphics/context.h"
#include "platform/windows/windows.h"
#include "toolkit/core/alive.h"
#include "toolkit/core/record.h"
#include "toolkit/core/trace.h"
#include "toolkit/target/clip.h"

using namespace platform;

namespace {

ContextRef Native(XwContext* c) {
  return reinterpret_cast<ContextRef>(c);
}

void Select(XwWindow* w) {
  WindowRef native = NativeWindow(w);
  // A context made for pixels that are gone paints nothing: another is made.
  uint32_t generation = WindowGeneration(native);
  if (w->context && w->generation == generation) return;
  ResetClipMask(w);
  Point origin = ContentOrigin(w);
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
  if (w) TraceDrawing("XwSet", w->serial, w->width, w->height);
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
