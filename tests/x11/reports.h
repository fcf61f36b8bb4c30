// What the display reports, untranslated, while a user is at it.
#pragma once
#include "platform/display/x11/x.h"
#include "platform/events/raw_event.h"
#include "platform/windows/internal.h"
#include "tests/x11/fixture.h"

namespace x11_test {

using namespace platform;

class Reports : public X11Test {
 protected:
  // Everything that the display says until `done`, untranslated.
  bool Collect(const std::function<bool()>& done) {
    return support::Eventually([&] {
      RawEvent raw;
      while (kX11Display.next_event(&raw)) {
        if (raw.type == RawEvent::kFocusIn || raw.type == RawEvent::kFocusOut) {
          HandleFocus(LiveWindow(raw.window), raw.type == RawEvent::kFocusIn);
        }
        reports.push_back(raw);
      }
      return done();
    });
  }
  bool Wait(RawEvent::Type type, size_t count = 1) {
    return Collect([&] { return Of(type).size() >= count; });
  }
  std::vector<RawEvent> Of(RawEvent::Type type) const {
    std::vector<RawEvent> found;
    for (const RawEvent& r : reports) {
      if (r.type == type) found.push_back(r);
    }
    return found;
  }
  // A focused window with the pointer in it.
  WindowRef Ready() {
    WindowRef w = Show("Input", {100, 124, 300, 300});
    user().Move(150, 200);
    SelectWindow(w);
    RunUntil([&] { return w->focused; });
    Settle();
    user().Sync();
    reports.clear();
    return w;
  }
  std::vector<RawEvent> reports;
};

}  // namespace x11_test
