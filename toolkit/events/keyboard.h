// Keys: from the platform's characters and virtual keys to the toolkit's codes.
#pragma once
#include "platform/events/targets.h"

platform::OSStatus EVkeyboard_func(platform::HandlerCall* call, platform::Event* event,
                                   void* window);
// A key or modifier that is let go after its window has ended: the table and Inp.state follow,
// without an event.
void ReleaseKey(const platform::Event& event);
