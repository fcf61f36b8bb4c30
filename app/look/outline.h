// Small drawings made of lines and curves, smooth at every scale.
#pragma once
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <initializer_list>

#include "toolkit/xw.h"

namespace console {

struct Point {
  float x, y;
};

// The nearest whole device pixel of the selected window.
inline float AtPixel(int place) {
  const double scale = XwGetScale(XW);
  return float(std::floor(place * scale + 0.5) / scale);
}

// A path whose corners count from a place of the selected window. The place is moved to a whole
// device pixel, so that a drawing looks the same wherever it stands.
class Outline {
 public:
  Outline(int x, int y) : x_(AtPixel(x)), y_(AtPixel(y)) {}

  // A closed one, or an open one when `closed` is false.
  Outline& Lines(std::initializer_list<Point> points, bool closed = true) {
    for (const Point& p : points) Add(&p == points.begin() ? XWP_MOVE : XWP_LINE, p);
    if (closed) Add(XWP_CLOSE, {});
    return *this;
  }
  Outline& Rectangle(Point corner, float w, float h) {
    const auto [x, y] = corner;
    return Lines({{x, y}, {x + w, y}, {x + w, y + h}, {x, y + h}});
  }
  Outline& Circle(Point c, float r) {
    // A quarter as a curve has its control points at this part of the radius.
    const float k = r * 0.5523f;
    Add(XWP_MOVE, {c.x + r, c.y});
    Curve({c.x, c.y + r}, {c.x + r, c.y + k}, {c.x + k, c.y + r});
    Curve({c.x - r, c.y}, {c.x - k, c.y + r}, {c.x - r, c.y + k});
    Curve({c.x, c.y - r}, {c.x - r, c.y - k}, {c.x - k, c.y - r});
    Curve({c.x + r, c.y}, {c.x + k, c.y - r}, {c.x + r, c.y - k});
    Add(XWP_CLOSE, {});
    return *this;
  }
  const Outline& Fill(int32_t colour) const {
    XwFillPath(parts_, count_, colour);
    return *this;
  }
  const Outline& Stroke(int32_t colour, float width = 1) const {
    XwStrokePath(parts_, count_, width, colour);
    return *this;
  }

 private:
  static constexpr int kMost = 24;
  void Add(uint8_t verb, Point p) {
    if (count_ < kMost) parts_[count_++] = {verb, x_ + p.x, y_ + p.y, 0, 0, 0, 0};
  }
  void Curve(Point p, Point a, Point b) {
    if (count_ < kMost)
      parts_[count_++] = {XWP_CUBIC, x_ + p.x, y_ + p.y, x_ + a.x, y_ + a.y, x_ + b.x, y_ + b.y};
  }
  float x_, y_;
  int count_ = 0;
  XwPathPart parts_[kMost];
};

}  // namespace console
