// The one test of a window's handle.
#pragma once
#include "toolkit/core/state.h"
#include "toolkit/core/trace.h"
#include "toolkit/xw.h"

// True for a record that is alive. Every public call that takes a window begins here.
bool FindLive(const XwWindow* w);
inline bool IsLive(const XwWindow* w) {
  return w && (w == toolkit::state.last_found || FindLive(w));
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
// The set and its memory go: no record is alive.
void DropLive();
