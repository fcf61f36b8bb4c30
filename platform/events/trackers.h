// Trackers, which see the platform's events before all handlers. Menus, drags and held controls are
// state machines: they are asked about events and never receive any themselves.
#pragma once
#include "platform/events/event.h"
#include "platform/objects/object.h"

namespace platform {

// What a tracker says about an event.
enum class Tracking : uint8_t {
  kPass,   // it is not the tracker's: the handlers get it
  kTake,   // the tracker has dealt with it
  kLater,  // as kPass; in a nested wait of the tracker it is deferred until the wait is over
};

// Asked for each event of the platform, never for those that the program has posted.
// The caller of StartTracking keeps the record.
struct Tracker {
  Tracking (*ask)(void* data, Event* event) = nullptr;
  void* data = nullptr;
  // The tracker ends with this object; null: with nobody.
  const Object* owner = nullptr;
  uint64_t owner_serial = 0;  // set by StartTracking
};

// Only the newest tracker is asked. The older ones get each release, without a window. A tracker
// that is there already becomes the newest; null is ignored.
void StartTracking(Tracker* tracker);
void StopTracking(Tracker* tracker);
// Whether its owner is alive.
bool TrackerLives(const Tracker& tracker);
// Of the newest tracker whose owner is alive; kPass when there is none.
extern bool trackers_wait;  // there may be one
Tracking AskNewestTracker(Event* event);
inline Tracking AskTracker(Event* event) {
  return trackers_wait ? AskNewestTracker(event) : Tracking::kPass;
}

void FinishTrackers();

}  // namespace platform
