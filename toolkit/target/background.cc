#include "toolkit/target/background.h"
#include "toolkit/core/trace.h"

#include "platform/graphics/context.h"
#include "platform/theme/roles.h"
#include "platform/windows/windows.h"
#include "toolkit/core/record.h"
#include "toolkit/core/saturate.h"
#include "toolkit/target/colors.h"
#include "toolkit/target/selection.h"

using namespace platform;
using toolkit::state;

namespace {

bool LooksActive(const XwWindow* w) {
  return IsWindowActive(NativeWindow(w));
}

void FillWith(uint32_t rgb, const Rect& r) {
  ContextRef c = TargetContext();
  SetContextColor(c, rgb);
  FillRect(c, r.left, r.top, Saturate(int64_t{r.right} - r.left),
           Saturate(int64_t{r.bottom} - r.top));
}

}  // namespace

uint32_t BackgroundUpward(const XwWindow* w) {
  for (const XwWindow* at = w; at; at = at->parent) {
    if (at->brush) return ThemeBrushColor(at->brush, LooksActive(w));
    if (IsRealColor(at->color)) return ColorToRgb(at->color);
    if (IsTopLevel(at)) break;
  }
  return 0xFFFFFF;
}

void EraseToBackground(const Rect& r) {
  if (XW) FillWith(BackgroundUpward(XW), r);
}

void XwClear(int x, int y, int width, int height) {
  TraceDrawing("XwClear", x, y, width, height);
  if (!XW) return;
  if (!width && !height) {
    x = y = 0;
    width = XW->width;
    height = XW->height;
  }
  if (width <= 0 || height <= 0) return;
  const Rect r{x, y, Saturate(int64_t{x} + width), Saturate(int64_t{y} + height)};
  if (XW->brush) {
    FillWith(ThemeBrushColor(XW->brush, LooksActive(XW)), r);
  } else if (IsRealColor(XW->color)) {
    XwSetColor(XW->color);
    FillWith(state.colors.fill, r);
  }
}
