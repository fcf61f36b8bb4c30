// Where the platform's control of a record lies.
#pragma once
#include "platform/base.h"
#include "toolkit/xw.h"

// In the parent's coordinates, for a record of this kind and style with these bounds.
platform::Rect ControlRect(int kind, uint32_t style, int x, int y, int width, int height);
// The height that the record keeps.
int RecordedHeight(int kind, uint32_t style, int height);
