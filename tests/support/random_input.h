// What a user and a desktop may do, at random, on the headless display.
#pragma once
#include <cstdint>

#include "platform/base.h"
#include "platform/windows/windows.h"

namespace support {

class RandomInput {
 public:
  // The pointer goes to places in `area`. Every `rare`-th request of the desktop comes: a window
  // closes, is lost, a file is opened.
  RandomInput(uint64_t seed, const platform::Rect& area, uint32_t rare)
      : state_(seed), area_(area), rare_(rare) {}

  // Below `below`.
  uint32_t Number(uint32_t below);
  // From `low` to `high`, both included.
  int Between(int low, int high) { return low + int(Number(uint32_t(high - low + 1))); }

  // Does one thing; what concerns a window concerns one that `window` gives, null for none.
  void Act(platform::WindowRef (*window)());
  // Lets go of all buttons and keys.
  static void LetGo();

 private:
  void Key();
  void Request(platform::WindowRef (*window)());

  uint64_t state_;
  platform::Rect area_;
  uint32_t rare_;
};

}  // namespace support
