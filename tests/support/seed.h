// Numbers for random tests: one seed a process, printed when it is first used, settable with
// QUORVIK_SEED (decimal, hexadecimal with 0x, or the word random), so that any run can be repeated.
#pragma once
#include <cstdint>

namespace support {

// QUORVIK_SEED, else `usual`, the same in each run. What is set and is neither a number nor
// "random" ends the process.
uint64_t Seed(uint64_t usual);

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
