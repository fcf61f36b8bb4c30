#include "toolkit/target/colors.h"

#include "toolkit/core/trace.h"

void XwSetColor(int32_t colour) {
  TraceDrawing("XwSetColor", colour);
  uint32_t rgb = ColorToRgb(colour);
  toolkit::state.colors = {rgb, rgb, rgb};
}
