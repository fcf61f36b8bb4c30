// Pointer events: which window of the tree gets them, in which coordinates.
#pragma once
#include "platform/events/targets.h"
#include "toolkit/xw.h"

platform::OSStatus EVmouse_func(platform::HandlerCall* call, platform::Event* event, void* window);
platform::OSStatus EVwheel_func(platform::HandlerCall* call, platform::Event* event, void* window);
// The shown sub-window of `w` under (x, y) of `w`, or null.
XwWindow* FindVirtualWindow(XwWindow* w, int x, int y);
// Places Inp.px and Inp.py in the target's own coordinates.
void SetTargetCoordinates(XwWindow* target);
