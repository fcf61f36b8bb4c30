#include <climits>

#include "platform/controls/control.h"

namespace platform {
namespace {

void Draw(Control* c, ContextRef context) {
  ThemeButtonDrawInfo info;
  const bool pressed = c->value != 0 || IsControlHilited(c);
  info.state = !c->active ? kThemeStateInactive : pressed ? kThemeStatePressed : kThemeStateActive;
  info.value = c->value ? kThemeButtonOn : kThemeButtonOff;
  DrawButtonWithText(c, context, kThemeBevelButton, info, true, 4);
}

}  // namespace

const KindRow kBevelButtonKind = {Draw,      PressButton, DragButton, ReleaseButton,
                                  ButtonKey, nullptr,     nullptr,    nullptr,
                                  INT32_MIN, INT32_MAX,   true,       ObjectRole::kButton};

ControlRef CreateBevelButtonControl(PaneRef pane, const Rect& bounds, int value) {
  ControlRef c = NewControl(pane, kBevelButtonKind, bounds);
  if (!c) return nullptr;
  c->value = value;
  SetControlKeys(c, kKeysByTab | kKeysByRequest | kKeysLetter);
  return c;
}

}  // namespace platform
