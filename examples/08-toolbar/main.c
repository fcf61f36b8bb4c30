/* A toolbar with every type of item. The line below says what was chosen; "Lock" greys the items of
 * the job, and the last button hides the bar until the window is pressed. */
#include <stdio.h>
#include <stdlib.h>

#include "toolkit/xw.h"

enum { PRINT = 1, PAUSE, STOP, MORE, PRINTER, SHEETS, COPIES, ZOOM, INK, LOCK, HIDE };
enum { ALL = 40, MINE, WIDTH = 630, HEIGHT = 120, GOLD = 0x5FD2F5, NONE = -1 };

static XwWindow* window;
static char line[80] = "Choose something";

static const char* const printers[] = {"Proof", "Wide", "Office", NULL};
static const char* const sheets[] = {"1-4", "5-8", "9-12", NULL};
static XwMenuItem menu[] = {{"All jobs", 0, ALL, NULL}, {"My jobs", 0, MINE, NULL}, {0}};

static const uint8_t bars[] = {0,    0,    0,    0,    0x1C, 0x1C, 0x1C, 0x1C, 0x1C, 0x1C, 0x1C,
                               0x1C, 0x1C, 0x1C, 0x1C, 0x1C, 0x1C, 0x1C, 0x1C, 0x1C, 0x1C, 0x1C,
                               0x1C, 0x1C, 0,    0,    0,    0,    0,    0,    0,    0};
static XwIcon pause_icon = {16, 16, NULL, bars}, stop_icon = {16, 16, NULL, bars};

#define RECT(x, y, right, bottom)                                                 \
  {XWP_MOVE, x, y, 0, 0, 0, 0}, {XWP_LINE, right, y, 0, 0, 0, 0},                 \
      {XWP_LINE, right, bottom, 0, 0, 0, 0}, {XWP_LINE, x, bottom, 0, 0, 0, 0}, { \
    XWP_CLOSE, 0, 0, 0, 0, 0, 0                                                   \
  }
static const XwPathPart pause_outline[] = {RECT(4, 3, 7, 13), RECT(9, 3, 12, 13)};
static const XwPathPart stop_outline[] = {RECT(4, 4, 12, 12)};

#define TEXT(text) ((XwValue)(text))
static const XwToolbarItem items[] = {{XWB_BUTTON, TEXT("Print"), PRINT, 0},
                                      {XWB_ICON | XWB_CLOSER, TEXT(&pause_icon), PAUSE, 0},
                                      {XWB_ICON, TEXT(&stop_icon), STOP, 0},
                                      {XWB_GAP, 0, 0, 0},
                                      {XWB_BUTTON, TEXT("Jobs"), MORE, TEXT(menu)},
                                      {XWB_LIST, TEXT(printers), PRINTER, 0},
                                      {XWB_EDIT_COMBO, TEXT(sheets), SHEETS, 0},
                                      {XWB_LABEL, TEXT("Sets"), 0, 0},
                                      {XWB_EDIT | 34, TEXT("2"), COPIES, 0},
                                      {XWB_SLIDER | 44, TEXT("0,100,40"), ZOOM, 0},
                                      {XWB_COLOR, GOLD, INK, 0},
                                      {XWB_GAP, 0, 0, 0},
                                      {XWB_CHECK_BOX | 66, TEXT("Lock"), LOCK, 0},
                                      {XWB_OPTIONS, 0, HIDE, 0},
                                      {0, 0, 0, 0}};

static void Draw(void) {
  XwSet(window);
  XwDrawText(XWF_NORMAL, 0x400, 12, 40, WIDTH - 24, HEIGHT - 40, line, 0, NONE);
}

static void Choose(int id, int value) {
  static const int locked[] = {PRINT, PAUSE, STOP, PRINTER, COPIES};
  unsigned i;
  snprintf(line, sizeof line, "Item %d: %d", id, value);
  if (id == HIDE) XwShowToolbar(window, 0);
  if (id == LOCK)
    for (i = 0; i < sizeof locked / sizeof *locked; ++i)
      XwEnable(XwGetToolbarItem(window, locked[i]), !value);
  XwSendEvent(window, XWE_EXPOSE, 0, 0, 0);
}

static int Handle(int type) {
  if (type == XWE_EXPOSE) Draw();
  if (type == XWE_TOOLBAR) Choose(Inp.item, (int)Inp.value);
  if (type == XWE_PRESS) XwShowToolbar(window, 1);
  if (type == XWE_CLOSE || type == XWE_QUIT) {
    XwEndSession();
    exit(0);
  }
  return 0;
}

int main(void) {
  XwSession("toolbar", "Toolbar", 7);
  window = XwCreate(0, 120, 120, WIDTH, HEIGHT, Handle);
  XwSetGround(window, NULL, 1);
  XwSetIconOutline(&pause_icon, pause_outline, sizeof pause_outline / sizeof *pause_outline);
  XwSetIconOutline(&stop_icon, stop_outline, sizeof stop_outline / sizeof *stop_outline);
  XwSetToolbar(window, items);
  XwDescribeControl(XwGetToolbarItem(window, PRINTER), "Printer");
  XwDescribeControl(XwGetToolbarItem(window, PAUSE), "Pause");
  XwDescribeControl(XwGetToolbarItem(window, STOP), "Stop");
  XwDescribeControl(XwGetToolbarItem(window, ZOOM), "Zoom");
  XwShow(window, 1);
  XwSetFocus(window);
  XwRunEventLoop();
}
