// What the loop watches while it waits: descriptors, and what becomes of them when they are ready.
#pragma once
#include <poll.h>

#include <vector>

namespace platform {

using PollList = std::vector<pollfd>;

struct WaitSource {
  // Appends the descriptors to poll now; it may append none.
  void (*descriptors)(PollList* list);
  // Reads what has arrived, without waiting, and posts it (PostRawEvent). Called at each look at
  // the raw input, whether a descriptor is ready or not. May be null.
  void (*take)() = nullptr;
};

// Any number of sources. The same one is added once.
void AddWaitSource(const WaitSource& source);
void RemoveWaitSource(const WaitSource& source);
// Lets every source take in what has come.
void TakeFromSources();
// Waits until a descriptor of a source is ready, at most `seconds` (negative: for ever). True when
// one is.
bool WaitForSources(double seconds);
void FinishSources();

}  // namespace platform
