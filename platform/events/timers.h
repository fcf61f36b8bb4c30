// Timers of the main loop.
#pragma once
#include "platform/base.h"

namespace platform {

struct EventLoopTimer;
using EventLoopTimerRef = EventLoopTimer*;
using EventLoopTimerProc = void (*)(EventLoopTimerRef timer, void* user_data);

// Fires while an event is received, first after `delay`, then every `interval` seconds (0: once).
// Missed periods are made up by one call. Removed with RemoveEventLoopTimer; null is ignored there.
EventLoopTimerRef InstallEventLoopTimer(double delay, double interval, EventLoopTimerProc proc,
                                        void* user_data);
void RemoveEventLoopTimer(EventLoopTimerRef timer);
// Moves the next firing to `delay` seconds from now; the period stays. Null is ignored.
void SetEventLoopTimerNextFireTime(EventLoopTimerRef timer, double delay);

// --- For the loop.
// Calls what is due.
void FireTimers(double now);
// Seconds until the next firing; negative when no timer runs.
double NextTimer(double now);
// The moment for which FireTimers was last called.
double TimersFiredAt();
// Removes all timers. Not while one fires.
void FinishTimers();

}  // namespace platform
