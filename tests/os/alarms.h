// Signals that arrive every two milliseconds while one of these lives.
#ifndef QUORVIK_TESTS_OS_ALARMS_H
#define QUORVIK_TESTS_OS_ALARMS_H

#include <signal.h>
#include <sys/time.h>

class Alarms {
 public:
  Alarms() {
    struct sigaction action = {};
    action.sa_handler = [](int) {};
    sigaction(SIGALRM, &action, nullptr);
    const itimerval every = {{0, 2000}, {0, 2000}};
    setitimer(ITIMER_REAL, &every, nullptr);
  }
  Alarms(const Alarms&) = delete;
  Alarms& operator=(const Alarms&) = delete;
  ~Alarms() {
    const itimerval never = {};
    setitimer(ITIMER_REAL, &never, nullptr);
  }
};

#endif
