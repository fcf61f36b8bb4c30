// Dashes, and showing what was drawn.
#include "platform/graphics/context.h"
#include "platform/windows/windows.h"
#include "toolkit/core/record.h"
#include "toolkit/core/trace.h"
#include "toolkit/target/selection.h"

using namespace platform;

static void Decode(int32_t colour, float out[4]) {
  uint32_t c = uint32_t(colour);
  for (int i = 0; i < 3; ++i) out[i] = float(c >> (8 * i) & 0xFF) / 255.0f;
  out[3] = 1.0f;
}

void XwSetDashes(const uint8_t* pattern, int offset, int32_t colour1, int32_t colour2) {
  TraceDrawing("XwSetDashes", offset, colour1, colour2);
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
  TraceDrawing("XwSync");
  if (XW) FlushWindow(NativeWindow(XW));
}
