// The selected window: its context and clip, made when it is selected.
#pragma once
#include "toolkit/xw.h"

// Drops the clips of a parent and of its children: one of them has moved, come or gone.
void ResetFamilyClips(XwWindow* parent);
// Drops the clips of everything below a window.
void ResetClipsBelow(XwWindow* w);
// Nothing is selected while the platform is at work; afterwards the caller's window is selected
// anew, with the clip that it has by then.
struct TargetScope {
  TargetScope() { XwPush(nullptr); }
  ~TargetScope() { XwPop(); }
};
// Asks for a redraw of all of a window. Overwrites the current event's rectangle.
void PostExpose(XwWindow* w);
