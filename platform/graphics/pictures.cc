// Pixels and one-bit pictures. Each source pixel covers the device pixels between its own edges.
#include "platform/graphics/context_state.h"
#include "platform/graphics/swap.h"

namespace platform {
namespace {

// Memory holds ignored, red, green, blue.
inline uint32_t FromBytes(uint32_t v) {
  if constexpr (__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__) v = __builtin_bswap32(v);
  return v | 0xFF000000u;
}
inline uint32_t Load(const uint8_t* p) {
  uint32_t v;
  __builtin_memcpy(&v, p, 4);
  return v;
}

void DrawUnscaled(Context* c, const DeviceRect& r, const uint8_t* pixels, int64_t stride) {
  ForEachPart(c, r, [&](const DeviceRect& part) {
    const uint8_t* in = pixels + 4 * ((part.top - int64_t{r.top}) * stride + part.left - r.left);
    for (int y = part.top; y < part.bottom; ++y, in += 4 * stride)
      SwapRow(c->row(y) + part.left, in, part.width());
    Mark(c, part);
  });
}

// The source column (or row) that covers device column `d`; source 0 begins at logical `origin`.
int SourceOf(const Context* c, int64_t origin, int d, int count) {
  int64_t i = int64_t(d / c->scale) - origin;
  while (i > 0 && Edge(c, origin + i) > d) --i;
  while (i + 1 < count && Edge(c, origin + i + 1) <= d) ++i;
  return int(i < 0 ? 0 : i >= count ? count - 1 : i);
}

// `column` and `row` give the source of a device column and row.
template <typename Column, typename Row>
void DrawScaled(Context* c, const DeviceRect& r, const uint8_t* pixels, int64_t stride,
                Column column, Row row) {
  ForEachPart(c, r, [&](const DeviceRect& part) {
    c->columns.clear();
    for (int x = part.left; x < part.right; ++x) c->columns.push_back(column(x));
    int last_source = -1;
    for (int y = part.top; y < part.bottom; ++y) {
      uint32_t* out = c->row(y) + part.left;
      int source = row(y);
      if (source == last_source) {
        std::copy(out - c->surface->stride, out - c->surface->stride + part.width(), out);
        continue;
      }
      const uint8_t* in = pixels + 4 * source * stride;
      for (int at : c->columns) *out++ = FromBytes(Load(in + 4 * int64_t{at}));
      last_source = source;
    }
    Mark(c, part);
  });
}

}  // namespace

void DrawPixels(ContextRef c, int x, int y, int w, int h, const uint8_t* pixels, int64_t stride) {
  if (!Ready(c) || w <= 0 || h <= 0 || !pixels) return;
  DeviceRect r = DeviceBox(c, x, y, w, h);
  // A corner beyond the reach of device coordinates would shift the picture; nothing shows anyway.
  if (std::max({std::abs(r.left), std::abs(r.top)}) == kFarDevice) return;
  if (c->scale == 1.0) return DrawUnscaled(c, r, pixels, stride);
  const int64_t left = int64_t{x} + c->origin_x, top = int64_t{y} + c->origin_y;
  DrawScaled(
      c, r, pixels, stride, [&](int d) { return SourceOf(c, left, d, w); },
      [&](int d) { return SourceOf(c, top, d, h); });
}

// The source pixel of the `at`th of `of` device pixels: the one that its middle lies in. A picture
// that has as many as its logical length asks for is shown one to one, though the rectangle's edges
// are rounded one by one: its last pixel is left out, or shown twice.
static int NearestPixel(const Context* c, int at, int count, int of, int length) {
  if (count == std::lround(length * c->scale)) return std::min(at, count - 1);
  return int((2 * int64_t{at} + 1) * count / (2 * int64_t{of}));
}

void DrawPicture(ContextRef c, int x, int y, int w, int h, const uint8_t* pixels, int width,
                 int height) {
  if (!Ready(c) || w <= 0 || h <= 0 || width <= 0 || height <= 0 || !pixels) return;
  const DeviceRect r = DeviceBox(c, x, y, w, h);
  for (const int edge : {r.left, r.top, r.right, r.bottom})
    if (std::abs(edge) == kFarDevice) return;
  if (r.width() == width && r.height() == height) return DrawUnscaled(c, r, pixels, width);
  DrawScaled(
      c, r, pixels, width, [&](int d) { return NearestPixel(c, d - r.left, width, r.width(), w); },
      [&](int d) { return NearestPixel(c, d - r.top, height, r.height(), h); });
}

// The source pixels that one of `count` of `size` device pixels is the mean of.
struct Span {
  int first, last;
  Span(int at, int count, int size)
      : first(int(int64_t{at} * count / size)),
        last(std::max(first + 1, int((at + int64_t{1}) * count / size))) {}
};

static uint32_t Mean(const uint32_t* argb, int stride, Span columns, Span rows,
                     uint32_t* coverage) {
  uint64_t count = 0, cover = 0, sums[3] = {};
  for (int y = rows.first; y < rows.last; ++y) {
    for (int x = columns.first; x < columns.last; ++x, ++count) {
      const uint32_t p = argb[int64_t{y} * stride + x];
      cover += p >> 24;
      for (int i = 0; i < 3; ++i) sums[i] += uint64_t{p >> 24} * (p >> 8 * i & 0xFF);
    }
  }
  *coverage = uint32_t((cover + count / 2) / count);
  uint32_t color = 0xFF000000u;
  for (int i = 0; i < 3 && cover; ++i) color |= uint32_t((sums[i] + cover / 2) / cover) << 8 * i;
  return color;
}

void DrawIconPicture(ContextRef c, int x, int y, int w, int h, const uint32_t* argb, int size) {
  if (!Ready(c) || w <= 0 || h <= 0 || size <= 0 || !argb) return;
  const DeviceRect r = DeviceBox(c, x, y, w, h);
  for (const int edge : {r.left, r.top, r.right, r.bottom})
    if (std::abs(edge) == kFarDevice) return;
  ForEachPart(c, r, [&](const DeviceRect& part) {
    for (int row = part.top; row < part.bottom; ++row) {
      const Span rows(row - r.top, size, r.height());
      for (int column = part.left; column < part.right; ++column) {
        uint32_t coverage = 0;
        const uint32_t color =
            Mean(argb, size, Span(column - r.left, size, r.width()), rows, &coverage);
        uint32_t& out = c->row(row)[column];
        out = Blend(out, color, coverage);
      }
    }
    Mark(c, part);
  });
}

// --- One-bit pictures ---------------------------------------------------------------------------

struct Run {
  int16_t row, left, right;
};

struct Bitmap {
  int width, height;
  std::vector<Run> set, clear;
};

namespace {

bool BitAt(const uint8_t* row, int x) {
  return row[x >> 3] >> (x & 7) & 1;
}

void AddRuns(Bitmap* b, const uint8_t* row, int y) {
  for (int x = 0; x < b->width;) {
    bool set = BitAt(row, x);
    int end = x + 1;
    while (end < b->width && BitAt(row, end) == set) ++end;
    (set ? b->set : b->clear).push_back({int16_t(y), int16_t(x), int16_t(end)});
    x = end;
  }
}

// One tile with its corner at a logical place, through one box of the clip.
void PaintTile(const Context* c, const std::vector<Run>& runs, int64_t x, int64_t y,
               const DeviceRect& part) {
  if (c->scale == 1.0) {
    int left = int(x), top = int(y);
    for (const Run& run : runs) {
      int a = std::max(left + run.left, part.left), b = std::min(left + run.right, part.right);
      int row = top + run.row;
      if (row >= part.top && row < part.bottom && a < b) FillSpan(c->row(row) + a, b - a, c->color);
    }
    return;
  }
  for (const Run& run : runs) {
    DeviceRect r = Intersect({Edge(c, x + run.left), Edge(c, y + run.row), Edge(c, x + run.right),
                              Edge(c, y + run.row + 1)},
                             part);
    for (int row = r.top; row < r.bottom; ++row)
      if (r.left < r.right) FillSpan(c->row(row) + r.left, r.right - r.left, c->color);
  }
}

int64_t FloorDivide(int64_t v, int64_t d) {
  return v >= 0 ? v / d : -((-v + d - 1) / d);
}

}  // namespace

Bitmap* CreateBitmap(int width, int height, const uint8_t* bits) {
  if (width < 1 || height < 1 || width > 32767 || height > 32767 || !bits) return nullptr;
  Bitmap* b = new Bitmap{width, height, {}, {}};
  size_t bytes = size_t(width + 7) / 8;
  for (int y = 0; y < height; ++y) AddRuns(b, bits + size_t(y) * bytes, y);
  return b;
}

void ReleaseBitmap(Bitmap* b) {
  delete b;
}

void TileBitmap(ContextRef c, const Bitmap* b, bool inverted, int x, int y, int w, int h) {
  if (!Ready(c) || !b || w <= 0 || h <= 0) return;
  const std::vector<Run>& runs = inverted ? b->clear : b->set;
  DeviceRect area = DeviceBox(c, x, y, w, h);
  int64_t left = int64_t{x} + c->origin_x, bottom = int64_t{y} + c->origin_y + h;
  ForEachPart(c, area, [&](const DeviceRect& part) {
    // Tiles by column and by row from the bottom, only those that touch the part.
    int64_t reach_left = int64_t(std::floor(part.left / c->scale)) - 1;
    int64_t reach_right = int64_t(std::ceil(part.right / c->scale)) + 1;
    int64_t reach_top = int64_t(std::floor(part.top / c->scale)) - 1;
    int64_t reach_bottom = int64_t(std::ceil(part.bottom / c->scale)) + 1;
    int64_t first_column = std::max<int64_t>(0, FloorDivide(reach_left - left, b->width));
    int64_t first_row = std::max<int64_t>(0, FloorDivide(bottom - reach_bottom, b->height));
    for (int64_t row = first_row; bottom - row * b->height > reach_top; ++row) {
      for (int64_t column = first_column; left + column * b->width < reach_right; ++column)
        PaintTile(c, runs, left + column * b->width, bottom - (row + 1) * b->height, part);
    }
    Mark(c, part);
  });
}

}  // namespace platform
