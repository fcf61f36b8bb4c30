#include "platform/display/window.h"

#include <algorithm>

#include "platform/display/screens.h"

namespace platform {

bool IsValidWindow(const Window* w) {
  return w && IsLiveObject(&w->object) && w->object.type->kind == ObjectKind::kWindow;
}
WindowRef LiveWindow(const Window* w) {
  return IsValidWindow(w) ? const_cast<WindowRef>(w) : nullptr;
}

SizeLimits LimitsOf(const Window& w) {
  if (!w.has_limits) {
    const int width = w.content.width(), height = w.content.height();
    return {width, height, width, height, 0, 0};
  }
  SizeLimits l = w.limits;
  l.max_width = std::max(l.max_width != 0 ? l.max_width : ScreenWidth(), w.widest);
  l.max_height = std::max(l.max_height != 0 ? l.max_height : ScreenHeight(), w.tallest);
  return l;
}

DeviceRect DeviceBounds(const Window& w) {
  double s = w.surface.scale;
  int left = DeviceEdge(w.content.left, s), top = DeviceEdge(w.content.top - w.menu_bar_height, s);
  return {left, top, left + std::max(1, DeviceEdge(w.content.width(), s)),
          top + std::max(1, DeviceEdge(w.content.height() + w.menu_bar_height, s))};
}

}  // namespace platform
