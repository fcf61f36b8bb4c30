// The console, whose first complete picture ends the program: its folder read and shown, drawn,
// sent, and answered by the server of the display. No print server answers.
#include "app/window/console.h"
#include "bench/frame_done.h"

namespace {

constexpr int kLookTimer = 7;

console::Console* console_shown;
XwHandler usual;

int Watch(int type) {
  const int result = usual(type);
  console::Console* c = console_shown;
  if (!c->exposed || !c->files.folder.known()) return result;
  XwPush(c->window);
  XwSync();
  FrameIsThere();
}

}  // namespace

int main() {
  XwSession("Quorvik", "Quorvik", 7);
  console_shown = console::OpenConsole("127.0.0.9:1", "/usr");
  if (!console_shown) return 1;
  usual = console_shown->window->handler;
  console_shown->window->handler = Watch;
  // Sees a folder that comes after the first picture.
  XwTimer(console_shown->window, kLookTimer, 1);
  XwRunEventLoop();
  return 1;
}
