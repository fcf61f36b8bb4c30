// One turn of an application's loop, for tests that must see what comes between turns.
#pragma once
#include <cstdlib>

#include "platform/events/targets.h"
#include "platform/loop/receive.h"
#include "platform/windows/windows.h"
#include "toolkit/core/post.h"

namespace x11_test {

// Takes one event and hands it to its window's handler. False when none came within `wait` seconds.
inline bool TakeTurn(double wait) {
  platform::Event e;
  if (!platform::ReceiveNextEvent(wait, &e)) return false;
  Inp.type = 0;
  if (e.cls == kToolkitEventClass) {
    Inp = *static_cast<XwEvent*>(e.payload);
    free(e.payload);
  } else {
    platform::SendEventToEventTarget(&e, platform::GetEventDispatcherTarget());
  }
  if (Inp.type != 0 && Inp.window != nullptr) Inp.window->handler(Inp.type);
  return true;
}

}  // namespace x11_test
