// What a window may be drawn in: its clip rectangle or all of it, less its shown children.
#pragma once
#include "platform/graphics/region.h"
#include "toolkit/xw.h"

// Where the window's own (0, 0) lies in the content of its top-level window.
platform::Point ContentOrigin(const XwWindow* w);
// Its clip in content coordinates; the caller frees it.
platform::Region* MakeClip(const XwWindow* w, platform::Point origin);
// Drops the clips of a window and of everything below it. One that comes, goes or moves changes
// its parent's clip too (ResetClipMask), and no sibling's: only children are taken from a clip.
void ResetClipsFrom(XwWindow* w);
