// List boxes.
#pragma once
#include "platform/events/targets.h"

// The handler of their hits; `control` is the record.
platform::OSStatus Listbox_func(platform::HandlerCall* call, platform::Event* event, void* control);
