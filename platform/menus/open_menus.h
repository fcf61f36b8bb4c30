// What is open: the menus from the first to the innermost, and how it came to be open.
#pragma once
#include "platform/menus/menu.h"

namespace platform {

// One open menu.
struct MenuLevel {
  MenuRef menu = nullptr;
  WindowRef window = nullptr;  // its pop-up
  MenuLayout layout;
  int least_width = 0;   // that was asked for
  int selected = 0;      // item, 0 none
  int scroll = 0;        // pixels of the rows that are above the view
  int drawn = -1;        // the item that is drawn as selected; -1: nothing is drawn yet
  std::u32string typed;  // the beginning of an item, without case, and when its last key came
  double typed_at = 0;
};

struct OpenMenus {
  std::vector<MenuLevel> levels;
  WindowRef owner = nullptr;  // the window that it was opened against, and that has the pointer
  bool of_bar = false;
  bool done = false;
  MenuChoice choice;
  uint32_t command = 0;
  MenuRef chosen_in = nullptr;
  double opened = 0;
  double travelled = -1;  // when the pointer, not pressed, came to the title that is open
  bool moved = false;     // the pointer has been in a menu since it was opened
  bool pressed = false;   // a button went down since it was opened
  bool swallows = false;  // a press has dismissed it
  Point last;             // of the pointer, global
  Point aim;              // where it left the row whose sub-menu is open
  EventLoopTimerRef aim_timer = nullptr, scroll_timer = nullptr;
  int scroll_by = 0;
  Tracker tracker;
};

extern OpenMenus open_menus;

// --- levels.cc
// Shows a menu below those that are open; false when there is nothing to show.
bool PushLevel(MenuRef m, WindowRef parent, const PopUpPlace& place);
void PopLevels(size_t keep);
// Asks for the window size that its rows need now.
void FitLevel(const MenuLevel& l);
// The sub-menu of the selected item of the innermost level, if it has one.
bool OpenSubMenu(size_t level, bool select_first);
void SelectItem(MenuLevel* l, int item);
// The item at a global point, 0 for none.
int ItemAt(const MenuLevel& l, Point where);
bool HasPoint(const MenuLevel& l, Point where);
// -1, 1: the point is at the arrow with which the menu scrolls up or down; 0: not.
int ScrollZone(const MenuLevel& l, Point where);
void ScrollLevel(MenuLevel* l, int by);
// The item after `from` (0: the first) that can be chosen; 0 when there is none.
int NextItem(const MenuLevel& l, int from, int step);
void DrawLevel(MenuLevel* l, bool all);
Rect LevelBounds(const MenuLevel& l);
// Of an item, global; empty when it does not show.
Rect ItemBounds(const MenuLevel& l, int item);

// --- open_menus.cc
void EndMenuTracking(bool chosen);
// The item is chosen, or its sub-menu opened.
void ChooseItem(size_t level, int item, bool by_key);
void SwitchTitle(MenuRef m, bool by_key);
// Of an item of the bar that was chosen.
void SendMenuCommand(MenuRef chosen_in, uint32_t command);
// --- keys.cc
void MenuKey(const Event& e);

}  // namespace platform
