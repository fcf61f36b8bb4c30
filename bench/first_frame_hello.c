/* The first example as it is, but the end of its first picture ends the program: drawn, sent, and
 * answered by the server. */
#include "bench/frame_done.h"
#include "toolkit/xw.h"

static void SyncAndEnd(void) {
  XwSync();
  FrameIsThere();
}

#define XwSync SyncAndEnd
#include "examples/01-hello/main.c"
