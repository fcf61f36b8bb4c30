// Sliders and scroll bars.
#pragma once
#include "platform/controls/controls.h"
#include "toolkit/xw.h"

// Behind `user_data` of the record, which owns it.
struct ScrollBlock {
  int32_t minimum, maximum;  // of the document, not of the platform's control
  int32_t line, page;        // 0 for a slider
};
// Called while one is tracked: brings the value within its bounds and delivers each change at once.
void ScrollBarLiveTrackingFunc(platform::ControlRef control, int part);
// The handler of their hits; `control` is the record.
platform::OSStatus Scroll_func(platform::HandlerCall* call, platform::Event* event, void* control);
