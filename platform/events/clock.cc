#include "platform/events/clock.h"

#include <sys/time.h>

#include <ctime>

namespace platform {
namespace {

double (*display_now)() = nullptr;

}  // namespace

double GetCurrentEventTime() {
  if (display_now) return display_now();
  timespec t;
  clock_gettime(CLOCK_MONOTONIC, &t);
  return double(t.tv_sec) + double(t.tv_nsec) * 1e-9;
}

int64_t GetTimeOfDayMicroseconds() {
  if (display_now) return int64_t(display_now() * 1e6 + 0.5);
  timeval t;
  gettimeofday(&t, nullptr);
  return int64_t{t.tv_sec} * 1000000 + t.tv_usec;
}

void SetClock(double (*now)()) {
  display_now = now;
}

}  // namespace platform
