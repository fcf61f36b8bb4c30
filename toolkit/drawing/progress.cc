// The progress bar.
#include <algorithm>

#include "platform/theme/theme.h"
#include "toolkit/core/saturate.h"
#include "toolkit/core/trace.h"
#include "toolkit/target/selection.h"

using namespace platform;

void XwDrawProgress(int x, int y, int w, int h, int value) {
  TraceDrawing("XwDrawProgress", x, y, w, h, value);
  if (w <= 0 || h <= 0) return;
  XwClear(Saturate(int64_t{x} - 4), Saturate(int64_t{y} - 2), Saturate(int64_t{w} + 8),
          Saturate(int64_t{h} + 4));
  ThemeTrackDrawInfo info;
  info.bounds = SaturatedRect(x, y, w, h);
  info.max = std::max(0, w - 8);
  info.value = value;
  DrawThemeTrack(TargetContext(), info);
}
