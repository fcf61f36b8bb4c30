// The time.
#pragma once
#include <cstdint>

namespace platform {

// Seconds on the display's clock; it can be stepped by hand on the headless display.
double GetCurrentEventTime();
// Wall clock in microseconds, as programs see it: derived from the same clock where it is stepped.
int64_t GetTimeOfDayMicroseconds();

// The display's clock; null: the system's.
void SetClock(double (*now)());

}  // namespace platform
