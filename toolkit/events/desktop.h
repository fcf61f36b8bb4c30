// What the desktop does to windows and asks of the program.
#pragma once
#include "platform/events/targets.h"

platform::OSStatus EVwindow_func(platform::HandlerCall* call, platform::Event* event, void* window);
platform::OSStatus EVapp_func(platform::HandlerCall* call, platform::Event* event, void* user_data);
platform::OSStatus EVapple_func(const platform::Event* event);
