// A program of the toolkit on a real server, for tests that must see what comes between the turns
// of its loop.
#pragma once
#include <cstdlib>

#include "platform/display/x11/x.h"
#include "platform/events/targets.h"
#include "platform/loop/receive.h"
#include "platform/windows/windows.h"
#include "tests/x11/fixture.h"
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

// Takes all that waits. True when something came.
inline bool TakeTurns() {
  bool came = false;
  while (TakeTurn(0)) came = true;
  return came;
}

// `Base` with a session and its window, which end with the test.
template <class Base>
class Toolkit : public Base {
 protected:
  void TearDown() override {
    XwDestroy(top);
    XwEndSession();
    Base::TearDown();
  }
  static bool Run(const std::function<bool()>& done) {
    return support::Eventually([&] {
      TakeTurns();
      return done();
    });
  }
  void Rest() { this->SettleWith(TakeTurns); }
  xcb_window_t Id() {
    return platform::x11::NativeOf(static_cast<platform::WindowRef>(top->platform))->id;
  }
  XwWindow* top = nullptr;
};

}  // namespace x11_test
