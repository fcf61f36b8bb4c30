// Colours, dashes, clearing, the ground of windows.
#include <algorithm>

#include "platform/graphics/context.h"
#include "platform/theme/roles.h"
#include "platform/windows/windows.h"
#include "toolkit/drawing/drawing.h"
#include "toolkit/windows/windows.h"

using namespace platform;

CurrentColors g_colors;

int32_t DashCount;
float DashOffset;
float DashCol1[4], DashCol2[4];
float DashArray1[128];

static void Decode(int32_t colour, float out[4]) {
  uint32_t c = uint32_t(colour);
  for (int i = 0; i < 3; ++i) out[i] = float(c >> (8 * i) & 0xFF) / 255.0f;
  out[3] = 1.0f;
}

void XwSetColor(int32_t colour) {
  uint32_t rgb = ColorToRgb(colour);
  g_colors = {rgb, rgb, rgb};
}

void XwSetDashes(const uint8_t* pattern, int offset, int32_t colour1, int32_t colour2) {
  if (!pattern) {
    DashCount = 0;
    SetContextDash(TargetContext(), 0, nullptr, 0);
    return;
  }
  DashOffset = float(offset);
  Decode(colour1, DashCol1);
  Decode(colour2, DashCol2);
  DashCount = 0;
  while (DashCount < 128 && pattern[DashCount]) {
    DashArray1[DashCount] = float(pattern[DashCount]);
    ++DashCount;
  }
}

void XwFlush() {}

void XwSync() {
  if (XW) FlushWindow(NativeWindow(XW));
}

void XwClip(uint16_t x, uint16_t y, uint16_t width, uint16_t height) {
  if (!XW) return;
  XwWindow* w = XW;
  w->clip_x = Sat16(x);
  w->clip_y = Sat16(y);
  w->clip_width = Sat16(width);
  w->clip_height = Sat16(height);
  XwSet(nullptr);
  ResetClipMask(w);
  XwSet(w);
}

static bool LooksActive(const XwWindow* w) {
  return IsWindowActive(NativeWindow(w));
}

uint32_t GroundUpward(const XwWindow* w) {
  for (const XwWindow* at = w; at; at = at->parent) {
    if (at->brush) return ThemeBrushColor(at->brush, LooksActive(w));
    if (IsRealColor(at->color)) return ColorToRgb(at->color);
    if (IsTopLevel(at)) break;
  }
  return 0xFFFFFF;
}

static void FillWith(uint32_t rgb, const Rect& r) {
  ContextRef c = TargetContext();
  SetContextColor(c, rgb);
  FillRect(c, r.left, r.top, Saturate(int64_t{r.right} - r.left),
           Saturate(int64_t{r.bottom} - r.top));
}

void EraseToGround(const Rect& r) {
  if (XW) FillWith(GroundUpward(XW), r);
}

void XwClear(int x, int y, int width, int height) {
  if (!XW) return;
  if (!width && !height) {
    x = y = 0;
    width = XW->width;
    height = XW->height;
  }
  if (width <= 0 || height <= 0) return;
  if (XW->brush)
    FillWith(ThemeBrushColor(XW->brush, LooksActive(XW)),
             {x, y, Saturate(int64_t{x} + width), Saturate(int64_t{y} + height)});
  else if (IsRealColor(XW->color))
    XwBox(x, y, width, height, XW->color);
}

void XwSetGround(XwWindow* window, const int32_t* colour, int brush) {
  static constexpr int16_t kCodes[] = {0, 15, 1, 7, 52};
  if (!CheckWindow(window)) return;
  if (colour) {
    window->brush = 0;
    window->color = *colour;
  } else {
    window->brush = brush >= 0 && brush <= 4 ? kCodes[brush] : Sat16(brush);
  }
  if (!IsTopLevel(window)) return;
  WindowRef native = NativeWindow(window);
  SetWindowBackgroundColor(native,
                           IsRealColor(window->color) ? ColorToRgb(window->color) : kNoColor);
  SetThemeWindowBackground(native, window->brush, true);
}
