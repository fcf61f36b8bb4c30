#include "platform/loop/tracking.h"

#include <algorithm>

#include "platform/events/clock.h"
#include "platform/events/queue.h"
#include "platform/events/timers.h"
#include "platform/loop/dispatch.h"
#include "platform/loop/receive.h"

namespace platform {
namespace {

struct TrackingState {
  std::vector<Tracker*> trackers;  // oldest first
};
TrackingState state;

bool OwnerLives(const Tracker& t) {
  return !t.owner || (IsLiveObject(t.owner) && t.owner->serial == t.owner_serial);
}

// Collects what lies by, and puts it before everything else at the end.
class NestedWait {
 public:
  NestedWait() {
    list_.outer = main_event_queue.lying_by;
    main_event_queue.lying_by = &list_;
  }
  ~NestedWait() {
    main_event_queue.lying_by = list_.outer;
    main_event_queue.Prepend(list_.events);
  }
  NestedWait(const NestedWait&) = delete;
  NestedWait& operator=(const NestedWait&) = delete;

  void LayBy(const Event& e) {
    if (!e.posted()) {
      list_.events.push_back(e);
      return;
    }
    // Of a program's own event a receive fills in nothing else.
    Event posted(e.cls, 0);
    posted.payload = e.payload;
    list_.events.push_back(posted);
  }

 private:
  LyingBy list_;
};

}  // namespace

bool trackers_wait = false;

void StartTracking(Tracker* tracker) {
  if (!tracker) return;
  StopTracking(tracker);
  tracker->owner_serial = tracker->owner ? tracker->owner->serial : 0;
  state.trackers.push_back(tracker);
  trackers_wait = true;
}

void StopTracking(Tracker* tracker) {
  std::erase(state.trackers, tracker);
}

Tracking AskNewestTracker(Event* event) {
  std::erase_if(state.trackers, [](const Tracker* t) { return !OwnerLives(*t); });
  trackers_wait = !state.trackers.empty();
  if (!trackers_wait) return Tracking::kPass;
  const Tracker* t = state.trackers.back();
  return t->ask(t->data, event);
}

WaitEnd WaitTracking(Tracker* tracker, bool (*done)(void* data), double timeout) {
  StartTracking(tracker);
  NestedWait wait;
  const double end = GetCurrentEventTime() + std::max(0.0, timeout);
  bool asked = false;
  WaitEnd result = WaitEnd::kDone;
  Event e;
  for (;;) {
    // First, since what `done` looks at may have gone with the owner.
    if (!OwnerLives(*tracker)) {
      result = WaitEnd::kOwnerEnded;
      break;
    }
    if (done(tracker->data)) break;
    const double now = GetCurrentEventTime();
    if (timeout >= 0 && asked && now >= end) {
      result = WaitEnd::kTimeout;
      break;
    }
    asked = true;
    // No longer than to the next timer, which may end the wait or the owner.
    double left = timeout < 0 ? timeout : std::max(0.0, end - now);
    if (const double timer = NextTimer(now); timer >= 0 && (left < 0 || timer < left)) left = timer;
    if (!ReceiveNextEvent(left, &e)) continue;
    if (e.posted()) {
      wait.LayBy(e);
      continue;
    }
    const Tracking answer = AskTracker(&e);
    if (answer == Tracking::kLater)
      wait.LayBy(e);
    else if (answer == Tracking::kPass)
      DispatchEvent(&e);
    else
      ReleaseEvent(&e);
  }
  StopTracking(tracker);
  return result;
}

void FinishTracking() {
  state = TrackingState();
  trackers_wait = false;
}

}  // namespace platform
