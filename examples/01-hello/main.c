/* A window with a line of text in its middle. Closing it or a request to quit ends it. */
#include <stdlib.h>

#include "toolkit/xw.h"

static void Draw(XwWindow* w) {
  XwSet(w);
  XwDrawText(XWF_BOLD, 0, 0, 0, w->width, w->height - 20, "Hello, world", 0x1D2022, -1);
  XwDrawText(XWF_NORMAL, 0, 0, 20, w->width, w->height - 20, "drawn with xw.h", 0x646A6E, -1);
  XwSetColor(0xD77538); /* blue, green, red */
  XwDrawLine(w->width / 2 - 60, w->height / 2 + 26, w->width / 2 + 60, w->height / 2 + 26);
  XwSync();
}

static int Handle(int type) {
  if (type == XWE_EXPOSE) Draw(Inp.window);
  if (type == XWE_CLOSE || type == XWE_QUIT) {
    XwEndSession();
    exit(0);
  }
  return 0;
}

int main(void) {
  XwSession("hello", "Hello", 7);
  XwWindow* w = XwCreate(0, 200, 200, 320, 160, Handle);
  if (!w) return 1;
  XwSetSizes(w, 200, 100, 0, 0, 0, 0);
  XwShow(w, 1);
  XwSetFocus(w);
  XwRunEventLoop();
}
