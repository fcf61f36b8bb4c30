// A test that hangs ends with a message instead of holding up the others.
#pragma once

namespace support {

// While it lives, and for `seconds` at most, `what` may run; past that the process says so on
// standard error and aborts. 0: no limit. The innermost one counts; it uses the process's real-time
// alarm. Every test runs under one: main.cc.
class TimeLimit {
 public:
  TimeLimit(double seconds, const char* what);
  ~TimeLimit();
  TimeLimit(const TimeLimit&) = delete;
  TimeLimit& operator=(const TimeLimit&) = delete;

 private:
  TimeLimit* outer_;
  double seconds_, end_;
  char what_[200];
  static void OnAlarm(int);
  static void Arm();
};

}  // namespace support
