// Buttons, check boxes and colour wells.
#pragma once
#include "platform/controls/controls.h"
#include "toolkit/xw.h"

// The handler of their events, of labels and of pop-up boxes; `control` is the record.
platform::OSStatus Button_func(platform::HandlerCall* call, platform::Event* event, void* control);
// Of the buttons and wells that the toolkit draws.
void ButtonDraw_Func(platform::ControlRef control);
// 1 for an active control, wherever the point lies; else 0.
int ButtonHitTest_Func(platform::ControlRef control, platform::Point where);
