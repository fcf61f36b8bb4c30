// Pop-ups: windows without a frame beside a rectangle of their parent. The display places them.
#include <algorithm>

#include "platform/display/screens.h"
#include "platform/windows/state.h"

namespace platform {

WindowRef CreatePopUpWindow(WindowRef parent, const PopUpPlace& place) {
  if (!IsValidWindow(parent)) return nullptr;
  auto* w = new Window;
  w->window_class = kPopUpWindowClass;
  w->parent = parent;
  w->place = place;
  w->surface.scale = parent->surface.scale;
  const Rect& a = w->place.anchor;
  w->content = Offset(
      {a.left, a.bottom, a.left + std::max(place.width, 1), a.bottom + std::max(place.height, 1)},
      parent->content.left, parent->content.top);
  return EnterWindow(w);
}

void SetPopUpPlace(WindowRef w, const PopUpPlace& place) {
  if (!IsValidWindow(w) || !w->parent) return;
  w->place = place;
  CurrentDisplay()->move_resize(w);
}

std::vector<WindowRef> PopUpsOf(const Window* parent) {
  std::vector<WindowRef> found;
  for (WindowRef w : WindowList())
    if (w->parent && (w->parent == parent || !parent)) found.push_back(w);
  return found;
}

void PlacePopUps(const Window* parent) {
  for (WindowRef w : PopUpsOf(parent)) CurrentDisplay()->move_resize(w);
}

}  // namespace platform
