// Icons outside of the selected window.
#pragma once
#include "platform/graphics/outline.h"
#include "toolkit/xw.h"

// An icon at its own size with its corner at (x, y): its outline, else its set bits. `alpha`
// 0..255; bits are mixed with `behind`, what they stand on. A null icon is ignored.
void PaintIcon(platform::ContextRef c, XwIcon* icon, int x, int y, uint32_t rgb, int alpha,
               uint32_t behind);
// Of the toolkit's own icons; null for others.
const platform::PathPart* OwnOutline(const XwIcon* icon, int* count);
