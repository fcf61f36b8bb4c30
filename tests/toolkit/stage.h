// A session on the headless display with a stepped clock, and a record of what handlers saw.
#pragma once
#include <functional>
#include <string>
#include <vector>

#include "platform/display/headless/headless.h"
#include "platform/events/timers.h"
#include "platform/windows/windows.h"
#include "toolkit/xw.h"

namespace stage {

using platform::Rect;
namespace input = platform::headless;

// Opens the session. The clock starts at 1000 seconds; a home folder that exists is set.
void Open(uint8_t flags = 7);

struct Seen {
  XwWindow* window;
  int type;
  XwEvent event;
};
extern std::vector<Seen> seen;
// A handler that records and returns 0; one that records and returns `result`.
int Record(int type);
extern int result;
int Answer(int type);
// Called by both before they return, when set.
extern void (*on_event)(int type);

// Runs the loop until nothing is left to do (no timer may run) or a wait returns; the result is
// that of the wait, 0 when all was handled. Inp stays as the last event left it.
int RunLoop(XwWindow* modal = nullptr);
// Runs the loop for this long.
void RunFor(double seconds, XwWindow* modal = nullptr);
// What a user does, a step after each period, while the loop runs: also while a menu waits. A menu
// that is open at the end is closed.
void RunSteps(double period, std::vector<std::function<void()>> steps);
// Runs end again when nothing is left to do, after another handler for that was set.
void Quiet();
// Run, and forget what was seen.
void Settle();

// "name type" of all that was seen, one blank between entries. Windows without a name are "?".
std::string Trace();
// The same after the loop has run.
std::string RunTrace();
void Name(XwWindow* w, const char* name);
// A shown and settled main window at (100, 100) with 300 x 200 pixels, named "main".
XwWindow* Main(XwHandler handler = Record);
// Opens the session, and that window in it.
XwWindow* OpenMain(XwHandler handler = Record);
// A shown top-level window.
XwWindow* Top(const char* name, int x, int y, int width, int height);
XwWindow* Sub(XwWindow* parent, const char* name, int x, int y, int width, int height,
              XwHandler handler = Record);
platform::WindowRef Native(XwWindow* w);
// Move the pointer, press the primary button, let go of it, and run the loop.
void MoveTo(int x, int y);
void PressAt(int x, int y);
void LetGo();

}  // namespace stage
