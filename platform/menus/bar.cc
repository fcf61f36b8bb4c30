// The bar at the top of the first window: its titles.
#include <algorithm>

#include "platform/display/screens.h"
#include "platform/graphics/context.h"
#include "platform/menus/menu.h"
#include "platform/theme/metrics.h"
#include "platform/theme/roles.h"
#include "platform/theme/text.h"
#include "platform/theme/theme.h"
#include "platform/windows/internal.h"

namespace platform {
namespace {

constexpr int kBarLeft = 1, kTitleSpace = 9;  // before the first title; on both sides of each
constexpr int kMoreWidth = 26;

struct Bar {
  bool preferences = true;
  std::string quit_key;
  MenuRef application = nullptr;
  std::vector<MenuRef> menus;    // the inserted ones
  MenuRef more = nullptr;        // those that do not fit
  std::vector<BarTitle> titles;  // as laid out for `width`
  int width = -1;                // -1: to be laid out
  int hilited = 0;
  MenuRef requested = nullptr;
};
Bar bar;

MenuRef ApplicationMenu() {
  if (bar.application) return bar.application;
  MenuRef m = CreateNewMenu(0);
  m->title = PlatformSessionName();
  if (bar.preferences) {
    SetMenuItemCommandID(m, AppendMenuItemText(m, "Preferences…"), kHICommandPreferences);
    ChangeMenuItemAttributes(m, AppendMenuItemText(m, ""), kMenuItemAttrSeparator, 0);
  }
  const int quit = AppendMenuItemText(m, "Quit");
  SetMenuItemCommandID(m, quit, kHICommandQuit);
  SetMenuItemKeyText(m, quit, bar.quit_key.c_str());
  return bar.application = m;
}

void RemakeApplicationMenu() {
  MenuRef before = bar.application;
  bar.application = nullptr;
  DisposeMenu(before);
}

bool InBar(const Menu& m) {
  return std::find(bar.menus.begin(), bar.menus.end(), &m) != bar.menus.end();
}

int WidthOf(const Menu& m, bool bold) {
  return ThemeTextWidth(m.title, bold) + 2 * kTitleSpace;
}

// The titles from `first` on do not fit: they are in a menu of their own.
void CollectRest(size_t first, int left, int height) {
  bar.more = CreateNewMenu(0);
  bar.more->title = "»";
  for (size_t i = first; i < bar.menus.size(); ++i) {
    MenuRef m = bar.menus[i];
    const int item = AppendMenuItemText(bar.more, m->title.c_str());
    SetMenuItemHierarchicalMenu(bar.more, item, m);
    if (m->disabled) DisableMenuItem(bar.more, item);
  }
  bar.titles.push_back({bar.more, {left, -height, left + kMoreWidth, -1}});
}

void LayOut(int width, int height) {
  MenuRef more = bar.more;
  bar.more = nullptr;
  bar.titles.clear();
  bar.width = width;
  int left = kBarLeft;
  auto add = [&](MenuRef m, bool bold) {
    const int w = WidthOf(*m, bold);
    bar.titles.push_back({m, {left, -height, left + w, -1}});
    left += w;
  };
  add(ApplicationMenu(), true);
  for (size_t i = 0; i < bar.menus.size(); ++i) {
    int rest = 0;
    for (size_t j = i; j < bar.menus.size(); ++j) rest += WidthOf(*bar.menus[j], false);
    const bool last = i + 1 == bar.menus.size();
    const int room = width - left - (last ? 0 : kMoreWidth);
    if (left + rest > width && WidthOf(*bar.menus[i], false) > room) {
      CollectRest(i, left, height);
      break;
    }
    add(bar.menus[i], false);
  }
  DisposeMenu(more);
}

void DrawTitle(ContextRef c, const BarTitle& t) {
  const bool open = GetOpenBarMenu() == t.menu || (bar.hilited && bar.hilited == t.menu->id);
  if (open) FillRoundRect(c, t.cell, 0, RoleColor(Role::kAccent), kOpaqueAlpha);
  const uint32_t ink = RoleColor(open ? Role::kDocument : Role::kInk);
  const int alpha = t.menu->disabled ? kThemeDisabledAlpha : kOpaqueAlpha;
  if (t.menu == bar.more) return DrawThemeMark(c, ThemeMark::kMore, t.cell, ink, alpha);
  ThemeTextStyle style;
  style.bold = t.menu == bar.application;
  style.justification = TextJustification::kLeft;
  style.rgb = ink;
  style.alpha = alpha;
  style.underline_first = ShowsLetter(t.menu);
  DrawThemeText(c, {t.cell.left + kTitleSpace, t.cell.top, t.cell.right, t.cell.bottom},
                t.menu->title, style);
}

OSStatus DrawBar(HandlerCall*, Event* event, void*) {
  WindowRef w = event->window;
  if (!w->surface.pixels) return noErr;
  const int height = w->menu_bar_height, width = w->content.width();
  if (bar.width != width) LayOut(width, height);
  ContextRef c = CreateContext(w);
  ClipContextToRegion(c, Region(Rect{0, -height, width, 0}));
  FillRoundRect(c, {0, -height, width, 0}, 0, RoleColor(Role::kToolBar), kOpaqueAlpha);
  DrawThemeSeparator(c, {0, -1, width, 0}, kThemeStateActive);
  for (const BarTitle& t : bar.titles) DrawTitle(c, t);
  ReleaseContext(c);
  return noErr;
}

OSStatus WindowEnding(HandlerCall*, Event* event, void*) {
  if (event->window == MenuBarWindow()) bar.width = -1;
  return eventNotHandledErr;
}

OSStatus WindowCreated(HandlerCall*, Event* event, void*) {
  constexpr EventKind kDrawFrame[] = {{kEventClassWindow, kEventWindowDrawFrame}};
  constexpr EventKind kEnding[] = {{kEventClassWindow, kEventWindowEnding}};
  EventTargetRef target = GetWindowEventTarget(event->window);
  if (event->window == MenuBarWindow())
    InstallEventHandler(target, DrawBar, kDrawFrame, 1, nullptr);
  InstallBarKeys(event->window);
  InstallEventHandler(target, WindowEnding, kEnding, 1, nullptr);
  return eventNotHandledErr;
}

}  // namespace

const std::vector<BarTitle>& BarTitles() {
  if (WindowRef w = MenuBarWindow(); w && bar.width != w->content.width())
    LayOut(w->content.width(), w->menu_bar_height);
  return bar.titles;
}

const BarTitle* TitleAt(Point where) {
  if (!MenuBarWindow()) return nullptr;
  for (const BarTitle& t : BarTitles())
    if (t.cell.contains(where)) return &t;
  return nullptr;
}

bool IsOverflowTitle(const BarTitle& t) {
  return t.menu == bar.more;
}

void ForgetBarLayout() {
  bar.width = -1;
  DrawMenuBar();
}

void ForgetInBar(const Menu* m) {
  if (bar.requested == m) bar.requested = nullptr;
  if (bar.application == m) bar.application = nullptr;
  const bool known = std::erase(bar.menus, m) > 0 || bar.more == m;
  if (bar.more == m) bar.more = nullptr;
  std::erase_if(bar.titles, [m](const BarTitle& t) { return t.menu == m; });
  if (known) ForgetBarLayout();
}

void ClearMenuBar() {
  bar.menus.clear();
  ForgetBarLayout();
}

void InsertMenu(MenuRef m) {
  if (!IsValidMenu(m) || InBar(*m)) return;
  bar.menus.push_back(m);
  ForgetBarLayout();
}

void DrawMenuBar() {
  WindowRef w = MenuBarWindow();
  if (!w || !w->visible) return;
  Event e(kEventClassWindow, kEventWindowDrawFrame, w);
  SendEventToEventTarget(&e, GetWindowEventTarget(w));
}

void HiliteMenu(int id) {
  if (bar.hilited == id) return;
  bar.hilited = id;
  DrawMenuBar();
}

void SetPreferencesCommand(bool offered) {
  if (bar.preferences == offered) return;
  bar.preferences = offered;
  RemakeApplicationMenu();
  ForgetBarLayout();
}
bool IsApplicationMenu(const Menu* m) {
  return m == bar.application;
}
bool OnlyQuits(const Menu* m) {
  return IsApplicationMenu(m) && !bar.preferences;
}

bool PreferencesCommandOffered() {
  return bar.preferences;
}
void SetQuitKeyText(const char* utf8) {
  bar.quit_key = utf8 ? utf8 : "";
  if (bar.application) SetMenuItemKeyText(bar.application, CountMenuItems(bar.application), utf8);
}

void RequestMenuBar(MenuRef m) {
  bar.requested = m;
}
MenuRef TakeMenuBarRequest() {
  MenuRef m = bar.requested;
  bar.requested = nullptr;
  return m;
}

void InitMenus() {
  constexpr EventKind kCreated[] = {{kEventClassWindow, kEventWindowCreated}};
  InstallEventHandler(GetApplicationEventTarget(), WindowCreated, kCreated, 1, nullptr);
}

void FinishMenus() {
  CloseMenus();
  DisposeMenu(bar.application);
  DisposeMenu(bar.more);
  bar = Bar();
  ForgetBarKeys();
}

}  // namespace platform
