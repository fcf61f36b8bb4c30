#include "tests/support/time_limit.h"

#include <signal.h>
#include <sys/time.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace support {

namespace {

TimeLimit* innermost = nullptr;

double Now() {
  timespec t;
  clock_gettime(CLOCK_MONOTONIC, &t);
  return double(t.tv_sec) + double(t.tv_nsec) * 1e-9;
}

void Say(const char* text) {
  [[maybe_unused]] const ssize_t n = write(STDERR_FILENO, text, strlen(text));
}

}  // namespace

// Only what is allowed in a signal's handler.
void TimeLimit::OnAlarm(int) {
  Say("\ntime limit passed: ");
  if (innermost != nullptr) Say(innermost->what_);
  Say("\n");
  abort();
}

// Sets the alarm to the end of the innermost limit.
void TimeLimit::Arm() {
  itimerval alarm{};
  if (innermost != nullptr && innermost->seconds_ > 0) {
    double left = innermost->end_ - Now();
    if (left < 1e-6) left = 1e-6;
    alarm.it_value.tv_sec = time_t(left);
    alarm.it_value.tv_usec = suseconds_t((left - double(alarm.it_value.tv_sec)) * 1e6);
    if (alarm.it_value.tv_sec == 0 && alarm.it_value.tv_usec == 0) alarm.it_value.tv_usec = 1;
  }
  setitimer(ITIMER_REAL, &alarm, nullptr);
}

TimeLimit::TimeLimit(double seconds, const char* what)
    : outer_(innermost), seconds_(seconds), end_(Now() + seconds) {
  snprintf(what_, sizeof what_, "%s", what);
  struct sigaction action {};
  action.sa_handler = OnAlarm;
  sigaction(SIGALRM, &action, nullptr);
  innermost = this;
  Arm();
}

TimeLimit::~TimeLimit() {
  // What ran under this limit does not count for the one outside.
  if (outer_ != nullptr) outer_->end_ += Now() - (end_ - seconds_);
  innermost = outer_;
  Arm();
}

}  // namespace support
