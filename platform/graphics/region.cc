#include "platform/graphics/region.h"

#include <vector>

namespace platform {
namespace {

// pixman keeps coordinates in 32 bits; anything outside this square lies outside every window.
constexpr int kFar = 1 << 20;

pixman_box32_t Clamp(const Rect& r) {
  auto c = [](int v) { return v < -kFar ? -kFar : v > kFar ? kFar : v; };
  return {c(r.left), c(r.top), c(r.right), c(r.bottom)};
}

bool Empty(const pixman_box32_t& b) {
  return b.x2 <= b.x1 || b.y2 <= b.y1;
}

}  // namespace

void Region::Add(const Rect& r) {
  pixman_box32_t b = Clamp(r);
  if (Empty(b)) return;
  pixman_region32_union_rect(&region_, &region_, b.x1, b.y1, unsigned(b.x2 - b.x1),
                             unsigned(b.y2 - b.y1));
}

void Region::Assign(std::span<const pixman_box32_t> boxes) {
  pixman_region32_fini(&region_);
  pixman_region32_init_rects(&region_, boxes.data(), int(boxes.size()));
}

void Region::Subtract(const Rect& r) {
  Subtract(std::span<const Rect>(&r, 1));
}

void Region::Subtract(std::span<const Rect> rects) {
  std::vector<pixman_box32_t> list;
  list.reserve(rects.size());
  for (const Rect& r : rects) {
    pixman_box32_t b = Clamp(r);
    if (!Empty(b)) list.push_back(b);
  }
  if (list.empty()) return;
  pixman_region32_t holes;
  pixman_region32_init_rects(&holes, list.data(), int(list.size()));
  pixman_region32_subtract(&region_, &region_, &holes);
  pixman_region32_fini(&holes);
}

void Region::Intersect(const Rect& r) {
  pixman_box32_t b = Clamp(r);
  if (Empty(b)) {
    Clear();
    return;
  }
  pixman_region32_intersect_rect(&region_, &region_, b.x1, b.y1, unsigned(b.x2 - b.x1),
                                 unsigned(b.y2 - b.y1));
}

Rect Region::extents() const {
  const pixman_box32_t* b = pixman_region32_extents(raw());
  return {b->x1, b->y1, b->x2, b->y2};
}

std::span<const pixman_box32_t> Region::boxes() const {
  int n = 0;
  const pixman_box32_t* b = pixman_region32_rectangles(raw(), &n);
  return {b, size_t(n)};
}

bool Region::contains(Point p) const {
  return pixman_region32_contains_point(raw(), p.x, p.y, nullptr);
}

}  // namespace platform
