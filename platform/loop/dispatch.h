// The way of one event to the handlers of its target.
#pragma once
#include "platform/events/event.h"

namespace platform {

// To the handlers of the window or the application, without asking a tracker. Releases what the
// event owns.
OSStatus DispatchEvent(Event* event);
// Installs the dispatcher, and what the platform does with requests that nobody takes.
void InitDispatch();

}  // namespace platform
