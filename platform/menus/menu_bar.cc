// The menu bar at the top of the first window: for now it carries the session's name.
#include "platform/menus/menu_bar.h"

#include <algorithm>

#include "platform/display/screens.h"
#include "platform/display/window.h"
#include "platform/events/targets.h"
#include "platform/fonts/fonts.h"
#include "platform/graphics/context.h"
#include "platform/theme/roles.h"
#include "platform/windows/internal.h"

namespace platform {
namespace {

constexpr int kBigSystemFont = -1;
constexpr int kNameLeft = 10;

struct MenuBar {
  bool preferences = true;
  SizedFont* font = nullptr;
  bool font_known = false;
  int baseline = 0;  // centres ascent and descent in the bar
};
MenuBar bar;

SizedFont* BarFont(int height) {
  if (bar.font_known) return bar.font;
  bar.font_known = true;
  ThemeFont theme = GetThemeFont(kBigSystemFont);
  const FontFace* face = FindFont((theme.family + " Bold").c_str());
  if (!face) face = FindFont(theme.family.c_str());
  if (!face) face = FallbackFont();
  if (!face) return nullptr;
  FontMetrics m = GetFontMetrics(face);
  int ascent = int(m.ascent * float(theme.size) + 0.5f);
  int descent = int(0.5f - m.descent * float(theme.size));
  bar.baseline = (height - ascent - descent) / 2 + ascent;
  bar.font = OpenFont(face, theme.size);
  return bar.font;
}

OSStatus DrawBar(HandlerCall*, Event* event, void*) {
  WindowRef w = event->window;
  Surface& s = w->surface;
  if (!s.pixels) return noErr;
  int bottom = DeviceEdge(w->menu_bar_height, s.scale);
  int line = std::max(1, int(s.scale));
  FillSurface(&s, {0, 0, s.width, bottom - line}, RoleColor(Role::kToolBar));
  FillSurface(&s, {0, bottom - line, s.width, bottom}, RoleColor(Role::kHairline));
  SizedFont* font = BarFont(w->menu_bar_height);
  if (!font) return noErr;
  ContextRef c = CreateSurfaceContext(&s);
  ClipContextToRegion(c, Region(Rect{0, 0, w->content.width(), w->menu_bar_height - 1}));
  DrawUtf8(c, font, kNameLeft, bar.baseline, PlatformSessionName(), RoleColor(Role::kInk));
  ReleaseContext(c);
  return noErr;
}

// The first window carries the bar.
OSStatus WindowCreated(HandlerCall*, Event* event, void*) {
  constexpr EventKind kDrawFrame[] = {{kEventClassWindow, kEventWindowDrawFrame}};
  if (event->window == MenuBarWindow())
    InstallEventHandler(GetWindowEventTarget(event->window), DrawBar, kDrawFrame, 1, nullptr);
  return eventNotHandledErr;
}

}  // namespace

void InitMenus() {
  constexpr EventKind kCreated[] = {{kEventClassWindow, kEventWindowCreated}};
  InstallEventHandler(GetApplicationEventTarget(), WindowCreated, kCreated, 1, nullptr);
}

void FinishMenus() {
  bar = MenuBar();
}

void SetPreferencesCommand(bool offered) {
  bar.preferences = offered;
}
bool PreferencesCommandOffered() {
  return bar.preferences;
}

}  // namespace platform
