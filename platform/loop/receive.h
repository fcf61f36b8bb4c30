// Taking the next event out of the queue, from the loop. Reports of the display, timers, redraw
// requests and the screen are looked after on the way.
#pragma once
#include "platform/events/queue.h"

namespace platform {

constexpr double kEventDurationForever = -1;
constexpr double kEventDurationNoWait = 0;

// Looks after all that a receive looks after, then takes what comes first.
bool ReceiveWithUpkeep(double timeout, Event* out);
// Takes the next event out of the queue. `timeout` in seconds. False when none came in
// time, or the result of a background task has come.
inline bool ReceiveNextEvent(double timeout, Event* out) {
  EventQueue& queue = main_event_queue;
  if (queue.empty() || --queue.quick < 0) [[unlikely]]
    return ReceiveWithUpkeep(timeout, out);
  queue.Pop(out);
  return true;
}

void FinishReceive();

}  // namespace platform
