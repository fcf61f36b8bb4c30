// The pointer: buttons, motion, wheel; from the second input extension when there is one, which
// brings fractions of a notch and the axes of tablets.
#include <xcb/xinput.h>

#include <algorithm>
#include <cmath>

#include "platform/display/x11/devices.h"
#include "platform/display/x11/x.h"

namespace platform::x11 {

namespace {

constexpr int kDeepest = 8;  // windows of a window manager around one of ours
// Buttons of the server, from 1 on: ours, and which way a notch of the wheel goes.
struct ButtonMeaning {
  uint8_t button;
  int8_t dx, dy;
};
constexpr ButtonMeaning kButtons[] = {{1, 0, 0},  {3, 0, 0}, {2, 0, 0}, {0, 0, -1}, {0, 0, 1},
                                      {0, -1, 0}, {0, 1, 0}, {4, 0, 0}, {5, 0, 0}};

constexpr uint32_t kEvents =
    XCB_INPUT_XI_EVENT_MASK_BUTTON_PRESS | XCB_INPUT_XI_EVENT_MASK_BUTTON_RELEASE |
    XCB_INPUT_XI_EVENT_MASK_MOTION | XCB_INPUT_XI_EVENT_MASK_DEVICE_CHANGED;

std::vector<PointerDevice> devices;

// Buttons (ours, bit n for button n) whose press was reported and whose release was not, and the
// pointer that they belong to (0: unknown).
struct Held {
  uint32_t buttons = 0;
  int device = 0;
  const Window* window = nullptr;  // in which the first of them went down
  uint32_t orphans = 0;            // whose window has ended: their release has none
};
Held held;

// What was found under the pointer at the last press or release, and where that was.
struct {
  double root_x = 0, root_y = 0;
  const Window* window = nullptr;
} found;

PointerDevice* FindDevice(int id) {
  for (PointerDevice& d : devices) {
    if (d.id == id) return &d;
  }
  return nullptr;
}

RawEvent* EmitPointer(RawEvent::Type type, Native* n, const PointerEvent& e) {
  RawEvent* out = Emit(type, n, e.time);
  if (type == RawEvent::kPress || type == RawEvent::kRelease) out->under = n->w;
  out->x = float(e.x);
  out->y = float(e.y);
  out->root_x = float(e.root_x);
  out->root_y = float(e.root_y);
  out->modifiers = Modifiers(e.state);
  const PointerDevice* device = FindDevice(e.source);
  if (device != nullptr && device->is_tablet()) {
    out->tablet_type = uint8_t(kEventTabletPoint);
    out->tablet = device->tablet;
  }
  return out;
}

void EmitScroll(Native* n, const PointerEvent& e, double dx, double dy) {
  RawEvent* out = EmitPointer(RawEvent::kScroll, n, e);
  out->dx = float(dx * kWheelNotch);
  out->dy = float(dy * kWheelNotch);
}

// A button of a window that has ended comes up without a window.
RawEvent* EmitRelease(Native* n, const PointerEvent& e, uint8_t button) {
  const uint32_t bit = 1u << button;
  held.buttons &= ~bit;
  RawEvent* out = EmitPointer(RawEvent::kRelease, n, e);
  out->button = button;
  if ((held.orphans & bit) != 0) out->window = nullptr;
  held.orphans &= ~bit;
  return out;
}

// The program's window that the screen shows at a point, down from the window manager's frame.
const Window* WindowAt(double root_x, double root_y) {
  const auto left = int16_t(Clamp16(int(std::floor(root_x)))),
             top = int16_t(Clamp16(int(std::floor(root_y))));
  xcb_window_t in = x.screen->root;
  for (int depth = 0; depth < kDeepest; ++depth) {
    Reply<xcb_translate_coordinates_reply_t> at(xcb_translate_coordinates_reply(
        x.c, xcb_translate_coordinates(x.c, x.screen->root, in, left, top), nullptr));
    if (!at || at->child == XCB_NONE) return nullptr;
    if (const Native* n = FindNative(at->child)) return n->w;
    in = at->child;
  }
  return nullptr;
}

// The window under a press or release. Only a window that has captured the pointer, by a grab or a
// held button, gets events from elsewhere; any other event lies in its own window.
const Window* Under(const Native* n, const PointerEvent& e, bool captured) {
  const bool its_own = !HoldsGrab(n) && (GrabsForProgram() || !captured);
  if (its_own) {
    found = {e.root_x, e.root_y, n->w};
  } else if (found.window == nullptr || found.root_x != e.root_x || found.root_y != e.root_y) {
    found = {e.root_x, e.root_y, WindowAt(e.root_x, e.root_y)};
  }
  return found.window;
}

// A release is not reported when its window was destroyed or hidden while the button was down. The
// server's list of held buttons, which is in every event, shows that.
void ReleaseMissed(Native* n, const PointerEvent& e) {
  const bool other = held.device != 0 && e.device != 0 && held.device != e.device;
  if (held.buttons == 0 || other) return;
  for (size_t i = 0; i < std::size(kButtons) && i < e.known_buttons; ++i) {
    const uint8_t button = kButtons[i].button;
    if (button == 0 || (held.buttons >> button & 1) == 0 || (e.buttons >> (i + 1) & 1) != 0)
      continue;
    EmitRelease(n, e, button);
  }
}

void OnButton(Native* n, const PointerEvent& e, bool press) {
  ReleaseMissed(n, e);
  if (e.detail == 0 || e.detail > std::size(kButtons)) return;
  const ButtonMeaning& meaning = kButtons[e.detail - 1];
  if (press) x.user_time = e.time;
  if (meaning.button != 0) {
    const Window* under = Under(n, e, held.buttons != 0);
    held.device = e.device;
    RawEvent* out = nullptr;
    if (press) {
      if (held.buttons == 0) held.window = n->w;
      held.buttons |= 1u << meaning.button;
      out = EmitPointer(RawEvent::kPress, n, e);
      out->button = meaning.button;
    } else {
      out = EmitRelease(n, e, meaning.button);
    }
    out->under = under;
  } else if (press) {
    EmitScroll(n, e, meaning.dx, meaning.dy);
  }
}

template <class T>
PointerEvent FromCore(const T* e) {
  PointerEvent p;
  p.time = e->time;
  p.detail = e->detail;
  p.window = e->event;
  p.root_x = e->root_x;
  p.root_y = e->root_y;
  p.x = e->event_x;
  p.y = e->event_y;
  p.state = e->state;
  p.buttons = e->state >> 7;  // bit 8 is the first button's
  p.known_buttons = 5;
  return p;
}

double Number(const xcb_input_fp3232_t& v) {
  return v.integral + v.frac / 4294967296.0;
}

void TakeValuator(const xcb_input_valuator_class_t& v, PointerDevice* d) {
  const Axis axis{v.number, Number(v.min), Number(v.max)};
  if (v.label == XCB_ATOM_NONE) return;
  if (v.label == Atom(kAbsPressure)) d->pressure = axis;
  if (v.label == Atom(kAbsTiltX)) d->tilt_x = axis;
  if (v.label == Atom(kAbsTiltY)) d->tilt_y = axis;
}

void TakeScrollClass(const xcb_input_scroll_class_t& s, PointerDevice* d) {
  ScrollAxis& axis = s.scroll_type == XCB_INPUT_SCROLL_TYPE_VERTICAL ? d->vertical : d->horizontal;
  axis.number = s.number;
  axis.increment = Number(s.increment);
}

// Each class names its device, since a master device lists the classes of its current slave.
void TakeClasses(xcb_input_device_class_iterator_t it) {
  for (; it.rem != 0; xcb_input_device_class_next(&it)) {
    const int id = it.data->sourceid;
    if (it.data->type != XCB_INPUT_DEVICE_CLASS_TYPE_VALUATOR &&
        it.data->type != XCB_INPUT_DEVICE_CLASS_TYPE_SCROLL) {
      continue;
    }
    if (FindDevice(id) == nullptr) devices.emplace_back().id = id;
    PointerDevice* d = FindDevice(id);
    if (it.data->type == XCB_INPUT_DEVICE_CLASS_TYPE_VALUATOR) {
      TakeValuator(*reinterpret_cast<const xcb_input_valuator_class_t*>(it.data), d);
    } else {
      TakeScrollClass(*reinterpret_cast<const xcb_input_scroll_class_t*>(it.data), d);
    }
  }
}

// Forgets the positions of wheels: they may change while the pointer is elsewhere or another device
// moves it.
void ForgetScroll() {
  for (PointerDevice& d : devices) d.vertical.valid = d.horizontal.valid = false;
}

void OnDeviceChanged(const xcb_input_device_changed_event_t* e) {
  if (e->reason == XCB_INPUT_CHANGE_REASON_DEVICE_CHANGE) {
    std::erase_if(devices, [e](const PointerDevice& d) { return d.id == e->sourceid; });
  }
  TakeClasses(xcb_input_device_changed_classes_iterator(e));
  ForgetScroll();
}

// A wheel that reports positions sends clicks as well, for programs without the extension. Only the
// first click after the pointer has entered counts: the turn before it is not known by position.
bool ToldByPosition(const PointerDevice& device, uint32_t button) {
  if (button == 0 || button > std::size(kButtons)) return false;
  const ButtonMeaning& meaning = kButtons[button - 1];
  if (meaning.dx == 0 && meaning.dy == 0) return false;  // such as a finger that acts as a button
  const ScrollAxis& axis = meaning.dy != 0 ? device.vertical : device.horizontal;
  return axis.number >= 0 && !axis.clicks;
}

void OnMotion2(Native* n, const PointerEvent& e, PointerDevice* device) {
  ReleaseMissed(n, e);
  ScrollDelta delta;
  if (device != nullptr) delta = TakeScroll(device, e);
  if (delta.dx != 0 || delta.dy != 0) EmitScroll(n, e, delta.dx, delta.dy);
  // A device that only turned its wheel has not moved.
  const bool wheel_only =
      device != nullptr && !e.values.empty() &&
      std::all_of(e.values.begin(), e.values.end(), [device](const PointerEvent::Value& v) {
        return v.axis == device->vertical.number || v.axis == device->horizontal.number;
      });
  if (!wheel_only) EmitPointer(RawEvent::kMotion, n, e);
}

}  // namespace

void OpenPointer() {
  const xcb_query_extension_reply_t* ext = xcb_get_extension_data(x.c, &xcb_input_id);
  if (ext == nullptr || !ext->present) return;
  auto version = xcb_input_xi_query_version(x.c, 2, 2);
  auto query = xcb_input_xi_query_device(x.c, XCB_INPUT_DEVICE_ALL);
  Reply<xcb_input_xi_query_version_reply_t> v(
      xcb_input_xi_query_version_reply(x.c, version, nullptr));
  Reply<xcb_input_xi_query_device_reply_t> all(
      xcb_input_xi_query_device_reply(x.c, query, nullptr));
  if (!v || !all || v->major_version < 2) return;
  for (auto it = xcb_input_xi_query_device_infos_iterator(all.p); it.rem != 0;
       xcb_input_xi_device_info_next(&it)) {
    TakeClasses(xcb_input_xi_device_info_classes_iterator(it.data));
  }
  x.xi_opcode = ext->major_opcode;
  for (auto& [id, n] : x.windows) SelectPointer(*n);
}

void ClosePointer() {
  devices.clear();
  held = Held{};
  found = {};
}

void SelectPointer(const Native& n) {
  if (x.xi_opcode == 0) return;
  struct {
    xcb_input_event_mask_t head;
    uint32_t mask;
  } select = {{XCB_INPUT_DEVICE_ALL_MASTER, 1}, kEvents};
  xcb_input_xi_select_events(x.c, n.id, 1, &select.head);
}

void ForgetUnder() {
  found = {};
}

void DropPressGrab() {
  if (x.xi_opcode == 0 || held.buttons == 0 || held.device == 0) return;
  xcb_input_xi_ungrab_device(x.c, XCB_CURRENT_TIME, xcb_input_device_id_t(held.device));
}

uint32_t DropReleased(uint16_t state) {
  for (uint8_t i = 0; i < 5; ++i) {
    // Bit 8 is the first button's.
    if ((state >> (8 + i) & 1) == 0) held.buttons &= ~(1u << kButtons[i].button);
  }
  return held.buttons;
}

void HandleButton(const xcb_button_press_event_t* e, bool press) {
  if (Native* n = FindNative(e->event)) OnButton(n, FromCore(e), press);
}

void HandleMotion(const xcb_motion_notify_event_t* e) {
  Native* n = FindNative(e->event);
  if (n == nullptr) return;
  ReleaseMissed(n, FromCore(e));
  EmitPointer(RawEvent::kMotion, n, FromCore(e));
}

// The start of a grab is no leaving.
void HandleCrossing(const xcb_enter_notify_event_t* e, bool enter) {
  Native* n = FindNative(e->event);
  if (enter) ForgetScroll();
  if (n == nullptr || e->mode == XCB_NOTIFY_MODE_GRAB || e->detail == XCB_NOTIFY_DETAIL_INFERIOR) {
    return;
  }
  if (!enter) EmitPointer(RawEvent::kLeave, n, FromCore(e));
}

void HandleInput2(const xcb_ge_generic_event_t* event) {
  if (event->event_type == XCB_INPUT_DEVICE_CHANGED) {
    OnDeviceChanged(reinterpret_cast<const xcb_input_device_changed_event_t*>(event));
    return;
  }
  // The library keeps the long sequence number behind the first 32 bytes.
  const size_t size = 36 + size_t(event->length) * 4;
  PointerEvent e;
  if (event->event_type < XCB_INPUT_BUTTON_PRESS || event->event_type > XCB_INPUT_MOTION ||
      !DecodePointerEvent(reinterpret_cast<const uint8_t*>(event), size, &e)) {
    return;
  }
  Native* n = FindNative(e.window);
  PointerDevice* device = FindDevice(e.source);
  if (n == nullptr) return;
  if (device != nullptr && device->is_tablet()) TakeTablet(device, e);
  if (event->event_type == XCB_INPUT_MOTION) {
    OnMotion2(n, e, device);
    return;
  }
  const bool emulated = (e.flags & XCB_INPUT_POINTER_EVENT_FLAGS_POINTER_EMULATED) != 0;
  if (emulated && device != nullptr && ToldByPosition(*device, e.detail)) return;
  OnButton(n, e, event->event_type == XCB_INPUT_BUTTON_PRESS);
}

bool IsPressedIn(const Window* w) {
  return held.buttons != 0 && held.window == w;
}

void ForgetPress(const Window* w) {
  if (held.window != w) return;
  held.orphans = held.buttons;
  held.window = nullptr;
}

}  // namespace platform::x11
