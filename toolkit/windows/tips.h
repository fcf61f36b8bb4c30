// Tips: what windows, controls and drawn things say of themselves while the pointer rests on them.
#pragma once
#include <string>

#include "platform/base.h"
#include "toolkit/xw.h"

// Of the window or control (position 0), or of a box of its list; "" where it has none.
const std::string& TipOf(const XwWindow* w, int position);
// A new list of boxes begins in the window: those of its boxes go, unless they are given again
// before it is closed.
void BeginTips(const XwWindow* w);
void EndTips(const XwWindow* w);
// The window ends.
void ForgetTips(const XwWindow* w);
void DropTips();

// The pointer is at a global point over `control` (null: none), or over the box at this position of
// `w` (0: none).
void PointAtTip(XwWindow* w, XwWindow* control, int position, platform::Point where);
// The pointer has left, or the user does something else: the tip goes, and comes again only over
// another thing.
void EndTip();
