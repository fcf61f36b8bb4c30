// What the rooms of the platform know of the queue and of a receive.
#pragma once
#include "platform/events/event.h"

namespace platform {

// Frees what an event of the platform itself owns (a path), not a user event's payload.
void ReleaseEvent(Event* e);

// --- Timers, for receive.
// Calls what is due. Seconds until the next firing; negative when no timer runs.
void FireTimers(double now);
double NextTimer(double now);
// The moment for which FireTimers was last called.
double TimersFiredAt();

// --- Raw input, for receive.
// Takes in all that the display reports.
void TakeRawEvents();

// A dispatch is under way: destroyed windows stay in memory until it is over.
struct DispatchScope {
  DispatchScope();
  ~DispatchScope();
};
bool InDispatch();

}  // namespace platform
