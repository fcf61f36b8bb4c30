#include "toolkit/core/grab.h"

void DropButtons(uint32_t mask) {
  Inp.state &= ~mask;
  if (Inp.state & XWS_BUTTONS) return;
  PassiveGrab = false;
  if (!ActiveGrab) GrabWindow = nullptr;
}

XwWindow* XwPointerIsGrabbed() {
  return GrabWindow;
}
