// The record of a window: making one, what kind it is, what it is drawn in.
#pragma once
#include "platform/base.h"
#include "toolkit/xw.h"

constexpr int kSubWindow = 12;

inline bool IsTopLevel(const XwWindow* w) {
  return w->kind == 0;
}
inline bool IsSub(const XwWindow* w) {
  return w->kind == kSubWindow;
}
inline bool IsControl(const XwWindow* w) {
  return w->kind != 0 && w->kind != kSubWindow;
}
// An empty record with a serial of its own, from malloc.
XwWindow* NewRecord();
// The top-level record above `w` (itself when it is one).
XwWindow* TopLevel(XwWindow* w);
// The native window that `w` is drawn in.
platform::WindowRef NativeWindow(const XwWindow* w);
// Makes `other` the companion of `w`.
void SetLinked(XwWindow* w, XwWindow* other);
