// The description of menus, and choosing a described item.
#include "platform/menus/open_menus.h"
#include "platform/windows/internal.h"
#include "platform/windows/windows.h"

namespace platform {
namespace {

const MenuLevel* LevelOf(const Menu* m) {
  for (const MenuLevel& l : open_menus.levels)
    if (l.menu == m) return &l;
  return nullptr;
}

// `left`: how many items there is still room for.
std::vector<DescribedMenuItem> Describe(const Menu* m, int depth, int* left) {
  std::vector<DescribedMenuItem> out;
  if (!IsValidMenu(const_cast<Menu*>(m)) || depth >= kDeepestMenu) return out;
  const MenuLevel* open = LevelOf(m);
  for (size_t n = 0; n < m->items.size(); ++n) {
    const MenuItem& i = m->items[n];
    if (i.hidden()) continue;
    if (--*left < 0) break;
    DescribedMenuItem d;
    d.serial = i.serial;
    d.text = i.text;
    d.key = i.key;
    d.enabled = i.enabled() && !m->disabled;
    d.checked = i.checked;
    d.separator = i.separator();
    d.selected = open && open->selected == int(n + 1);
    if (open) d.bounds = ItemBounds(*open, int(n + 1));
    d.opens = i.sub;
    if (i.sub) d.items = Describe(i.sub, depth + 1, left);
    out.push_back(std::move(d));
  }
  return out;
}

std::vector<DescribedMenuItem> DescribeWhole(const Menu* m) {
  int left = kMostDescribedItems;
  return Describe(m, 0, &left);
}

bool CanBeChosen(const MenuItem& i) {
  return i.enabled() && !i.hidden() && !i.sub;
}

// The number of the item in this menu; 0 when it is not there, or cannot be chosen.
int ItemWith(const Menu& m, uint64_t serial) {
  for (size_t n = 0; n < m.items.size() && !m.disabled; ++n)
    if (m.items[n].serial == serial) return CanBeChosen(m.items[n]) ? int(n + 1) : 0;
  return 0;
}

// The menu with the item, if a user could reach it through shown and enabled items; else null.
Menu* MenuWith(Menu* m, uint64_t serial, int depth, int* left) {
  if (!IsValidMenu(m) || m->disabled || depth >= kDeepestMenu) return nullptr;
  if (ItemWith(*m, serial)) return m;
  for (const MenuItem& i : m->items) {
    if (--*left < 0) return nullptr;
    if (!i.sub || !i.enabled() || i.hidden()) continue;
    if (Menu* found = MenuWith(i.sub, serial, depth + 1, left)) return found;
  }
  return nullptr;
}

}  // namespace

bool ChooseDescribedItem(uint64_t serial) {
  const auto& levels = open_menus.levels;
  for (size_t i = 0; i < levels.size(); ++i)
    if (const int item = ItemWith(*levels[i].menu, serial)) {
      ChooseItem(i, item, false);
      return true;
    }
  if (!levels.empty()) return false;
  for (const BarTitle& t : BarTitles()) {
    int left = kMostDescribedItems;
    if (Menu* m = MenuWith(t.menu, serial, 0, &left)) {
      SendMenuCommand(m, m->items[size_t(ItemWith(*m, serial) - 1)].command);
      return true;
    }
  }
  return false;
}

std::vector<DescribedMenuItem> DescribeMenuBar() {
  std::vector<DescribedMenuItem> out;
  WindowRef w = MenuBarWindow();
  if (!w) return out;
  for (const BarTitle& t : BarTitles()) {
    DescribedMenuItem d;
    d.serial = t.menu->object.serial;
    d.text = t.menu->title;
    d.enabled = !t.menu->disabled;
    d.selected = GetOpenBarMenu() == t.menu;
    d.bounds = Offset(t.cell, w->content.left, w->content.top);
    d.items = DescribeWhole(t.menu);
    out.push_back(std::move(d));
  }
  return out;
}

std::vector<DescribedMenuItem> DescribeOpenPopUp() {
  const OpenMenus& s = open_menus;
  return s.of_bar || s.levels.empty() ? std::vector<DescribedMenuItem>()
                                      : DescribeWhole(s.levels.front().menu);
}

}  // namespace platform
