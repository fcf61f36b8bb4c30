// System calls that fail on request. A program that is linked with this (LIBS faults) has its calls
// of the functions in faults.cmake wrapped. A scenario is run again and again: each time another
// one of its calls has another one of the outcomes that such a call can have.
//
// A program of its own is run with faults when it is linked with FAULTY_PROGRAM as well: the test
// names a file in QUORVIK_FAULT_FILE, for itself before its first fault and for the program, and is
// exempt itself.
#pragma once
#include <functional>
#include <string>

namespace support {

// The fault of one run.
class Fault {
 public:
  // Between these two calls the wrapped calls count, in all threads but those that are exempt. A
  // run may have several such stretches.
  void Begin();
  void End();
  // Whether the run came as far as the call that was to fail; its name, and its errno (0 for a
  // transfer that was only cut short). "" and 0 in the first run, which has no fault.
  bool happened() const;
  std::string call() const;
  int error() const;
  // Whether it was one of these calls that failed.
  bool In(std::initializer_list<const char*> calls) const;

 private:
  friend int SweepFaults(const char*, int, const std::function<void(Fault&)>&);
  Fault(int target, int outcome) : target_(target), outcome_(outcome) {}
  int target_, outcome_;
  bool begun_ = false;
};

// Run `scenario` without a fault, then once for each wrapped call and each of its outcomes, or for
// one in `share` of these pairs (QUORVIK_LONG=1: for all). Descriptors that a run leaves open are a
// failure. The number of pairs, also recorded as a property of the test.
int SweepFaults(const char* name, int share, const std::function<void(Fault&)>& scenario);

// While one of these lives, the calls of this thread neither count nor fail: for a peer or another
// helper of the test.
class ExemptFromFaults {
 public:
  ExemptFromFaults();
  ~ExemptFromFaults();
  ExemptFromFaults(const ExemptFromFaults&) = delete;
  ExemptFromFaults& operator=(const ExemptFromFaults&) = delete;
};

// How many descriptors this process has open.
int OpenDescriptors();

}  // namespace support
