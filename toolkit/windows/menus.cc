// Pop-up menus, and the handlers of the menus of the bar.
#include "toolkit/windows/menus.h"

#include <vector>

#include "platform/input/translate.h"
#include "platform/loop/tracking.h"
#include "platform/text/mac_roman.h"
#include "toolkit/core/alive.h"
#include "toolkit/core/grab.h"
#include "toolkit/core/post.h"
#include "toolkit/core/saturate.h"
#include "toolkit/target/selection.h"
#include "toolkit/windows/menu_state.h"

using namespace platform;

namespace {

constexpr int kPopupId = 100, kFirstSubId = 101;

// A menu at the place of the current event's pointer.
int Select(MenuRef menu, int item = 0) {
  const int chosen = PopUpMenuSelect(menu, Inp.root_y, Inp.root_x, item);
  DropButtons(XWS_BUTTONS & ~HeldButtons());
  return chosen;
}

// Of those that can be chosen; 0: none is.
int FirstChecked(MenuRef menu, const XwMenuItem* items) {
  for (int position = 1; position <= CountMenuItems(menu); ++position) {
    const XwMenuItem& record = items[position - 1];
    if (record.flags & XWM_HIDDEN || !IsMenuItemEnabled(menu, position)) continue;
    if (record.flags & XWM_CHECKED) return position;
  }
  return 0;
}

int32_t Popup(XwMenuItem* items, bool by_key) {
  if (!items || !items->text) return 0;
  TargetScope scope;
  MenuColorCount = MenuListCount = 0;
  SubMenuCount = kFirstSubId;
  MenuRef menu = CreateMenuTree(items, nullptr, kPopupId, true);
  // A menu that is opened while this one is shown makes its own list.
  const std::vector<XwMenuEntry> menus(MenuList, MenuList + MenuListCount);
  const std::vector<uint8_t*> colours(MenuColor, MenuColor + MenuColorCount);
  const int chosen = Select(menu, by_key ? FirstChecked(menu, items) : 0);
  const size_t index = size_t(chosen >> 16) - kPopupId;
  const int position = chosen & 0xFFFF;
  int32_t result = 0;
  if (chosen && index < menus.size()) {
    const XwMenuItem& record = menus[index].items[position - 1];
    if (record.flags & XWM_COLOUR)
      result = -position;
    else if (IsMenuLeaf(record))
      result = int32_t(record.id);
  }
  for (const XwMenuEntry& e : menus) DisposeMenu(e.menu);
  for (uint8_t* image : colours) XwFreeImage(image);
  MenuColorCount = MenuListCount = 0;
  return result;
}

}  // namespace

int32_t XwPopupMenu(XwMenuItem* items) {
  return Popup(items, false);
}

int32_t XwPopupMenuByKey(XwMenuItem* items) {
  return Popup(items, true);
}

int32_t XwPopupList(const char* const* strings, int32_t current) {
  if (!strings) return -1;
  TargetScope scope;
  MenuRef menu = CreateNewMenu(0);
  for (; *strings; ++strings) AppendMenuItemText(menu, MacRomanToUtf8(*strings).c_str());
  if (current >= 0 && current < CountMenuItems(menu)) CheckMenuItem(menu, current + 1, true);
  const int chosen = CountMenuItems(menu) ? Select(menu) : 0;
  DisposeMenu(menu);
  GrabWindow = nullptr;
  PassiveGrab = false;
  return (chosen & 0xFFFF) - 1;
}

XwEvent* XwPopupLocation(XwWindow* window, int x, int y) {
  if (CheckWindow(window)) {
    Inp.root_x = Saturate(int64_t{window->x} + x);
    Inp.root_y = Saturate(int64_t{window->y} + y);
  }
  return &Inp;
}

void InstallMenuHandler(MenuRef menu, void* user_data) {
  constexpr EventKind kKinds[] = {{kEventClassMenu, kEventMenuOpening},
                                  {kEventClassCommand, kEventCommandProcess}};
  InstallEventHandler(GetMenuEventTarget(menu), EVmenu_func, kKinds, 2, user_data);
}

OSStatus EVmenu_func(HandlerCall*, Event* event, void* user_data) {
  if (event->cls == kEventClassMenu) {
    // The key that has opened the menu is still to be delivered.
    const XwEvent before = Inp;
    if (IsLive(W_MenuBar)) DirectSendEvent(W_MenuBar, XWE_MENU_OPENING, 0, user_data);
    Inp = before;
    if (!IsLive(Inp.window)) Inp.window = nullptr;
    if (!IsLive(Inp.focus)) Inp.focus = nullptr;
  } else if (event->request.id != 0) {
    const Point mouse = LastPointer();
    Inp.root_x = mouse.x;
    Inp.root_y = mouse.y;
    XwSendEvent(W_MenuBar, XWE_MENU, int(event->request.id), XwValue{0}, 0);
  }
  return noErr;
}
