// What the rooms of the toolkit know of events: the transport, the platform handlers, the grab.
#pragma once
#include "platform/events/event.h"
#include "platform/windows/windows.h"
#include "toolkit/xw.h"

// Class of the toolkit's own events in the platform's queue; the payload is one XwEvent
// from malloc, which whoever takes the event out of the queue frees.
constexpr uint32_t kToolkitEventClass = platform::FourCC("KRV ");

// The timer table.
struct XwTimerSlot {
  XwWindow* window;
  int32_t value;
  platform::EventLoopTimerRef timer;
  bool queued;  // its event waits in the queue
};
constexpr int kTimerSlots = 32;
extern XwTimerSlot Timers[kTimerSlots];

extern bool AppActive;
extern bool PassiveGrab, ActiveGrab;
extern XwCursor* GrabCursor;

// One line on standard error and the end of the process.
[[noreturn]] void OutOfMemory();

// Reads the figures of the main screen.
void TakeScreenSize();
// Null: the application's handlers.
void InstallEventHandlers(XwWindow* w);
platform::OSStatus EVwindow_func(platform::HandlerCall* call, platform::Event* event, void* window);
platform::OSStatus EVmouse_func(platform::HandlerCall* call, platform::Event* event, void* window);
platform::OSStatus EVwheel_func(platform::HandlerCall* call, platform::Event* event, void* window);
platform::OSStatus EVkeyboard_func(platform::HandlerCall* call, platform::Event* event,
                                   void* window);
platform::OSStatus EVapp_func(platform::HandlerCall* call, platform::Event* event, void* user_data);
platform::OSStatus EVapple_func(const platform::Event* event);
// A copy of a record, queued. The window must be alive.
void PostEvent(const XwEvent& event);
// Queued records whose window has ended go; those that only have such a window as focus lose it.
void PurgeEvents();
void PurgeTimerEvents();
// A timer's event has left the queue: its next firing queues another.
void TimerTaken(XwWindow* window, XwValue value);

// Buttons 1 to 5 have bits in Inp.state.
constexpr int kLastButton = 5;
// Clears the bits of buttons that are let go; a passive grab ends with the last.
void DropButtons(uint32_t mask);
// The innermost wait under way keeps events of this window from its handlers.
bool WaitKeepsOut(XwWindow* w);

// The shown sub-window of `w` under (x, y) of `w`, or null.
XwWindow* FindVirtualWindow(XwWindow* w, int x, int y);
// Places Inp.px and Inp.py in the target's own coordinates.
void SetTargetCoordinates(XwWindow* target);

// Cursors.
void FillCursorTable();
XwCursor* XwCocoaCreateCursor(const uint8_t* record);
// Shows a cursor over `w`'s window; null is ignored.
void XwCocoaSetCursor(XwWindow* w, XwCursor* cursor);
// Each window has the cursor for where the pointer was last seen.
void RestoreCursors();

// Milliseconds as events carry them.
inline uint32_t EventMilliseconds(double seconds) {
  return uint32_t(uint64_t(seconds > 0 ? seconds * 1000 : 0));
}
