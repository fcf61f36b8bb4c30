#include "platform/display/x11/devices.h"

#include <xcb/xinput.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace platform::x11 {

namespace {

constexpr size_t kFixed = sizeof(xcb_input_button_press_event_t);
constexpr size_t kMaxMaskWords = 64;

uint32_t Word(const uint8_t* p) {
  uint32_t v;
  memcpy(&v, p, sizeof v);
  return v;
}

double Fixed16(int32_t v) {
  return v / 65536.0;
}

double Fixed32(const uint8_t* p) {
  int32_t whole;
  memcpy(&whole, p, sizeof whole);
  return whole + Word(p + 4) / 4294967296.0;
}

// The values follow the mask, one for each of its bits, in the order of the bits.
bool TakeValues(const uint8_t* mask, size_t mask_words, const uint8_t* end, PointerEvent* out) {
  const uint8_t* value = mask + mask_words * 4;
  for (size_t axis = 0; axis < mask_words * 32; ++axis) {
    if ((Word(mask + axis / 32 * 4) >> (axis % 32) & 1) == 0) continue;
    if (end - value < 8) return false;
    out->values.push_back({int(axis), Fixed32(value)});
    value += 8;
  }
  return true;
}

// Position of a value within its axis, 0 to 1.
double Place(const Axis& axis, double value) {
  if (!(axis.max > axis.min)) return 0;
  return std::clamp((value - axis.min) / (axis.max - axis.min), 0.0, 1.0);
}

double TakeNotches(ScrollAxis* axis, double value) {
  const double delta =
      axis->valid && axis->increment != 0 ? (value - axis->last) / axis->increment : 0;
  axis->last = value;
  axis->clicks = !axis->valid;
  axis->valid = true;
  // A counter that was reset is no turn of the wheel.
  return std::isfinite(delta) && std::fabs(delta) < 100 ? delta : 0;
}

}  // namespace

bool DecodePointerEvent(const uint8_t* bytes, size_t size, PointerEvent* out) {
  if (size < kFixed) return false;
  xcb_input_button_press_event_t e;
  memcpy(&e, bytes, sizeof e);
  const size_t buttons = e.buttons_len, masks = e.valuators_len;
  if (buttons > kMaxMaskWords || masks > kMaxMaskWords) return false;
  if (size - kFixed < (buttons + masks) * 4) return false;
  *out = PointerEvent{};
  out->device = e.deviceid;
  out->source = e.sourceid;
  out->time = e.time;
  out->detail = e.detail;
  out->window = e.event;
  out->flags = e.flags;
  out->root_x = Fixed16(e.root_x);
  out->root_y = Fixed16(e.root_y);
  out->x = Fixed16(e.event_x);
  out->y = Fixed16(e.event_y);
  out->state = (e.mods.effective & 0xFF) | uint32_t(e.group.effective & 3) << 13;
  if (buttons > 0) out->buttons = Word(bytes + kFixed);
  return TakeValues(bytes + kFixed + buttons * 4, masks, bytes + size, out);
}

ScrollDelta TakeScroll(PointerDevice* device, const PointerEvent& event) {
  ScrollDelta delta;
  for (const PointerEvent::Value& v : event.values) {
    if (v.axis == device->vertical.number) delta.dy += TakeNotches(&device->vertical, v.value);
    if (v.axis == device->horizontal.number) delta.dx += TakeNotches(&device->horizontal, v.value);
  }
  return delta;
}

void TakeTablet(PointerDevice* device, const PointerEvent& event) {
  TabletPoint& t = device->tablet;
  for (const PointerEvent::Value& v : event.values) {
    if (v.axis == device->pressure.number) {
      t.pressure = uint16_t(std::lround(Place(device->pressure, v.value) * 65535));
    } else if (v.axis == device->tilt_x.number) {
      t.tilt_x = int16_t(std::lround((Place(device->tilt_x, v.value) * 2 - 1) * 32767));
    } else if (v.axis == device->tilt_y.number) {
      t.tilt_y = int16_t(std::lround((Place(device->tilt_y, v.value) * 2 - 1) * 32767));
    }
  }
  t.buttons = 0;
  for (int bit = 0; bit < 3; ++bit) {
    constexpr int kButtons[3] = {1, 3, 2};  // tip, then the side buttons
    if ((event.buttons >> kButtons[bit] & 1) != 0) t.buttons |= uint16_t(1 << bit);
  }
}

}  // namespace platform::x11
