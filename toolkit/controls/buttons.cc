#include "toolkit/controls/buttons.h"

#include "platform/text/mac_roman.h"
#include "platform/windows/windows.h"
#include "toolkit/controls/combos.h"
#include "toolkit/controls/framework.h"
#include "toolkit/core/alive.h"
#include "toolkit/core/record.h"
#include "toolkit/core/saturate.h"
#include "toolkit/windows/control_bounds.h"

using namespace platform;

namespace {

constexpr uint32_t kDrawn = XWC_ICON | XWC_MENU | XWC_HEADER;
constexpr int kCheckBoxDrop = 2, kCheckBoxSize = 16;

// A pop-up comes below the control's left edge.
void PlaceBelow(const XwWindow* control) {
  const Rect content = GetWindowBounds(NativeWindow(control), kWindowContentRgn);
  const XwWindow* parent = control->parent;
  const bool sub = IsSub(parent);
  Inp.root_x = content.left + (sub ? parent->origin_x : 0) + control->x;
  Inp.root_y = content.top + (sub ? parent->origin_y : 0) + control->y + control->height;
}

void OpenMenu(XwWindow* control) {
  PlaceBelow(control);
  const uint64_t serial = control->serial;
  const ControlRef native = NativeControl(control);
  HoldControl(native, true);
  Inp.type = 0;
  const int chosen = XwPopupMenu(static_cast<XwMenuItem*>(control->button_menu));
  Inp.type = 0;
  if (!IsLive(control) || control->serial != serial) return;
  HoldControl(native, false);
  if (chosen) ReportControl(control, chosen, 0);
}

// A press of the primary button, or of the keyboard where it does the same.
OSStatus Click(XwWindow* control) {
  const bool menu_button = control->kind == XWK_BUTTON && control->style & XWC_MENU;
  if (menu_button) {
    if (!control->enabled) return noErr;
    if (control->button_menu)
      OpenMenu(control);
    else
      ReportControl(control, control->id, 0);
    return noErr;
  }
  if (control->kind == XWK_COLOR) {
    if (!control->enabled) return noErr;
    PlaceBelow(control);
    ReportControl(control, control->id, 0);
    return noErr;
  }
  if (control->kind == XWK_LABEL) {
    if (control->id && control->enabled)
      ReportControl(control, control->id, GetControl32BitValue(NativeControl(control)) - 1);
    return noErr;
  }
  if (control->kind == XWK_COMBO) return ClickCombo(control);
  return eventNotHandledErr;
}

}  // namespace

OSStatus Button_func(HandlerCall*, Event* event, void* data) {
  auto* control = static_cast<XwWindow*>(data);
  // The press by the keyboard replaces the key's event.
  if (event->control.by_key) Inp.type = 0;
  if (event->kind == kEventControlClick) return Click(control);
  if (!control->id || !control->enabled) return noErr;
  // Items of a menu count from 1.
  const int first = control->kind == XWK_COMBO ? 1 : 0;
  ReportControl(control, control->id, GetControl32BitValue(NativeControl(control)) - first);
  return noErr;
}

int ButtonHitTest_Func(ControlRef control, Point) {
  return IsControlActive(control) ? 1 : 0;
}

XwWindow* XwButton(XwWindow* parent, const char* text, int32_t id, int x, int y, int w, int h,
                   uint32_t style, XwValue value) {
  PaneRef pane = PaneForControl(parent);
  const Rect r = ControlRect(XWK_BUTTON, style, x, y, w, h);
  ControlRef control;
  if (style & kDrawn)
    control = CreateUserPaneControl(pane, r, ButtonDraw_Func, ButtonHitTest_Func);
  else if (style & XWC_VARIANT)
    control = CreateBevelButtonControl(pane, r, int(value));
  else
    control = CreatePushButtonControl(pane, r);
  const bool menu = style & XWC_MENU;
  XwWindow* b =
      CreateWindowControl(parent, id, XWK_BUTTON, x, y, w, RecordedHeight(XWK_BUTTON, style, h),
                          style, text, menu ? 0 : value, control);
  if (!b) return nullptr;
  if (menu) b->button_menu = reinterpret_cast<void*>(value);
  if (style & kDrawn)
    SetControlRole(control, style & XWC_HEADER ? ObjectRole::kColumnHeader
                            : menu             ? ObjectRole::kMenuButton
                                               : ObjectRole::kButton);
  uint8_t keys = kKeysByTab | kKeysByRequest | kKeysLetter;
  if (style & XWC_HEADER) {
    keys = kKeysByRequest;
    SetControlCorner(control, 0);
  }
  SetControlKeys(control, menu ? keys | kKeysClick : keys);
  InstallControlHandler(b, Button_func,
                        {kEventControlHit, kEventControlContextualMenuClick, kEventControlClick});
  ActivateWindowControl(b, text);
  return b;
}

