// Rectangles, lines, polygons, ovals. Nothing is checked here that the context checks.
#include "platform/graphics/context.h"
#include "toolkit/target/colors.h"
#include "toolkit/target/selection.h"

using namespace platform;
using toolkit::state;

void XwFillRect(int x, int y, int w, int h) {
  ContextRef c = TargetContext();
  if (!c) return;
  SetContextColor(c, state.colors.fill);
  FillRect(c, x, y, w, h);
}

void XwBox(int x, int y, int w, int h, int32_t colour) {
  if (!IsRealColor(colour)) {
    if (colour == kEraseToGround && w > 0 && h > 0) XwClear(x, y, w, h);
    return;
  }
  XwSetColor(colour);
  XwFillRect(x, y, w, h);
}

static uint32_t Encode(const float color[4]) {
  auto part = [](float v) { return uint32_t(v * 255.0f + 0.5f) & 0xFF; };
  return part(color[0]) << 16 | part(color[1]) << 8 | part(color[2]);
}

// Strokes once, or when a pattern is set twice: the second colour follows one dash behind the
// first. Its colour and its shifted pattern stay in force.
template <typename Stroke>
static void StrokeCurrent(Stroke stroke) {
  ContextRef c = TargetContext();
  if (!c) return;
  if (DashCount) {
    SetContextColor(c, Encode(DashCol1));
    SetContextDash(c, DashOffset, DashArray1, DashCount);
    stroke(c);
    state.colors.stroke = Encode(DashCol2);
    SetContextDash(c, DashOffset + DashArray1[0], DashArray1, DashCount);
  }
  SetContextColor(c, state.colors.stroke);
  stroke(c);
}

void XwDrawRect(int x, int y, int w, int h) {
  StrokeCurrent([=](ContextRef c) { FrameRect(c, x, y, w, h); });
}

void XwDrawLine(int x1, int y1, int x2, int y2) {
  StrokeCurrent([=](ContextRef c) { StrokeLine(c, x1, y1, x2, y2); });
}

// A point names the upper border of its row here, which belongs to the row above.
void XwDrawLines(const int16_t* points, int n) {
  StrokeCurrent([=](ContextRef c) { StrokeLines(c, points, n, 0, -1); });
}

void XwFillPolygon(const int16_t* points, int n) {
  ContextRef c = TargetContext();
  if (!c) return;
  SetContextColor(c, state.colors.fill);
  FillPolygon(c, points, n);
}

void XwDrawEllipse(int x, int y, int w, int h) {
  ContextRef c = TargetContext();
  if (!c) return;
  SetContextColor(c, state.colors.oval);
  FrameOval(c, x, y, w, h);
}

void XwFillEllipse(int x, int y, int w, int h) {
  ContextRef c = TargetContext();
  if (!c) return;
  SetContextColor(c, state.colors.oval);
  FillOval(c, x, y, w, h);
}
