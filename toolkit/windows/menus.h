// The platform's menus of the program's arrays.
#pragma once
#include "platform/events/targets.h"
#include "platform/menus/menus.h"
#include "toolkit/xw.h"

// The menus of the pop-up that is shown: its arrays, and what was made of them. A menu's id is 100
// and its place here.
struct XwMenuEntry {
  XwMenuItem* items;
  platform::MenuRef menu;
};
constexpr int kMenuListSize = 10, kMenuColorSize = 64;
extern XwMenuEntry MenuList[kMenuListSize];
extern int32_t MenuListCount, SubMenuCount;
// Pictures of its colour items.
extern uint8_t* MenuColor[kMenuColorSize];
extern int32_t MenuColorCount;

// The platform's menu of an array; null when the list of a pop-up is full.
platform::MenuRef CreateMenuTree(XwMenuItem* items, const char* title, int menu_id, bool popup);
// The record with this id, its menu (null while that is not built) and its position; with the id of
// a sub-menu, and `item_level` 0, that menu and 0. Null when there is none.
XwMenuItem* FindMenuItem(XwMenuItem* items, XwValue id, platform::MenuRef* menu, int* position,
                         bool item_level);
// `user_data` is the array.
void InstallMenuHandler(platform::MenuRef menu, void* user_data);
platform::OSStatus EVmenu_func(platform::HandlerCall* call, platform::Event* event,
                               void* user_data);

// The record in the bar whose key this is, shown and enabled (`any`: whatever its state), and its
// menu, which is; null. `modifiers` are XWS_ bits.
struct MenuKeyHit {
  XwMenuItem* record = nullptr;
  XwMenuItem* items = nullptr;  // of its title
  platform::MenuRef menu = nullptr;
};
MenuKeyHit FindMenuKey(int type, uint32_t modifiers, bool any = false);
// Whether an item of the bar has this key, whatever its state.
bool MenuBarHasKey(int type, uint32_t modifiers);

// The session is over: its menus end, and keys are forgotten.
void DropMenus();
