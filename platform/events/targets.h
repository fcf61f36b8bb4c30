// Handlers of events on targets.
//
// Handlers may post events, end windows, and install and remove what they like. One that returns
// eventNotHandledErr lets the next run. What the platform does by itself is a handler too,
// installed first and so run last.
#pragma once
#include "platform/events/event.h"
#include "platform/objects/object.h"

namespace platform {

struct EventKind {
  uint32_t cls, kind;  // cls 0: every event
};
using EventTargetRef = EventTarget*;

EventTargetRef GetApplicationEventTarget();
// Stands for wherever an event belongs: its window, or the application.
EventTargetRef GetEventDispatcherTarget();
// Newest first; a null target is ignored.
void InstallEventHandler(EventTargetRef target, EventHandler handler, const EventKind* kinds,
                         int count, void* user_data);
// Runs the handlers of the target. eventNotHandledErr when none took the event; noErr when what the
// target belongs to has ended. A null target takes nothing.
OSStatus SendEventToEventTarget(Event* event, EventTargetRef target);

// Forgets the handlers of the application and of the dispatcher.
void FinishTargets();

}  // namespace platform
