// Timers: a table of pairs (window, value) over the platform's event-loop timers.
#pragma once
#include "toolkit/core/state.h"

// Notes that a timer's event has left the queue, so that the next firing queues another.
void TimerTaken(XwWindow* window, XwValue value);
// True for the event of a timer, whichever it is.
bool EVtimer_find_func(const platform::Event& event);
