/* A dialog out of one array: every type of item in it, as a print dialog has them. */
#include <stdio.h>
#include <stdlib.h>

#include "toolkit/xw.h"

enum { ON = XWC_ENABLED | XWC_VISIBLE };
enum { BUTTON = 1, CHECK, EDIT, COMBO, LABEL, SLIDER, BAR, COLOUR, LIST }; /* types of items */
enum { PRINT = 1, CANCEL, HOLD, COPIES, PRINTER, PRIORITY, SHIFT, INK, PROFILE };
enum { GOLD = 0x5FD2F5, WIDTH = 420, HEIGHT = 300 };

static XwWindow *window, *status;

static const char* const printers[] = {"Proof printer", "Wide format", "", "Office", NULL};
static const char* const profiles[] = {
    "ISO Coated v2", "PSO Uncoated", "Japan Color 2011", "GRACoL 2013",
    "sRGB",          "Display P3",   "Newspaper 26v4",   NULL};

#define ITEM(type, text, id, x, y, w, h, style, value) \
  { type, text, id, x, y, w, h, style, value, 0, 0, 0, 0 }
#define RANGE(type, id, x, y, w, h, value, least, most, line, page) \
  { type, NULL, id, x, y, w, h, ON, value, least, most, line, page }
#define NAME(text, y) ITEM(LABEL, text, 0, 10, y, 90, 22, ON | XWC_RIGHT | XWC_COLON, 0)
/* A label gives its name to what follows it. Negative places count from the right and below. */
static const XwDialogItem items[] = {
    NAME("Printer", 19),
    ITEM(COMBO, (const char*)printers, PRINTER, 106, 16, 184, 24, ON, 0),
    NAME("Copies", 53),
    ITEM(EDIT, NULL, COPIES, 107, 52, 60, 24, ON, 1), /* a number, since it has no text */
    NAME("Priority", 86),
    RANGE(SLIDER, PRIORITY, 107, 86, 181, 22, 50, 1, 100, 0, 0),
    NAME("Profile", 118),
    ITEM(LIST, (const char*)profiles, PROFILE, 105, 116, 185, 98, ON, 0),
    NAME("Shift", 224),
    RANGE(BAR, SHIFT, 107, 228, 181, 15, 40, 0, 99, 1, 20),
    ITEM(CHECK, "Hold", HOLD, 310, 19, 0, 0, ON, 1),
    ITEM(LABEL, "Mark", 0, 310, 44, 80, 20, ON | XWC_LEFT, 0),
    ITEM(COLOUR, "Rush", INK, 310, 66, 60, 26, ON | XWC_VARIANT, GOLD),
    ITEM(BUTTON, "Cancel", CANCEL, -210, -36, 98, 26, ON, 0),
    ITEM(BUTTON, "Print", PRINT, -108, -36, 98, 26, ON, 0),
    {0, NULL, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}};

static int Handle(int type) {
  char text[64];
  if (type == XWE_CONTROL || type == XWE_SCROLLED || type == XWE_EDIT_DONE) {
    snprintf(text, sizeof text, "Item %d: %d", Inp.item, (int)Inp.value);
    XwSetText(status, text);
  }
  if (type == XWE_CLOSE || type == XWE_QUIT || (type == XWE_CONTROL && Inp.item == CANCEL)) {
    XwEndSession();
    exit(0);
  }
  return 0;
}

int main(void) {
  XwSession("dialog", "Dialog", 7);
  window = XwCreate(0, 120, 120, WIDTH, HEIGHT, Handle);
  XwSetGround(window, NULL, 2);
  XwCreateDialogItems(window, items, 0, 0);
  XwSetDefaultButtons(window, XwFind(window, PRINT), XwFind(window, CANCEL));
  XwSetValue(XwFind(window, PROFILE), 2);
  status = XwLabel(window, "", 0, 12, -36 + HEIGHT, 180, 20, ON | XWC_LEFT);
  XwShow(window, 1);
  XwRunEventLoop();
}
