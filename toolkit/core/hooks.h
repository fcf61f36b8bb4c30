// Functions of a higher room that a lower one calls. The session sets them.
#pragma once
#include "toolkit/xw.h"

// The handlers of a new top-level window. The session sets it before any window can be made.
extern void (*install_event_handlers)(XwWindow* w);
