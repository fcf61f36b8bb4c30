// The platform's window record: shared by the rooms of the platform, not by its users.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "platform/events/event.h"
#include "platform/graphics/surface.h"
#include "platform/windows/windows.h"

namespace platform {

struct InstalledHandler {
  uint32_t cls, kind;
  EventHandler handler;
  void* user_data;
};

struct EventTarget {
  std::vector<InstalledHandler> handlers;  // oldest first; run from the end
};

struct WindowGroup {
  uint32_t attributes = 0;
  int window_class = 0;  // non-zero: the standing group of that class
  WindowGroup* parent = nullptr;
};

// What the display is asked to make of a window beyond its rectangle.
enum WindowState : uint32_t {
  kStateFullScreen = 1,
  kStateModal = 2,
  kStateDocked = 4,  // belongs to the first window: transient, borderless, off the task bar
};

struct Window {
  // --- What the program asked for; set by platform/windows, read by the display.
  int window_class = 0;
  uint32_t attributes = 0;
  uint32_t state = 0;
  Rect content;   // global, logical
  int strip = 0;  // logical height of the menu strip above the content
  bool visible = false;
  bool placing = false;  // shown, and nothing has happened in it yet: it is still being placed
  std::string title;     // UTF-8, without the mark
  bool modified = false;
  bool has_limits = false;
  SizeLimits limits;            // as asked for; see LimitsOf
  int widest = 0, tallest = 0;  // that the program itself has made it since
  WindowRef transient_for = nullptr;
  WindowGroup* group = nullptr;
  // --- Erasing.
  int brush = 0;
  uint32_t ground_color = kNoColor;
  bool active = true;    // looks active
  bool focused = false;  // has the display's input focus
  // --- Pixels: strip and content together.
  Surface surface;
  bool needs_draw = false;
  double draw_since = 0;
  // --- Events.
  EventTarget target;
  CursorRef cursor = nullptr;
  // --- The display's handle, which no other room looks into.
  void* native = nullptr;
  // --- As the display reports it.
  Rect frame;                // widths of the desktop's frame, logical: left, top, right, bottom
  Rect refused;              // the last reported bounds that were answered with others
  bool full_bounds = false;  // `content` is what full screen gave
  unsigned number = 0;       // in the order of creation, from 1
  bool disposed = false;     // freed when the dispatch that destroyed it is over
};

// The window that a display's report names; null when it is gone, or for none.
WindowRef LiveWindow(const Window* w);
// All live windows, front first.
std::vector<WindowRef>& WindowList();
// The limits that hold now: the screen's size where the program set none, the window's own where it
// has a fixed size.
SizeLimits LimitsOf(const Window& w);
// The window's rectangle on the screen in device pixels, strip included.
DeviceRect DeviceBounds(const Window& w);
// Gives the surface the size of the content, keeps the old pixels, erases what is new.
void ResizeSurface(WindowRef w);
// The display reports the window's scale, the widths of its frame in device pixels, and the bits of
// WindowState that the desktop decides.
void HandleScale(WindowRef w, double scale);
void HandleFrame(WindowRef w, const DeviceRect& widths);
void HandleState(WindowRef w, uint32_t state);
// Takes the bounds that the display reports (device pixels, strip included) and tells the handlers.
// False when they are known already.
bool HandleConfigure(Event* event);
// The display reports focus: activation of windows and of the application follows.
void HandleFocus(WindowRef w, bool focused);
// After a batch of reports: focus that has not come back to any window is gone.
void SettleActivation();
// While they are held, windows that are shown do not come onto the screen.
void HoldWindows(bool held);
// The window that carries the menu strip; null when it is gone.
WindowRef MenuBarWindow();
void DrawMenuStrip(WindowRef w);
// Reads the screens anew.
void ReadScreens();
// One line on standard error and the end of the process: nothing can be shown any more.
[[noreturn]] void DisplayLost();
// Shows all damage; called when the loop is about to wait and now and then before.
void PresentWindows();
// Frees windows that were destroyed inside a dispatch.
void CollectWindows();

}  // namespace platform
