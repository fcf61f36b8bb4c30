// The ground of windows, with which they are cleared.
#pragma once
#include "platform/base.h"
#include "toolkit/xw.h"

// The colour with which the platform erases in XW: the nearest ground upward, white where none.
uint32_t GroundUpward(const XwWindow* w);
// Erases a rectangle of XW with it. The current colours stay.
void EraseToGround(const platform::Rect& r);
