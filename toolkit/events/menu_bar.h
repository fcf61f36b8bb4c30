// The menu bar as the loop uses it.
#pragma once
#include "platform/events/targets.h"

// A press on the bar: opens it, or beeps where a wait keeps the first window out.
void PressMenuBar(const platform::Event& e);
// Opens what the keyboard has asked for, if it has: a menu of the bar, the window's context menu.
void OpenRequestedMenu();
// Nothing is dispatched now.
void DropRequestedContext();
// The keys of menu items, behind everything else that a window does with a key.
platform::OSStatus EVmenukey_func(platform::HandlerCall* call, platform::Event* event, void* data);
