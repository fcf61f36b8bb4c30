// The records of this room, and what its files share.
#pragma once
#include <string>
#include <vector>

#include "platform/display/window.h"
#include "platform/events/timers.h"
#include "platform/events/trackers.h"
#include "platform/menus/menus.h"

namespace platform {

struct MenuItem {
  std::string text, key;
  uint32_t attributes = 0;
  bool checked = false;
  uint32_t command = 0;
  MenuRef sub = nullptr;
  int picture_width = 0, picture_height = 0;
  std::vector<uint8_t> picture;
  uint64_t serial = 0;
  bool hidden() const { return attributes & kMenuItemAttrHidden; }
  bool separator() const { return attributes & kMenuItemAttrSeparator; }
  // Nor is one whose sub-menu is disabled as a whole: it does not open.
  bool enabled() const;
};

struct Menu {
  Object object;
  int id = 0;
  std::string title;
  bool disabled = false;
  std::vector<MenuItem> items;
};

// A title of the bar, in the content's coordinates (above 0).
struct BarTitle {
  MenuRef menu;
  Rect cell;
};

// --- bar.cc
// The titles as they stand now: the application's, the inserted ones, and » where they do not fit.
const std::vector<BarTitle>& BarTitles();
// Whether it is the menu of the program's name, and whether that holds Quit alone.
bool IsApplicationMenu(const Menu* m);
bool OnlyQuits(const Menu* m);
// The title at a point of the first window's content; null: none.
const BarTitle* TitleAt(Point where);
// The titles have changed.
void ForgetBarLayout();
void ForgetInBar(const Menu* m);
// Notes that the keyboard has asked to open this menu of the bar.
void RequestMenuBar(MenuRef m);
// Whether it stands for those that do not fit.
bool IsOverflowTitle(const BarTitle& t);

// --- bar_keys.cc
// The keys that a window's focus sends to the bar.
void InstallBarKeys(WindowRef w);
// Whether the first letter of this title is underlined: Alt is held, and the letter opens it.
bool ShowsLetter(const Menu* m);
// The start's state.
void ForgetBarKeys();

// --- layout.cc: a menu as a list of rows
struct MenuLayout {
  int width = 0, height = 0;  // with the border
  struct Row {
    int item;  // from 1
    int top, height;
  };
  std::vector<Row> rows;
};
MenuLayout LayOutMenu(const Menu& m);
// What one row looks like; `erased`: it has the menu's background already.
void DrawMenuRow(ContextRef c, const Menu& m, const MenuLayout::Row& row, const Rect& at,
                 bool selected, bool erased);
constexpr int kMenuBorder = 1, kMenuPadding = 4, kMenuScrollHeight = 16;

// --- open_menus.cc
// Closes what is open if it shows this menu, with nothing chosen.
void MenuEnds(const Menu* m);
// What it shows has changed.
void MenuChanged(const Menu* m);
// The menu of the bar that is open; null: none.
MenuRef GetOpenBarMenu();
bool MenusAreOpen();

}  // namespace platform
