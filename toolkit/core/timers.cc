#include "toolkit/core/timers.h"

#include "platform/events/timers.h"
#include "toolkit/core/alive.h"
#include "toolkit/core/post.h"

using namespace platform;

namespace {

void EVtimer_func(EventLoopTimerRef, void* data) {
  XwTimerSlot& slot = Timers[reinterpret_cast<intptr_t>(data)];
  // Firings that the program has no time for merge into the one that waits.
  if (!slot.value || slot.queued) return;
  slot.queued = true;
  XwSendEvent(slot.window, XWE_TIMER, 0, XwValue{slot.value}, 0);
}

void Stop(XwTimerSlot& slot) {
  slot.value = 0;
  RemoveEventLoopTimer(slot.timer);
  slot.timer = nullptr;
  RemoveRecords(EVtimer_find_func);
  for (XwTimerSlot& s : Timers) s.queued = false;
}

XwTimerSlot* FindSlot(XwWindow* w, int32_t value) {
  for (XwTimerSlot& slot : Timers)
    if (slot.window == w && slot.value == value) return &slot;
  return nullptr;
}

XwTimerSlot* FreeSlot() {
  for (XwTimerSlot& slot : Timers)
    if (slot.value == 0) return &slot;
  return nullptr;
}

}  // namespace

bool EVtimer_find_func(const Event& event) {
  return event.cls == kToolkitEventClass && static_cast<XwEvent*>(event.payload)->type == XWE_TIMER;
}

void TimerTaken(XwWindow* window, XwValue value) {
  for (XwTimerSlot& slot : Timers)
    if (slot.window == window && slot.value == value) slot.queued = false;
}

void XwTimer(XwWindow* w, int32_t value, int32_t ms) {
  if (!CheckWindow(w)) return;
  if (value == 0) {
    for (XwTimerSlot& slot : Timers)
      if (slot.window == w) Stop(slot);
    return;
  }
  XwTimerSlot* slot = FindSlot(w, value);
  if (!slot && ms == 0) return;
  if (!slot) slot = FreeSlot();
  if (!slot) {
    Refuse(Refusal::kNoTimerSlot);
    return;
  }
  if (ms == 0) {
    Stop(*slot);
    return;
  }
  slot->window = w;
  slot->value = value;
  // A period below one millisecond would leave the loop nothing else to do.
  double interval = (ms < 1 ? 1 : ms) / 1000.0;
  if (slot->timer)
    SetEventLoopTimerNextFireTime(slot->timer, interval);
  else
    slot->timer = InstallEventLoopTimer(interval, interval, EVtimer_func,
                                        reinterpret_cast<void*>(intptr_t(slot - Timers)));
}
