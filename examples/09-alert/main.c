/* Alerts: one of each kind. The line tells the last answer. */
#include <stdio.h>
#include <stdlib.h>

#include "toolkit/xw.h"

enum { REMOVE = 1, SAVE, ABOUT };
enum { ON = XWC_ENABLED | XWC_VISIBLE, WIDTH = 340, HEIGHT = 110, NONE = -1 };

static XwWindow* window;
static char line[80] = "Nothing asked yet";

/* The harmless label comes first: Space, Return and Escape press it. */
static void Ask(int id) {
  FSSpec file;
  int answer = 0;
  if (id == REMOVE)
    answer = XwConfirm("!", "", "Remove 3 jobs from the queue?", "Keep", "Remove", NULL);
  if (id == SAVE)
    answer = XwConfirm("?", "", "Keep the changes?", "Cancel", "Forget them", "Keep", NULL);
  if (id == ABOUT && GetApplicationBundleFSSpec(&file) == 0)
    answer = XwConfirmUtf8("i", "", file.path, "Good", NULL);
  snprintf(line, sizeof line, "Question %d: button %d", id, answer);
  XwSendEvent(window, XWE_EXPOSE, 0, 0, 0);
}

static int Handle(int type) {
  if (type == XWE_EXPOSE) {
    XwSet(window);
    XwDrawText(XWF_NORMAL, XWC_LEFT, 18, 60, WIDTH - 36, 30, line, 0, NONE);
  }
  if (type == XWE_CONTROL) Ask(Inp.item);
  if (type == XWE_CLOSE || type == XWE_QUIT) {
    XwEndSession();
    exit(0);
  }
  return 0;
}

int main(void) {
  XwSession("alert", "Alert", 7);
  window = XwCreate(0, 120, 120, WIDTH, HEIGHT, Handle);
  XwSetGround(window, NULL, 2);
  XwButton(window, "Remove ...", REMOVE, 18, 18, 98, 26, ON, 0);
  XwButton(window, "Save ...", SAVE, 120, 18, 98, 26, ON, 0);
  XwButton(window, "About", ABOUT, 222, 18, 98, 26, ON, 0);
  XwShow(window, 1);
  XwSetFocus(window);
  XwRunEventLoop();
}
