#include "platform/events/trackers.h"

#include <algorithm>
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

// Sends the release to the older trackers, which do not get it otherwise.
static void ReleaseOlder(const std::vector<Tracker*>& trackers, Event release) {
  release.window = nullptr;
  for (size_t i = trackers.size() - 1; i-- > 0;) {
    Tracker* t = trackers[i];
    const bool waits = std::find(state.list.begin(), state.list.end(), t) != state.list.end();
    if (waits && TrackerLives(*t)) t->ask(t->data, &release);
  }
}

Tracking AskNewestTracker(Event* event) {
  std::erase_if(state.list, [](const Tracker* t) { return !TrackerLives(*t); });
  trackers_wait = !state.list.empty();
  if (!trackers_wait) return Tracking::kPass;
  const Tracker* t = state.list.back();
  const bool release = event->cls == kEventClassMouse && event->kind == kEventMouseUp;
  if (!release || state.list.size() == 1) return t->ask(t->data, event);
  const std::vector<Tracker*> all = state.list;
  const Event before = *event;
  const Tracking answer = t->ask(t->data, event);
  if (answer != Tracking::kLater) ReleaseOlder(all, before);
  return answer;
}

void FinishTrackers() {
  state = Trackers();
  trackers_wait = false;
}

}  // namespace platform
