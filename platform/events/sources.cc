#include "platform/events/sources.h"

#include <algorithm>
#include <ctime>

namespace platform {
namespace {

struct Sources {
  std::vector<WaitSource> list;
  PollList polled;  // memory of the last wait
};

Sources& State() {
  static Sources* state = new Sources;
  return *state;
}

bool Same(const WaitSource& a, const WaitSource& b) {
  return a.descriptors == b.descriptors && a.take == b.take;
}

}  // namespace

void AddWaitSource(const WaitSource& source) {
  RemoveWaitSource(source);
  State().list.push_back(source);
}

void RemoveWaitSource(const WaitSource& source) {
  std::erase_if(State().list, [&](const WaitSource& s) { return Same(s, source); });
}

void TakeFromSources() {
  // A source may add and remove others.
  for (size_t i = 0; i < State().list.size(); ++i)
    if (State().list[i].take) State().list[i].take();
}

bool WaitForSources(double seconds) {
  PollList& fds = State().polled;
  fds.clear();
  for (size_t i = 0; i < State().list.size(); ++i) State().list[i].descriptors(&fds);
  if (seconds == 0 && fds.empty()) return false;
  constexpr double kLongest = 1e6;  // fits into every timespec
  seconds = std::min(seconds, kLongest);
  timespec t{time_t(seconds), long((seconds - double(time_t(seconds))) * 1e9)};
  return ppoll(fds.data(), nfds_t(fds.size()), seconds < 0 ? nullptr : &t, nullptr) > 0;
}

void FinishSources() {
  State() = Sources();
}

}  // namespace platform
