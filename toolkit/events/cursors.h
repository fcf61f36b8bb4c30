// The set of pointer shapes.
#pragma once
#include "platform/base.h"
#include "toolkit/xw.h"

// Fills XWcursors.
void FillCursorTable();
void ReleaseCursorTable();
// From a bitmap record; null for null and for a size outside 8..32.
XwCursor* XwCocoaCreateCursor(const uint8_t* record);
// Shows a cursor over `w`'s window; null is ignored.
void XwCocoaSetCursor(XwWindow* w, XwCursor* cursor);
// The cursor for a place on the screen over `w`: the grab's, else that of the sub-window there,
// else the window's.
void ChooseCursor(XwWindow* w, platform::Point where);
// Each window has the cursor for where the pointer was last seen.
void RestoreCursors();
