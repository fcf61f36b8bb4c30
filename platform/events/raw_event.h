// What a display or the desktop reports, before any translation, and the reports that wait.
#pragma once
#include <string>

#include "platform/events/event.h"

namespace platform {

// What the display reports, before any translation. Coordinates are device pixels.
struct RawEvent {
  enum Type : uint8_t {
    kNone,  // a long transfer is under way: the display is to be asked again
    kMotion,
    kPress,
    kRelease,  // x, y, root_x, root_y, under, button, tablet, modifiers
    kScroll,   // dx, dy: logical pixels, positive is right and down
    kLeave,    // x, y, root_x, root_y: where the pointer is now
    kKeyDown,
    kKeyRepeat,
    kKeyUp,      // keycode, keysym, base_keysym, unicode, typed, modifiers
    kModifiers,  // modifiers, held
    // root_x, root_y: the buffer's corner; width, height: its size; scale: what it has there, 0 as
    // before
    kConfigure,
    kExpose,  // x, y, width, height: pixels lost on the screen; the buffer still has them
    kLost,    // content lost: it must be drawn again
    kClose,   // the user asks for it
    kFocusIn,
    kFocusOut,
    kFrame,     // frame: the widths of the desktop's frame around the buffer
    kState,     // state: those bits of WindowState that the desktop decides, as they are now
    kScale,     // scale: the window's, from now on
    kGrabLost,  // held: a grab of the pointer is refused or has ended by itself
    kQuit,      // SIGTERM, the session's end
    kPreferences,
    kOpenFile,       // text: absolute local paths (JoinPaths); request: 1 by the bus, 0 by a drop
    kActivate,       // the first window shall come forward; text: the activation token, may be null
    kLetGo,          // windows that were held back come onto the screen
    kTextArrived,    // request, arrived: the answer of another program, null when it has none
    kSelectionLost,  // selection: another program offers it from now on
    // Files that another program drags over a window that takes them: x, y, root_x, root_y. Then
    // they have left it, or were let go there; of those kOpenFile tells, once they have arrived.
    kDragOver,
    kDragLeft,
    kDragDropped,
    kDropFailed,   // what was dropped on the window last does not come: no kOpenFile tells of it
    kScreens,      // the screens or the scale changed
    kDisplayLost,  // the connection is gone
  } type = kNone;
  uint8_t button = 0;  // 1 primary, 2 secondary, 3 tertiary, 4 and 5 side
  uint8_t tablet_type = 0;
  uint8_t selection = 0;  // a Selection
  const Window* window = nullptr;
  double time = 0;     // seconds on now()
  float x = 0, y = 0;  // relative to the buffer's corner
  float root_x = 0, root_y = 0;
  // Of presses and releases: the program's window that lies under the pointer, whichever gets the
  // report; null: none.
  const Window* under = nullptr;
  float dx = 0, dy = 0;
  TabletPoint tablet{};
  int width = 0, height = 0;
  uint32_t modifiers = 0;  // cmdKey ...
  uint32_t keycode = 0, keysym = 0, base_keysym = 0;
  uint32_t unicode = 0;  // 0: none
  // UTF-8 that the key typed where it is more than that one character; else "".
  char typed[kTypedText + 1] = {};
  // Buttons that are still down, bit n for button n. Of kModifiers: 1 when they were held already
  // as the window got the keyboard.
  uint32_t held = 0;
  uint32_t state = 0;
  double scale = 0;
  DeviceRect frame;
  const char* text = nullptr;  // valid until the next report is taken
  int request = 0;
  std::string* arrived = nullptr;  // may be moved from; valid as `text` is
};

// Reports of releases: they take effect even when their window is destroyed.
inline bool IsRelease(RawEvent::Type type) {
  return type == RawEvent::kRelease || type == RawEvent::kKeyUp || type == RawEvent::kModifiers;
}

// Appends a report that does not come from the display itself. Its text is copied.
void PostRawEvent(const RawEvent& raw);
// Takes the next one; false when none waits.
bool TakePostedRawEvent(RawEvent* out);
void FinishRawEvents();

}  // namespace platform
