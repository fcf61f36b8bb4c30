/* The first example as it is, but the end of its first picture ends the program: drawn, sent, and
 * answered by the server. */
#include <unistd.h>

#include "toolkit/xw.h"

static void SyncAndEnd(void) {
  XwSync();
  _exit(0);
}

#define XwSync SyncAndEnd
#include "examples/01-hello/main.c"
