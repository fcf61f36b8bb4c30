#include "app/look/controls.h"

#include <charconv>
#include <string_view>

namespace console {
namespace {

// The record whose control shows in the area.
Area RecordOf(const XwWindow* control, const Area& a) {
  switch (control->kind) {
    case XWK_BUTTON:
      if (control->style & (XWC_OWN_TEXT | XWC_ICON | XWC_VARIANT | XWC_HEADER)) return a;
      return {a.x - 2, a.y - 1, a.w + 6, a.h + 4};
    case XWK_COMBO:
      return {a.x - 1, a.y - 2, a.w + 3, a.h};
    case XWK_CHECK_BOX:
      return {a.x - 1, a.y + (a.h - 16) / 2, a.w + 1, 16};
    default:
      return a;
  }
}

}  // namespace

void EnableControl(XwWindow* control, bool on) {
  if (control && bool(control->enabled) != on) XwEnable(control, on);
}

void PlaceControl(XwWindow* control, const Area& a) {
  if (!control) return;
  if (a.Empty()) return XwShow(control, 0);
  const Area r = RecordOf(control, a);
  if (r != Area{control->x, control->y, control->width, control->height})
    XwMove(control, r.x, r.y, r.w, r.h);
  if (!(control->flags & XW_SHOWN)) XwShow(control, 1);
}

int NumberIn(XwWindow* box, int most) {
  char text[64] = "";
  XwGetTextUtf8(box, text, sizeof text);
  std::string_view s = text;
  while (!s.empty() && s.front() == ' ') s.remove_prefix(1);
  while (!s.empty() && s.back() == ' ') s.remove_suffix(1);
  int n = 0;
  const auto end = std::from_chars(s.data(), s.data() + s.size(), n);
  const bool whole = end.ec == std::errc() && end.ptr == s.data() + s.size();
  return whole && n >= 1 && n <= most ? n : 0;
}

}  // namespace console
