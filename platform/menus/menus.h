// Menus: the bar of the first window, what hangs below its titles, and pop-ups. An open menu is a
// state machine that is asked about events; the nested waits stand in platform/loop/tracking.h.
//
// Texts are UTF-8, copied. Items count from 1; item 0 is the whole menu. Null and stale menus, and
// items that are not there, are ignored; a question about one gives 0, false or null.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "platform/events/targets.h"
#include "platform/events/trackers.h"

namespace platform {

enum MenuItemAttributes : uint32_t {
  kMenuItemAttrDisabled = 1,
  kMenuItemAttrHidden = 32,
  kMenuItemAttrSeparator = 64,
};

// The deepest nesting of menus; a deeper menu is ignored. One menu may be a sub-menu of many items
// and is described with each: of one title or pop-up at most this many items.
constexpr int kDeepestMenu = 64, kMostDescribedItems = 4096;

// --- Menus and their items

// Empty. `id` says which menu an item was chosen from.
MenuRef CreateNewMenu(int id);
// One that is open closes with nothing chosen. Its sub-menus stay.
void DisposeMenu(MenuRef m);
bool IsValidMenu(MenuRef m);
// Hears kEventMenuOpening before the menu shows, and kEventCommandProcess of an item of the bar
// that was chosen, whose command is in the request's id; what it does not take, the application
// hears.
EventTargetRef GetMenuEventTarget(MenuRef m);
int GetMenuID(MenuRef m);
// In the bar.
void SetMenuTitle(MenuRef m, const char* utf8);
// Appends an enabled item; its number.
int AppendMenuItemText(MenuRef m, const char* utf8);
int CountMenuItems(MenuRef m);
void SetMenuItemText(MenuRef m, int item, const char* utf8);
// Valid until the next change.
const char* GetMenuItemText(MenuRef m, int item);
void ChangeMenuItemAttributes(MenuRef m, int item, uint32_t set, uint32_t clear);
void EnableMenuItem(MenuRef m, int item);
void DisableMenuItem(MenuRef m, int item);
bool IsMenuItemEnabled(MenuRef m, int item);
void CheckMenuItem(MenuRef m, int item, bool checked);
void SetMenuItemCommandID(MenuRef m, int item, uint32_t command);
// Null takes it away. One menu may hang in several places.
void SetMenuItemHierarchicalMenu(MenuRef m, int item, MenuRef sub);
// A picture in a black frame before the text: `h` rows of `w` pixels, four bytes each: ignored,
// red, green, blue. Copied; null takes it away, and so does a size outside 1..64.
void SetMenuItemPicture(MenuRef m, int item, int w, int h, const uint8_t* pixels);
// The key that stands at its right end. What a key does is its maker's.
void SetMenuItemKeyText(MenuRef m, int item, const char* utf8);

// --- The bar. Its first menu is the application's, with Preferences and Quit.

void ClearMenuBar();
// At the end. One that stands there already stays at its place.
void InsertMenu(MenuRef m);
void DrawMenuBar();
// The title of this menu looks open; 0: none does.
void HiliteMenu(int id);
// Whether the application's menu offers Preferences; requests of the desktop arrive all the same.
void SetPreferencesCommand(bool offered);
bool PreferencesCommandOffered();
// What stands at the right end of Quit.
void SetQuitKeyText(const char* utf8);
// The menu that the keyboard has asked to open, null for none: F10 and Alt alone ask for the first
// one, but for the application's where that has Quit alone, Alt with a letter for that one.
// Each request is returned once.
MenuRef TakeMenuBarRequest();
// Whether Alt and this letter (without case) open a title.
bool MenuBarTakesLetter(char32_t letter);
// The titles' letters are underlined no longer; Alt, pressed again, shows them again.
void HideBarLetters();
// True while Alt is held and no other input has come; the dispatcher watches for that.
extern bool lone_alt_waits;
void WatchLoneAlt(const Event& e);

// --- An open menu, one at a time; opening one closes the other with nothing chosen.

// At a global point, with the item (0: none) selected. False when there is nothing to show.
bool OpenPopUpMenu(MenuRef m, Point where, int item);
// Below a rectangle of a window's content, and at least as wide.
bool OpenPopUpMenuBelow(MenuRef m, WindowRef owner, const Rect& anchor, int item);
// Of the bar: the title under a global point.
bool OpenMenuBarAt(Point where);
// By the keyboard, its first item selected.
bool OpenBarMenu(MenuRef m);
// Tells the place of the pointer at rest: it selects nothing until it moves.
void SetMenuPointer(Point where);
struct MenuChoice {
  int menu = 0, item = 0;  // 0, 0: nothing
};
// The tracker to wait with, and what ends the wait.
Tracker* MenuTracker();
bool MenuIsDone();
// Closes what is open. What was chosen.
MenuChoice CloseMenus();

// --- What menus say of themselves.

struct DescribedMenuItem {
  uint64_t serial = 0;
  std::string text, key;
  Rect bounds;  // global; empty while it is not open
  bool enabled = false, checked = false, separator = false, selected = false;
  bool opens = false;                    // a sub-menu
  std::vector<DescribedMenuItem> items;  // of its sub-menu
};
// The titles of the bar, and the menus that are open as a pop-up.
std::vector<DescribedMenuItem> DescribeMenuBar();
std::vector<DescribedMenuItem> DescribeOpenPopUp();
// Chooses an item of the menus that are open, or when none is, one below the bar, as a click would.
// False when there is no such item that can be chosen.
bool ChooseDescribedItem(uint64_t serial);

void InitMenus();
void FinishMenus();

}  // namespace platform
