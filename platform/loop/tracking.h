// The nested waits of the platform: all of them stand here. What they wait for are state machines,
// which are asked about events as trackers.
#pragma once
#include "platform/events/trackers.h"

namespace platform {

enum class WaitEnd : uint8_t { kDone, kTimeout, kOwnerEnded };
// Receives and dispatches events until `done` is true, with `tracker` as the newest. A program's
// own events and those that the tracker wants later lie by, in order: purging, removing and merging
// see them, and they come first afterwards. `timeout` in seconds, as for ReceiveNextEvent.
WaitEnd WaitTracking(Tracker* tracker, bool (*done)(void* data), double timeout);

}  // namespace platform
