// The way of one event to the handlers of its target.
#pragma once
#include "platform/events/event.h"

namespace platform {

// To the handlers of the window or the application, without asking a tracker. Releases what the
// event owns.
OSStatus DispatchEvent(Event* event);
// Keeps what a change of the modifiers says, also where a tracker takes it.
void NoteModifiers(const Event& event);
// The modifiers that are held as of the last event that was handed out: those of a menu count too.
uint32_t HeldModifiers();
// Installs the dispatcher, and what the platform does with requests that nobody takes.
void InitDispatch();

}  // namespace platform
