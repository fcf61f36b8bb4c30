// One open menu: its pop-up window, its rows, what is selected and scrolled.
#include <algorithm>
#include <utility>

#include "platform/access/access.h"
#include "platform/graphics/context.h"
#include "platform/menus/open_menus.h"
#include "platform/theme/metrics.h"
#include "platform/theme/roles.h"
#include "platform/theme/theme.h"
#include "platform/windows/windows.h"

namespace platform {
namespace {

constexpr int kCornerOfMenus = 5;
constexpr int kInset = kMenuBorder + kMenuPadding;  // above the first row

int ViewHeight(const MenuLevel& l) {
  return GetWindowBounds(l.window, kWindowContentRgn).height();
}
int RowsHeight(const MenuLevel& l) {
  return l.layout.height - 2 * kInset;
}
bool Scrolls(const MenuLevel& l) {
  return ViewHeight(l) < l.layout.height;
}
// Where rows show, in the window.
Rect View(const MenuLevel& l) {
  const Rect c = GetWindowBounds(l.window, kWindowContentRgn);
  const int edge = Scrolls(l) ? kMenuBorder + kMenuScrollHeight : kInset;
  return {kMenuBorder, edge, c.width() - kMenuBorder, c.height() - edge};
}
int LargestScroll(const MenuLevel& l) {
  return std::max(0, RowsHeight(l) - View(l).height());
}

Rect RowRect(const MenuLevel& l, const MenuLayout::Row& row) {
  const Rect view = View(l);
  const int top = view.top + row.top - l.scroll;
  return {view.left, top, view.right, top + row.height};
}

const MenuLayout::Row* RowOf(const MenuLevel& l, int item) {
  for (const MenuLayout::Row& row : l.layout.rows)
    if (row.item == item) return &row;
  return nullptr;
}

// On its background, if `erased`.
void DrawRow(ContextRef c, const MenuLevel& l, int item, bool erased) {
  const MenuLayout::Row* row = RowOf(l, item);
  if (!row) return;
  ClipContextToRect(c, View(l));
  DrawMenuRow(c, *l.menu, *row, RowRect(l, *row), item == l.selected, erased);
  RestoreContextClip(c);
}

void DrawFrame(ContextRef c, const MenuLevel& l) {
  const Rect b = GetWindowBounds(l.window, kWindowContentRgn);
  const Rect all{0, 0, b.width(), b.height()};
  if (l.drawn >= 0) FillRoundRect(c, all, 0, RoleColor(Role::kFace), kOpaqueAlpha);
  // The pop-up's corners are cut by its outline, so the line there is drawn in full strength.
  for (const int x : {0, all.right - kCornerOfMenus}) {
    for (const int y : {0, all.bottom - kCornerOfMenus}) {
      ClipContextToRect(c, {x, y, x + kCornerOfMenus, y + kCornerOfMenus});
      FillRoundRect(c, all, 0, RoleColor(Role::kLine), kOpaqueAlpha);
      FillRoundRect(c, all, kCornerOfMenus, RoleColor(Role::kFace), kOpaqueAlpha);
      RestoreContextClip(c);
    }
  }
  FrameRoundRect(c, all, kCornerOfMenus, RoleColor(Role::kLine), kOpaqueAlpha);
  if (!Scrolls(l)) return;
  const uint32_t ink = RoleColor(Role::kSecondInk);
  const int edge = kMenuBorder + kMenuScrollHeight;
  DrawThemeMark(c, ThemeMark::kScrollUp, {0, kMenuBorder, all.right, edge}, ink,
                l.scroll > 0 ? kOpaqueAlpha : kThemeDisabledAlpha);
  DrawThemeMark(c, ThemeMark::kScrollDown,
                {0, all.bottom - edge, all.right, all.bottom - kMenuBorder}, ink,
                l.scroll < LargestScroll(l) ? kOpaqueAlpha : kThemeDisabledAlpha);
}

MenuLevel* LevelOf(WindowRef w) {
  for (MenuLevel& l : open_menus.levels)
    if (l.window == w) return &l;
  return nullptr;
}

// Scrolls to the selected item; false when it shows already.
bool ShowSelected(MenuLevel* l) {
  const MenuLayout::Row* row = RowOf(*l, l->selected);
  if (!row || !Scrolls(*l)) return false;
  const int least = row->top + row->height - View(*l).height();
  const int scroll = std::clamp(l->scroll, std::min(least, row->top), row->top);
  return scroll != std::exchange(l->scroll, scroll);
}

// The display may grant less than a long menu needs.
OSStatus Placed(HandlerCall*, Event* event, void*) {
  if (MenuLevel* l = LevelOf(event->window)) ShowSelected(l);
  return eventNotHandledErr;
}

OSStatus DrawContent(HandlerCall*, Event* event, void*) {
  MenuLevel* l = LevelOf(event->window);
  if (!l) return eventNotHandledErr;
  l->scroll = std::clamp(l->scroll, 0, LargestScroll(*l));
  DrawLevel(l, true);
  return noErr;
}

}  // namespace

OpenMenus open_menus;

void DrawLevel(MenuLevel* l, bool all) {
  ContextRef c = CreateContext(l->window);
  const Rect b = GetWindowBounds(l->window, kWindowContentRgn);
  ClipContextToRegion(c, Region(Rect{0, 0, b.width(), b.height()}));
  if (all || l->drawn < 0) {
    DrawFrame(c, *l);
    for (const MenuLayout::Row& row : l->layout.rows) DrawRow(c, *l, row.item, true);
  } else if (l->drawn != l->selected) {
    DrawRow(c, *l, l->drawn, false);
    DrawRow(c, *l, l->selected, false);
  }
  l->drawn = l->selected;
  ReleaseContext(c);
}

bool PushLevel(MenuRef m, WindowRef parent, const PopUpPlace& place) {
  OpenMenus& s = open_menus;
  if (!IsValidMenu(m) || s.levels.size() >= size_t{kDeepestMenu}) return false;
  for (const MenuLevel& l : s.levels)
    if (l.menu == m) return false;
  Event opening(kEventClassMenu, kEventMenuOpening);
  const Object* owner = &s.owner->object;
  SendEventToEventTarget(&opening, GetMenuEventTarget(m));
  // The callback may have changed the menu, opened another one, or destroyed the window.
  if (s.done || !IsValidMenu(m) || !IsLiveObject(owner) || !IsValidWindow(parent)) return false;
  MenuLevel l;
  l.menu = m;
  l.layout = LayOutMenu(*m);
  if (l.layout.rows.empty()) return false;
  l.least_width = place.width;
  PopUpPlace sized = place;
  sized.width = std::max(l.least_width, l.layout.width);
  sized.height = l.layout.height;
  sized.corner = kCornerOfMenus;
  l.window = CreatePopUpWindow(parent, sized);
  if (!l.window) return false;
  constexpr EventKind kPlaced[] = {{kEventClassWindow, kEventWindowBoundsChanged}};
  constexpr EventKind kDraw[] = {{kEventClassWindow, kEventWindowDrawContent}, kPlaced[0]};
  InstallEventHandler(GetWindowEventTarget(l.window), DrawContent, kDraw, 2, nullptr);
  InstallEventHandler(GetWindowEventTarget(l.window), Placed, kPlaced, 1, nullptr);
  SetWindowBackgroundColor(l.window, RoleColor(Role::kFace));
  s.levels.push_back(l);
  ShowWindow(l.window);
  DrawLevel(&s.levels.back(), true);
  ValidateWindow(l.window);
  NoticeChange(m->object.serial, Change::kState);
  return true;
}

void FitLevel(const MenuLevel& l) {
  PopUpPlace place = l.window->place;
  const int width = std::max(l.least_width, l.layout.width);
  if (place.width == width && place.height == l.layout.height) return;
  place.width = width;
  place.height = l.layout.height;
  SetPopUpPlace(l.window, place);
}

void PopLevels(size_t keep) {
  OpenMenus& s = open_menus;
  while (s.levels.size() > keep) {
    const WindowRef w = s.levels.back().window;
    if (IsValidMenu(s.levels.back().menu))
      NoticeChange(s.levels.back().menu->object.serial, Change::kState);
    s.levels.pop_back();
    DisposeWindow(w);
  }
}

bool OpenSubMenu(size_t level, bool select_first) {
  OpenMenus& s = open_menus;
  if (level >= s.levels.size()) return false;
  MenuLevel& l = s.levels[level];
  const MenuLayout::Row* row = RowOf(l, l.selected);
  if (!row) return false;
  const MenuItem& i = l.menu->items[size_t(row->item - 1)];
  if (!i.sub || !i.enabled() || l.menu->disabled) return false;
  if (s.levels.size() > level + 1 && s.levels[level + 1].menu == i.sub) {
    if (select_first && !s.levels[level + 1].selected)
      SelectItem(&s.levels[level + 1], NextItem(s.levels[level + 1], 0, 1));
    return true;
  }
  PopLevels(level + 1);
  PopUpPlace place;
  place.anchor = RowRect(l, *row);
  place.anchor.top -= kInset;  // so that the first row stands beside the one it belongs to
  place.edge = kEdgeRight | kEdgeTop;
  place.gravity = kEdgeRight | kEdgeBottom;
  const WindowRef parent = l.window;
  if (!PushLevel(i.sub, parent, place)) return false;
  MenuLevel& opened = s.levels.back();
  if (select_first) SelectItem(&opened, NextItem(opened, 0, 1));
  return true;
}

void SelectItem(MenuLevel* l, int item) {
  if (l->selected == item) return;
  const int before = l->selected;
  l->selected = item;
  for (int changed : {before, item})
    if (changed >= 1 && changed <= int(l->menu->items.size()))
      NoticeChange(l->menu->items[size_t(changed - 1)].serial, Change::kState);
  DrawLevel(l, ShowSelected(l));
}

Rect LevelBounds(const MenuLevel& l) {
  return GetWindowBounds(l.window, kWindowContentRgn);
}

Rect ItemBounds(const MenuLevel& l, int item) {
  const MenuLayout::Row* row = RowOf(l, item);
  if (!row) return {};
  const Rect b = LevelBounds(l), shown = Intersect(RowRect(l, *row), View(l));
  return shown.empty() ? Rect() : Offset(shown, b.left, b.top);
}

bool HasPoint(const MenuLevel& l, Point where) {
  return LevelBounds(l).contains(where);
}

int ItemAt(const MenuLevel& l, Point where) {
  const Rect b = LevelBounds(l);
  const Point at{where.x - b.left, where.y - b.top};
  if (!View(l).contains(at)) return 0;
  for (const MenuLayout::Row& row : l.layout.rows)
    if (RowRect(l, row).contains(at)) {
      const MenuItem& i = l.menu->items[size_t(row.item - 1)];
      return i.enabled() && !l.menu->disabled ? row.item : 0;
    }
  return 0;
}

int ScrollZone(const MenuLevel& l, Point where) {
  if (!Scrolls(l) || !HasPoint(l, where)) return 0;
  const int y = where.y - LevelBounds(l).top;
  return y < View(l).top ? -1 : y >= View(l).bottom ? 1 : 0;
}

void ScrollLevel(MenuLevel* l, int by) {
  const int scroll = std::clamp(l->scroll + by, 0, LargestScroll(*l));
  if (scroll == l->scroll) return;
  l->scroll = scroll;
  DrawLevel(l, true);
}

int NextItem(const MenuLevel& l, int from, int step) {
  const auto& rows = l.layout.rows;
  const int n = int(rows.size());
  int at = step > 0 ? -1 : n;
  for (int i = 0; i < n; ++i)
    if (rows[size_t(i)].item == from) at = i;
  for (int k = 0; k < n; ++k) {
    at = (at + step + n) % n;
    const MenuItem& i = l.menu->items[size_t(rows[size_t(at)].item - 1)];
    if (i.enabled() && !l.menu->disabled) return rows[size_t(at)].item;
  }
  return 0;
}

}  // namespace platform
