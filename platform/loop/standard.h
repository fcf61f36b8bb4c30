// What the platform itself does with an event, before and after the handlers.
#pragma once
#include "platform/events/event.h"

namespace platform {

// Makes the platform's own state agree with the event first (a new size, a new focus). False when
// nothing is left to tell the handlers.
bool PrepareEvent(Event* event);
// The standard handler: runs last, also after a handler that let the event pass. Returns the
// status.
OSStatus FinishEvent(Event* event, OSStatus status);

}  // namespace platform
