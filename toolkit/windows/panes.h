// The platform's panes: each sub-window is one, from the first control of its top-level window on.
#pragma once
#include "platform/controls/controls.h"
#include "toolkit/xw.h"

// Of a top-level window or a sub-window; makes those of the whole top-level window where it has
// none yet. Null for other records.
platform::PaneRef PaneOf(XwWindow* w);
// A sub-window has been made.
void EnterPane(XwWindow* w);
// What its record says now: bounds, shown, background.
void UpdatePane(XwWindow* w);
void LeavePane(XwWindow* w);
// Paints a part of a control's parent with the parent's background, and the controls there.
void RedrawInParent(XwWindow* control, const platform::Rect& area);
