// The program: a print console.
#include <unistd.h>

#include <cstdlib>

#include "app/window/console.h"

int main() {
  XwSession("Quorvik", "Quorvik", 7);
  const char* host = getenv("QUORVIK_SERVER");
  // The session has made the home folder the current one.
  char here[4096];
  if (!getcwd(here, sizeof here)) here[0] = 0;
  if (!console::OpenConsole(host ? host : "", here[0] ? here : "/")) return 1;
  XwRunEventLoop();
}
