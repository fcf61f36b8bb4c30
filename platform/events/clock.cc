#include "platform/events/clock.h"

#include <sys/time.h>

#include <ctime>

namespace platform {
namespace {

struct Clock {
  double (*now)() = nullptr;
  void (*beep)() = nullptr;
};
Clock clock_in_use;

}  // namespace

double GetCurrentEventTime() {
  if (clock_in_use.now) return clock_in_use.now();
  timespec t;
  clock_gettime(CLOCK_MONOTONIC, &t);
  return double(t.tv_sec) + double(t.tv_nsec) * 1e-9;
}

int64_t GetTimeOfDayMicroseconds() {
  if (clock_in_use.now) return int64_t(clock_in_use.now() * 1e6 + 0.5);
  timeval t;
  gettimeofday(&t, nullptr);
  return int64_t{t.tv_sec} * 1000000 + t.tv_usec;
}

void AlertSoundPlay() {
  if (clock_in_use.beep) clock_in_use.beep();
}

void SetClock(double (*now)(), void (*beep)()) {
  clock_in_use = {now, beep};
}

}  // namespace platform
