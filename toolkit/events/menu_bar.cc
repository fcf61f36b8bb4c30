#include "toolkit/events/menu_bar.h"

#include <utility>

#include "platform/events/context_key.h"
#include "platform/input/translate.h"
#include "platform/loop/dispatch.h"
#include "platform/loop/tracking.h"
#include "toolkit/core/alive.h"
#include "toolkit/core/grab.h"
#include "toolkit/core/modifiers.h"
#include "toolkit/core/record.h"
#include "toolkit/events/loop.h"
#include "toolkit/target/selection.h"
#include "toolkit/windows/menus.h"

using namespace platform;

namespace {

void MenuClosed() {
  HiliteMenu(0);
  DropButtons(XWS_BUTTONS & ~HeldButtons());
}

// The window whose context menu the keyboard has asked for.
XwWindow* wants_context;

XwWindow* TopLevelOf(WindowRef native) {
  for (XwWindow* w = W_Start; w; w = w->next)
    if (IsTopLevel(w) && w->platform == native) return w;
  return nullptr;
}

void OpenRequestedContext() {
  XwWindow* w = std::exchange(wants_context, nullptr);
  if (!w || !IsLive(w) || !w->context_menu_handler || WaitKeepsOut(w)) return;
  TargetScope scope;
  const XwEvent before = Inp;
  Inp.window = w;
  w->context_menu_handler();
  // The key is still to be delivered. The release of its Shift may have gone to the menu.
  Inp = before;
  SetModifiers(HeldModifiers());
  if (!IsLive(Inp.window)) Inp.window = nullptr;
  if (!IsLive(Inp.focus)) Inp.focus = nullptr;
}

void SendCommand(MenuRef menu, uint32_t command) {
  Event e(kEventClassCommand, kEventCommandProcess);
  e.request = {command, nullptr, 0};
  SendEventToEventTarget(&e, GetMenuEventTarget(menu));
}

}  // namespace

void PressMenuBar(const Event& e) {
  if (ModalKeepsOut(W_Start)) return RefusePress();
  TargetScope scope;
  MenuSelect(e.mouse.where);
  MenuClosed();
}

void DropRequestedContext() {
  wants_context = nullptr;
}

void OpenRequestedMenu() {
  OpenRequestedContext();
  MenuRef menu = TakeMenuBarRequest();
  if (!menu || ModalKeepsOut(W_Start)) return;
  TargetScope scope;
  MenuSelectByKey(menu);
  MenuClosed();
}

OSStatus EVmenukey_func(HandlerCall*, Event* event, void*) {
  if (!event->key.ignored && OpensContextMenu(*event)) wants_context = TopLevelOf(event->window);
  if (event->key.ignored || !IsLive(W_MenuBar) || ModalKeepsOut(W_Start)) return eventNotHandledErr;
  const int type = Inp.type;
  const uint32_t modifiers = ModifierBits(event->key.modifiers);
  MenuKeyHit hit = FindMenuKey(type, modifiers);
  // One that is greyed or hidden now may be the program's to show when its menu opens.
  if (!hit.record) hit = FindMenuKey(type, modifiers, true);
  if (hit.record) {
    Event opening(kEventClassMenu, kEventMenuOpening);
    SendEventToEventTarget(&opening, GetMenuEventTarget(hit.menu));
    // The program may have changed the menu.
    hit = FindMenuKey(type, modifiers);
    if (hit.record) SendCommand(hit.menu, uint32_t(hit.record->id));
  } else if ((type == 'q' || type == 'Q') && modifiers == XWS_CONTROL &&
             !MenuBarHasKey('q', XWS_CONTROL)) {
    Event quit(kEventClassCommand, kEventCommandProcess);
    quit.request = {kHICommandQuit, nullptr, 0};
    SendEventToEventTarget(&quit, GetApplicationEventTarget());
  }
  return eventNotHandledErr;
}
