// One-bit icons in any pair of colours, tiled over an area.
#include <memory>
#include <vector>

#include "platform/graphics/context.h"
#include "toolkit/core/trace.h"
#include "toolkit/drawing/icons.h"
#include "toolkit/target/colors.h"
#include "toolkit/target/selection.h"

using namespace platform;
using toolkit::state;

namespace {

// What XwIcon.cache points at. What has been loaded stays for the life of the program.
struct IconCache {
  Bitmap* bits = nullptr;  // null: of a size that cannot be drawn
  Outline* outline = nullptr;
  ~IconCache() {
    ReleaseBitmap(bits);
    ReleaseOutline(outline);
  }
};

IconCache* NewCache() {
  static auto* kept = new std::vector<std::unique_ptr<IconCache>>;
  kept->push_back(std::make_unique<IconCache>());
  return kept->back().get();
}

Outline* MakeOutline(const XwPathPart* parts, int count) {
  if (!parts || count < 1 || count > kMostPathParts) return nullptr;
  std::vector<PathPart> copy;
  for (int i = 0; i < count; ++i) {
    const XwPathPart& p = parts[i];
    copy.push_back({PathVerb(p.verb), p.x, p.y, p.x1, p.y1, p.x2, p.y2});
  }
  return CreateOutline(copy.data(), count, 0);
}

IconCache* CacheOf(XwIcon* icon) {
  return static_cast<IconCache*>(XwLoadIcon(icon)->cache);
}

uint32_t Mix(uint32_t rgb, uint32_t behind, int alpha) {
  uint32_t mixed = 0;
  for (int shift = 0; shift < 24; shift += 8) {
    const int over = int(rgb >> shift & 0xFF), under = int(behind >> shift & 0xFF);
    mixed |= uint32_t(under + (over - under) * alpha / 255) << shift;
  }
  return mixed;
}

}  // namespace

void PaintIcon(ContextRef c, XwIcon* icon, int x, int y, uint32_t rgb, int alpha, uint32_t behind) {
  if (!icon) return;
  const IconCache* cache = CacheOf(icon);
  if (cache->outline) return DrawOutline(c, cache->outline, x, y, rgb, alpha);
  if (!cache->bits) return;
  SetContextColor(c, Mix(rgb, behind, alpha));
  TileBitmap(c, cache->bits, false, x, y, icon->width, icon->height);
}

XwIcon* XwLoadIcon(XwIcon* icon) {
  if (!icon || icon->cache) return icon;
  IconCache* cache = NewCache();
  cache->bits = CreateBitmap(icon->width, icon->height, icon->bits);
  int count;
  const PathPart* own = OwnOutline(icon, &count);
  cache->outline = CreateOutline(own, count, 0);
  icon->cache = cache;
  return icon;
}

void XwSetIconOutline(XwIcon* icon, const XwPathPart* parts, int count) {
  if (!icon) return;
  Outline* outline = MakeOutline(parts, count);
  if (!outline && parts && count >= 1) return;
  IconCache* cache = CacheOf(icon);
  ReleaseOutline(cache->outline);
  cache->outline = outline;
}

void XwDrawIcon(XwIcon* icon, int x, int y, int w, int h, int32_t colour, int32_t background) {
  TraceDrawing("XwDrawIcon", x, y, w, h, colour, background);
  if (!icon) return;
  const Bitmap* bitmap = CacheOf(icon)->bits;
  ContextRef c = TargetContext();
  if (!bitmap || !c) return;
  if (!w) w = icon->width;
  if (!h) h = icon->height;
  if (IsRealColor(colour)) {
    XwSetColor(colour);
    SetContextColor(c, state.colors.fill);
    TileBitmap(c, bitmap, false, x, y, w, h);
  }
  if (IsRealColor(background)) {
    XwSetColor(background);
    SetContextColor(c, state.colors.fill);
    TileBitmap(c, bitmap, true, x, y, w, h);
  }
}
