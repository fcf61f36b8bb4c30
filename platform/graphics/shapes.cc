// Soft shapes: rounded boxes whose corners are coverage masks, rasterised once a radius and pen.
#include <cstdlib>

#include "platform/graphics/context_state.h"
#include "platform/graphics/font_library.h"
#include FT_OUTLINE_H

namespace platform {
namespace {

// Coverage of the top-left corner of a box; the other corners are mirrored.
struct Corner {
  int radius = 0;  // 26.6
  int ring = 0;    // pen in device pixels, 0: filled
  int size = 0;    // pixels a side
  std::vector<uint8_t> mask;
};

// A box that reaches beyond the mask to the right and below, with its corner at (inset, inset).
bool RasterCorner(int radius, int inset, int size, std::vector<uint8_t>* mask) {
  mask->assign(size_t(size) * size_t(size), 0);
  int far = size * 64, near = inset * 64, r = std::max(radius - near, 0);
  int control = int(r * 0.5522847498 + 0.5);
  // y runs upwards in the rasteriser: the top-left corner is at (near, far - near).
  FT_Vector points[] = {{near, far - near - r},
                        {near, far - near - r + control},
                        {near + r - control, far - near},
                        {near + r, far - near},
                        {far, far - near},
                        {far, 0},
                        {near, 0}};
  unsigned char tags[] = {1, 2, 2, 1, 1, 1, 1};
  short contour = 6;
  FT_Outline outline{};
  outline.n_contours = 1;
  outline.n_points = 7;
  outline.points = points;
  outline.tags = reinterpret_cast<decltype(outline.tags)>(tags);
  outline.contours = reinterpret_cast<decltype(outline.contours)>(&contour);
  FT_Bitmap bitmap{};
  bitmap.rows = bitmap.width = unsigned(size);
  bitmap.pitch = size;
  bitmap.buffer = mask->data();
  bitmap.num_grays = 256;
  bitmap.pixel_mode = FT_PIXEL_MODE_GRAY;
  return FontLibrary() && !FT_Outline_Get_Bitmap(FontLibrary(), &outline, &bitmap);
}

const Corner& CornerFor(int radius, int ring) {
  static auto* corners = new std::vector<std::unique_ptr<Corner>>;
  for (const auto& k : *corners)
    if (k->radius == radius && k->ring == ring) return *k;
  auto k = std::make_unique<Corner>();
  k->radius = radius;
  k->ring = ring;
  k->size = std::max((radius + 63) / 64, ring);
  std::vector<uint8_t> hole;
  bool good = RasterCorner(radius, 0, k->size, &k->mask);
  if (ring) good = RasterCorner(radius, ring, k->size, &hole) && good;
  if (!good) k->mask.assign(k->mask.size(), 255);
  for (size_t i = 0; good && i < hole.size(); ++i)
    k->mask[i] = uint8_t(k->mask[i] - std::min(k->mask[i], hole[i]));
  corners->push_back(std::move(k));
  return *corners->back();
}

uint32_t Scale255(uint32_t a, uint32_t b) {
  return (a * b + 127) / 255;
}

void BlendRun(uint32_t* p, int n, uint32_t color, int alpha) {
  if (alpha >= 255) return FillSpan(p, n, color);
  for (int i = 0; i < n; ++i) p[i] = Blend(p[i], color, uint32_t(alpha));
}

struct Ink {
  uint32_t color;
  int alpha;
};

void BlendBox(Context* c, const DeviceRect& r, Ink ink) {
  ForEachPart(c, r, [&](const DeviceRect& part) {
    for (int y = part.top; y < part.bottom; ++y)
      BlendRun(c->row(y) + part.left, part.width(), ink.color, ink.alpha);
  });
}

// Blends one corner of a box, mirrored so that mask (0, 0) is at the box's own corner.
void BlendCorner(Context* c, const Corner& k, int x, int y, bool right, bool bottom, Ink ink) {
  DeviceRect r{x, y, x + k.size, y + k.size};
  ForEachPart(c, r, [&](const DeviceRect& part) {
    for (int py = part.top; py < part.bottom; ++py) {
      int my = bottom ? k.size - 1 - (py - y) : py - y;
      uint32_t* row = c->row(py);
      for (int px = part.left; px < part.right; ++px) {
        int mx = right ? k.size - 1 - (px - x) : px - x;
        uint32_t coverage = Scale255(k.mask[size_t(my * k.size + mx)], uint32_t(ink.alpha));
        if (coverage) row[px] = Blend(row[px], ink.color, coverage);
      }
    }
  });
}

void BlendCorners(Context* c, const Corner& k, const DeviceRect& r, Ink ink) {
  BlendCorner(c, k, r.left, r.top, false, false, ink);
  BlendCorner(c, k, r.right - k.size, r.top, true, false, ink);
  BlendCorner(c, k, r.left, r.bottom - k.size, false, true, ink);
  BlendCorner(c, k, r.right - k.size, r.bottom - k.size, true, true, ink);
}

// The largest radius, in device pixels: a mask has at most its square.
constexpr int kMaxRadius = 64;

// 26.6 device radius, at most half of the shorter side so that corners do not meet.
int RadiusFor(const Context* c, const DeviceRect& r, int radius) {
  int half = std::min({r.width() / 2, r.height() / 2, kMaxRadius}) * 64;
  return std::clamp(int(std::min(radius * c->scale * 64 + 0.5, 1e6)), 0, half);
}

bool Prepare(ContextRef c, const Rect& r, DeviceRect* device) {
  if (!Ready(c)) return false;
  *device = {EdgeX(c, r.left), EdgeY(c, r.top), EdgeX(c, r.right), EdgeY(c, r.bottom)};
  if (Intersect(*device, c->extents).empty() || r.empty()) return false;
  MarkClipped(c, *device);
  return true;
}

}  // namespace

void FillRoundRect(ContextRef c, const Rect& rect, int radius, uint32_t rgb, int alpha) {
  DeviceRect r;
  if (!Prepare(c, rect, &r)) return;
  Ink ink{0xFF000000u | rgb, std::clamp(alpha, 0, 255)};
  int corner = RadiusFor(c, r, radius);
  if (corner <= 0) return BlendBox(c, r, ink);
  const Corner& k = CornerFor(corner, 0);
  BlendCorners(c, k, r, ink);
  BlendBox(c, {r.left + k.size, r.top, r.right - k.size, r.top + k.size}, ink);
  BlendBox(c, {r.left, r.top + k.size, r.right, r.bottom - k.size}, ink);
  BlendBox(c, {r.left + k.size, r.bottom - k.size, r.right - k.size, r.bottom}, ink);
}

// Of a pen `p` device pixels wide.
static void Frame(ContextRef c, const Rect& rect, int radius, Ink ink, int p) {
  DeviceRect r;
  if (!Prepare(c, rect, &r)) return;
  if (r.width() <= 2 * p || r.height() <= 2 * p) return BlendBox(c, r, ink);
  int corner = RadiusFor(c, r, radius);
  const Corner& k = CornerFor(std::max(corner, p * 64), p);
  BlendCorners(c, k, r, ink);
  BlendBox(c, {r.left + k.size, r.top, r.right - k.size, r.top + p}, ink);
  BlendBox(c, {r.left + k.size, r.bottom - p, r.right - k.size, r.bottom}, ink);
  BlendBox(c, {r.left, r.top + k.size, r.left + p, r.bottom - k.size}, ink);
  BlendBox(c, {r.right - p, r.top + k.size, r.right, r.bottom - k.size}, ink);
}

void FrameRoundRect(ContextRef c, const Rect& rect, int radius, uint32_t rgb, int alpha) {
  if (c) Frame(c, rect, radius, {0xFF000000u | rgb, std::clamp(alpha, 0, 255)}, c->pen);
}

void FrameRoundRectWide(ContextRef c, const Rect& rect, int radius, int width, uint32_t rgb,
                        int alpha) {
  if (!c) return;
  const int pen = std::max(1, int(std::clamp(width, 1, 64) * c->scale + 0.5));
  Frame(c, rect, radius, {0xFF000000u | rgb, std::clamp(alpha, 0, 255)}, pen);
}

}  // namespace platform
