// A set of pixels made of rectangles: clips, damage, uncovered areas. pixman does the arithmetic.
#pragma once
#include <pixman.h>

#include <span>
#include <utility>

#include "platform/base.h"

namespace platform {

class Region {
 public:
  Region() { pixman_region32_init(&region_); }
  explicit Region(const Rect& r) : Region() { Add(r); }
  Region(const Region& other) : Region() { pixman_region32_copy(&region_, other.raw()); }
  Region(Region&& other) noexcept : Region() { std::swap(region_, other.region_); }
  Region& operator=(Region other) noexcept {
    std::swap(region_, other.region_);
    return *this;
  }
  ~Region() { pixman_region32_fini(&region_); }

  void Clear() {
    pixman_region32_fini(&region_);
    pixman_region32_init(&region_);
  }
  void Add(const Rect& r);
  // Becomes the union of the boxes; empty ones are allowed.
  void Assign(std::span<const pixman_box32_t> boxes);
  void Subtract(const Rect& r);
  // Removes every rectangle of the list in one go: n children cost one union, not n.
  void Subtract(std::span<const Rect> rects);
  void Intersect(const Rect& r);
  void Translate(int dx, int dy) { pixman_region32_translate(&region_, dx, dy); }
  bool empty() const { return !pixman_region32_not_empty(raw()); }
  Rect extents() const;
  // Top to bottom, left to right; no two overlap. Valid until the region changes.
  std::span<const pixman_box32_t> boxes() const;
  bool contains(Point p) const;

  pixman_region32_t* raw() const { return const_cast<pixman_region32_t*>(&region_); }

 private:
  pixman_region32_t region_;
};

}  // namespace platform
