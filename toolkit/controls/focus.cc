// The keyboard among the controls of a window.
#include "platform/windows/windows.h"
#include "toolkit/controls/framework.h"
#include "toolkit/core/alive.h"
#include "toolkit/core/post.h"
#include "toolkit/core/record.h"
#include "toolkit/target/selection.h"
#include "toolkit/windows/item_texts.h"

using namespace platform;

namespace {

ControlRef ControlOrNull(const XwWindow* w) {
  return IsLive(w) && IsControl(w) ? NativeControl(w) : nullptr;
}

}  // namespace

XwWindow* XwGetFocus(XwWindow* window) {
  if (!CheckWindow(window)) return nullptr;
  return static_cast<XwWindow*>(GetControlReference(GetKeyboardFocus(NativeWindow(window))));
}

void XwFocusControl(XwWindow* control) {
  if (!CheckWindow(control) || !IsControl(control)) return;
  if (IsEditableCombo(control)) return XwFocusControl(control->linked);
  TargetScope scope;
  XwWindow* top = TopLevel(control);
  WindowRef native = NativeWindow(top);
  SetKeyboardFocus(native, NativeControl(control), 1);
  if (!IsLive(control) || GetKeyboardFocus(native) != NativeControl(control)) return;
  SetUserFocusWindow(native);
  Inp.focus = top;
  MoveWaitingFocus(top);
}

void XwSetDefaultButtons(XwWindow* window, XwWindow* ok, XwWindow* cancel) {
  if (!CheckWindow(window)) return;
  TargetScope scope;
  SetDefaultButtons(NativeWindow(window), ControlOrNull(ok), ControlOrNull(cancel));
}

void XwSetTab(XwWindow* window, int on) {
  if (CheckWindow(window)) SetTabMoves(NativeWindow(window), on != 0);
}