XwWindow* XwCheckBox(XwWindow* parent, const char* text, int32_t id, int x, int y, uint32_t style,
                     int32_t value) {
  PaneRef pane = PaneForControl(parent);
  x = Sat16(x);
  y = Sat16(y) + kCheckBoxDrop;
  const Rect r{x, y, x + kCheckBoxSize, y + kCheckBoxSize};
  const std::string title = MacRomanToUtf8(text ? text : "");
  ControlRef control = style & XWC_VARIANT ? CreateRadioButtonControl(pane, r, title.c_str(), value)
                                           : CreateCheckBoxControl(pane, r, title.c_str(), value);
  const int width = GetBestControlRect(control).width();
  SetControlBounds(control, {x, y, x + width, y + kCheckBoxSize});
  XwWindow* c = CreateWindowControl(parent, id, XWK_CHECK_BOX, x, y, width, kCheckBoxSize, style,
                                    text, value, control);
  if (!c) return nullptr;
  InstallControlHandler(c, Button_func, {kEventControlHit});
  ActivateWindowControl(c, text);
  return c;
}

XwWindow* XwColor(XwWindow* parent, const char* text, int32_t id, int x, int y, int w, int h,
                  uint32_t style, int32_t colour) {
  ControlRef control =
      CreateUserPaneControl(PaneForControl(parent), ControlRect(XWK_COLOR, style, x, y, w, h),
                            ButtonDraw_Func, ButtonHitTest_Func);
  XwWindow* c =
      CreateWindowControl(parent, id, XWK_COLOR, x, y, w, h, style, text, colour, control);
  if (!c) return nullptr;
  SetControlKeys(control, kKeysByTab | kKeysByRequest | kKeysClick);
  SetControlRole(control, ObjectRole::kColorWell);
  if (!(style & (XWC_VARIANT | XWC_ICON))) SetControlCorner(control, 0);
  InstallControlHandler(c, Button_func, {kEventControlHit, kEventControlClick});
  ActivateWindowControl(c, text);
  return c;
}

XwWindow* XwLabel(XwWindow* parent, const char* text, int32_t id, int x, int y, int w, int h,
                  uint32_t style) {
  if (style & XWC_ICON) {
    XwWindow* label = XwButton(parent, text, id, x, y, w, h, style, XwValue{0});
    if (!label) return nullptr;
    label->kind = XWK_LABEL;
    SetControlKeys(NativeControl(label), kKeysByRequest);
    Draw1Control(NativeControl(label));
    return label;
  }
  const TextJustification just = style & XWC_CENTER  ? TextJustification::kCenter
                                 : style & XWC_RIGHT ? TextJustification::kRight
                                 : style & XWC_LEFT  ? TextJustification::kLeft
                                                     : TextJustification::kCenter;
  ControlRef control = CreateStaticTextControl(
      PaneForControl(parent), ControlRect(XWK_LABEL, style, x, y, w, h), just, style & XWC_VARIANT);
  XwWindow* label = CreateWindowControl(parent, id, XWK_LABEL, x, y, w, h, style, text, 1, control);
  if (!label) return nullptr;
  InstallControlHandler(label, Button_func, {kEventControlClick});
  ActivateWindowControl(label, text);
  return label;
}
