// The inside of a context, shared by the files of this room and by the glyph painter.
#pragma once
#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "platform/graphics/context.h"

namespace platform {

// Device coordinates beyond this lie outside every surface; sums of a few still fit in an int.
constexpr int kFarDevice = 1 << 27;

struct Dash {
  int count = 0;     // 0: solid
  double phase = 0;  // into the pattern, logical pixels
  double total = 0;  // one whole round; an odd pattern is stored twice
  double ends[256];  // where each length ends, from 0
};

// An edge of a polygon, row by row: the first column whose centre lies right of it is `x`, exactly
// x - rest / divisor.
struct PolygonEdge {
  int top, bottom;  // device rows, half-open
  int64_t x, rest, divisor;
  int64_t step, step_rest;  // what a row adds to the column
};

struct Context {
  Surface* surface = nullptr;           // there while ready() is true
  std::shared_ptr<const uint32_t> now;  // the surface's generation
  uint32_t generation = 0;              // for which this context was made
  double scale = 1.0;
  int base_y = 0;                  // logical rows of the surface above the content
  int origin_x = 0, origin_y = 0;  // logical, in the surface
  int pen = 1;                     // device pixels
  uint32_t color = 0xFF000000u;
  // The clip in device pixels of the surface, inside its bounds.
  Region clip;
  const pixman_box32_t* boxes = nullptr;
  int box_count = 0;
  Rect extents;
  std::vector<Region> outer_clips;  // those that Restore brings back, the newest last
  Dash dash;
  std::vector<PolygonEdge> edges;
  std::vector<int> crossings;
  std::vector<int> columns;  // scaled pictures: source column of each device column

