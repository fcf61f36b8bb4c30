// Numbers for random tests: one seed a process, printed when it is first used, settable with
// QUORVIK_SEED (decimal, or hexadecimal with 0x), so that any run can be repeated.
#pragma once
#include <cstdint>

namespace support {

// QUORVIK_SEED, else a new one each run. What is set and is no number ends the process.
uint64_t Seed();

// The same numbers from the same seed on every machine.
class Dice {
 public:
  explicit Dice(uint64_t seed) : state_(seed) {}
  uint64_t Next();
  // From `low` to `high`, both included.
  int Between(int low, int high);
  bool OneIn(int n) { return Between(1, n) == 1; }

 private:
  uint64_t state_;
};

}  // namespace support
