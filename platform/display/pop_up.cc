#include "platform/display/pop_up.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "platform/display/display.h"
#include "platform/display/window.h"

namespace platform {
namespace {

struct Span {
  int low, high;
  int size() const { return high - low; }
};

enum Side { kLow, kMiddle, kHigh };

Side SideOf(uint8_t edges, uint8_t low, uint8_t high) {
  const bool is_low = edges & low, is_high = edges & high;
  return is_low == is_high ? kMiddle : is_low ? kLow : kHigh;
}

Side Opposite(Side side) {
  return Side(kHigh - side);
}

Span Put(const Span& anchor, int size, Side edge, Side gravity) {
  const int at = edge == kLow    ? anchor.low
                 : edge == kHigh ? anchor.high
                                 : anchor.low + anchor.size() / 2;
  const int low = gravity == kHigh ? at : gravity == kLow ? at - size : at - size / 2;
  return {low, low + size};
}

bool Fits(const Span& s, const Span& screen) {
  return s.low >= screen.low && s.high <= screen.high;
}

struct Axis {
  Span anchor, screen;
  int size;
  Side edge, gravity;
  bool flip, slide, resize;
};

Span PlaceOnAxis(const Axis& a) {
  Span s = Put(a.anchor, a.size, a.edge, a.gravity);
  if (a.flip && !Fits(s, a.screen)) {
    const Span flipped = Put(a.anchor, a.size, Opposite(a.edge), Opposite(a.gravity));
    if (Fits(flipped, a.screen)) s = flipped;
  }
  if (a.slide) {
    const int low = std::max(std::min(s.low, a.screen.high - a.size), a.screen.low);
    s = {low, low + a.size};
  }
  if (a.resize && s.low < a.screen.high && s.high > a.screen.low)
    s = {std::max(s.low, a.screen.low), std::min(s.high, a.screen.high)};
  return s;
}

// Columns of a round corner's row that lie outside of it, counted from the edges.
int ColumnsOutside(int radius, int row) {
  const double up = radius - row - 0.5;
  int n = 0;
  while (n < radius && std::hypot(radius - n - 0.5, up) > radius) ++n;
  return n;
}

int Distance(int v, int low, int high) {
  return v < low ? low - v : v >= high ? v - high + 1 : 0;
}

}  // namespace

DeviceRect PlacePopUp(const DeviceRect& anchor, int width, int height, const PopUpPlace& place,
                      const DeviceRect& screen) {
  auto may = [&place](uint8_t what) { return (place.adjust & what) != 0; };
  const Span x = PlaceOnAxis({{anchor.left, anchor.right},
                              {screen.left, screen.right},
                              std::max(width, 1),
                              SideOf(place.edge, kEdgeLeft, kEdgeRight),
                              SideOf(place.gravity, kEdgeLeft, kEdgeRight),
                              may(kFlipX),
                              may(kSlideX),
                              may(kResizeX)});
  const Span y = PlaceOnAxis({{anchor.top, anchor.bottom},
                              {screen.top, screen.bottom},
                              std::max(height, 1),
                              SideOf(place.edge, kEdgeTop, kEdgeBottom),
                              SideOf(place.gravity, kEdgeTop, kEdgeBottom),
                              may(kFlipY),
                              may(kSlideY),
                              may(kResizeY)});
  return {x.low, y.low, x.high, y.high};
}

DeviceRect WantedBounds(const Window& w, const Screen* screens, int count) {
  if (!w.parent) return DeviceBounds(w);
  const Window& parent = *w.parent;
  const double s = parent.surface.scale;
  const DeviceRect at = DeviceBounds(parent);
  const Rect& a = w.place.anchor;
  const DeviceRect anchor{
      at.left + DeviceEdge(a.left, s), at.top + DeviceEdge(a.top + parent.menu_bar_height, s),
      at.left + DeviceEdge(a.right, s), at.top + DeviceEdge(a.bottom + parent.menu_bar_height, s)};
  const Point middle{anchor.left + anchor.width() / 2, anchor.top + anchor.height() / 2};
  return PlacePopUp(anchor, DeviceEdge(w.place.width, s), DeviceEdge(w.place.height, s), w.place,
                    ScreenAt(screens, count, middle).bounds);
}

std::vector<DeviceRect> PopUpOutline(const Window& w, int width, int height) {
  const int radius =
      std::min(DeviceEdge(w.place.corner, w.surface.scale), std::min(width, height) / 2);
  if (!w.parent || radius <= 0) return {};
  std::vector<DeviceRect> rows;
  auto add = [&](int row) {
    const int out = ColumnsOutside(radius, std::min(row, height - 1 - row));
    rows.push_back({out, row, width - out, row + 1});
  };
  for (int row = 0; row < radius; ++row) add(row);
  rows.push_back({0, radius, width, height - radius});
  for (int row = height - radius; row < height; ++row) add(row);
  return rows;
}

const Screen& ScreenAt(const Screen* screens, int count, Point at) {
  auto distance = [at](const Screen& s) {
    return int64_t{Distance(at.x, s.bounds.left, s.bounds.right)} +
           Distance(at.y, s.bounds.top, s.bounds.bottom);
  };
  return *std::min_element(screens, screens + count, [&](const Screen& a, const Screen& b) {
    return distance(a) < distance(b);
  });
}

}  // namespace platform
