// One-bit icons in any pair of colours, tiled over an area.
#include <memory>
#include <vector>

#include "platform/graphics/context.h"
#include "toolkit/target/colors.h"
#include "toolkit/target/selection.h"

using namespace platform;
using toolkit::state;

namespace {

// What has been loaded stays for the life of the program.
Bitmap* Keep(Bitmap* b) {
  static auto* kept = new std::vector<std::unique_ptr<Bitmap, decltype(&ReleaseBitmap)>>;
  if (b) kept->emplace_back(b, ReleaseBitmap);
  return b;
}

}  // namespace

XwIcon* XwLoadIcon(XwIcon* icon) {
  if (icon && !icon->cache) icon->cache = Keep(CreateBitmap(icon->width, icon->height, icon->bits));
  return icon;
}

void XwDrawIcon(XwIcon* icon, int x, int y, int w, int h, int32_t colour, int32_t background) {
  if (!icon) return;
  const Bitmap* bitmap = static_cast<Bitmap*>(XwLoadIcon(icon)->cache);
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
