// One event of the platform: its classes, kinds and fields. Everything about events runs on the
// main thread.
#pragma once
#include <cstdint>

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
constexpr uint32_t kEventClassClipboard = FourCC("clip");

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
  kEventWindowActivated = 5,  // it looks active from now on
  kEventWindowDeactivated = 6,
  kEventWindowBoundsChanging = 26,
  kEventWindowBoundsChanged = 27,
  kEventWindowClickResizeRgn = 33,
  kEventWindowCursorChange = 40,
  kEventWindowClose = 72,
  kEventWindowZoom = 75,
  kEventWindowFocusAcquired = 200,    // the desktop itself has moved the input focus to the window
  kEventWindowActivity = 201,         // the toolkit's: it has become active or inactive
  kEventWindowDrag = 202,             // files are dragged over it: `drag`
  kEventWindowDrawFrame = 1000,       // what surrounds the content must be drawn
  kEventWindowCreated = 2000,         // sent to the application
  kEventWindowBoundsReported = 2001,  // by the display; what it makes of them follows as 27
  kEventWindowEnding = 2002,          // the last that its handlers hear
  kEventAppActivated = 1,
  kEventAppDeactivated = 2,
  kEventAppleEvent = 1,
  kEventCommandProcess = 1,
  kEventMenuOpening = 4,
  kEventControlHit = 1,                   // a press or a key has done its work
  kEventControlSetFocusPart = 7,          // the keyboard comes (a part) or goes (0)
  kEventControlContextualMenuClick = 12,  // a press of the secondary button
  kEventControlClick = 13,  // a press of the primary button; one that is taken is not tracked
  kEventControlTextChanged = 151,       // by the user, not by a key that the box's filter has seen
  kEventSystemPointerLost = 5,          // a grab has been refused or taken away
  kEventSystemDisplayReconfigured = 4,  // the main screen has another size or scale
  kEventTextArrived = 1,                // the answer to a request for a text is there
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

// Logical pixels of one notch of a wheel.
constexpr float kWheelNotch = 48;

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
  WindowRef under;  // what lies under the pointer, whichever window gets the event; none: it leaves
};
// Bytes of the text that one key may type.
constexpr int kTypedText = 15;
struct KeyFields {
  uint32_t key_code;  // virtual key
  uint32_t modifiers;
  uint32_t keysym, base_keysym, native_code;
  uint8_t character;          // of the toolkit's set; 0 none
  char text[kTypedText + 1];  // UTF-8 that it typed, cut between characters; "" for a release
  bool ignored;               // a handler wants the platform to do nothing with it
  bool held_before;           // modifiers: held already as the window got the keyboard
};
struct BoundsFields {
  Rect original, current;  // content, global
  bool programmatic;       // moved by the program, not by the user or the desktop
  bool placement;          // the place that a new window was given by the desktop
  bool replayed;           // out of a recording: the desktop does not know of it
  float scale;             // the window's at these bounds; 0: as before
};
struct RequestFields {
  uint32_t id;               // quit, odoc; a command; the number of a request for a text
  const char* const* files;  // odoc: absolute local paths, valid during the dispatch
  int file_count;
};

struct DragFields {
  Point where;  // global
  enum Step : uint8_t { kLeft, kOver, kDropped, kFailed } step;
};

struct ControlFields {
  ControlRef control;
  int part;     // of the focus; of a hit, where the control has parts; else 0
  bool by_key;  // the keyboard has pressed it
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
    ControlFields control;
    DragFields drag;
  };
  // A program's own event: its receiver owns the payload.
  bool posted() const { return payload && cls != kEventClassAppleEvent; }
  Event() : bounds{} {}
  Event(uint32_t c, uint32_t k, WindowRef w = nullptr) : cls(c), kind(k), window(w), bounds{} {}
};
// The queue holds thousands of them.
static_assert(sizeof(Event) == 72 || sizeof(void*) != 8);

}  // namespace platform
