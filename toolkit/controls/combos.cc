#include "toolkit/controls/combos.h"

#include <algorithm>
#include <string>

#include "platform/input/translate.h"
#include "platform/loop/tracking.h"
#include "platform/text/mac_roman.h"
#include "platform/windows/windows.h"
#include "toolkit/controls/buttons.h"
#include "toolkit/controls/framework.h"
#include "toolkit/core/alive.h"
#include "toolkit/core/record.h"
#include "toolkit/core/saturate.h"
#include "toolkit/target/selection.h"
#include "toolkit/windows/control_bounds.h"
#include "toolkit/windows/item_texts.h"

using namespace platform;

namespace {

constexpr int kMenuDrop = 4;  // from the top of an editable combo box to its menu
constexpr int kButtonWidth = 23, kButtonHeight = 15, kGap = 2;

// The item that the user chooses; 0 for none.
int ChooseFrom(XwWindow* combo) {
  const Rect content = GetWindowBounds(NativeWindow(combo), kWindowContentRgn);
  const XwWindow* parent = combo->parent;
  const bool sub = IsSub(parent);
  const int left = content.left + (sub ? parent->origin_x : 0) + combo->x;
  const int top = content.top + (sub ? parent->origin_y : 0) + combo->y + kMenuDrop;
  const ControlRef native = NativeControl(combo);
  const uint64_t serial = combo->serial;
  HoldControl(native, true);
  const int chosen = PopUpMenuSelect(static_cast<MenuRef>(combo->menu), top, left, 0) & 0xFFFF;
  if (!IsLive(combo) || combo->serial != serial) return 0;
  HoldControl(native, false);
  return chosen;
}

// The item goes into the box.
void ClickEditable(XwWindow* combo) {
  const int chosen = ChooseFrom(combo);
  if (!chosen || !combo->linked) return;
  XwWindow* box = combo->linked;
  XwSetTextUtf8(box, GetMenuItemText(static_cast<MenuRef>(combo->menu), chosen));
  SetKeyboardFocus(NativeWindow(box), NativeControl(box), 0);
  if (combo->id) XwSendEvent(combo->parent, XWE_CONTROL, combo->id, chosen - 1, 0);
}

}  // namespace

OSStatus ClickCombo(XwWindow* combo) {
  if (!combo->enabled) return noErr;
  if (IsEditableCombo(combo)) {
    ClickEditable(combo);
    return noErr;
  }
  const ControlRef native = NativeControl(combo);
  if (combo->style & XWC_VARIANT || GetControl32BitMaximum(native) != 2) return eventNotHandledErr;
  const int other = GetControl32BitValue(native) == 1 ? 2 : 1;
  SetControl32BitValue(native, other);
  if (combo->id) ReportControl(combo, combo->id, other - 1);
  return noErr;
}

XwWindow* XwComboBox(XwWindow* parent, const char* const* items, int32_t id, int x, int y, int w,
                     int h, uint32_t style, int32_t value) {
  const bool editable = style & XWC_EDITABLE;
  Rect r = ControlRect(XWK_COMBO, style, x, y, w, h);
  if (editable) {
    const int right = Sat16(x) + Sat16(w);
    r = {right - kButtonWidth, Sat16(y), right, Sat16(y) + kButtonHeight};
  }
  ControlRef control =
      CreatePopUpButtonControl(PaneForControl(parent), r, editable ? "" : "ComboBox");
  XwWindow* combo =
      CreateWindowControl(parent, id, XWK_COMBO, x, y, w, h, style, nullptr, value, control);
  if (!combo) return nullptr;
  SetComboMenu(combo, items, false);
  if (editable)
    SetControlKeys(control, kKeysClick);
  else
    SetControl32BitValue(control, std::min(value, INT32_MAX - 1) + 1);
  if (editable) {
    XwWindow* box = XwEditBox(parent, "", -id, x, y, Sat16(w) - kButtonWidth - kGap, h, style);
    SetLinked(combo, box);
    if (box) SetControlOpener(NativeControl(box), control);
  }
  ActivateWindowControl(combo, nullptr);
  InstallControlHandler(combo, Button_func, {kEventControlHit, kEventControlClick});
  return combo;
}
