/* Menus: a bar with keys, sub-menus, marks, colours and items that come and go; a pop-up under the
 * secondary button, a list under the others. The text says what was chosen. */
#include <stdio.h>
#include <stdlib.h>

#include "toolkit/xw.h"

enum { OPEN = 1, PRINT, CLOSE, HIDDEN_FILES, ADVANCED, SECRET, BY_NAME = 20, BY_SIZE, BY_TIME };
enum { A3 = 30, A4, A5, RED = 0x5A35D9, GOLD = 0x5FD2F5, BLUE = 0xD77538 };
enum { INK = 0x1D2022, GREY = 0x646A6E, NONE = -1 };

static XwMenuItem sizes[] = {
    {"A3", 0, A3, NULL}, {"A4", XWM_CHECKED, A4, NULL}, {"A5", 0, A5, NULL}, {NULL, 0, 0, NULL}};
static XwMenuItem order[] = {{"Name", XWM_CHECKED, BY_NAME, NULL},
                             {"Size", 0, BY_SIZE, NULL},
                             {"Time", 0, BY_TIME, NULL},
                             {NULL, 0, 0, NULL}};
static XwMenuItem view[] = {{"Hidden files", 0, HIDDEN_FILES, NULL},
                            {"Sort by", 0, 0, NULL},
                            {"Paper", 0, 0, NULL},
                            {"", 0, 0, NULL},
                            {"Advanced", 0, ADVANCED, NULL},
                            {"A secret", XWM_HIDDEN, SECRET, NULL},
                            {NULL, 0, 0, NULL}};
static XwMenuItem file[] = {{"Open", XWM_DOTS, OPEN, NULL},
                            {"Print", XWM_DISABLED, PRINT, NULL},
                            {"", 0, 0, NULL},
                            {"Close", 0, CLOSE, NULL},
                            {NULL, 0, 0, NULL}};
static XwMenuItem colours[] = {{" ", XWM_COLOUR, RED, NULL},
                               {"Rush", XWM_COLOUR, GOLD, NULL},
                               {"Blue \xE2\x98\x85", XWM_COLOUR | XWM_UTF8, BLUE, NULL},
                               {NULL, 0, 0, NULL}};
static XwMenuItem bar[] = {{"File", 0, 0, NULL},
                           {"View", 0, 0, NULL},
                           {"Colour", 0, 0, NULL},
                           {"Off", XWM_DISABLED, 0, NULL},
                           {NULL, 0, 0, NULL}};
static XwMenuItem nothing[] = {{"Nothing", 0, 99, NULL}, {NULL, 0, 0, NULL}};
static const char* const papers[] = {"Plain", "Glossy", "Film", NULL};

static XwWindow* window;
static int paper = 1, opened = 0;
static char said[80] = "Nothing was chosen";

static void Draw(void) {
  XwSet(window);
  XwDrawText(XWF_BOLD, 0, 24, 24, 0, 0, said, INK, NONE);
  XwDrawText(XWF_NORMAL, 0, 24, 52, 0, 0, "Press the secondary button for a menu,", GREY, NONE);
  XwDrawText(XWF_NORMAL, 0, 24, 72, 0, 0, "the primary one for a list of papers.", GREY, NONE);
  XwSync();
}

static void Say(const char* what, int value) {
  snprintf(said, sizeof said, "%s %d", what, value);
  XwSendEvent(window, XWE_EXPOSE, 0, 0, 0);
}

static void Choose(int id) {
  Say("Chose", id);
  if (id == OPEN) opened = 1;
  if (id == CLOSE) opened = 0;
  if (id == HIDDEN_FILES) XwCheckMenuItem(view, id, !XwGetMenuItemState(view, id));
  if (id >= BY_NAME && id <= BY_TIME) XwCheckMenuRadioItem(view, BY_NAME, BY_TIME, id);
  if (id >= A3 && id <= A5) XwCheckMenuRadioItem(view, A3, A5, id);
  if (id == ADVANCED) XwChangeMenuItemFlags(view, SECRET, 0);
}

static int Handle(int type) {
  switch (type) {
    case XWE_EXPOSE:
      Draw();
      break;
    case XWE_MENU_OPENING: /* what can be done now */
      XwEnableMenuItem(file, PRINT, opened);
      break;
    case XWE_MENU:
      Choose(Inp.item);
      break;
    case XWE_PRESS:
      paper = XwPopupList(papers, paper);
      Say("Paper", paper);
      break;
    case XWE_PRESS + 1:
      Say("Pop-up", XwPopupMenu(colours));
      break;
    case XWE_CLOSE:
    case XWE_QUIT:
      XwEndSession();
      exit(0);
    default:
      break;
  }
  return 0;
}

int main(void) {
  XwSession("menus", "Menus", 3);
  window = XwCreate(0, 120, 120, 380, 240, Handle);
  XwSetGround(window, NULL, 1);
  view[1].id = (XwValue)order;
  view[2].id = (XwValue)sizes;
  bar[0].id = (XwValue)file;
  bar[1].id = (XwValue)view;
  bar[2].id = (XwValue)colours;
  bar[3].id = (XwValue)nothing;
  XwSetMenuItemKey(file, OPEN, 'o', XWS_CONTROL);
  XwSetMenuItemKey(file, PRINT, 'p', XWS_CONTROL);
  XwSetMenuItemKey(file, CLOSE, 'w', XWS_CONTROL);
  XwSetMenuItemKey(view, HIDDEN_FILES, 'h', XWS_CONTROL | XWS_SHIFT);
  XwSetMenuItemKey(view, A3, '3', XWS_CONTROL);
  XwSetMenu(window, bar);
  XwShow(window, 1);
  XwRunEventLoop();
}
