// Controls that their maker draws.
#include "platform/controls/control.h"

namespace platform {
namespace {

void Draw(Control* c, ContextRef) {
  if (c->draw) c->draw(c);
}

bool Press(Control* c, Point where) {
  return c->hit_test && c->hit_test(c, where) != 0 && PressButton(c, where);
}

}  // namespace

const KindRow kUserPaneKind = {Draw,      Press,   DragButton, ReleaseButton,
                               ButtonKey, nullptr, nullptr,    nullptr,
                               0,         0,       false,      ObjectRole::kButton};

ControlRef CreateUserPaneControl(PaneRef pane, const Rect& bounds, PaneDraw draw,
                                 PaneHitTest hit_test) {
  ControlRef c = NewControl(pane, kUserPaneKind, bounds);
  if (!c) return nullptr;
  c->draw = draw;
  c->hit_test = hit_test;
  return c;
}

}  // namespace platform
