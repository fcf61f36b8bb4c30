// What the pointer and the desktop do to open menus.
#include "platform/menus/open_menus.h"

#include <algorithm>
#include <cstdlib>

#include "platform/events/clock.h"
#include "platform/windows/internal.h"

namespace platform {
namespace {

constexpr double kClickTime = 0.25;  // a release sooner leaves a menu open
constexpr double kTravelTime = 0.5;  // a press so soon after a title has opened under it opens it
constexpr double kAimTime = 0.3;     // the pointer may take to a sub-menu over other rows
constexpr double kScrollPeriod = 0.03;
constexpr int kScrollStep = 8, kSlop = 3;

int Far(Point a, Point b) {
  return std::max(std::abs(a.x - b.x), std::abs(a.y - b.y));
}

// The level under a point, the innermost first; -1: none.
int LevelAt(Point where) {
  for (size_t i = open_menus.levels.size(); i-- > 0;)
    if (HasPoint(open_menus.levels[i], where)) return int(i);
  return -1;
}

const BarTitle* BarTitleAt(const Event& e) {
  WindowRef w = MenuBarWindow();
  if (!w || !open_menus.of_bar) return nullptr;
  return TitleAt({e.mouse.where.x - w->content.left, e.mouse.where.y - w->content.top});
}

// --- The way to a sub-menu: while the pointer moves towards it, other rows that it crosses are not
// --- selected.

void StopAiming() {
  RemoveEventLoopTimer(open_menus.aim_timer);
  open_menus.aim_timer = nullptr;
}

int64_t Turn(Point a, Point b, Point c) {
  return int64_t{b.x - a.x} * (c.y - a.y) - int64_t{b.y - a.y} * (c.x - a.x);
}

// Whether `p` lies in the triangle of the point where the row was left and the near edge of the
// sub-menu.
bool Aims(const MenuLevel& sub, Point from, Point p) {
  const Rect b = LevelBounds(sub);
  const int x = from.x < b.left ? b.left : b.right;
  const Point top{x, b.top - kSlop}, bottom{x, b.bottom + kSlop};
  const int64_t t1 = Turn(from, top, p), t2 = Turn(top, bottom, p), t3 = Turn(bottom, from, p);
  return (t1 >= 0 && t2 >= 0 && t3 >= 0) || (t1 <= 0 && t2 <= 0 && t3 <= 0);
}

void Hover(size_t level, Point where, bool rests = false);

void AimIsOver(EventLoopTimerRef, void*) {
  OpenMenus& s = open_menus;
  StopAiming();
  const int level = LevelAt(s.last);
  if (level >= 0) Hover(size_t(level), s.last, true);
}

// The pointer is over a row of this level, on its way or at rest.
void Hover(size_t level, Point where, bool rests) {
  OpenMenus& s = open_menus;
  MenuLevel& l = s.levels[level];
  const int item = ItemAt(l, where);
  if (item == l.selected && item) {
    s.aim = where;
    StopAiming();
    // The row's sub-menu stays open; deeper ones close.
    if (s.levels.size() > level + 2) PopLevels(level + 2);
    if (s.levels.size() == level + 2) SelectItem(&s.levels[level + 1], 0);
    OpenSubMenu(level, false);
    return;
  }
  if (!rests && s.levels.size() > level + 1 && Aims(s.levels[level + 1], s.aim, where)) {
    if (!s.aim_timer) s.aim_timer = InstallEventLoopTimer(kAimTime, 0, AimIsOver, nullptr);
    return;
  }
  StopAiming();
  PopLevels(level + 1);
  SelectItem(&l, item);
  s.aim = where;
  OpenSubMenu(level, false);
}

// --- Scrolling while the pointer rests at an end

void StopScrolling() {
  RemoveEventLoopTimer(open_menus.scroll_timer);
  open_menus.scroll_timer = nullptr;
}

void ScrollOn(EventLoopTimerRef, void*) {
  const int level = LevelAt(open_menus.last);
  if (level >= 0)
    ScrollLevel(&open_menus.levels[size_t(level)], open_menus.scroll_by * kScrollStep);
}

void Motion(const Event& e) {
  OpenMenus& s = open_menus;
  const Point where = e.mouse.where;
  // A menu that opens under a resting pointer causes a report without a motion.
  if (where == s.last) return;
  if (Far(where, s.last) > kSlop) s.moved = true;
  s.last = where;
  const int level = LevelAt(where);
  const int zone = level >= 0 ? ScrollZone(s.levels[size_t(level)], where) : 0;
  if (zone) {
    s.scroll_by = zone;
    if (!s.scroll_timer)
      s.scroll_timer = InstallEventLoopTimer(kScrollPeriod, kScrollPeriod, ScrollOn, nullptr);
    return;
  }
  StopScrolling();
  if (level >= 0) return Hover(size_t(level), where);
  if (const BarTitle* t = BarTitleAt(e)) {
    if (t->menu == s.levels.front().menu || t->menu->disabled) return;
    SwitchTitle(t->menu, false);
    s.travelled = GetCurrentEventTime();
    return;
  }
  if (s.levels.size() > 1 && Aims(s.levels.back(), s.aim, where)) return;
  MenuLevel& l = s.levels.back();
  SelectItem(&l, 0);
}

// Takes the release of the press that has dismissed a menu.
Tracking SwallowRelease(void*, Event* e);
Tracker swallow = {SwallowRelease, nullptr, nullptr, 0};

Tracking SwallowRelease(void*, Event* e) {
  if (e->cls != kEventClassMouse) return Tracking::kPass;
  if (e->kind == kEventMouseUp || e->kind == kEventMouseDown) StopTracking(&swallow);
  return e->kind == kEventMouseUp ? Tracking::kTake : Tracking::kPass;
}

void Dismiss() {
  open_menus.swallows = true;
  EndMenuTracking(false);
}

void Press(const Event& e) {
  OpenMenus& s = open_menus;
  const int level = LevelAt(e.mouse.where);
  s.pressed = true;
  s.last = e.mouse.where;
  if (level >= 0) return Hover(size_t(level), e.mouse.where);
  const BarTitle* t = BarTitleAt(e);
  if (!t || t->menu->disabled) return Dismiss();
  // The pointer's way to another title opens it already; a press on it soon after means to open it,
  // not to close it.
  const bool came = s.travelled >= 0 && GetCurrentEventTime() - s.travelled < kTravelTime;
  s.travelled = -1;
  if (t->menu != s.levels.front().menu) return SwitchTitle(t->menu, false);
  if (!came) Dismiss();
}

void Release(const Event& e) {
  OpenMenus& s = open_menus;
  const bool click = !s.pressed && GetCurrentEventTime() - s.opened < kClickTime;
  const int level = LevelAt(e.mouse.where);
  if (level >= 0) {
    const int item = ItemAt(s.levels[size_t(level)], e.mouse.where);
    // The release of the press that opened the menu chooses only after the pointer has moved.
    if (item && !click && (s.moved || s.pressed)) ChooseItem(size_t(level), item, false);
    return;
  }
  if (click || BarTitleAt(e)) return;
  if (!s.pressed && !s.moved) return;
  EndMenuTracking(false);
}

Tracking TakePointer(const Event& e) {
  switch (e.kind) {
    case kEventMouseMoved:
    case kEventMouseDragged:
      Motion(e);
      break;
    case kEventMouseDown:
      Press(e);
      break;
    case kEventMouseUp:
      if (!e.window) return Tracking::kPass;
      Release(e);
      break;
    case kEventMouseWheelMoved:
      if (const int level = LevelAt(e.mouse.where); level >= 0)
        ScrollLevel(&open_menus.levels[size_t(level)], int(e.mouse.dy));
      break;
    default:
      break;
  }
  return Tracking::kTake;
}

Tracking TakeKey(Event* e) {
  if (e->kind == kEventRawKeyDown || e->kind == kEventRawKeyRepeat) {
    MenuKey(*e);
    return Tracking::kTake;
  }
  // The release takes effect, but no window gets it.
  e->window = nullptr;
  return Tracking::kPass;
}

Tracking Ask(void*, Event* e) {
  OpenMenus& s = open_menus;
  if (s.done || s.levels.empty()) return Tracking::kLater;
  switch (e->cls) {
    case kEventClassMouse:
      return TakePointer(*e);
    case kEventClassKeyboard:
      return TakeKey(e);
    case kEventClassWindow:
      if (e->kind == kEventWindowClose) break;
      return Tracking::kPass;
    case kEventClassApplication:
      if (e->kind != kEventAppDeactivated) return Tracking::kPass;
      EndMenuTracking(false);
      return Tracking::kPass;
    case kEventClassSystem:
      if (e->kind == kEventSystemPointerLost) EndMenuTracking(false);
      return Tracking::kPass;
    default:
      break;
  }
  // Requests to close, quit or open are handled after the menu has closed.
  EndMenuTracking(false);
  return Tracking::kLater;
}

void Begin(WindowRef owner, bool of_bar) {
  OpenMenus& s = open_menus;
  s = OpenMenus();
  s.owner = owner;
  s.of_bar = of_bar;
  s.opened = GetCurrentEventTime();
  s.tracker = {Ask, nullptr, &owner->object, 0};
}

bool Opened(bool shown) {
  OpenMenus& s = open_menus;
  if (!shown) {
    EndMenuTracking(false);
    return false;
  }
  s.aim = s.last;
  if (s.of_bar) DrawMenuBar();
  PresentWindows();  // shows the menu before the answer to the grab
  CapturePointer(s.owner, nullptr, Capture::kMenu);
  return true;
}

// A pop-up is opened against the window whose content shows the point, else the active one.
WindowRef OwnerAt(Point where) {
  WindowRef active = nullptr;
  for (WindowRef w : WindowList()) {
    if (!w->visible || w->parent) continue;
    if (w->content.contains(where)) return w;
    if (w->active && !active) active = w;
  }
  return active;
}

PopUpPlace BelowTitle(const BarTitle& t) {
  PopUpPlace place;
  place.anchor = t.cell;
  return place;
}

}  // namespace

void EndMenuTracking(bool chosen) {
  OpenMenus& s = open_menus;
  if (s.done) return;
  s.done = true;
  if (!chosen) s.choice = MenuChoice();
  StopAiming();
  StopScrolling();
}

void SwitchTitle(MenuRef m, bool by_key) {
  OpenMenus& s = open_menus;
  PopLevels(0);
  for (const BarTitle& t : BarTitles()) {
    if (t.menu != m) continue;
    const BarTitle title = t;
    if (!PushLevel(m, s.owner, BelowTitle(title))) return EndMenuTracking(false);
    if (by_key) SelectItem(&s.levels.back(), NextItem(s.levels.back(), 0, 1));
    DrawMenuBar();
    return;
  }
  EndMenuTracking(false);
}

void SendMenuCommand(MenuRef chosen_in, uint32_t command) {
  Event e(kEventClassCommand, kEventCommandProcess);
  e.request = {command, nullptr, 0};
  if (SendEventToEventTarget(&e, GetMenuEventTarget(chosen_in)) == eventNotHandledErr)
    SendEventToEventTarget(&e, GetApplicationEventTarget());
}

void ChooseItem(size_t level, int item, bool by_key) {
  OpenMenus& s = open_menus;
  MenuLevel& l = s.levels[level];
  const MenuItem& i = l.menu->items[size_t(item - 1)];
  SelectItem(&l, item);
  if (i.sub) {
    OpenSubMenu(level, by_key);
    return;
  }
  s.choice = {l.menu->id, item};
  s.command = i.command;
  s.chosen_in = l.menu;
  EndMenuTracking(true);
}

static bool OpenPopUp(MenuRef m, WindowRef owner, const Rect& anchor, int item) {
  Begin(owner, false);
  open_menus.last = {owner->content.left + anchor.left, owner->content.top + anchor.top};
  PopUpPlace place;
  place.anchor = anchor;
  place.width = anchor.width();
  const bool shown = PushLevel(m, owner, place);
  if (shown && item) SelectItem(&open_menus.levels.back(), item);
  return Opened(shown);
}

bool OpenPopUpMenu(MenuRef m, Point where, int item) {
  CloseMenus();
  constexpr int kFar = 1 << 16;  // beyond every screen
  where = {std::clamp(where.x, -kFar, kFar), std::clamp(where.y, -kFar, kFar)};
  WindowRef owner = OwnerAt(where);
  if (!owner) return false;
  const int x = where.x - owner->content.left, y = where.y - owner->content.top;
  return OpenPopUp(m, owner, {x, y, x, y}, item);
}

bool OpenPopUpMenuBelow(MenuRef m, WindowRef owner, const Rect& anchor, int item) {
  CloseMenus();
  return IsWindowVisible(owner) && OpenPopUp(m, owner, anchor, item);
}

static bool OpenBar(const BarTitle& t, bool by_key) {
  WindowRef owner = MenuBarWindow();
  const BarTitle title = t;
  Begin(owner, true);
  const bool shown = !title.menu->disabled && PushLevel(title.menu, owner, BelowTitle(title));
  if (shown && by_key)
    SelectItem(&open_menus.levels.back(), NextItem(open_menus.levels.back(), 0, 1));
  return Opened(shown);
}

bool OpenMenuBarAt(Point where) {
  CloseMenus();
  WindowRef w = MenuBarWindow();
  if (!w) return false;
  const BarTitle* t = TitleAt({where.x - w->content.left, where.y - w->content.top});
  if (!t || !OpenBar(*t, false)) return false;
  open_menus.last = open_menus.aim = where;
  return true;
}

bool OpenBarMenu(MenuRef m) {
  CloseMenus();
  if (!MenuBarWindow() || !IsValidMenu(m)) return false;
  for (const BarTitle& t : BarTitles())
    if (t.menu == m) return OpenBar(t, true);
  return false;
}

void SetMenuPointer(Point where) {
  open_menus.last = open_menus.aim = where;
}

Tracker* MenuTracker() {
  return &open_menus.tracker;
}
bool MenuIsDone() {
  return open_menus.done;
}

MenuChoice CloseMenus() {
  OpenMenus& s = open_menus;
  if (!s.owner) return {};
  EndMenuTracking(false);
  StopTracking(&s.tracker);
  const MenuChoice choice = s.choice;
  const bool of_bar = s.of_bar, swallows = s.swallows;
  const uint32_t command = s.command;
  MenuRef chosen_in = s.chosen_in;
  CapturePointer(nullptr, nullptr);
  PopLevels(0);
  s = OpenMenus();
  s.done = true;
  if (of_bar) DrawMenuBar();
  if (swallows) StartTracking(&swallow);
  if (choice.item && of_bar && IsValidMenu(chosen_in)) SendMenuCommand(chosen_in, command);
  return choice;
}

void MenuEnds(const Menu* m) {
  for (const MenuLevel& l : open_menus.levels)
    if (l.menu == m) {
      PopLevels(0);
      return EndMenuTracking(false);
    }
}

void MenuChanged(const Menu* m) {
  for (MenuLevel& l : open_menus.levels) {
    if (l.menu != m) {
      // The item that opens it may be greyed now, or no longer.
      const auto opens = [m](const MenuItem& i) { return i.sub == m; };
      if (std::any_of(l.menu->items.begin(), l.menu->items.end(), opens)) DrawLevel(&l, true);
      continue;
    }
    l.layout = LayOutMenu(*m);
    if (l.selected > int(m->items.size())) l.selected = 0;
    FitLevel(l);
    DrawLevel(&l, true);
  }
}

MenuRef GetOpenBarMenu() {
  const OpenMenus& s = open_menus;
  return s.of_bar && !s.done && !s.levels.empty() ? s.levels.front().menu : nullptr;
}
bool MenusAreOpen() {
  return !open_menus.levels.empty();
}

}  // namespace platform
