#include "toolkit/events/session.h"

#include <unistd.h>

#include <cstdlib>
#include <new>

#include "platform/display/screens.h"
#include "platform/events/queue.h"
#include "platform/events/timers.h"
#include "platform/fonts/fonts.h"
#include "platform/input/results.h"
#include "platform/loop/start.h"
#include "platform/menus/menus.h"
#include "platform/text/mac_roman.h"
#include "platform/windows/windows.h"
#include "toolkit/core/alive.h"
#include "toolkit/core/hooks.h"
#include "toolkit/core/memory.h"
#include "toolkit/core/state.h"
#include "toolkit/drawing/fonts.h"
#include "toolkit/events/cursors.h"
#include "toolkit/events/described_tree.h"
#include "toolkit/events/install.h"
#include "toolkit/events/loop.h"
#include "toolkit/windows/described.h"
#include "toolkit/windows/menus.h"
#include "toolkit/windows/tips.h"

using namespace platform;

namespace {

constexpr int32_t kAppearance = 0x0300;
constexpr uint8_t kNoPreferences = 4;
constexpr int kAlertSize = 17;
// Theme fonts by number.
constexpr int kApplicationFont = 5, kSmallEmphasizedFont = 2, kPushButtonFont = 105, kViewsFont = 3;

// Types that are opaque to programs need only an address of their own.
char color_space, measuring, process;

XwFont* Load(const ThemeFont& font, int size, int style) {
  char name[256];
  Utf8ToMacRoman(font.family.c_str(), name, sizeof name);
  return LoadFont(name, size, style);
}

void LoadStandardFonts() {
  ThemeFont font = GetThemeFont(kApplicationFont);
  XWF_NORMAL = Load(font, font.size, 0);
  XWF_BOLD = Load(font, font.size, 1);
  XWF_NARROW = Load(font, font.size, 32);
  font = GetThemeFont(kSmallEmphasizedFont);
  FT_SMALL = Load(font, font.size, 0);
  font = GetThemeFont(kPushButtonFont);
  FT_BUTTON = Load(font, font.size, font.style);
  FT_ALERT = Load(font, kAlertSize, 0);
  font = GetThemeFont(kViewsFont);
  XWF_VIEW = Load(font, font.size, font.style);
}

void OpenFonts() {
  ReopenFonts();
  LoadStandardFonts();
}

}  // namespace

void TakeScreenSize() {
  XW_SCREENX = ScreenWidth();
  XW_SCREENY = ScreenHeight();
}

void XwCocoaInit() {
  if (!InitPlatform(MacRomanToUtf8(SessionName).c_str())) exit(1);
  OpenFonts();
  FillCursorTable();
}

void XwSession(const char* name, const char* title, uint8_t flags) {
  std::set_new_handler(OutOfMemory);
  SessionName = name;
  XwCocoaInit();
  OSversion = kAppearance;
  SessionTitle = title;
  SetPreferencesCommand(!(flags & kNoPreferences));
  for (XwTimerSlot& slot : Timers) slot = {};
  MainQueue = GetMainEventQueue();
  MainTarget = GetEventDispatcherTarget();
  XW_ColorSpace = &color_space;
  CL_HILIGHT = 0xD77538;
  CL_HILIGHTTEXT = 0xFFFFFF;
  TextCTM[0] = TextCTM[3] = 1;
  TextMeasContext = &measuring;
  if (!W_Root) W_Root = static_cast<XwWindow*>(calloc(1, sizeof(XwWindow)));
  XW_DockedWindowsGroup =
      CreateWindowGroup(kWindowGroupAttrMoveTogether | kWindowGroupAttrLayerTogether |
                        kWindowGroupAttrSharedActivation | kWindowGroupAttrHideOnCollapse);
  SetWindowGroupParent(static_cast<WindowGroupRef>(XW_DockedWindowsGroup),
                       GetWindowGroupOfClass(kDocumentWindowClass));
  install_event_handlers = InstallEventHandlers;
  TakeScreenSize();
  XW_SCREENRES = 2.834645669291339;
  InstallEventHandlers(nullptr);
  SetRecoloringWaits(ModalKeepsOutNative);
  DescribeWindows();
  ClearMenuBar();
  DrawMenuBar();
  Pserial = &process;
  SetFrontProcess();
  const char* home = getenv("HOME");
  if (home && chdir(home) != 0) {
    // The program stays where it was started.
  }
}

void XwEndSession() {
  XW_ColorSpace = nullptr;
  for (XwTimerSlot& slot : Timers)
    if (slot.timer) {
      RemoveEventLoopTimer(slot.timer);
      slot.timer = nullptr;
    }
  FlushEventQueue(static_cast<EventQueueRef>(MainQueue), free);
  DropResults();
}

namespace {

void DestroyWindows() {
  while (W_End) {
    XwWindow* w = W_End;
    // The first window's record stays behind, empty.
    const bool first = w == W_Start;
    XwDestroy(w);
    if (!first) continue;
    free(w);
    break;
  }
}

}  // namespace

void DropSession() {
  if (!W_Root) return;
  XwEndSession();
  DestroyWindows();
  DropMenus();
  DropDescribed();
  DropTips();
  free(W_Root->children);
  free(W_Root);
  ReleaseCursorTable();
  CloseFonts();
  DropLive();
  FinishPlatform();
  toolkit::ResetState();
}
