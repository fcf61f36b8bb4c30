// A clipped 2D context over one surface: colours, fills, thin lines, glyphs, images. All
// coordinates are logical pixels of the context's own origin (top-left, y down); the context knows
// the scale.
//
// A context refers to its surface's pixels by generation, never by pointer: once the surface has
// been resized it paints nothing until a new context is made. No call here allocates, looks
// anything up or enters the system, besides scratch memory that grows to the largest polygon seen.
// Every drawing call takes any numbers: what lies outside the clip costs nothing, empty and
// negative sizes paint nothing, a null context is ignored.
#pragma once
#include <cstdint>

#include "platform/base.h"
#include "platform/graphics/region.h"
#include "platform/graphics/surface.h"

namespace platform {

// Over the content that begins `top` logical rows below the surface's upper edge: a window's, below
// its menu bar. The origin is the content's top-left corner, the clip empty, the colour black,
// lines solid. Null for a null surface.
ContextRef CreateContext(Surface* surface, int top);
// A context over any surface (measuring, benches, tests); the surface must outlive it. `origin` is
// the surface's own top-left.
ContextRef CreateSurfaceContext(Surface* surface);
// Null is ignored.
void ReleaseContext(ContextRef c);

// Moves the origin to (x, y) of the content; the clip does not move.
void SetContextOrigin(ContextRef c, int x, int y);
// `region` is in content coordinates (not moved by the context's origin); it is copied.
void ClipContextToRegion(ContextRef c, const Region& region);
// Cuts the clip to a rectangle in the context's own coordinates until the matching Restore. Cuts
// stack without a limit; a Restore without one is ignored.
void ClipContextToRect(ContextRef c, const Rect& r);
void RestoreContextClip(ContextRef c);

// 0xRRGGBB for fills, lines and text alike.
void SetContextColor(ContextRef c, uint32_t rgb);
// Lengths in logical pixels; count 0 means solid. The array is copied (at most 128). A pattern
// without a positive sum is solid; negative lengths count as 0.
void SetContextDash(ContextRef c, float phase, const float* lengths, int count);

// --- Shapes. Lines name pixels (columns and rows), both ends painted; fills and polygons name the
// --- edges between pixels.

void FillRect(ContextRef c, int x, int y, int w, int h);
// The one-pixel outline inside the same rectangle. Dashes run from the bottom-left corner to the
// right, up, left and down.
void FrameRect(ContextRef c, int x, int y, int w, int h);
void StrokeLine(ContextRef c, int x1, int y1, int x2, int y2);
// Whatever the dash; for the theme.
void StrokeLineSolid(ContextRef c, int x1, int y1, int x2, int y2);
// `points`: `count` pairs x, y, each moved by (dx, dy). One point paints nothing.
void StrokeLines(ContextRef c, const int16_t* points, int count, int dx, int dy);
// Even-odd, closed. Fewer than three points paint nothing.
void FillPolygon(ContextRef c, const int16_t* points, int count);
void FillOval(ContextRef c, int x, int y, int w, int h);
void FrameOval(ContextRef c, int x, int y, int w, int h);

// --- Pictures

// `pixels`: `h` rows of `w` pixels, `stride` pixels from row to row, four bytes each: ignored, red,
// green, blue. Only pixels that show are read.
void DrawPixels(ContextRef c, int x, int y, int w, int h, const uint8_t* pixels, int64_t stride);

// `width` x `height` pixels without gaps in the rectangle: each device pixel has the pixel that is
// nearest.
void DrawPicture(ContextRef c, int x, int y, int w, int h, const uint8_t* pixels, int width,
                 int height);

// A square of `size` pixels, 0xAARRGGBB, over what is in the rectangle: each device pixel has the
// mean of those that it covers.
void DrawIconPicture(ContextRef c, int x, int y, int w, int h, const uint32_t* argb, int size);

// A one-bit picture as the runs of its set and of its clear bits, made once.
struct Bitmap;
// `bits`: `height` rows of (width + 7) / 8 bytes, the least significant bit leftmost; read here and
// not kept. Null when a size is not within 1..32767.
Bitmap* CreateBitmap(int width, int height, const uint8_t* bits);
void ReleaseBitmap(Bitmap* b);
// Paints the set bits (or, `inverted`, the clear ones) over the rectangle, repeated from its
// bottom-left corner to the right and up.
void TileBitmap(ContextRef c, const Bitmap* b, bool inverted, int x, int y, int w, int h);

// --- Soft shapes, for the theme: rounded corners are masks made once a radius and scale.
// `alpha` 0..255.

void FillRoundRect(ContextRef c, const Rect& r, int radius, uint32_t rgb, int alpha);
// The outline, one pen wide, inside the same rectangle.
void FrameRoundRect(ContextRef c, const Rect& r, int radius, uint32_t rgb, int alpha);
// The same, `width` logical pixels wide (1..64).
void FrameRoundRectWide(ContextRef c, const Rect& r, int radius, int width, uint32_t rgb,
                        int alpha);

}  // namespace platform
