// The platform's window record: shared by the rooms of the platform, not by its users.
#pragma once
#include <cstdint>
#include <string>

#include "platform/display/pop_up.h"
#include "platform/display/window_kinds.h"
#include "platform/graphics/region.h"
#include "platform/graphics/surface.h"
#include "platform/objects/object.h"

namespace platform {

struct WindowGroup {
  uint32_t attributes = 0;
  int window_class = 0;  // non-zero: the standing group of that class
  WindowGroup* parent = nullptr;
};

// States of a window beside its rectangle, as the program asks for them; bits.
enum WindowState : uint32_t {
  kStateFullScreen = 1,
  kStateModal = 2,
  kStateDocked = 4,  // belongs to the first window: transient, borderless, off the task bar
};

struct Window {
  Object object;
  // --- What the program asked for; set by platform/windows, read by the display.
  int window_class = 0;
  uint32_t attributes = 0;
  uint32_t state = 0;
  Rect content;             // global, logical
  int menu_bar_height = 0;  // logical, above the content
  bool visible = false;
  bool placing = false;  // shown, and nothing has happened in it yet: it is still being placed
  std::string title;     // UTF-8, without the mark
  bool modified = false;
  bool has_limits = false;
  SizeLimits limits;            // as asked for; see LimitsOf
  int widest = 0, tallest = 0;  // that the program itself has made it since
  WindowRef transient_for = nullptr;
  WindowRef parent = nullptr;  // of a pop-up: it lies beside a rectangle of it, above it
  PopUpPlace place;            // of a pop-up
  WindowGroup* group = nullptr;
  // --- Erasing.
  int brush = 0;
  uint32_t background_color = kNoColor;
  uint32_t backdrop = kNoColor;  // what shows where it has grown and was not drawn yet
  bool active = true;            // looks active
  bool focused = false;          // has the display's input focus
  // --- Pixels: menu bar and content together.
  Surface surface;
  bool needs_draw = false;
  bool blank = false;    // shown, and its first draw event has not been taken
  bool recolor = false;  // its background has changed and is still to be painted
  Region lost;           // content that a redraw was asked for, logical
  double draw_since = 0;
  CursorRef cursor = nullptr;
  // --- The controls in it; null while there are none.
  WindowControls* controls = nullptr;
  // --- The display's handle, which no other room looks into.
  void* native = nullptr;
  // --- As the display reports it.
  Rect frame;                // widths of the desktop's frame, logical: left, top, right, bottom
  Rect refused;              // the last reported bounds that were answered with others
  bool full_bounds = false;  // `content` is what full screen gave
  unsigned number = 0;       // in the order of creation, from 1
};

// The window that a display's report names; null when it is gone, or for none.
WindowRef LiveWindow(const Window* w);
// The limits that hold now: the screen's size where the program set none, the window's own where it
// has a fixed size.
SizeLimits LimitsOf(const Window& w);
// The window's rectangle on the screen in device pixels, menu bar included.
DeviceRect DeviceBounds(const Window& w);

}  // namespace platform
