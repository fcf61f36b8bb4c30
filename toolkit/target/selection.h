// The selected window, and its context, made when it is selected.
#pragma once
#include "platform/base.h"
#include "toolkit/core/state.h"
#include "toolkit/xw.h"

// The context of XW; null when there is none.
inline platform::ContextRef TargetContext() {
  return XW ? reinterpret_cast<platform::ContextRef>(XW->context) : nullptr;
}
// Takes a window that ends out of the selection and the stack.
void ForgetTarget(XwWindow* w);
// Nothing is selected while the platform is at work; afterwards the caller's window is selected
// again, with the clip that it has by then.
struct TargetScope {
  TargetScope() { XwPush(nullptr); }
  ~TargetScope() { XwPop(); }
};
