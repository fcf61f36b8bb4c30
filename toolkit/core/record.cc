#include "toolkit/core/record.h"

#include <cstdlib>

#include "platform/objects/object.h"
#include "toolkit/core/memory.h"

XwWindow* NewRecord() {
  auto* w = static_cast<XwWindow*>(calloc(1, sizeof(XwWindow)));
  if (!w) OutOfMemory();
  w->color = -1;
  w->slot = -1;
  w->serial = platform::TakeSerial();
  return w;
}

XwWindow* TopLevel(XwWindow* w) {
  while (w && w->kind != 0) w = w->parent;
  return w;
}

platform::WindowRef NativeWindow(const XwWindow* w) {
  // A sub-window keeps that of its top-level window.
  const XwWindow* top = w && IsSub(w) ? w : TopLevel(const_cast<XwWindow*>(w));
  return top ? static_cast<platform::WindowRef>(top->platform) : nullptr;
}

void SetLinked(XwWindow* w, XwWindow* other) {
  if (w->linked) w->linked->linked_by = nullptr;
  w->linked = other;
  if (!other) return;
  if (other->linked_by) other->linked_by->linked = nullptr;
  other->linked_by = w;
}
