// Events: one queue, handlers on targets, timers.
//
// Who calls what, and when:
//   from the loop       ReceiveNextEvent, SendEventToEventTarget
//   inside dispatch     handlers; they may post, destroy windows, remove timers and handlers
//   any time            PostEventToQueue, the timer calls, FindEvents and RemoveEvents
// Everything runs on the main thread.
#pragma once
#include <cstddef>
#include <cstdint>
#include <functional>

#include "platform/base.h"

namespace platform {

constexpr uint32_t kEventClassMouse = FourCC("mous");
constexpr uint32_t kEventClassKeyboard = FourCC("keyb");
constexpr uint32_t kEventClassWindow = FourCC("wind");
constexpr uint32_t kEventClassApplication = FourCC("appl");
constexpr uint32_t kEventClassAppleEvent = FourCC("eppc");
constexpr uint32_t kEventClassCommand = FourCC("cmds");
constexpr uint32_t kEventClassMenu = FourCC("menu");
constexpr uint32_t kEventClassControl = FourCC("cntl");
constexpr uint32_t kEventClassSystem = FourCC("macs");

enum : uint32_t {
  kEventMouseDown = 1,
  kEventMouseUp = 2,
  kEventMouseMoved = 5,
  kEventMouseDragged = 6,
  kEventMouseWheelMoved = 10,
  kEventRawKeyDown = 1,
  kEventRawKeyRepeat = 2,
  kEventRawKeyUp = 3,
  kEventRawKeyModifiersChanged = 4,
  kEventWindowDrawContent = 2,
  kEventWindowBoundsChanging = 26,
  kEventWindowBoundsChanged = 27,
  kEventWindowClickResizeRgn = 33,
  kEventWindowCursorChange = 40,
  kEventWindowClose = 72,
  kEventWindowZoom = 75,
  kEventAppActivated = 1,
  kEventAppDeactivated = 2,
  kEventAppleEvent = 1,
  kEventCommandProcess = 1,
  kEventMenuOpening = 4,
  kEventSystemDisplayReconfigured = 4,  // the main screen has another size or scale
};

// The high-level requests of the desktop (class 'eppc'), in RequestFields::id.
constexpr uint32_t kAEQuitApplication = FourCC("quit");
constexpr uint32_t kAEOpenDocuments = FourCC("odoc");
constexpr uint32_t kHICommandQuit = FourCC("quit");
constexpr uint32_t kHICommandPreferences = FourCC("pref");

// Modifier bits of KeyFields::modifiers.
enum : uint32_t {
  cmdKey = 0x100,
  shiftKey = 0x200,
  alphaLock = 0x400,
  optionKey = 0x800,
  controlKey = 0x1000,
  rightShiftKey = 0x2000,
  rightOptionKey = 0x4000,
  rightControlKey = 0x8000,
};

struct TabletPoint {
  uint16_t buttons;   // bit 0 tip, 1 and 2 the side buttons
  uint16_t pressure;  // 0..65535
  int16_t tilt_x, tilt_y;
};
constexpr uint32_t kEventTabletPoint = 1;

struct MouseFields {
  Point where;           // global
  uint16_t button;       // 1 primary, 2 secondary, 3 tertiary, 4 and 5 side
  uint16_t tablet_type;  // kEventTabletPoint, else 0
  TabletPoint tablet;
  float dx, dy;     // wheel: logical pixels
  WindowRef under;  // press, release: what lies under the pointer, whoever gets the event
};
struct KeyFields {
  uint32_t key_code;  // virtual key
  uint32_t modifiers;
  uint32_t keysym, base_keysym, native_code;
  uint8_t character;  // Mac Roman; 0 none
};
struct BoundsFields {
  Rect original, current;  // content, global
  bool programmatic;       // moved by the program, not by the user or the desktop
  bool placement;          // the place that a new window was given by the desktop
};
struct RequestFields {
  uint32_t id;               // quit, odoc; a command
  const char* const* files;  // odoc: absolute local paths, valid during the dispatch
  int file_count;
};

// One platform event. `cls` and `kind` say which member of the union is valid.
struct Event {
  uint32_t cls = 0, kind = 0;
  double time = 0;             // seconds on the display's clock
  WindowRef window = nullptr;  // the native window it happened in; null for application events
  void* payload = nullptr;     // user events: exactly one owner; the receiver frees it
  union {
    MouseFields mouse;
    KeyFields key;
    BoundsFields bounds;
    RequestFields request;
  };
  Event() : bounds{} {}
  Event(uint32_t c, uint32_t k, WindowRef w = nullptr) : cls(c), kind(k), window(w), bounds{} {}
};

// --- Handlers ---------------------------------------------------------------------------------

struct HandlerCall;  // reserved for calling the next handler; may be passed on unread
using EventHandler = OSStatus (*)(HandlerCall* call, Event* event, void* user_data);
struct EventKind {
  uint32_t cls, kind;
};
struct EventTarget;
using EventTargetRef = EventTarget*;

// Null for a null window. Lives as long as the window.
EventTargetRef GetWindowEventTarget(WindowRef w);
EventTargetRef GetApplicationEventTarget();
EventTargetRef GetEventDispatcherTarget();
// Newest first; a null target is ignored.
void InstallEventHandler(EventTargetRef target, EventHandler handler, const EventKind* kinds,
                         int count, void* user_data);
// Runs the handlers of the event's target (its window's, or the application's), then what the
// platform itself does with it. The window may be destroyed by a handler.
OSStatus SendEventToEventTarget(Event* event, EventTargetRef target);

// --- Queue ------------------------------------------------------------------------------------

// A ring of events that grows and never shrinks. The insides stand here because every event passes
// through them: posting and taking are a few instructions of the caller's own.
struct EventQueue {
  Event& Slot(size_t n) { return ring[n & (capacity - 1)]; }
  bool empty() const { return head == tail; }
  bool full() const { return tail - head == capacity; }
  size_t size() const { return tail - head; }
  Event& at(size_t i) { return Slot(head + i); }
  Event& back() { return Slot(tail - 1); }
  void Push(const Event& e) {
    if (full()) Grow();
    Slot(tail++) = e;
  }
  // A program's own event: its class and its payload.
  void PushUser(uint32_t cls, void* payload) {
    if (full()) [[unlikely]]
      Grow();
    Event& e = Slot(tail++);
    e.cls = cls;
    e.kind = 0;
    e.time = 0;
    e.window = nullptr;
    e.payload = payload;
  }
  // Of a program's own event only the class and the payload are taken over.
  void Pop(Event* out) {
    const Event& e = Slot(head++);
    if (!e.payload || e.cls == kEventClassAppleEvent) [[unlikely]] {
      *out = e;
      return;
    }
    out->cls = e.cls;
    out->payload = e.payload;
  }
  void Grow();

