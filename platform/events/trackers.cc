#include "platform/events/trackers.h"

#include <vector>

namespace platform {
namespace {

struct Trackers {
  std::vector<Tracker*> list;  // oldest first
};
Trackers state;

}  // namespace

bool trackers_wait = false;

bool TrackerLives(const Tracker& t) {
  return !t.owner || (IsLiveObject(t.owner) && t.owner->serial == t.owner_serial);
}

void StartTracking(Tracker* tracker) {
  if (!tracker) return;
  StopTracking(tracker);
  tracker->owner_serial = tracker->owner ? tracker->owner->serial : 0;
  state.list.push_back(tracker);
  trackers_wait = true;
}

void StopTracking(Tracker* tracker) {
  std::erase(state.list, tracker);
}

Tracking AskNewestTracker(Event* event) {
  std::erase_if(state.list, [](const Tracker* t) { return !TrackerLives(*t); });
  trackers_wait = !state.list.empty();
  if (!trackers_wait) return Tracking::kPass;
  const Tracker* t = state.list.back();
  return t->ask(t->data, event);
}

void FinishTrackers() {
  state = Trackers();
  trackers_wait = false;
}

}  // namespace platform
