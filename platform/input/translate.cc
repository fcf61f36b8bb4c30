#include "platform/input/translate.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "platform/clipboard/clipboard.h"
#include "platform/desktop/documents.h"
#include "platform/display/screens.h"
#include "platform/events/clock.h"
#include "platform/events/queue.h"
#include "platform/events/sources.h"
#include "platform/input/record.h"
#include "platform/text/characters.h"
#include "platform/text/utf8.h"
#include "platform/windows/internal.h"

namespace platform {
namespace {

struct PointerState {
  uint32_t buttons = 0;  // bit n - 1: button n is held
  Point where;           // global
};
PointerState pointer;

// Far outside every screen, and safe to add up. What is no number counts as 0.
constexpr double kFar = 1 << 24;
constexpr uint16_t kButtons = 31;  // that are told apart

// The logical pixel that a device coordinate lies in.
int LogicalPixel(double device, double scale) {
  device = device == device ? std::clamp(device, -kFar, kFar) : 0;
  if (scale == 1.0) return int(std::floor(device));
  int l = int(std::floor(device / scale));
  if (DeviceEdge(l + 1, scale) <= device) ++l;
  if (DeviceEdge(l, scale) > device) --l;
  return l;
}

Point GlobalPoint(const Window& w, const RawEvent& raw) {
  return {w.content.left + LogicalPixel(raw.x, w.surface.scale),
          w.content.top - w.menu_bar_height + LogicalPixel(raw.y, w.surface.scale)};
}

Event MouseEvent(const RawEvent& raw, WindowRef w, uint32_t kind) {
  Event e(kEventClassMouse, kind, w);
  e.time = raw.time;
  e.mouse = {};
  if (w) e.mouse.where = pointer.where = GlobalPoint(*w, raw);
  e.mouse.under = LiveWindow(raw.under);
  e.mouse.button = raw.button;
  e.mouse.tablet_type = raw.tablet_type;
  e.mouse.tablet = raw.tablet;
  e.mouse.dx = raw.dx;
  e.mouse.dy = raw.dy;
  return e;
}

void Motion(const RawEvent& raw, WindowRef w) {
  EventQueue& q = main_event_queue;
  Event e = MouseEvent(raw, w, pointer.buttons ? kEventMouseDragged : kEventMouseMoved);
  if (raw.type == RawEvent::kMotion) e.mouse.under = w;  // and nothing when it leaves
  // Neighbouring motions of one window merge; a pen's samples stay, since each has its pressure.
  Event* last = q.Last();
  const bool merges = last && last->cls == e.cls && last->kind == e.kind &&
                      last->window == e.window && !last->mouse.tablet_type && !raw.tablet_type;
  if (merges)
    *last = e;
  else
    q.Push(e);
}

void Button(const RawEvent& raw, WindowRef w) {
  bool press = raw.type == RawEvent::kPress;
  uint32_t bit = raw.button >= 1 && raw.button <= kButtons ? 1u << (raw.button - 1) : 0;
  pointer.buttons = press ? pointer.buttons | bit : pointer.buttons & ~bit;
  main_event_queue.Push(MouseEvent(raw, w, press ? kEventMouseDown : kEventMouseUp));
}

// What the key typed, without control characters; nothing while a command is given with it.
std::string TypedText(const RawEvent& raw) {
  if (raw.modifiers & (controlKey | rightControlKey | cmdKey)) return {};
  char one[4];
  std::string_view typed(raw.typed, strnlen(raw.typed, sizeof raw.typed));
  const bool character = raw.unicode && raw.unicode < 0x110000 && raw.unicode >> 11 != 0x1B;
  if (typed.empty() && character) typed = {one, size_t(PutUtf8(raw.unicode, one))};
  std::string text;
  while (!typed.empty()) {
    const char32_t c = TakeUtf8(&typed);
    char bytes[4];
    if (KindOf(c) != CharacterKind::kControl) text.append(bytes, size_t(PutUtf8(c, bytes)));
  }
  return text;
}

void Key(const RawEvent& raw, WindowRef w, uint32_t kind) {
  Event e(kEventClassKeyboard, kind, w);
  e.time = raw.time;
  MacKey key = LookUpKey(raw.keysym, raw.base_keysym, raw.unicode, raw.modifiers);
  e.key = {key.key_code, raw.modifiers, raw.keysym,   raw.base_keysym, raw.keycode, key.character,
           {},           false,         raw.held != 0};
  const bool types = kind == kEventRawKeyDown || kind == kEventRawKeyRepeat;
  if (types) CopyUtf8(TypedText(raw), e.key.text, sizeof e.key.text);
  main_event_queue.Push(e);
}

void Configure(const RawEvent& raw, WindowRef window) {
  const Window& w = *window;
  const bool same_scale = !(raw.scale > 0) || raw.scale == w.surface.scale;
  double scale = same_scale ? w.surface.scale : std::clamp(raw.scale, 0.5, 8.0);
  Event e(kEventClassWindow, kEventWindowBoundsReported, window);
  e.time = raw.time;
  int left = LogicalPixel(raw.root_x, scale), top = LogicalPixel(raw.root_y, scale);
  // Sizes that round to the granted one leave the logical size as it is.
  int device_width = std::clamp(raw.width, 1, int(kFar)),
      device_height = std::clamp(raw.height, 1, int(kFar));
  int width = LogicalSize(device_width, scale), height = LogicalSize(device_height, scale);
  const DeviceRect known = same_scale ? DeviceBounds(w) : DeviceRect();
  if (known.width() == device_width) width = w.content.width();
  if (known.height() == device_height) height = w.content.height() + w.menu_bar_height;
  if (same_scale && float(known.left) == std::trunc(raw.root_x)) left = w.content.left;
  if (same_scale && float(known.top) == std::trunc(raw.root_y))
    top = w.content.top - w.menu_bar_height;
  // A window has at least one row of content.
  e.bounds.current = {left, top + w.menu_bar_height, left + width,
                      top + std::max(height, w.menu_bar_height + 1)};
  e.bounds.placement = w.placing;
  e.bounds.scale = raw.scale > 0 ? float(scale) : 0;
  e.bounds.replayed = Replaying();
  EventQueue& q = main_event_queue;
  Event* last = q.Last();
  if (last && last->cls == e.cls && last->kind == e.kind && last->window == e.window)
    *last = e;
  else
    q.Push(e);
}

void Exposed(const RawEvent& raw, WindowRef w) {
  Surface& s = w->surface;
  int left = LogicalPixel(raw.x, 1), top = LogicalPixel(raw.y, 1);
  DeviceRect r{left, top, left + std::clamp(raw.width, 0, int(kFar)),
               top + std::clamp(raw.height, 0, int(kFar))};
  r = Intersect(r, {0, 0, s.width, s.height});
  s.damage.Mark(r.left, r.top, r.right, r.bottom);
}

void Request(uint32_t cls, uint32_t kind, uint32_t id, const char* path) {
  Event e(cls, kind);
  e.time = GetCurrentEventTime();
  e.request = {id, nullptr, 0};
  if (path) e.payload = strdup(path);
  main_event_queue.Push(e);
}

// The pointer went to another program: buttons that are no longer held are released without a
// window.
void GrabLost(const RawEvent& raw) {
  for (uint16_t button = 1; button <= kButtons; ++button) {
    const uint32_t bit = 1u << (button - 1);
    if (!(pointer.buttons & bit) || (raw.held >> button & 1)) continue;
    pointer.buttons &= ~bit;
    Event e(kEventClassMouse, kEventMouseUp);
    e.time = raw.time;
    e.mouse = {};
    e.mouse.button = button;
    main_event_queue.Push(e);
  }
  Event lost(kEventClassSystem, kEventSystemPointerLost);
  lost.time = raw.time;
  main_event_queue.Push(lost);
}

// Of the pointer and the keys.
void InputEvent(const RawEvent& raw, WindowRef w) {
  switch (raw.type) {
    case RawEvent::kMotion:
    // The last motion of a pointer that leaves lies outside the window.
    case RawEvent::kLeave:
      return Motion(raw, w);
    case RawEvent::kPress:
    case RawEvent::kRelease:
      return Button(raw, w);
    case RawEvent::kScroll:
      return main_event_queue.Push(MouseEvent(raw, w, kEventMouseWheelMoved));
    case RawEvent::kKeyDown:
      return Key(raw, w, kEventRawKeyDown);
    case RawEvent::kKeyRepeat:
      return Key(raw, w, kEventRawKeyRepeat);
    case RawEvent::kKeyUp:
      return Key(raw, w, kEventRawKeyUp);
    case RawEvent::kModifiers:
      return Key(raw, w, kEventRawKeyModifiersChanged);
    default:
      return;
  }
}

void WindowEvent(const RawEvent& raw, WindowRef w) {
  // The first focus or input ends the placing of a new window.
  if (raw.type <= RawEvent::kModifiers || raw.type == RawEvent::kFocusIn) w->placing = false;
  switch (raw.type) {
    case RawEvent::kConfigure:
      return Configure(raw, w);
    case RawEvent::kExpose:
      return Exposed(raw, w);
    case RawEvent::kLost:
      return InvalidateWindow(w, {0, 0, w->content.width(), w->content.height()}, true);
    case RawEvent::kClose:
      return main_event_queue.Push(Event(kEventClassWindow, kEventWindowClose, w));
    case RawEvent::kFocusIn:
      return HandleFocus(w, true);
    case RawEvent::kFocusOut:
      return HandleFocus(w, false);
    case RawEvent::kDragOver:
      return HandleDrag(w, {GlobalPoint(*w, raw), DragFields::kOver});
    case RawEvent::kDragLeft:
      return HandleDrag(w, {GlobalPoint(*w, raw), DragFields::kLeft});
    case RawEvent::kDragDropped:
      return HandleDrag(w, {GlobalPoint(*w, raw), DragFields::kDropped});
    case RawEvent::kDropFailed:
      return HandleDrag(w, {GlobalPoint(*w, raw), DragFields::kFailed});
    case RawEvent::kFrame:
      return HandleFrame(w, raw.frame);
    case RawEvent::kState:
      return HandleState(w, raw.state);
    case RawEvent::kScale:
      return HandleScale(w, raw.scale);
    default:
      return InputEvent(raw, w);
  }
}

// A release whose window was destroyed: no window gets it, but the button or key is not held any
// more.
void Released(const RawEvent& raw) {
  if (raw.type == RawEvent::kRelease) Button(raw, nullptr);
  if (raw.type == RawEvent::kKeyUp) Key(raw, nullptr, kEventRawKeyUp);
  if (raw.type == RawEvent::kModifiers) Key(raw, nullptr, kEventRawKeyModifiersChanged);
}

// Nothing can be shown any more. The process ends without the clean-up of the connection, which
// would write to it.
[[noreturn]] void DisplayLost() {
  fprintf(stderr, "%s: the connection to the display is gone\n", PlatformSessionName());
  _exit(1);
}

}  // namespace

void TranslateRawEvent(const RawEvent& raw) {
  switch (raw.type) {
    case RawEvent::kQuit:
      return Request(kEventClassAppleEvent, kEventAppleEvent, kAEQuitApplication, nullptr);
    case RawEvent::kPreferences:
      return Request(kEventClassCommand, kEventCommandProcess, kHICommandPreferences, nullptr);
    case RawEvent::kOpenFile:
      return Request(kEventClassAppleEvent, kEventAppleEvent,
                     raw.request ? kOpenAsked : kAEOpenDocuments, raw.text);
    case RawEvent::kActivate:
      return SelectWindow(MenuBarWindow(), raw.text);
    case RawEvent::kLetGo:
      return HoldWindows(false);
    case RawEvent::kTextArrived:
      return TextReported(raw.request, raw.arrived);
    case RawEvent::kSelectionLost:
      return SelectionLost(Selection(raw.selection));
    case RawEvent::kScreens:
      return ReadScreens();
    case RawEvent::kDisplayLost:
      return DisplayLost();
    case RawEvent::kGrabLost:
      return GrabLost(raw);
    default:
      if (WindowRef w = LiveWindow(raw.window))
        WindowEvent(raw, w);
      else
        Released(raw);
  }
}

void TakeRawEvents() {
  const Display* d = CurrentDisplay();
  RawEvent raw;
  // Sources go first: their requests may also read reports of the display, which its descriptor
  // does not show any more.
  TakeFromSources();
  while (TakePostedRawEvent(&raw)) TakeReport(raw);
  while (d->next_event(&raw)) {
    if (raw.type != RawEvent::kNone) {
      TakeReport(raw);
      continue;
    }
    intake_hints.ReportWaits();
    break;
  }
  if (Replaying()) ReplayDue();
  UpdateActivation();
}

uint32_t HeldButtons() {
  return pointer.buttons;
}

Point LastPointer() {
  return pointer.where;
}

void FinishInput() {
  pointer = PointerState();
  CloseRecord();
}

}  // namespace platform