  size_t head = 0, tail = 0, capacity = 0;  // capacity: 0 or a power of two
  Event* ring = nullptr;                    // kept for the life of the process
  int quick = 0;  // events that may still be taken before the next look at clock and display
};
extern constinit EventQueue main_event_queue;

using EventQueueRef = EventQueue*;
inline EventQueueRef GetMainEventQueue() {
  return &main_event_queue;
}
constexpr double kEventDurationForever = -1;
constexpr double kEventDurationNoWait = 0;

// Looks after all that a receive looks after, then takes what comes first.
bool ReceiveWithUpkeep(double timeout, Event* out);
// Takes the next event out of the queue. `timeout` in seconds. False when none came in time.
inline bool ReceiveNextEvent(double timeout, Event* out) {
  EventQueue& queue = main_event_queue;
  if (queue.empty() || --queue.quick < 0) [[unlikely]]
    return ReceiveWithUpkeep(timeout, out);
  queue.Pop(out);
  return true;
}
// Appends a copy.
void PostEventToQueue(EventQueueRef queue, const Event& event);
// Appends an event of the program's own class; whoever receives it owns `payload`, which is not
// null. A null queue is ignored, and the payload stays the caller's.
inline void PostUserEvent(EventQueueRef queue, uint32_t cls, void* payload) {
  if (queue) queue->PushUser(cls, payload);
}
// The record of every queued user event of class `cls`, oldest first.
void ForEachUserEvent(EventQueueRef queue, uint32_t cls, const std::function<void(void*)>& visit);
// Drops each queued event for which `drop` is true; `drop` frees what the event owns.
void RemoveEventsFromQueue(EventQueueRef queue, const std::function<bool(const Event&)>& drop);
// Drops everything; `dispose` is called for the payload of each user event.
void FlushEventQueue(EventQueueRef queue, void (*dispose)(void* payload));

// --- Timers -----------------------------------------------------------------------------------

struct EventLoopTimer;
using EventLoopTimerRef = EventLoopTimer*;
using EventLoopTimerProc = void (*)(EventLoopTimerRef timer, void* user_data);

// Fires inside ReceiveNextEvent, first after `delay`, then every `interval` seconds (0: once).
// Missed periods are made up by one call. Removed with RemoveEventLoopTimer; null is ignored there.
EventLoopTimerRef InstallEventLoopTimer(double delay, double interval, EventLoopTimerProc proc,
                                        void* user_data);
void RemoveEventLoopTimer(EventLoopTimerRef timer);
// Moves the next firing to `delay` seconds from now; the period stays. Null is ignored.
void SetEventLoopTimerNextFireTime(EventLoopTimerRef timer, double delay);

// Seconds on the display's clock; it can be stepped by hand on the headless display.
double GetCurrentEventTime();
// Wall clock in microseconds, as programs see it: derived from the same clock where it is stepped.
int64_t GetTimeOfDayMicroseconds();
void AlertSoundPlay();

}  // namespace platform
