// The background of windows, with which they are cleared.
#pragma once
#include "platform/base.h"
#include "toolkit/xw.h"

// The colour with which the platform erases in XW: the nearest background upward, white where none.
uint32_t BackgroundUpward(const XwWindow* w);
// Erases a rectangle of XW with it. The current colours stay.
void EraseToBackground(const platform::Rect& r);
