// Opening and closing the session.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

#include "platform/fonts/fonts.h"
#include "platform/text/mac_roman.h"
#include "toolkit/events/events.h"
#include "toolkit/windows/windows.h"

using namespace platform;

const char* SessionName;
const char* SessionTitle;
int32_t OSversion;
int32_t XW_SCREENX, XW_SCREENY;
double XW_SCREENRES;
int32_t CL_HILIGHT, CL_HILIGHTTEXT;
void* MainQueue;
void* MainTarget;
void* XW_ColorSpace;
void* TextMeasContext;
void* Pserial;
void* XW_DockedWindowsGroup;
float TextCTM[6];
XwFont *XWF_NORMAL, *XWF_BOLD, *XWF_NARROW, *XWF_VIEW;
XwFont *FT_SMALL, *FT_BUTTON, *FT_ALERT;

namespace {

constexpr int32_t kAppearance = 0x0300;
constexpr uint8_t kNoPreferences = 4;
constexpr int kAlertSize = 17;
// Theme fonts by number.
constexpr int kApplicationFont = 5, kSmallEmphasizedFont = 2, kPushButtonFont = 105, kViewsFont = 3;

// What is opaque to programs needs an address of its own and nothing more.
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

}  // namespace

void TakeScreenSize() {
  XW_SCREENX = ScreenWidth();
  XW_SCREENY = ScreenHeight();
}

void OutOfMemory() {
  constexpr char kLine[] = "out of memory\n";
  [[maybe_unused]] ssize_t n = write(2, kLine, sizeof kLine - 1);
  _exit(1);
}

void XwSession(const char* name, const char* title, uint8_t flags) {
  std::set_new_handler(OutOfMemory);
  if (!InitPlatform(name)) exit(1);
  FillCursorTable();
  OSversion = kAppearance;
  SessionName = name;
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
  TakeScreenSize();
  XW_SCREENRES = 2.834645669291339;
  LoadStandardFonts();
  InstallEventHandlers(nullptr);
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
}

char* P2CSTR(const unsigned char* pascal) {
  static char str[255];
  size_t n = pascal ? pascal[0] : 0;
  if (n > sizeof str - 1) n = sizeof str - 1;
  if (n) memcpy(str, pascal + 1, n);
  str[n] = 0;
  return str;
}

unsigned char* C2PSTR(const char* text) {
  static unsigned char str[256];
  size_t n = text ? strnlen(text, 255) : 0;
  str[0] = static_cast<unsigned char>(n);
  if (n) memcpy(str + 1, text, n);
  return str;
}
