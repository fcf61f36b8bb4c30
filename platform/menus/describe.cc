// What menus say of themselves.
#include "platform/menus/open_menus.h"
#include "platform/windows/internal.h"
#include "platform/windows/windows.h"

namespace platform {
namespace {

constexpr int kDeepest = 16;  // a menu may hang in itself

const MenuLevel* LevelOf(const Menu* m) {
  for (const MenuLevel& l : open_menus.levels)
    if (l.menu == m) return &l;
  return nullptr;
}

std::vector<DescribedMenuItem> Describe(const Menu* m, int depth) {
  std::vector<DescribedMenuItem> out;
  if (!IsValidMenu(const_cast<Menu*>(m)) || depth > kDeepest) return out;
  const MenuLevel* open = LevelOf(m);
  for (size_t n = 0; n < m->items.size(); ++n) {
    const MenuItem& i = m->items[n];
    if (i.hidden()) continue;
    DescribedMenuItem d;
    d.serial = i.serial;
    d.text = i.text;
    d.key = i.key;
    d.enabled = i.enabled() && !m->disabled;
    d.checked = i.checked;
    d.separator = i.separator();
    d.selected = open && open->selected == int(n + 1);
    if (open) d.bounds = ItemBounds(*open, int(n + 1));
    if (i.sub) d.items = Describe(i.sub, depth + 1);
    out.push_back(std::move(d));
  }
  return out;
}

}  // namespace

std::vector<DescribedMenuItem> DescribeMenuBar() {
  std::vector<DescribedMenuItem> out;
  WindowRef w = MenuBarWindow();
  if (!w) return out;
  for (const BarTitle& t : BarTitles()) {
    DescribedMenuItem d;
    d.serial = t.menu->object.serial;
    d.text = t.menu->title;
    d.enabled = !t.menu->disabled;
    d.selected = OpenMenuOfTheBar() == t.menu;
    d.bounds = Offset(t.cell, w->content.left, w->content.top);
    d.items = Describe(t.menu, 0);
    out.push_back(std::move(d));
  }
  return out;
}

std::vector<DescribedMenuItem> DescribeOpenPopUp() {
  const OpenMenus& s = open_menus;
  return s.of_bar || s.levels.empty() ? std::vector<DescribedMenuItem>()
                                      : Describe(s.levels.front().menu, 0);
}

}  // namespace platform
