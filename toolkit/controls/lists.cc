#include "toolkit/controls/lists.h"

#include "platform/lists/lists.h"
#include "toolkit/controls/framework.h"
#include "toolkit/core/alive.h"
#include "toolkit/target/selection.h"
#include "toolkit/windows/control_bounds.h"
#include "toolkit/windows/item_texts.h"

using namespace platform;

OSStatus Listbox_func(HandlerCall*, Event* event, void* data) {
  auto* list = static_cast<XwWindow*>(data);
  if (!list->id) return noErr;
  if (event->control.part != kControlListBoxPart) return eventNotHandledErr;
  const ControlRef control = NativeControl(list);
  const int row = ListLastClick(control);
  if (row < 0) return noErr;
  ReportControl(list, list->id, row);
  list->value = row;
  // So that the next click is reported too, even on the same row.
  SetListLastClick(control, -1);
  return noErr;
}

XwWindow* XwListBox(XwWindow* parent, const char* const* items, int32_t id, int x, int y, int w,
                    int h, uint32_t style) {
  ControlRef control =
      CreateListBoxControl(PaneForControl(parent), ControlRect(XWK_LIST, style, x, y, w, h));
  XwWindow* list =
      CreateWindowControl(parent, id, XWK_LIST, x, y, w, h, style, nullptr, 0, control);
  if (!list) return nullptr;
  SetListRows(list, items, false);
  ActivateWindowControl(list, nullptr);
  InstallControlHandler(list, Listbox_func, {kEventControlHit});
  return list;
}

void XwUpdateListBox(XwWindow* list, const char* const* items) {
  if (!CheckWindow(list) || list->kind != XWK_LIST) return;
  TargetScope scope;
  SetListRows(list, items, false);
}
