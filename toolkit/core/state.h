// The toolkit's state: one struct, beside the globals that programs know by name.
#pragma once
#include <cstddef>
#include <cstdint>

#include "platform/base.h"
#include "platform/events/timers.h"
#include "toolkit/core/trace.h"
#include "toolkit/xw.h"

// --- Globals that xw.h does not show.

struct XwTimerSlot {
  XwWindow* window;
  int32_t value;  // 0: the slot is free
  platform::EventLoopTimerRef timer;
  bool queued;  // its event waits in the queue
};
constexpr int kTimerSlots = 32;
extern XwTimerSlot Timers[kTimerSlots];

// The grab of the pointer; its window is GrabWindow.
extern bool PassiveGrab, ActiveGrab;
extern XwCursor* GrabCursor;

extern bool AppActive;

constexpr int kKeyCodes = 532;
extern uint8_t KeyState[kKeyCodes];  // 0 up, 1 down, 2 repeating

// The selections that XwPush saved.
constexpr int kStackDepth = 200;
extern XwWindow* XStack[kStackDepth];
extern int32_t XStackCount;

// The box that XAddbl adds: x, y, width, height.
extern int16_t blpx, blpy, bllx, blly;

// --- The struct.

namespace platform {
class PointerSet;
}

namespace toolkit {

class Modal;
struct Described;
struct Tips;

// The current colours outlive the selection. Filling, stroking and ovals keep one each: dashed
// lines change only the second, text only the first.
struct CurrentColors {
  uint32_t fill, stroke, oval;  // 0xRRGGBB
};

struct State {
  platform::PointerSet* live = nullptr;  // records that are alive; null while there are none
  const XwWindow* last_found = nullptr;  // the record that was asked about last, when it is alive
  bool first_window_ended = false;       // or is being torn down
  Refusal refusal = Refusal::kNone;      // the latest
  CurrentColors colors{};
  const Modal* innermost_wait = nullptr;
  Described* described = nullptr;    // what programs say of what they draw; null while there is
                                     // none
  Tips* tips = nullptr;              // null while there are none
  bool polled = false;               // XwGetEvent has been called
  int64_t last_poll = 0;             // microseconds
  int32_t last_click_item = -1;      // of XwDoubleClick
  platform::Point last_drag{0, 0};   // where files were last dragged over a window
  XwWindow* dragged_over = nullptr;  // its handler knows of files over it
  int last_drop = 0;                 // the number of the last drop
  XwWindow* dropped_on = nullptr;    // its window, until its documents have come; else null
  platform::Point last_pen{-1, -1};  // the place of the latest sample of a pen
};
extern constinit State state;

// State and globals become what they were before the first session. What they own is freed before.
void ResetState();

}  // namespace toolkit
