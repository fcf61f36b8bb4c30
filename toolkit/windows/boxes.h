// Hit-box lists.
#pragma once
#include "platform/base.h"
#include "toolkit/xw.h"

XwBoxes* XAllocbl();
// Adds the box (blpx, blpy, bllx, blly).
void XAddbl(XwBoxes* list, int id);
void XEndbl(XwBoxes* list);
void XFreebl(XwBoxes* list);
// The position from 1 of the box under the pointer, whose rectangle goes to Inp; 0 when there is
// none.
int XCheckbl(XwBoxes* list);
// The same at a place in the window's coordinates.
int BoxUnder(const XwWindow* w, int px, int py);
// How many the window has, and the rectangle of one by its position, in the window's coordinates;
// false when there is no such box.
int BoxCount(const XwWindow* w);
bool BoxAt(const XwWindow* w, int position, platform::Rect* out);
