// What the rooms of the toolkit know of windows: the one test of a handle, the record's insides.
#pragma once
#include <cstdint>

#include "platform/windows/windows.h"
#include "toolkit/core/trace.h"
#include "toolkit/xw.h"

constexpr int kSubWindow = 12;

// The one test: true for a record that is alive. Every public call that takes a window begins here.
bool FindLive(const XwWindow* w);
extern const XwWindow* last_found_live;  // the answer for the window that was asked about last
inline bool IsLive(const XwWindow* w) {
  return w && (w == last_found_live || FindLive(w));
}
// As IsLive, and says so where it is traced.
inline bool CheckWindow(const XwWindow* w) {
  if (IsLive(w)) [[likely]]
    return true;
  Refuse(Refusal::kStaleWindow);
  return false;
}
void EnterLive(XwWindow* w);
void LeaveLive(XwWindow* w);

inline bool IsTopLevel(const XwWindow* w) {
  return w->kind == 0;
}
inline bool IsSub(const XwWindow* w) {
  return w->kind == kSubWindow;
}
inline bool IsControl(const XwWindow* w) {
  return w->kind != 0 && w->kind != kSubWindow;
}
// The top-level record above `w` (itself when it is one).
XwWindow* TopLevel(XwWindow* w);
// The native window that `w` is drawn in.
platform::WindowRef NativeWindow(const XwWindow* w);
// Makes `other` the companion of `w`.
void SetLinked(XwWindow* w, XwWindow* other);
// The first window is being, or has been, torn down.
bool FirstWindowEnded();

// Selection stack.
constexpr int kStackDepth = 200;
extern XwWindow* XStack[kStackDepth];
extern int32_t XStackCount;
// Takes a window that ends out of the selection and the stack.
void ForgetTarget(XwWindow* w);

// Box lists. The box that XAddbl adds: x, y, width, height.
extern int16_t blpx, blpy, bllx, blly;
XwBoxes* XAllocbl();
void XAddbl(XwBoxes* list, int id);
void XEndbl(XwBoxes* list);
void XFreebl(XwBoxes* list);
int XCheckbl(XwBoxes* list);

inline int16_t Sat16(int v) {
  return int16_t(v < -32768 ? -32768 : v > 32767 ? 32767 : v);
}
inline uint16_t SatU16(int v) {
  return uint16_t(v < 0 ? 0 : v > 65535 ? 65535 : v);
}
