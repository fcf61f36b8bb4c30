// The platform's start and end, and the screens.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/desktop/application.h"
#include "platform/desktop/requests.h"
#include "platform/desktop/session_end.h"
#include "platform/desktop/startup.h"
#include "platform/display/display.h"
#include "platform/display/screens.h"
#include "platform/display/window.h"
#include "platform/input/record.h"

namespace platform {
namespace {

constexpr int kMenuStripHeight = 24;

const Display* display = nullptr;
Screen main_screen;
std::string session_name;
bool preferences_offered = true;
bool shared = false;  // another program of the session's name had the display open at the start

bool Open(const Display* d) {
  const OpenResult result = d->open(session_name.c_str());
  if (result == OpenResult::kNotHere) return false;
  display = d;
  shared = result == OpenResult::kShared;
  ReadScreens();
  return true;
}

bool OpenNamed(const char* wanted) {
  for (const Display* const* d = kDisplays; *d; ++d)
    if (!strcmp((*d)->name, wanted)) return Open(*d);
  return false;
}

}  // namespace

const Display* CurrentDisplay() {
  return display;
}
const char* PlatformSessionName() {
  return session_name.c_str();
}
const Screen& MainScreen() {
  return main_screen;
}

bool InitPlatform(const char* name) {
  if (display) return true;
  session_name = name ? name : "";
  const char* wanted = getenv("XW_DISPLAY");
  bool opened = false;
  TakeStartToken();
  if (wanted && *wanted) {
    opened = OpenNamed(wanted);
  } else {
    // The headless display is for those who ask for it.
    for (const Display* const* d = kDisplays; *d && !opened; ++d)
      if (*d != &kHeadlessDisplay) opened = Open(*d);
  }
  if (!opened) {
    fprintf(stderr, "%s: cannot open the display %s\n", session_name.c_str(),
            wanted && *wanted   ? wanted
            : getenv("DISPLAY") ? getenv("DISPLAY")
                                : "(DISPLAY is unset)");
    return false;
  }
  if (!OpenJournal(session_name.c_str())) {
    display->close();
    display = nullptr;
    return false;
  }
  InstallSignalSource();
  InstallApplicationSource(name);
  InstallSessionEnd(session_name.c_str());
  if (shared) HandOverStart();
  return true;
}

void FinishPlatform() {
  if (!display) return;
  while (!WindowList().empty()) DisposeWindow(WindowList().back());
  CollectWindows();
  RemoveApplicationSource();
  HoldWindows(false);
  CloseJournal();
  display->close();
  display = nullptr;
}

void SetPreferencesCommand(bool offered) {
  preferences_offered = offered;
}
bool PreferencesCommandOffered() {
  return preferences_offered;
}

void DisplayLost() {
  fprintf(stderr, "%s: the connection to the display is gone\n", session_name.c_str());
  // The connection's own clean-up would write to it.
  _exit(1);
}

void ReadScreens() {
  Screen s;
  if (display->screens(&s, 1) <= 0) return;
  if (main_screen.bounds == s.bounds && main_screen.scale == s.scale) return;
  main_screen = s;
  // Figures of the screen first: the windows are told of theirs after that.
  Event e(kEventClassSystem, kEventSystemDisplayReconfigured);
  e.time = GetCurrentEventTime();
  SendEventToEventTarget(&e, GetApplicationEventTarget());
  for (WindowRef w : WindowList())
    if (w->has_limits) display->update(w, kUpdateHints);  // the screen may be its limit
}

int ScreenWidth() {
  return LogicalSize(main_screen.bounds.width(), main_screen.scale);
}
int ScreenHeight() {
  return LogicalSize(main_screen.bounds.height(), main_screen.scale);
}
int GetMBarHeight() {
  return kMenuStripHeight;
}

}  // namespace platform
