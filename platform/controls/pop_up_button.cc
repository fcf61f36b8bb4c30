// Buttons that show the item of a menu that was chosen last.
#include <algorithm>

#include "platform/access/access.h"
#include "platform/controls/control.h"
#include "platform/events/key_characters.h"
#include "platform/text/utf8.h"

namespace platform {
namespace {

constexpr int kTextLeft = 10, kTextRight = 22, kArrowRight = 14;
// Option with the arrow opens the menu as well.
constexpr uint32_t kMenuShortcut = cmdKey | controlKey | rightControlKey;

MenuRef MenuOf(const Control* c) {
  return static_cast<MenuRef>(c->data);
}

std::string ChosenText(const Control* c) {
  return GetMenuItemText(MenuOf(c), c->value);
}

void Draw(Control* c, ContextRef context) {
  ThemeButtonDrawInfo info;
  info.state = !c->active            ? kThemeStateInactive
               : IsControlHilited(c) ? kThemeStatePressed
                                     : kThemeStateActive;
  const Rect r = GetControlBounds(c);
  DrawThemeButton(context, r, kThemeBevelButton, info);
  const int alpha = c->active ? kOpaqueAlpha : kThemeDisabledAlpha;
  const uint32_t ink = ThemeButtonTextColor(kThemeBevelButton, info);
  const int middle = MenuOf(c) ? r.right - kArrowRight : r.left + r.width() / 2;
  DrawThemeMark(context, ThemeMark::kPopUpArrow, {middle, r.top, middle, r.bottom}, ink, alpha);
  if (!MenuOf(c)) return;
  ThemeTextStyle line;
  line.justification = TextJustification::kLeft;
  line.rgb = ink;
  line.alpha = alpha;
  DrawThemeText(context, {r.left + kTextLeft, r.top, r.right - kTextRight, r.bottom}, ChosenText(c),
                line);
}

void Open(Control* c, bool by_key) {
  MenuRef menu = MenuOf(c);
  if (!menu) return;
  for (int item = 1; item <= CountMenuItems(menu); ++item)
    CheckMenuItem(menu, item, item == c->value);
  DispatchScope scope;  // the record stays
  HoldControl(c, true);
  const int chosen =
      select_below(menu, OwnerOf(c).window, GetControlBounds(c), std::max(0, c->value));
  if (!IsValidControl(c)) return;
  HoldControl(c, false);
  if (!chosen || !IsValidControl(c)) return;
  SetControl32BitValue(c, chosen);
  HitControl(c, by_key);
}

bool Key(Control* c, const Event& e) {
  const uint8_t key = e.key.character;
  if ((key != kSpaceKey && key != kDownKey) || e.key.modifiers & kMenuShortcut) return false;
  if (e.kind == kEventRawKeyDown) PressByKey(c);
  return true;
}

void Describe(const Control* c, Description* out) {
  // Its title is the chosen item, not its name.
  out->name = c->described;
  if (MenuOf(c)) out->value = ChosenText(c);
  out->state |= kHasMenu;
}

}  // namespace

int (*select_below)(MenuRef menu, WindowRef w, const Rect& anchor, int item) = nullptr;

const KindRow kPopUpButtonKind = {.draw = Draw,
                                  .press = nullptr,
                                  .drag = nullptr,
                                  .release = nullptr,
                                  .key = Key,
                                  .describe = Describe,
                                  .border = nullptr,
                                  .act = nullptr,
                                  .minimum = 0,
                                  .maximum = 0,
                                  .has_title = true,
                                  .role = ObjectRole::kPopUpButton,
                                  .open = Open};

ControlRef CreatePopUpButtonControl(PaneRef pane, const Rect& bounds, const char* title) {
  ControlRef c = NewControl(pane, kPopUpButtonKind, bounds);
  if (!c) return nullptr;
  c->text = ValidUtf8(title ? title : "");
  SetControlKeys(c, kKeysByTab | kKeysByRequest | kKeysClick);
  return c;
}

void SetPopUpButtonMenu(ControlRef c, MenuRef menu) {
  if (!IsValidControl(c) || c->kind != &kPopUpButtonKind) return;
  c->data = IsValidMenu(menu) ? menu : nullptr;
  SetControlRange(c, 0, CountMenuItems(menu));
  NoticeChange(c->object.serial, Change::kValue);
  Draw1Control(c);
}

}  // namespace platform
