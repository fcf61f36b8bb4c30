// Edit boxes.
#pragma once
#include "platform/events/targets.h"
#include "toolkit/xw.h"

// The handler of an edit box: the keyboard that comes and goes, and presses of one that is
// read-only.
platform::OSStatus Editbox_func(platform::HandlerCall* call, platform::Event* event, void* control);
// What a key does in the box with the keyboard; false when the box takes no notice of it.
bool Editbox_filter(platform::ControlRef control, platform::Event* key);
