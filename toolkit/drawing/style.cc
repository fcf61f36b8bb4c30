// The desktop's colours and soft shapes, for programs that draw their own content in its look.
#include "platform/graphics/context.h"
#include "platform/theme/roles.h"
#include "toolkit/core/saturate.h"
#include "toolkit/core/trace.h"
#include "toolkit/target/colors.h"
#include "toolkit/target/selection.h"

using namespace platform;

static_assert(XWR_DOCUMENT == int(Role::kDocument) && XWR_INK == int(Role::kInk) &&
                  XWR_ACCENT == int(Role::kAccent) && XWR_BAD == int(Role::kBad) &&
                  XW_ROLES == int(Role::kCount),
              "roles as the theme numbers them");

int32_t XwThemeColor(int role) {
  if (role < 0 || role >= XW_ROLES) role = XWR_INK;
  uint32_t rgb = RoleColor(Role(role));
  return int32_t((rgb & 0xFF) << 16 | (rgb & 0xFF00) | (rgb >> 16 & 0xFF));
}

void XwRoundBox(int x, int y, int w, int h, int radius, int32_t fill, int32_t line) {
  TraceDrawing("XwRoundBox", x, y, w, h, radius, fill, line);
  if (!XW || w <= 0 || h <= 0) return;
  const Rect r{x, y, Saturate(int64_t{x} + w), Saturate(int64_t{y} + h)};
  int most = (w < h ? w : h) / 2;
  if (radius < 0) radius = 0;
  if (radius > most) radius = most;
  if (IsRealColor(fill)) FillRoundRect(TargetContext(), r, radius, ColorToRgb(fill), 255);
  if (IsRealColor(line)) FrameRoundRect(TargetContext(), r, radius, ColorToRgb(line), 255);
}
