// Check boxes and radio buttons.
#include <algorithm>

#include "platform/controls/control.h"
#include "platform/text/utf8.h"

namespace platform {
namespace {

constexpr int kGap = 6, kRoom = 2;

ThemeButtonKind ThemeKind(const Control* c) {
  return c->kind == &kCheckBoxKind ? kThemeCheckBox : kThemeRadioButton;
}

void Draw(Control* c, ContextRef context) {
  ThemeButtonDrawInfo info;
  info.state = !c->active            ? kThemeStateInactive
               : IsControlHilited(c) ? kThemeStatePressed
                                     : kThemeStateActive;
  info.value = c->value;
  const Rect r = GetControlBounds(c);
  DrawThemeButton(context, r, ThemeKind(c), info);
  ThemeTextStyle line;
  line.justification = TextJustification::kLeft;
  line.underline_first = c->underlined;
  line.rgb = ThemeButtonTextColor(ThemeKind(c), {info.state, kThemeButtonOff, 0});
  line.alpha = c->active ? 255 : kThemeDisabledAlpha;
  DrawThemeText(context, {r.left + kCheckCell + kGap, r.top, r.right, r.bottom}, c->text, line);
}

void Border(const Control* c, Rect* border, int* corner) {
  const int inset = (kCheckCell - kCheckMark) / 2,
            top = border->top + (border->height() - kCheckMark) / 2;
  *border = {border->left + inset, top, border->left + inset + kCheckMark, top + kCheckMark};
  if (c->kind == &kRadioButtonKind) *corner = kCheckMark / 2;
}

void Describe(const Control* c, Description* out) {
  if (c->value == kThemeButtonOn) out->state |= kIsChecked;
  if (c->value == kThemeButtonMixed) out->state |= kIsMixed;
}

void Toggle(Control* c) {
  SetControl32BitValue(c, c->value == kThemeButtonOff ? kThemeButtonOn : kThemeButtonOff);
}
void TurnOn(Control* c) {
  SetControl32BitValue(c, kThemeButtonOn);
}

ControlRef Create(PaneRef pane, const KindRow& kind, const Rect& bounds, const char* title,
                  int value) {
  ControlRef c = NewControl(pane, kind, bounds);
  if (!c) return nullptr;
  c->text = ValidUtf8(title ? title : "");
  c->value = std::clamp(value, int{kind.minimum}, int{kind.maximum});
  SetControlKeys(c, kKeysByTab | kKeysByRequest | kKeysLetter);
  return c;
}

}  // namespace

const KindRow kCheckBoxKind = {
    Draw,   PressButton, DragButton,      ReleaseButton,     ButtonKey, Describe,
    Border, Toggle,      kThemeButtonOff, kThemeButtonMixed, true,      ObjectRole::kCheckBox};
const KindRow kRadioButtonKind = {
    Draw,   PressButton, DragButton,      ReleaseButton,     ButtonKey, Describe,
    Border, TurnOn,      kThemeButtonOff, kThemeButtonMixed, true,      ObjectRole::kRadioButton};

ControlRef CreateCheckBoxControl(PaneRef pane, const Rect& bounds, const char* title, int value) {
  return Create(pane, kCheckBoxKind, bounds, title, value);
}
ControlRef CreateRadioButtonControl(PaneRef pane, const Rect& bounds, const char* title,
                                    int value) {
  return Create(pane, kRadioButtonKind, bounds, title, value);
}

Rect GetBestControlRect(ControlRef c) {
  if (!IsValidControl(c)) return {};
  Rect r = GetControlBounds(c);
  if (c->kind != &kCheckBoxKind && c->kind != &kRadioButtonKind) return r;
  const int text = c->text.empty() ? 0 : kGap + ThemeTextWidth(c->text, false) + kRoom;
  return {r.left, r.top, r.left + kCheckCell + text, r.top + kCheckCell};
}

}  // namespace platform
