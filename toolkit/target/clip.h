// What a window may be drawn in: its clip rectangle or all of it, less its shown children.
#pragma once
#include "platform/graphics/region.h"
#include "toolkit/xw.h"

// Where the window's own (0, 0) lies in the content of its top-level window.
platform::Point ContentOrigin(const XwWindow* w);
// Its clip in content coordinates; the caller frees it.
platform::Region* MakeClip(const XwWindow* w, platform::Point origin);
// Drops the clips of a parent and of its children: one of them has moved, come or gone.
void ResetFamilyClips(XwWindow* parent);
// Drops the clips of everything below a window.
void ResetClipsBelow(XwWindow* w);
