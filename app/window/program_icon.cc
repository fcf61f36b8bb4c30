// A printer with a sheet going in and one coming out. Its edges lie on a grid of 16 x 16 units, so
// that they are whole pixels at every size.
#include "app/window/program_icon.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "toolkit/xw.h"

namespace console {
namespace {

constexpr int kGrid = 16;

// A box with round corners, in units of the grid, made smaller by `steps` thin lines all around.
struct Part {
  int x, y, w, h;
  double radius;
  int steps;
  uint32_t colour;  // 0xAARRGGBB
};
constexpr uint32_t kEdge = 0xFF8A857D, kPaper = 0xFFFFFFFF, kWriting = 0xFFB9B5AE;
constexpr uint32_t kDarkBody = 0xFF2A5DB0, kBody = 0xFF3875D7, kSlot = 0xFF1E4584;
constexpr uint32_t kLamp = 0xFF9BE3B5;
constexpr Part kParts[] = {
    {4, 1, 8, 6, 0.5, 0, kEdge},  {4, 1, 8, 6, 0.5, 1, kPaper},  {1, 5, 14, 7, 1.5, 0, kDarkBody},
    {1, 5, 14, 7, 1.5, 1, kBody}, {3, 9, 10, 1, 0.5, 0, kSlot},  {4, 9, 8, 6, 0.5, 0, kEdge},
    {4, 9, 8, 6, 0.5, 1, kPaper}, {6, 11, 4, 1, 0, 0, kWriting}, {6, 13, 3, 1, 0, 0, kWriting},
    {12, 6, 1, 1, 0.5, 0, kLamp},
};

struct Box {
  double left, top, right, bottom, radius;
  bool Contains(double x, double y) const {
    if (x < left || x > right || y < top || y > bottom) return false;
    const double dx = std::max({left + radius - x, x - right + radius, 0.0});
    const double dy = std::max({top + radius - y, y - bottom + radius, 0.0});
    return dx * dx + dy * dy <= radius * radius;
  }
};

// The part of a pixel that lies in the box, in 16 samples.
int Coverage(const Box& box, int x, int y) {
  int inside = 0;
  for (int i = 0; i < 16; ++i)
    inside += box.Contains(x + (i % 4) / 4.0 + 0.125, y + (i / 4) / 4.0 + 0.125);
  return inside;
}

// `colour` over `below`, which is either clear or opaque below what is drawn later.
uint32_t Over(uint32_t colour, uint32_t below, int coverage) {
  if (coverage == 0) return below;
  const uint32_t alpha = below >> 24;
  if (alpha == 0) return (colour & 0xFFFFFF) | uint32_t(255 * coverage / 16) << 24;
  uint32_t mixed = std::max(alpha, uint32_t(255 * coverage / 16)) << 24;
  for (int shift = 0; shift < 24; shift += 8) {
    const int above = int(colour >> shift & 0xFF), under = int(below >> shift & 0xFF);
    mixed |= uint32_t((above * coverage + under * (16 - coverage)) / 16) << shift;
  }
  return mixed;
}

std::vector<uint32_t> Paint(int size) {
  std::vector<uint32_t> pixels(size_t(size) * size_t(size));
  const double unit = double(size) / kGrid, line = std::max(1.0, std::round(size / 32.0));
  for (const Part& part : kParts) {
    const double inset = line * part.steps;
    const Box box{std::round(part.x * unit) + inset, std::round(part.y * unit) + inset,
                  std::round((part.x + part.w) * unit) - inset,
                  std::round((part.y + part.h) * unit) - inset,
                  std::max(0.0, part.radius * unit - inset)};
    for (int y = int(box.top); y < int(box.bottom); ++y) {
      for (int x = int(box.left); x < int(box.right); ++x) {
        uint32_t& p = pixels[size_t(y) * size_t(size) + size_t(x)];
        p = Over(part.colour, p, Coverage(box, x, y));
      }
    }
  }
  return pixels;
}

}  // namespace

void SetUpProgramIcon() {
  for (const int size : {16, 32, 48, 128}) XwSetProgramIcon(Paint(size).data(), size);
}

}  // namespace console
