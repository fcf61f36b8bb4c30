// Keys: from the platform's characters and virtual keys to the toolkit's codes.
#pragma once
#include "platform/events/targets.h"

platform::OSStatus EVkeyboard_func(platform::HandlerCall* call, platform::Event* event,
                                   void* window);
