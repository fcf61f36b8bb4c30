// From the program's arrays to the platform's menus.
#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "platform/text/mac_roman.h"
#include "platform/text/utf8.h"
#include "toolkit/core/alive.h"
#include "toolkit/target/colors.h"
#include "toolkit/windows/menu_state.h"

using namespace platform;

XwMenuEntry MenuList[kMenuListSize];
int32_t MenuListCount, SubMenuCount;
uint8_t* MenuColor[kMenuColorSize];
int32_t MenuColorCount;

namespace {

constexpr int kSwatchWidth = 25, kSwatchHeight = 16;
constexpr int kFirstPopupId = 100;

// The arrays that are being built, from the outermost.
std::vector<const XwMenuItem*>& Building() {
  static auto* building = new std::vector<const XwMenuItem*>;
  return *building;
}

// The colour, in a black frame of one pixel or without one.
uint8_t* MakeSwatch(int32_t colour, bool framed) {
  uint8_t* image = XwAllocImage(kSwatchWidth, kSwatchHeight);
  const uint32_t rgb = ColorToRgb(colour);
  const int frame = framed ? 1 : 0;
  for (int y = frame; y < kSwatchHeight - frame; ++y)
    for (int x = frame; x < kSwatchWidth - frame; ++x) {
      uint8_t* p = image + 4 * (y * kSwatchWidth + x);
      p[1] = uint8_t(rgb >> 16);
      p[2] = uint8_t(rgb >> 8);
      p[3] = uint8_t(rgb);
    }
  return image;
}

void AddSwatch(MenuRef menu, int item, int32_t colour, bool popup) {
  if (popup && MenuColorCount >= kMenuColorSize) return;
  uint8_t* image = MakeSwatch(colour, false);
  SetMenuItemPicture(menu, item, kSwatchWidth, kSwatchHeight, image);
  XwFreeImage(image);
  if (popup) MenuColor[MenuColorCount++] = MakeSwatch(colour, true);
}

MenuRef KnownPopup(const XwMenuItem* items) {
  for (int i = 0; i < MenuListCount; ++i)
    if (MenuList[i].items == items) return MenuList[i].menu;
  return nullptr;
}

MenuRef Begin(XwMenuItem* items, int menu_id, bool popup) {
  if (!popup) {
    MenuRef menu = CreateNewMenu(menu_id);
    InstallMenuHandler(menu, items);
    SubMenuCount = 0;
    return menu;
  }
  if (MenuListCount >= kMenuListSize) return nullptr;
  MenuRef menu = CreateNewMenu(kFirstPopupId + MenuListCount);
  MenuList[MenuListCount++] = {items, menu};
  return menu;
}

void AddItem(MenuRef menu, XwMenuItem* record, bool popup) {
  const int item = AppendMenuItemText(menu, MenuItemText(*record).c_str());
  uint32_t attributes = uint32_t(record->flags) & (XWM_DISABLED | XWM_HIDDEN);
  if (record->flags & XWM_COLOUR) AddSwatch(menu, item, int32_t(record->id), popup);
  uint32_t command = uint32_t(record->id);
  if (IsMenuLeaf(*record)) {
    if (!*record->text) attributes |= kMenuItemAttrSeparator;
    CheckMenuItem(menu, item, record->flags & XWM_CHECKED);
  } else {
    MenuRef sub =
        CreateMenuTree(reinterpret_cast<XwMenuItem*>(record->id), nullptr, SubMenuCount, popup);
    SetMenuItemHierarchicalMenu(menu, item, sub);
    if (!sub) {  // it is not built: there is nothing to choose
      attributes |= kMenuItemAttrDisabled;
      command = 0;
    }
  }
  ChangeMenuItemAttributes(menu, item, attributes, 0);
  SetMenuItemCommandID(menu, item, command);
  SetMenuItemKeyText(menu, item, MenuKeyText(record).c_str());
}

void SetTitle(MenuRef menu, const char* title) {
  const unsigned char* pascal = C2PSTR(title);
  SetMenuTitle(menu, MacRomanToUtf8(P2CSTR(pascal)).c_str());
}

}  // namespace

bool IsMenuLeaf(const XwMenuItem& record) {
  return record.flags & XWM_COLOUR || record.id < 0x10000;
}

std::string MenuItemText(const XwMenuItem& record) {
  std::string text = record.flags & XWM_UTF8 ? ValidUtf8(record.text) : MacRomanToUtf8(record.text);
  if (record.flags & XWM_DOTS) text += "...";
  return text;
}

MenuRef CreateMenuTree(XwMenuItem* items, const char* title, int menu_id, bool popup) {
  if (!items) return nullptr;
  auto& building = Building();
  if (std::find(building.begin(), building.end(), items) != building.end()) return nullptr;
  MenuRef menu = popup ? KnownPopup(items) : BuiltMenu(items);
  if (menu) return menu;
  if (building.size() >= size_t{kDeepestMenu}) return nullptr;
  menu = Begin(items, menu_id, popup);
  if (!menu) return nullptr;
  building.push_back(items);
  if (title) SetTitle(menu, title);
  for (XwMenuItem* record = items; record->text; ++record) AddItem(menu, record, popup);
  building.pop_back();
  if (popup) {
    ++SubMenuCount;
  } else {
    NoteBuilt(items, menu);
    items->flags |= XWM_BUILT;
    items->menu = menu;
  }
  return menu;
}

void XwSetMenu(XwWindow* window, XwMenuItem* bar) {
  if (!CheckWindow(window) || window != W_Start) return;
  ClearMenuBar();
  SetBarArray(bar);
  for (int i = 0; bar && bar[i].text; ++i) {
    auto* items = reinterpret_cast<XwMenuItem*>(bar[i].id);
    MenuRef menu = items ? CreateMenuTree(items, bar[i].text, i + 1, false) : EmptyMenu(bar + i);
    bar[i].menu = menu;
    // An array that was a sub-menu before has no title yet.
    if (bar[i].flags & XWM_UTF8)
      SetMenuTitle(menu, ValidUtf8(bar[i].text).c_str());
    else
      SetTitle(menu, bar[i].text);
    if (bar[i].flags & XWM_HIDDEN) continue;
    bar[i].flags& XWM_DISABLED ? DisableMenuItem(menu, 0) : EnableMenuItem(menu, 0);
    InsertMenu(menu);
  }
  W_MenuBar = window;
  ShowQuitKey();
  DrawMenuBar();
}
