// What all kinds of buttons have in common.
#include "platform/access/access.h"
#include "platform/controls/control.h"

namespace platform {
namespace {

void SetInside(Control* c, bool inside) {
  if (c->inside == inside) return;
  c->inside = inside;
  NoticeChange(c->object.serial, Change::kState);
  Draw1Control(c);
}

constexpr uint32_t kShortcut = cmdKey | optionKey | controlKey | rightOptionKey | rightControlKey;
constexpr uint8_t kReturn = 13, kEnter = 3;

}  // namespace

bool PressButton(Control* c, Point) {
  SetInside(c, true);
  return true;
}

void DragButton(Control* c, Point where) {
  SetInside(c, IsControlUnder(c, where));
}

bool ReleaseButton(Control* c, bool inside) {
  SetInside(c, false);
  return inside;
}

bool ButtonKey(Control* c, const Event& e) {
  const uint8_t key = e.key.character;
  if ((key != ' ' && key != kReturn && key != kEnter) || (e.key.modifiers & kShortcut))
    return false;
  if (e.kind == kEventRawKeyDown) PressByKey(c);
  return true;
}

}  // namespace platform
