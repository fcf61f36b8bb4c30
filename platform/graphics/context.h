// A clipped 2D context over one window: colours, fills, thin lines, glyphs, images. All coordinates
// are logical pixels of the context's own origin (top-left, y down); the context knows the scale.
//
// A context refers to its window's pixels by generation, never by pointer: once the window has been
// resized it paints nothing until a new context is made. No call here allocates, looks anything up
// or enters the system.
#pragma once
#include <cstdint>

#include "platform/base.h"
#include "platform/graphics/region.h"
#include "platform/graphics/surface.h"

namespace platform {

// Null for a null window. The origin is the content's top-left corner, the clip empty, the colour
// black, lines solid.
ContextRef CreateContext(WindowRef window);
// A context over any surface (measuring, benches, tests); the surface must outlive it. `origin` is
// the surface's own top-left.
ContextRef CreateSurfaceContext(Surface* surface);
// Null is ignored.
void ReleaseContext(ContextRef c);

// Moves the origin to (x, y) of the content; the clip does not move.
void SetContextOrigin(ContextRef c, int x, int y);
// `region` is in content coordinates (not moved by the context's origin); it is copied.
void ClipContextToRegion(ContextRef c, const Region& region);
// Intersects the clip with a rectangle in the context's own coordinates until the matching Restore.
// One level.
void ClipContextToRect(ContextRef c, const Rect& r);
void RestoreContextClip(ContextRef c);

// 0xRRGGBB for fills, lines and text alike.
void SetContextColor(ContextRef c, uint32_t rgb);
// Lengths in logical pixels; count 0 means solid. The array is copied (at most 128).
void SetContextDash(ContextRef c, float phase, const float* lengths, int count);

}  // namespace platform
