/* A window whose first picture ends the program: drawn, sent, and answered by the server. */
#pragma once
#include "bench/frame_done.h"
#include "toolkit/xw.h"

static int EndWithPicture(int type) {
  if (type != XWE_EXPOSE) return 0;
  XwSet(Inp.window);
  XwSync();
  FrameIsThere();
}
