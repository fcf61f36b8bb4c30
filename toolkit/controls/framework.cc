#include "toolkit/controls/framework.h"

#include "platform/events/targets.h"
#include "toolkit/core/alive.h"
#include "toolkit/core/record.h"
#include "toolkit/core/saturate.h"
#include "toolkit/windows/panes.h"
#include "toolkit/windows/tree.h"

using namespace platform;

namespace {

// The ring around the control with the keyboard is cut out of what the parent draws.
OSStatus FocusMoves(HandlerCall*, Event*, void* data) {
  ResetClipMask(static_cast<XwWindow*>(data)->parent);
  return eventNotHandledErr;
}

}  // namespace

PaneRef PaneForControl(XwWindow* parent) {
  if (!CheckWindow(parent) || IsControl(parent) || !HasRoom(parent)) return nullptr;
  return PaneOf(parent);
}

XwWindow* CreateWindowControl(XwWindow* parent, int32_t id, int kind, int x, int y, int width,
                              int height, uint32_t style, const char* text, XwValue value,
                              ControlRef control) {
  if (!control) return nullptr;
  XwWindow* w = NewRecord();
  EnterCreationList(w);
  EnterLive(w);
  w->kind = uint8_t(kind);
  AddSubWindow(parent, w);
  w->parent = parent;
  w->platform = control;
  w->enabled = style & XWC_ENABLED ? 1 : 0;
  w->id = id;
  w->x = Sat16(x);
  w->y = Sat16(y);
  w->width = Sat16(width);
  w->height = Sat16(height);
  w->style = style;
  w->value = int32_t(value);
  if ((kind == XWK_BUTTON || kind == XWK_LABEL) && style & XWC_ICON) {
    w->user_data = const_cast<char*>(text);
    w->flags |= XW_DATA_NOT_OWNED;
  }
  SetControlReference(control, w);
  SetControlArea(control, {w->x, w->y, w->x + w->width, w->y + w->height});
  InstallControlHandler(w, FocusMoves, {kEventControlSetFocusPart});
  return w;
}

void ActivateWindowControl(XwWindow* w, const char* text) {
  const bool labelled = w->kind == XWK_BUTTON || w->kind == XWK_LABEL;
  if (text && !(labelled && w->style & XWC_ICON)) XwSetText(w, text);
  ControlRef control = NativeControl(w);
  w->style& XWC_ENABLED ? ActivateControl(control) : DeactivateControl(control);
  if (w->style & XWC_VISIBLE) {
    ShowControl(control);
    w->flags |= XW_SHOWN;
    ResetClipMask(w->parent);
  } else {
    HideControl(control);
  }
}

void InstallControlHandler(XwWindow* w, EventHandler handler,
                           std::initializer_list<uint32_t> kinds) {
  for (uint32_t kind : kinds) {
    const EventKind one{kEventClassControl, kind};
    InstallEventHandler(GetControlEventTarget(NativeControl(w)), handler, &one, 1, w);
  }
}

void ReportControl(XwWindow* w, int32_t item, int32_t value) {
  Inp.window = w->parent;
  Inp.type = XWE_CONTROL;
  Inp.item = item;
  Inp.value = value;
}
