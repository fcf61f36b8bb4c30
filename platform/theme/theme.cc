#include "platform/theme/theme.h"

#include <algorithm>

#include "platform/graphics/context.h"
#include "platform/theme/metrics.h"
#include "platform/theme/roles.h"

namespace platform {
namespace {

constexpr int kTrackEnd = 4;  // of a progress bar, where it is rounded

}  // namespace

void DrawThemeGenericWell(ContextRef c, const Rect& r, int state, bool fill_center) {
  int alpha = state == kThemeStateInactive ? kThemeDisabledAlpha : kOpaqueAlpha;
  if (fill_center) FillRoundRect(c, r, kCorner, RoleColor(Role::kDocument), alpha);
  FrameRoundRect(c, r, kCorner, RoleColor(Role::kLine), alpha);
}

void DrawThemeSeparator(ContextRef c, const Rect& r, int state) {
  if (!c || r.empty()) return;
  (void)state;  // a hairline has no paler state
  SetContextColor(c, RoleColor(Role::kHairline));
  int64_t width = int64_t{r.right} - r.left, height = int64_t{r.bottom} - r.top;
  // The second pixel, where there is one.
  int x = width > 1 ? r.left + 1 : r.left, y = height > 1 ? r.top + 1 : r.top;
  if (width > height)
    StrokeLineSolid(c, r.left, y, r.right - 1, y);
  else
    StrokeLineSolid(c, x, r.top, x, r.bottom - 1);
}

void DrawThemeTrack(ContextRef c, const ThemeTrackDrawInfo& info) {
  const Rect& r = info.bounds;
  if (!c || r.empty()) return;
  int radius = int(std::min<int64_t>((int64_t{r.bottom} - r.top + 1) / 2, 64));
  int alpha = info.active ? kOpaqueAlpha : kThemeDisabledAlpha;
  FillRoundRect(c, r, radius, RoleColor(Role::kTrack), alpha);
  FrameRoundRect(c, r, radius, RoleColor(Role::kProgressLine), alpha);
  int64_t value = std::clamp<int64_t>(info.value, info.min, std::max(info.min, info.max));
  value -= info.min;
  if (value <= 0) return;
  bool full = value >= int64_t{info.max} - info.min;
  int right = full ? r.right : int(std::min<int64_t>(r.right, r.left + kTrackEnd + value));
  ClipContextToRect(c, {r.left, r.top, right, r.bottom});
  FillRoundRect(c, r, radius, RoleColor(Role::kAccent), alpha);
  FrameRoundRect(c, r, radius, RoleColor(Role::kDarkAccent), alpha);
  RestoreContextClip(c);
}

}  // namespace platform
