// Extended pointer events: what the axes of a device mean, and the bytes of an event. No connection
// is needed here, so recorded events can be decoded.
#pragma once
#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/events/event.h"

namespace platform::x11 {

struct Axis {
  int number = -1;  // -1: the device has none
  double min = 0, max = 0;
};

// A wheel or strip that reports an ever growing position.
struct ScrollAxis {
  int number = -1;
  double increment = 1;  // one notch; negative turns the direction round
  double last = 0;
  bool valid = false;   // `last` is known; not so after the pointer was elsewhere
  bool clicks = false;  // the last position was the first known: its click tells of the turn
};

struct PointerDevice {
  int id = 0;
  Axis pressure, tilt_x, tilt_y;
  ScrollAxis vertical, horizontal;
  TabletPoint tablet;  // as last reported: events carry changes only
  bool is_tablet() const { return pressure.number >= 0; }
  bool scrolls() const { return vertical.number >= 0 || horizontal.number >= 0; }
};

struct PointerEvent {
  int device = 0, source = 0;
  uint32_t time = 0, detail = 0, window = 0, flags = 0;
  double root_x = 0, root_y = 0, x = 0, y = 0;
  uint32_t state = 0;           // modifiers and group as in the core protocol
  uint32_t buttons = 0;         // held before the event, bit n for the server's button n
  unsigned known_buttons = 31;  // how many of them it tells of
  struct Value {
    int axis;
    double value;
  };
  std::vector<Value> values;
};

// Reads a button or motion event as the connection library holds it (36 bytes of head, the rest as
// sent). False when the bytes do not hold what they announce.
bool DecodePointerEvent(const uint8_t* bytes, size_t size, PointerEvent* out);

// Notches turned since the last event, right and down positive.
struct ScrollDelta {
  double dx = 0, dy = 0;
};
ScrollDelta TakeScroll(PointerDevice* device, const PointerEvent& event);
// Brings `device->tablet` up to date.
void TakeTablet(PointerDevice* device, const PointerEvent& event);

}  // namespace platform::x11
