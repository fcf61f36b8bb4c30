// What all kinds of buttons have in common.
#include "platform/access/access.h"
#include "platform/controls/control.h"
#include "platform/events/key_characters.h"

namespace platform {
namespace {

void SetInside(Control* c, bool inside) {
  if (c->inside == inside) return;
  c->inside = inside;
  NoticeChange(c->object.serial, Change::kState);
  Draw1Control(c);
}

}  // namespace

void DrawButtonWithText(const Control* c, ContextRef context, ThemeButtonKind kind,
                        const ThemeButtonDrawInfo& info, bool bold, int margin) {
  const Rect r = GetControlBounds(const_cast<Control*>(c));
  DrawThemeButton(context, r, kind, info);
  ThemeTextStyle line;
  line.bold = bold;
  line.underline_first = c->underlined;
  line.rgb = ThemeButtonTextColor(kind, info);
  line.alpha = c->active ? kOpaqueAlpha : kThemeDisabledAlpha;
  DrawThemeText(context, {r.left + margin, r.top, r.right - margin, r.bottom}, c->text, line);
}

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
  if ((key != kSpaceKey && key != kReturnKey && key != kEnterKey) || (e.key.modifiers & kShortcut))
    return false;
  if (e.kind == kEventRawKeyDown) PressByKey(c);
  return true;
}

}  // namespace platform
