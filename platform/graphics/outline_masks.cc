#include "platform/graphics/outline.h"

#include <cmath>
#include <memory>
#include <vector>

#include "platform/graphics/context_state.h"
#include "platform/graphics/font_library.h"
#include "platform/graphics/outline_shape.h"

namespace platform {

// The coverage at one scale; its corner lies at (left, top) of the origin, in device pixels.
struct OutlineMask {
  double scale = 0;
  int left = 0, top = 0, width = 0, height = 0;
  std::vector<uint8_t> coverage;
};

struct Outline {
  std::vector<PathPart> parts;
  float stroke = 0;
  std::vector<OutlineMask> masks;
};

namespace {

constexpr int kLargestMask = 2048;
constexpr size_t kKeptMasks = 8;

OutlineMask MakeMask(const Outline& o, double scale) {
  OutlineMask m;
  m.scale = scale;
  if (!FontLibrary()) return m;
  Shape shape;
  if (o.stroke > 0)
    MakeStroked(o.parts, o.stroke, scale, &shape);
  else
    MakeFilled(o.parts, scale, &shape);
  if (shape.contours.empty()) return m;
  FT_Outline raw = shape.Raw(o.stroke > 0 ? FT_OUTLINE_NONE : FT_OUTLINE_EVEN_ODD_FILL);
  FT_BBox box;
  FT_Outline_Get_CBox(&raw, &box);
  const FT_Pos left = box.xMin & ~63, bottom = box.yMin & ~63;
  const FT_Pos right = (box.xMax + 63) & ~63, top = (box.yMax + 63) & ~63;
  const FT_Pos width = (right - left) / 64, height = (top - bottom) / 64;
  if (width < 1 || height < 1 || width > kLargestMask || height > kLargestMask) return m;
  FT_Outline_Translate(&raw, -left, -bottom);
  m.coverage.assign(size_t(width * height), 0);
  FT_Bitmap bitmap{};
  bitmap.rows = unsigned(height);
  bitmap.width = unsigned(width);
  bitmap.pitch = int(width);
  bitmap.buffer = m.coverage.data();
  bitmap.num_grays = 256;
  bitmap.pixel_mode = FT_PIXEL_MODE_GRAY;
  if (FT_Outline_Get_Bitmap(FontLibrary(), &raw, &bitmap)) return m;
  m.left = int(left / 64);
  m.top = int(-top / 64);
  m.width = int(width);
  m.height = int(height);
  return m;
}

const OutlineMask& MaskFor(Outline* o, double scale) {
  for (const OutlineMask& m : o->masks)
    if (m.scale == scale) return m;
  if (o->masks.size() >= kKeptMasks) o->masks.clear();
  o->masks.push_back(MakeMask(*o, scale));
  return o->masks.back();
}

}  // namespace

Outline* CreateOutline(const PathPart* parts, int count, float stroke) {
  if (!parts || count < 1 || count > kMostPathParts) return nullptr;
  if (!std::isfinite(stroke) || stroke > kFarPath) return nullptr;
  for (int i = 0; i < count; ++i)
    if (!IsUsable(parts[i])) return nullptr;
  return new Outline{{parts, parts + count}, stroke, {}};
}

void ReleaseOutline(Outline* o) {
  delete o;
}

void DrawOutline(ContextRef c, Outline* o, int x, int y, uint32_t rgb, int alpha) {
  if (!Ready(c) || !o) return;
  const OutlineMask& m = MaskFor(o, c->scale);
  const int left = EdgeX(c, x) + m.left, top = EdgeY(c, y) + m.top;
  const uint32_t color = 0xFF000000u | rgb, share = uint32_t(std::clamp(alpha, 0, 255));
  const DeviceRect whole{left, top, left + m.width, top + m.height};
  ForEachPart(c, whole, [&](const DeviceRect& part) {
    for (int py = part.top; py < part.bottom; ++py) {
      const uint8_t* in = m.coverage.data() + size_t(py - top) * size_t(m.width);
      uint32_t* row = c->row(py);
      for (int px = part.left; px < part.right; ++px)
        if (const uint32_t coverage = (in[px - left] * share + 127) / 255)
          row[px] = Blend(row[px], color, coverage);
    }
  });
  MarkClipped(c, whole);
}

}  // namespace platform
