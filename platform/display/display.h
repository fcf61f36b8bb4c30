// The seam to the desktop: one table of functions a display. A display is one folder beside this
// file and one line in the list of displays.cc. docs/new-display.md walks through it.
//
// Only platform/display/displays.cc and the rooms of the platform call the table. Device pixels
// everywhere. A display reads the window record and never writes it: what it knows of a window it
// says in reports, and what it keeps of one hangs on the handle that create_window returns, which
// the record has in `native`. Unless a line says "may be null", an entry is required. A function
// that may fail returns false or null and has then changed nothing.
#pragma once
#include <cstdint>

#include "platform/base.h"
#include "platform/display/selection.h"
#include "platform/events/raw_event.h"
#include "platform/events/sources.h"

namespace platform {

struct Screen {
  DeviceRect bounds;
  double scale = 1.0;
};

// --- Types of the table's entries.
enum class OpenResult : uint8_t {
  kNotHere,  // there is no such display, or none that can be used
  kOpened,
  kShared,  // and another program of the session's name has it open
};
// Which parts of the record have changed; bits.
enum UpdateWhat : uint32_t {
  kUpdateTitle = 1,     // title, modified
  kUpdateHints = 2,     // class, attributes, size limits, transient_for, state
  kUpdateCursor = 4,    // cursor
  kUpdateBackdrop = 8,  // backdrop
  kUpdateIcon = 16,     // the program's icon, which ProgramIcons has
};
enum RaiseHow : uint32_t {
  kRaiseOnly = 1,   // above the program's others
  kRaiseFocus = 2,  // ask for the input focus
  kRaiseBoth = 3,
};
// Which window gets the reports of the pointer, wherever it is.
enum class GrabMode : uint8_t {
  kNone,     // each its own, as without a grab
  kWindow,   // the one that grabs
  kProgram,  // the program's window under the pointer; outside all of them, the one that grabs
  kMenu,     // the same, and the one that grabs gets the keyboard as well
};

struct Display {
  const char* name;
  // Connects, and does no more than the first frame needs. Silent when there is no display.
  OpenResult (*open)(const char* session_name);
  // Destroys what is left and disconnects. `open` may follow again.
  void (*close)();
  // Up to `max` screens, main first; returns how many there are. At least one.
  int (*screens)(Screen* out, int max);
  // Makes the native window, hidden, at DeviceBounds(*w), with all that the record says; a pop-up
  // (`w->parent`) at the place that WantedBounds tells, covering what PopUpOutline tells where the
  // display can do that. The display's own handle; null: refused.
  // `*frame`, which is empty, takes the widths of the frame that the desktop will put around it,
  // where that frame could lie off the screen and its widths can be known at once.
  void* (*create_window)(const Window* w, DeviceRect* frame);
  // Frees it, and drops the reports that name it; those that let go of something (IsRelease) name
  // no window instead. The core nulls `native` afterwards.
  void (*destroy_window)(const Window* w);
  // Shows or hides; with `w->state` and hints as they are then.
  void (*map_window)(const Window* w, bool shown);
  // Asks for DeviceBounds(*w). Intermediate bounds and those of earlier requests are not reported;
  // bounds that the desktop grants instead are. A pop-up is placed again.
  void (*move_resize)(const Window* w);
  // Passes on what the record says now; `what` is bits of UpdateWhat.
  void (*update)(const Window* w, uint32_t what);
  // `how` is bits of RaiseHow. The focus is asked for with the time of the last input, or
  // of the one that `token` stands for: the desktop's word out of another program's request, null
  // when there is none. Of a window that is not on the screen yet it is asked for when it comes up.
  void (*raise)(const Window* w, uint32_t how, const char* token);
  // Memory for width x height pixels, in place of the old, which are kept where both overlap. A
  // window's first, but not a pop-up's, have the colour of its backdrop, white where it has none.
  // Sets `*stride` in pixels. Null when the size is refused.
  uint32_t* (*resize_buffer)(const Window* w, int width, int height, int* stride);
  // Shows the rectangles of the buffer. May be asynchronous; flush completes it.
  void (*present)(const Window* w, const DeviceRect* rects, int count);
  // Sends what is batched; `wait` also waits until the display has carried it out.
  void (*flush)(bool wait);
  // Native resources of a cursor are gone after this, and no grab shows it. May be null.
  void (*destroy_cursor)(const Cursor* cursor);
  // Takes the pointer for `w`, with this cursor everywhere (null: the window's own), in place of a
  // grab before. Mode none, with a null window, ends it. A grab that is refused is reported as
  // kGrabLost, and tried again when the window comes onto the screen. May be null: without it a
  // grab holds inside the program's windows.
  void (*grab)(const Window* w, GrabMode mode, const Cursor* cursor);
  // Offers a text as the content of a selection to all programs, in place of what was offered
  // before; null gives it up. False: another program keeps the selection. The loss to another one
  // is reported as kSelectionLost. Waits for the display, since the answer is known only then. May
  // be null: texts stay inside the program.
  bool (*offer_text)(Selection which, const SharedText& text);
  // Asks the program that offers a selection for its text. The answer is one report, kTextArrived.
  // Not `wanted`: cancels the request and drops what has arrived of its answer. Never called for
  // what the program offers itself. May be null: there are no other programs' texts.
  void (*ask_text)(Selection which, int request, bool wanted);
  // The program ends: the clipboard's text is left to the desktop, if that keeps such texts. Waits
  // at most half a second. May be null.
  void (*keep_text)();
  // May be null.
  void (*beep)();
  // The next report, all of it, without waiting. False when there is none; kNone: there may be
  // more, and the loop looks after the rest first. Also called when the descriptors show nothing,
  // since reports may have been read with something else.
  bool (*next_event)(RawEvent* out);
  // Appends what to wait on for reports: descriptors with their poll events. May be null: the
  // display has none.
  void (*descriptors)(PollList* list);
  // Waits at most `seconds` (negative: for ever) for a report. May be null: the core polls the
  // descriptors.
  void (*wait)(double seconds);
  // Seconds, monotonic. May be null: the system's clock.
  double (*now)();
};

// The list; a null entry ends it.
extern const Display* const kDisplays[];
extern const Display kHeadlessDisplay;
extern const Display kX11Display;

}  // namespace platform
