#include "platform/display/cursor.h"

#include <algorithm>

namespace platform {

static uint32_t Premultiply(uint32_t p) {
  const uint32_t a = p >> 24;
  auto part = [p, a](int shift) { return ((p >> shift & 0xFF) * a + 127) / 255 << shift; };
  return a << 24 | part(16) | part(8) | part(0);
}

CursorPicture PictureOf(const Cursor& c, double scale) {
  CursorPicture out;
  if (c.shape != Cursor::kPicture || c.width <= 0 || c.height <= 0) return out;
  std::vector<uint32_t> drawn;
  if (c.draw) {
    drawn.resize(size_t(c.width) * size_t(c.height));
    c.draw(c.source, drawn.data());
  }
  const std::vector<uint32_t>& pixels = c.draw ? drawn : c.pixels;
  if (pixels.size() < size_t(c.width) * size_t(c.height)) return out;
  out.width = DeviceEdge(c.width, scale);
  out.height = DeviceEdge(c.height, scale);
  out.hot_x = std::clamp(DeviceEdge(c.hot_x, scale), 0, std::max(out.width - 1, 0));
  out.hot_y = std::clamp(DeviceEdge(c.hot_y, scale), 0, std::max(out.height - 1, 0));
  out.pixels.resize(size_t(out.width) * size_t(out.height));
  for (int y = 0; y < c.height; ++y) {
    for (int x = 0; x < c.width; ++x) {
      const uint32_t p = Premultiply(pixels[size_t(y) * size_t(c.width) + size_t(x)]);
      for (int dy = DeviceEdge(y, scale); dy < DeviceEdge(y + 1, scale); ++dy) {
        auto row = out.pixels.begin() + long(dy) * out.width;
        std::fill(row + DeviceEdge(x, scale), row + DeviceEdge(x + 1, scale), p);
      }
    }
  }
  return out;
}

}  // namespace platform
