// From the display's reports to events.
#pragma once
#include <poll.h>

#include "platform/display/display.h"
#include "platform/events/event.h"

namespace platform {

// What spares a receive its look at the display and at the clock while events wait. A display that
// has its reports in memory says when there are some; one whose clock is stepped by hand says so.
struct InputHints {
  bool waiting = false;
  bool stepped = false;

  void ReportWaits() {
    waiting = true;
    main_event_queue.quick = 0;
  }
  void ClockIsStepped() {
    stepped = true;
    main_event_queue.quick = 0;
  }
};
extern InputHints input_hints;

// Queues what one report means.
void TranslateRawEvent(const RawEvent& raw);
// Descriptors beside the display's that a wait must watch (signals, the message bus); how many were
// filled in.
int DesktopDescriptors(pollfd* out, int max);

// A key symbol and character as (virtual key, Mac Roman character); {0xFFFF, 0}: no such key.
struct MacKey {
  uint16_t key_code;
  uint8_t character;
};
MacKey LookUpKey(uint32_t keysym, uint32_t base_keysym, uint32_t unicode, uint32_t modifiers);

}  // namespace platform
