#include "platform/controls/control.h"
#include "platform/theme/roles.h"

namespace platform {
namespace {

void Draw(Control* c, ContextRef context) {
  ThemeTextStyle line;
  line.bold = c->bold;
  line.justification = c->justification;
  line.rgb = RoleColor(Role::kInk);
  line.alpha = c->active ? 255 : kThemeDisabledAlpha;
  DrawThemeText(context, GetControlBounds(c), c->text, line);
}

}  // namespace

const KindRow kStaticTextKind = {Draw,    nullptr, nullptr, nullptr, nullptr, nullptr,
                                 nullptr, nullptr, 0,       0,       false,   ObjectRole::kLabel};

ControlRef CreateStaticTextControl(PaneRef pane, const Rect& bounds, TextJustification just,
                                   bool bold) {
  ControlRef c = NewControl(pane, kStaticTextKind, bounds);
  if (!c) return nullptr;
  c->justification = just;
  c->bold = bold;
  return c;
}

}  // namespace platform
