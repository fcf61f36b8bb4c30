#include "platform/controls/control.h"

namespace platform {
namespace {

void Draw(Control* c, ContextRef context) {
  const WindowControls& all = OwnerOf(c);
  ThemeButtonDrawInfo info;
  info.state = !c->active            ? kThemeStateInactive
               : IsControlHilited(c) ? kThemeStatePressed
                                     : kThemeStateActive;
  info.value = c->value ? kThemeButtonOn : kThemeButtonOff;
  if (all.ok == c && all.window->active) info.adornment = kThemeAdornmentDefault;
  DrawButtonWithText(c, context, kThemePushButton, info, false, 6);
}

}  // namespace

const KindRow kPushButtonKind = {Draw,      PressButton, DragButton, ReleaseButton,
                                 ButtonKey, nullptr,     nullptr,    nullptr,
                                 0,         1,           true,       ObjectRole::kButton};

ControlRef CreatePushButtonControl(PaneRef pane, const Rect& bounds) {
  ControlRef c = NewControl(pane, kPushButtonKind, bounds);
  SetControlKeys(c, kKeysByTab | kKeysByRequest | kKeysLetter);
  return c;
}

}  // namespace platform