  // False when nothing can be painted.
  bool ready() const { return box_count > 0 && *now == generation; }
  uint32_t* row(int y) const { return surface->pixels + int64_t(y) * surface->stride; }
};

inline bool Ready(ContextRef c) {
  return c && c->ready();
}

// A logical edge, already in surface coordinates, as a device edge.
inline int Edge(const Context* c, int64_t logical) {
  if (c->scale == 1.0)
    return int(logical < -kFarDevice ? -kFarDevice : logical > kFarDevice ? kFarDevice : logical);
  constexpr int64_t kFarLogical = kFarDevice * int64_t{4};
  logical = logical < -kFarLogical ? -kFarLogical : logical > kFarLogical ? kFarLogical : logical;
  double d = double(logical) * c->scale;
  int64_t e = d < 0 ? -int64_t(-d + 0.5) : int64_t(d + 0.5);
  return int(e < -kFarDevice ? -kFarDevice : e > kFarDevice ? kFarDevice : e);
}
inline int EdgeX(const Context* c, int64_t x) {
  return Edge(c, x + c->origin_x);
}
inline int EdgeY(const Context* c, int64_t y) {
  return Edge(c, y + c->origin_y);
}
inline DeviceRect DeviceBox(const Context* c, int x, int y, int w, int h) {
  return {EdgeX(c, x), EdgeY(c, y), EdgeX(c, int64_t{x} + w), EdgeY(c, int64_t{y} + h)};
}

// The first clip box that can end below `top`: boxes are in bands from top to bottom, so all before
// this one end above.
inline const pixman_box32_t* FirstBox(const Context* c, int top) {
  const pixman_box32_t* b = c->boxes;
  if (c->box_count < 8) return b;
  return std::partition_point(b, b + c->box_count,
                              [top](const pixman_box32_t& box) { return box.y2 <= top; });
}

// Calls paint(part) for each part of `r` inside the clip; parts do not overlap.
template <typename Paint>
inline void ForEachPart(const Context* c, const DeviceRect& r, Paint paint) {
  const pixman_box32_t* end = c->boxes + c->box_count;
  for (const pixman_box32_t* b = FirstBox(c, r.top); b != end && b->y1 < r.bottom; ++b) {
    DeviceRect part = Intersect(r, {b->x1, b->y1, b->x2, b->y2});
    if (!part.empty()) paint(part);
  }
}

inline void Mark(const Context* c, const DeviceRect& r) {
  c->surface->damage.Mark(r.left, r.top, r.right, r.bottom);
}
// For shapes that paint a part of their box.
inline void MarkClipped(const Context* c, const DeviceRect& r) {
  Mark(c, Intersect(r, c->extents));
}

typedef uint32_t Four __attribute__((vector_size(16), aligned(4), may_alias));

inline void FillSpan(uint32_t* p, int n, uint32_t color) {
  const Four four = {color, color, color, color};
  for (; n >= 8; n -= 8, p += 8) {
    *reinterpret_cast<Four*>(p) = four;
    *reinterpret_cast<Four*>(p + 4) = four;
  }
  if (n & 4) {
    *reinterpret_cast<Four*>(p) = four;
    p += 4;
  }
  if (n & 2) {
    p[0] = color;
    p[1] = color;
    p += 2;
  }
  if (n & 1) *p = color;
}

// Fills device pixels that lie inside the clip, and marks nothing.
inline void FillPart(const Context* c, const DeviceRect& part) {
  uint32_t* p = c->row(part.top) + part.left;
  int n = part.width();
  intptr_t stride = c->surface->stride;
  uint32_t color = c->color;
  if (n == 1)
    for (int y = part.top; y < part.bottom; ++y, p += stride) *p = color;
  else
    for (int y = part.top; y < part.bottom; ++y, p += stride) FillSpan(p, n, color);
}

// Fills device pixels through the clip. Marks what it paints.
inline void FillDevice(const Context* c, const DeviceRect& r) {
  ForEachPart(c, r, [c](const DeviceRect& part) {
    FillPart(c, part);
    Mark(c, part);
  });
}

typedef uint16_t Eight __attribute__((vector_size(16)));
typedef uint8_t FourBytes __attribute__((vector_size(4)));
typedef uint32_t FourWords __attribute__((vector_size(16)));

// The same as Blend, for four pixels with a coverage byte each.
inline void BlendFour(uint32_t* p, uint32_t color, uint32_t coverages) {
  FourWords coverage =
      __builtin_convertvector(reinterpret_cast<const FourBytes&>(coverages), FourWords);
  if constexpr (__BYTE_ORDER__ == __ORDER_BIG_ENDIAN__)
    coverage = FourWords{coverage[3], coverage[2], coverage[1], coverage[0]};
  Eight a = (Eight)(coverage | coverage << 16), rest = 255 - a;
  FourWords under = *reinterpret_cast<const Four*>(p);
  uint32_t color_rb = color & 0xFF00FF, color_ag = color >> 8 & 0xFF00FF;
  Eight rb = (Eight)FourWords{color_rb, color_rb, color_rb, color_rb} * a +
             (Eight)(under & 0xFF00FF) * rest + 128;
  Eight ag = (Eight)FourWords{color_ag, color_ag, color_ag, color_ag} * a +
             (Eight)(under >> 8 & 0xFF00FF) * rest + 128;
  rb = (rb + (rb >> 8)) >> 8;
  ag = (ag + (ag >> 8)) >> 8;
  *reinterpret_cast<Four*>(p) = (FourWords)rb | (FourWords)ag << 8;
}

// One pixel of `color` over `under` with coverage 0..255, rounded exactly.
inline uint32_t Blend(uint32_t under, uint32_t color, uint32_t coverage) {
  uint32_t rest = 255 - coverage;
  uint32_t rb = (color & 0xFF00FF) * coverage + (under & 0xFF00FF) * rest + 0x800080;
  rb = ((rb + ((rb >> 8) & 0xFF00FF)) >> 8) & 0xFF00FF;
  uint32_t g = (color >> 8 & 0xFF) * coverage + (under >> 8 & 0xFF) * rest + 0x80;
  g = (g + (g >> 8)) >> 8;
  return 0xFF000000u | rb | g << 8;
}

}  // namespace platform
