// The platform's start and end.
#include "platform/loop/start.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/desktop/application.h"
#include "platform/desktop/session_end.h"
#include "platform/desktop/signals.h"
#include "platform/desktop/startup.h"
#include "platform/display/screens.h"
#include "platform/events/clock.h"
#include "platform/events/raw_event.h"
#include "platform/events/sources.h"
#include "platform/events/timers.h"
#include "platform/input/record.h"
#include "platform/input/translate.h"
#include "platform/loop/dispatch.h"
#include "platform/loop/receive.h"
#include "platform/menus/menu_bar.h"
#include "platform/windows/internal.h"

namespace platform {
namespace {

void DisplayDescriptors(PollList* list) {
  const int fd = CurrentDisplay()->file_descriptor();
  if (fd >= 0) list->push_back({fd, POLLIN, 0});
}

bool Open(const Display* d, const char* session_name) {
  if (!d->open(session_name)) return false;
  SetCurrentDisplay(d, session_name);
  SetClock(d->now, d->beep);
  AddWaitSource({DisplayDescriptors});
  return true;
}

// The display named by XW_DISPLAY, else the first that opens; the headless one is for those who ask
// for it.
bool OpenDisplay(const char* session_name) {
  const char* wanted = getenv("XW_DISPLAY");
  const bool named = wanted && *wanted;
  for (const Display* const* d = kDisplays; *d; ++d) {
    const bool meant = named ? !strcmp((*d)->name, wanted) : *d != &kHeadlessDisplay;
    if (meant && Open(*d, session_name)) return true;
  }
  fprintf(stderr, "%s: cannot open the display %s\n", session_name,
          named               ? wanted
          : getenv("DISPLAY") ? getenv("DISPLAY")
                              : "(DISPLAY is unset)");
  return false;
}

}  // namespace

bool InitPlatform(const char* name) {
  if (CurrentDisplay()) return true;
  if (!name) name = "";
  TakeStartToken();
  if (!OpenDisplay(name)) return false;
  InitWindows();
  ReadScreens();
  if (!OpenRecord(name)) {
    FinishPlatform();
    return false;
  }
  InitDispatch();
  InitMenus();
  InitSignals();
  InitApplication(name);
  InitSessionEnd(name);
  const Display* d = CurrentDisplay();
  if (d->others_run && d->others_run() && HandOverStart()) HoldWindows(true);
  return true;
}

void FinishPlatform() {
  const Display* d = CurrentDisplay();
  if (!d) return;
  FinishReceive();
  FinishWindows();
  FinishMenus();
  FinishInput();
  FinishApplication();
  FinishSessionEnd();
  FinishSignals();
  FlushEventQueue(GetMainEventQueue(), nullptr);
  FinishTimers();
  d->close();
  SetCurrentDisplay(nullptr, "");
  SetClock(nullptr, nullptr);
  FinishSources();
  FinishRawEvents();
  FinishTargets();
  FinishObjects();
}

}  // namespace platform
