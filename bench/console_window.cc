// The console, whose first complete picture ends the program: its folder read and shown, drawn,
// sent, and answered by the server of the display. No print server answers.
#include <unistd.h>

#include "app/window/console.h"

namespace {

XwHandler usual;
bool exposed = false;

int Watch(int type) {
  exposed = exposed || type == XWE_EXPOSE;
  return usual(type);
}

}  // namespace

int main() {
  XwSession("Quorvik", "Quorvik", 7);
  console::Console* c = console::OpenConsole("127.0.0.9:1", "/usr");
  if (!c) return 1;
  usual = c->window->handler;
  c->window->handler = Watch;
  // Wakes the wait below, so that it is seen as soon as the folder is there.
  XwTimer(XwCreate(0, 0, 0, 50, 50, nullptr), 1, 1);
  while (!exposed || !c->files.folder.known()) XwWaitEvent(nullptr);
  XwSync();
  _exit(0);
}
