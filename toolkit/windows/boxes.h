// Hit-box lists.
#pragma once
#include "toolkit/xw.h"

XwBoxes* XAllocbl();
// Adds the box (blpx, blpy, bllx, blly).
void XAddbl(XwBoxes* list, int id);
void XEndbl(XwBoxes* list);
void XFreebl(XwBoxes* list);
// The position from 1 of the box under the pointer, whose rectangle goes to Inp; 0 when there is
// none.
int XCheckbl(XwBoxes* list);
