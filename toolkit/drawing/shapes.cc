// Rectangles, lines, polygons, ovals. The context checks the arguments.
#include "platform/graphics/context.h"
#include "toolkit/core/trace.h"
#include "toolkit/target/colors.h"
#include "toolkit/target/selection.h"

using namespace platform;
using toolkit::state;

void XwFillRect(int x, int y, int w, int h) {
  TraceDrawing("XwFillRect", x, y, w, h);
  ContextRef c = TargetContext();
  if (!c) return;
  SetContextColor(c, state.colors.fill);
  FillRect(c, x, y, w, h);
}

void XwBox(int x, int y, int w, int h, int32_t colour) {
  TraceDrawing("XwBox", x, y, w, h, colour);
  if (!IsRealColor(colour)) {
    if (colour == kEraseToBackground && w > 0 && h > 0) XwClear(x, y, w, h);
    return;
  }
  XwSetColor(colour);
  XwFillRect(x, y, w, h);
}

static uint32_t Encode(const float color[4]) {
  auto part = [](float v) { return uint32_t(v * 255.0f + 0.5f) & 0xFF; };
  return part(color[0]) << 16 | part(color[1]) << 8 | part(color[2]);
}

namespace {

// What can be stroked. It lies on the stack of the call that makes it, so that a line costs no
// memory.
struct Path {
  enum Kind { kRect, kLine, kLines } kind;
  int a, b, c, d;  // x, y, w, h; both ends; the number of points
  const int16_t* points;
};

inline void Stroke(ContextRef context, const Path& p) {
  switch (p.kind) {
    case Path::kRect:
      return FrameRect(context, p.a, p.b, p.c, p.d);
    case Path::kLine:
      return StrokeLine(context, p.a, p.b, p.c, p.d);
    case Path::kLines:
      // A point names the upper border of its row here, which belongs to the row above.
      return StrokeLines(context, p.points, p.a, 0, -1);
  }
}

// Strokes once, or when a pattern is set twice: the second colour follows one dash behind the
// first. Its colour and its shifted pattern stay in force. Each caller has it inline, with the kind
// of its path folded in: a short line is a few instructions more than this.
[[gnu::always_inline]] inline void DrawAndReleasePath(const Path& path) {
  ContextRef c = TargetContext();
  if (!c) return;
  if (DashCount) {
    SetContextColor(c, Encode(DashCol1));
    SetContextDash(c, DashOffset, DashArray1, DashCount);
    Stroke(c, path);
    state.colors.stroke = Encode(DashCol2);
    SetContextDash(c, DashOffset + DashArray1[0], DashArray1, DashCount);
  }
  SetContextColor(c, state.colors.stroke);
  Stroke(c, path);
}

}  // namespace

void XwDrawRect(int x, int y, int w, int h) {
  TraceDrawing("XwDrawRect", x, y, w, h);
  DrawAndReleasePath({Path::kRect, x, y, w, h, nullptr});
}

void XwDrawLine(int x1, int y1, int x2, int y2) {
  TraceDrawing("XwDrawLine", x1, y1, x2, y2);
  DrawAndReleasePath({Path::kLine, x1, y1, x2, y2, nullptr});
}

void XwDrawLines(const int16_t* points, int n) {
  TraceDrawing("XwDrawLines", n);
  DrawAndReleasePath({Path::kLines, n, 0, 0, 0, points});
}

void XwFillPolygon(const int16_t* points, int n) {
  TraceDrawing("XwFillPolygon", n);
  ContextRef c = TargetContext();
  if (!c) return;
  SetContextColor(c, state.colors.fill);
  FillPolygon(c, points, n);
}

void XwDrawEllipse(int x, int y, int w, int h) {
  TraceDrawing("XwDrawEllipse", x, y, w, h);
  ContextRef c = TargetContext();
  if (!c) return;
  SetContextColor(c, state.colors.oval);
  FrameOval(c, x, y, w, h);
}

void XwFillEllipse(int x, int y, int w, int h) {
  TraceDrawing("XwFillEllipse", x, y, w, h);
  ContextRef c = TargetContext();
  if (!c) return;
  SetContextColor(c, state.colors.oval);
  FillOval(c, x, y, w, h);
}
