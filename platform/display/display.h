// The seam to the desktop: one table of functions a display. A display is one folder beside this
// file and one line in the list of displays.cc. docs/new-display.md walks through it.
//
// Only platform/display/displays.cc and the rooms of the platform call the table. Device pixels
// everywhere; `w->native` belongs to the display. Unless a line says "may be null", an entry is
// required. A function that may fail returns false and has then changed nothing.
#pragma once
#include <cstdint>

#include "platform/base.h"
#include "platform/events/raw_event.h"
#include "platform/events/sources.h"

namespace platform {

struct Screen {
  DeviceRect bounds;
  double scale = 1.0;
};

struct Display {
  const char* name;
  // Connects. False, silently, when there is no such display here.
  bool (*open)(const char* session_name);
  // Destroys what is left and disconnects.
  void (*close)();
  // Another program of the same session name has this display open. May be null.
  bool (*others_run)() = nullptr;
  // Up to `max` screens, main first; returns how many there are. At least one.
  int (*screens)(Screen* out, int max);
  // Makes the native window, hidden, at DeviceBounds(*w), with title and hints as the record says.
  bool (*create_window)(WindowRef w);
  // `native` is null afterwards.
  void (*destroy_window)(WindowRef w);
  // Shows or hides; with `w->state` and hints as they are then.
  void (*map_window)(WindowRef w, bool shown);
  // Asks for DeviceBounds(*w). Bounds that the window passes through on the way there, and those of
  // requests before, are not reported; what is granted instead is.
  void (*move_resize)(WindowRef w);
  void (*set_title)(WindowRef w);
  // Class, attributes, size limits, transient parent, state: all that the record says.
  void (*set_hints)(WindowRef w);
  // Raises it above the program's others.
  void (*raise)(WindowRef w);
  // Asks for the input focus, with the time of the user's last action.
  void (*activate)(WindowRef w);
  // The desktop's word for the action of the user's that the next `activate` follows, out of a
  // request of another program. May be null.
  void (*use_token)(const char* token) = nullptr;
  // Memory for width x height pixels, in place of the old, whose pixels are kept where both
  // overlap. Sets `*stride` in pixels. Null when the size is refused.
  uint32_t* (*resize_buffer)(WindowRef w, int width, int height, int* stride);
  // Shows the rectangles of the buffer. May be asynchronous; flush completes it.
  void (*present)(WindowRef w, const DeviceRect* rects, int count);
  // Sends what is batched; `wait` also waits until the display has carried it out.
  void (*flush)(bool wait);
  // The cursor over the window; null is the display's arrow. May be null.
  void (*set_cursor)(WindowRef w, CursorRef cursor);
  // Native resources of a cursor are gone after this. May be null.
  void (*destroy_cursor)(CursorRef cursor);
  // All pointer events go to `w`, with this cursor; a null window ends it. Of a window that is not
  // on the screen it begins when the window comes up. May be null.
  bool (*grab_pointer)(WindowRef w, CursorRef cursor);
  // May be null.
  void (*beep)();
  // The next report, without waiting. False when there is none. Also called when the file
  // descriptor shows nothing, since reports may have been read with something else.
  bool (*next_event)(RawEvent* out);
  // What to poll for reports; -1 when the display has none.
  int (*file_descriptor)();
  // Waits at most `seconds` (negative: for ever) for a report. Null: the core polls the descriptor.
  void (*wait)(double seconds);
  // Seconds, monotonic. Null: the system's clock.
  double (*now)();
};

// The list; a null entry ends it.
extern const Display* const kDisplays[];
extern const Display kHeadlessDisplay;
extern const Display kX11Display;

}  // namespace platform
