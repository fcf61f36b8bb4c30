// What a lower room calls in a higher one. The session sets it.
#pragma once
#include "toolkit/xw.h"

// The handlers of a new top-level window. The session sets it before any window can be made.
extern void (*install_event_handlers)(XwWindow* w);
