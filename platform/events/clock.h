// The time, and the sound that asks for attention.
#pragma once
#include <cstdint>

namespace platform {

// Seconds on the display's clock; it can be stepped by hand on the headless display.
double GetCurrentEventTime();
// Wall clock in microseconds, as programs see it: derived from the same clock where it is stepped.
int64_t GetTimeOfDayMicroseconds();
void AlertSoundPlay();

// What the display does of this. Null: the system's clock, no sound.
void SetClock(double (*now)(), void (*beep)());

}  // namespace platform
