// The platform's start and end.
#include "platform/loop/start.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/access/access.h"
#include "platform/clipboard/clipboard.h"
#include "platform/controls/control.h"
#include "platform/desktop/application.h"
#include "platform/desktop/session_end.h"
#include "platform/desktop/signals.h"
#include "platform/desktop/startup.h"
#include "platform/display/screens.h"
#include "platform/events/clock.h"
#include "platform/events/raw_event.h"
#include "platform/events/sources.h"
#include "platform/events/timers.h"
#include "platform/events/trackers.h"
#include "platform/fonts/fonts.h"
#include "platform/graphics/font_library.h"
#include "platform/input/record.h"
#include "platform/input/results.h"
#include "platform/input/translate.h"
#include "platform/inspect/inspect.h"
#include "platform/loop/dispatch.h"
#include "platform/loop/receive.h"
#include "platform/loop/tracking.h"
#include "platform/menus/menus.h"
#include "platform/theme/theme.h"
#include "platform/windows/internal.h"

namespace platform {
namespace {

OpenResult Open(const Display* d, const char* session_name) {
  const OpenResult result = d->open(session_name);
  if (result == OpenResult::kNotHere) return result;
  SetCurrentDisplay(d, session_name);
  SetClock(d->now);
  if (d->descriptors) AddWaitSource({d->descriptors});
  return result;
}

// The display named by XW_DISPLAY, else the first that opens; the headless one is for those who ask
// for it.
OpenResult OpenDisplay(const char* session_name) {
  const char* wanted = getenv("XW_DISPLAY");
  const bool named = wanted && *wanted;
  for (const Display* const* d = kDisplays; *d; ++d) {
    const bool meant = named ? !strcmp((*d)->name, wanted) : *d != &kHeadlessDisplay;
    const OpenResult result = meant ? Open(*d, session_name) : OpenResult::kNotHere;
    if (result != OpenResult::kNotHere) return result;
  }
  fprintf(stderr, "%s: cannot open the display %s\n", session_name,
          named               ? wanted
          : getenv("DISPLAY") ? getenv("DISPLAY")
                              : "(DISPLAY is unset)");
  return OpenResult::kNotHere;
}

}  // namespace

bool InitPlatform(const char* name) {
  if (CurrentDisplay()) return true;
  if (!name) name = "";
  TakeStartToken();
  const OpenResult opened = OpenDisplay(name);
  if (opened == OpenResult::kNotHere) return false;
  InitWindows();
  ReadScreens();
  if (!OpenRecord(name)) {
    FinishPlatform();
    return false;
  }
  InitResults();
  InitDispatch();
  InitClipboard();
  InitMenus();
  InitControls();
  select_below = PopUpMenuSelectBelow;
  InitSignals();
  InitApplication(name);
  InitSessionEnd(name);
  const bool handed_over = opened == OpenResult::kShared && HandOverStart();
  if (handed_over)
    HoldWindows(true);
  else
    InitInspect(name);
  return true;
}

void FinishPlatform() {
  const Display* d = CurrentDisplay();
  if (!d) return;
  FinishInspect();
  FinishTrackers();
  FinishReceive();
  FinishWindows();
  FinishControls();
  FinishAccess();
  FinishMenus();
  FinishInput();
  FinishResults();
  FinishApplication();
  // The wait for a clipboard manager comes after the windows have gone, so that nobody sees it.
  KeepText();
  FinishClipboard();
  FinishSessionEnd();
  FinishSignals();
  FlushEventQueue(GetMainEventQueue(), nullptr);
  FinishTimers();
  d->close();
  SetCurrentDisplay(nullptr, "");
  SetClock(nullptr);
  FinishSources();
  FinishRawEvents();
  FinishTargets();
  FinishObjects();
  FinishTheme();
  FinishFonts();
  FinishFontLibrary();
}

}  // namespace platform
