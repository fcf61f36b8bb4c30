// Outlines: shapes of lines and curves, anti-aliased at the device's own pixels. FreeType's
// rasteriser makes a mask for each scale, which the outline keeps; what is drawn once goes straight
// into the pixels.
#pragma once
#include "platform/base.h"

namespace platform {

enum class PathVerb : uint8_t { kMove, kLine, kQuad, kCubic, kClose };
// (x, y) is the end, the others are control points; logical pixels, y down.
struct PathPart {
  PathVerb verb;
  float x = 0, y = 0, x1 = 0, y1 = 0, x2 = 0, y2 = 0;
};

struct Outline;
constexpr int kMostPathParts = 4096;
// Copied. A contour begins at a move, and at the end of a part that follows none or a close.
// `stroke` above 0: a line of that width along it, with round ends and joins; else filled,
// even-odd. Null for no parts or too many, a verb that is none, and numbers that are not finite or
// beyond 16384.
Outline* CreateOutline(const PathPart* parts, int count, float stroke);
void ReleaseOutline(Outline* o);
// With its origin at (x, y); `alpha` 0..255. One whose mask would be larger than 2048 pixels a side
// paints nothing, as do a null context and a null outline.
void DrawOutline(ContextRef c, Outline* o, int x, int y, uint32_t rgb, int alpha);

// --- Drawn once, in the context's own coordinates, at its device pixels. Nothing is kept; a count
// --- outside 1..kMostDrawnParts and what CreateOutline refuses paint nothing.
constexpr int kMostDrawnParts = 10000;
// Even-odd.
void FillPath(ContextRef c, const PathPart* parts, int count, uint32_t rgb);
// A line of that width (above 0) with round ends and joins.
void StrokePath(ContextRef c, const PathPart* parts, int count, float width, uint32_t rgb);

}  // namespace platform
