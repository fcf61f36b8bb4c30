/* A menu bar with sub-menus, marks, swatches and keys, and pop-ups on the canvas: the secondary
 * button opens the colours, the primary one the list of sizes. The last line says what was chosen.
 */
#include <stdio.h>
#include <stdlib.h>

#include "toolkit/xw.h"

enum { RIGHT = 0x200, LEFT = 0x400 };
enum { INK = 0x1D2022, GREY = 0x646A6E, PAPER = 0xFFFFFF, NONE = -1 };
enum { RED = 0x5A35D9, GOLD = 0x5FD2F5, BLUE = 0xD77538, GREEN = 0x578B2E };
enum { OPEN = 1, SAVE, SAVE_AS, REVERT, LOCKED, CLOSE }; /* File */
enum { UNDO = 20, CUT, COPY, PASTE, HIDDEN };            /* Edit */
enum { GRID = 40, RULERS, SMALL = 50, MEDIUM, LARGE };   /* View */
enum { DEEPER = 60, DEEPEST = 70, MANY = 100, MANY_ITEMS = 60 };
enum { TITLES = 7 };

static XwWindow* window;
static XwFont* caption;
static char status[96] = "Nothing has been chosen";
static char names[MANY_ITEMS][16];
static int32_t colour = BLUE;
static int size = 1, undone;

#define ITEM(text, flags, id) \
  { text, flags, (XwValue)(id), NULL }
#define END \
  { NULL, 0, 0, NULL }

static XwMenuItem deepest[] = {ITEM("The end", 0, DEEPEST), END};
static XwMenuItem deeper[] = {ITEM("Another", 0, DEEPER), ITEM("Still deeper", 0, 0), END};
static XwMenuItem recent[] = {ITEM("brochure.pdf", 0, DEEPER + 1),
                              ITEM("cover-final.tif", 0, DEEPER + 2), ITEM("", 0, 0),
                              ITEM("Deeper", 0, 0), END};
static XwMenuItem file[] = {ITEM("Open", XWM_DOTS, OPEN),
                            ITEM("Open recent", 0, 0),
                            ITEM("", 0, 0),
                            ITEM("Save", 0, SAVE),
                            ITEM("Save as", XWM_DOTS, SAVE_AS),
                            ITEM("Revert", XWM_DISABLED, REVERT),
                            ITEM("", 0, 0),
                            ITEM("Close", 0, CLOSE),
                            END};
static XwMenuItem edit[] = {ITEM("Undo", XWM_DISABLED, UNDO),
                            ITEM("", 0, 0),
                            ITEM("Cut", 0, CUT),
                            ITEM("Copy", 0, COPY),
                            ITEM("Paste", 0, PASTE),
                            ITEM("Never seen", XWM_HIDDEN, HIDDEN),
                            END};
static XwMenuItem view[] = {ITEM("Small", 0, SMALL),
                            ITEM("Medium", XWM_CHECKED, MEDIUM),
                            ITEM("Large", 0, LARGE),
                            ITEM("", 0, 0),
                            ITEM("Grid", XWM_CHECKED, GRID),
                            ITEM("Rulers", 0, RULERS),
                            END};
static XwMenuItem colours[] = {ITEM("Red", XWM_COLOUR, RED),   ITEM("Gold", XWM_COLOUR, GOLD),
                               ITEM("Blue", XWM_COLOUR, BLUE), ITEM("", 0, 0),
                               ITEM(" ", XWM_COLOUR, GREEN),   END};
static XwMenuItem many[MANY_ITEMS + 1];
static XwMenuItem locked[] = {ITEM("Out of reach", 0, LOCKED), END};
static XwMenuItem bar[TITLES + 1];

static const char* const sizes[] = {"A4", "A3", "A2", "SRA3", "Letter", "Tabloid", NULL};

static void MakeMenus(void) {
  static const struct {
    const char* title;
    int flags;
    XwMenuItem* items;
  } titles[TITLES] = {{"File", 0, file},
                      {"Edit", 0, edit},
                      {"View", 0, view},
                      {"Colour", 0, colours},
                      {"Caf\xC3\xA9", XWM_UTF8, recent}, /* hangs in File, too */
                      {"Many", 0, many},
                      {"Locked", XWM_DISABLED, locked}};
  int i;
  deeper[1].id = (XwValue)deepest;
  recent[3].id = (XwValue)deeper;
  file[1].id = (XwValue)recent;
  for (i = 0; i < MANY_ITEMS; ++i) {
    snprintf(names[i], sizeof names[i], "Row %d", i + 1);
    many[i].text = names[i];
    many[i].id = MANY + i;
  }
  for (i = 0; i < TITLES; ++i) {
    bar[i].text = titles[i].title;
    bar[i].flags = titles[i].flags;
    bar[i].id = (XwValue)titles[i].items;
  }
  XwSetMenuItemKey(file, OPEN, 'o', XWS_CONTROL);
  XwSetMenuItemKey(file, SAVE, 's', XWS_CONTROL);
  XwSetMenuItemKey(file, SAVE_AS, 's', XWS_CONTROL | XWS_SHIFT);
  XwSetMenuItemKey(file, CLOSE, 'w', XWS_CONTROL);
  XwSetMenuItemKey(edit, UNDO, 'z', XWS_CONTROL);
  XwSetMenuItemKey(edit, CUT, 'x', XWS_CONTROL);
  XwSetMenuItemKey(edit, COPY, 'c', XWS_CONTROL);
  XwSetMenuItemKey(edit, PASTE, 'v', XWS_CONTROL);
  XwSetMenuItemKey(view, GRID, XWE_F1 + 4, 0);
  XwSetMenu(window, bar);
}

static void Draw(void) {
  XwSet(window);
  XwDrawText(caption, 0, 20, 16, 0, 0, "CANVAS", GREY, NONE);
  XwBox(20, 36, XW->width - 40, XW->height - 84, colour);
  XwSetColor(PAPER);
  if (XwGetMenuItemState(view, GRID)) {
    int i;
    for (i = 40; i < XW->width - 20; i += 20) XwDrawLine(i, 36, i, XW->height - 49);
    for (i = 56; i < XW->height - 48; i += 20) XwDrawLine(20, i, XW->width - 21, i);
  }
  XwDrawText(NULL, LEFT, 15, XW->height - 40, XW->width - 110, 30, status, INK, NONE);
  XwDrawText(NULL, RIGHT, XW->width - 105, XW->height - 40, 90, 30, sizes[size], GREY, NONE);
}

static void Say(const char* what, int id) {
  snprintf(status, sizeof status, "%s %d", what, id);
  XwSendEvent(window, XWE_EXPOSE, 0, 0, 0);
}

/* The colour items of a bar's menu come with their colour, those of a pop-up by their position. */
static void Choose(int id) {
  if (id == GRID || id == RULERS) XwCheckMenuItem(view, id, !XwGetMenuItemState(view, id));
  if (id >= SMALL && id <= LARGE) XwCheckMenuRadioItem(view, SMALL, LARGE, id);
  if (id == CUT || id == PASTE) undone = 1;
  if (id == UNDO) undone = 0;
  if (id == RED || id == GOLD || id == BLUE || id == GREEN) colour = id;
  if (id == CLOSE) XwSendEvent(window, XWE_CLOSE, 0, 0, 0);
  Say("Chosen:", id);
}

static void Popup(void) {
  const int chosen = XwPopupMenu(colours);
  if (chosen < 0) colour = (int32_t)colours[-chosen - 1].id;
  Say("From the pop-up:", chosen);
}

static void List(void) {
  const int chosen = XwPopupList(sizes, size);
  if (chosen >= 0) size = chosen;
  Say("From the list:", chosen);
}

static int Handle(int type) {
  switch (type) {
    case XWE_EXPOSE:
      Draw();
      break;
    case XWE_MENU_OPENING: /* the last moment to say what can be done */
      XwEnableMenuItem(edit, UNDO, undone);
      break;
    case XWE_MENU:
      Choose(Inp.item);
      break;
    case XWE_PRESS:
      List();
      break;
    case XWE_PRESS + 1:
      Popup();
      break;
    case XWE_PREFERENCES:
      Say("Preferences", 0);
      break;
    case XWE_CLOSE:
    case XWE_QUIT:
      XwEndSession();
      exit(0);
  }
  return 0;
}

int main(void) {
  XwSession("menus", "Menus", 3);
  caption = LoadFont(XWF_BOLD->name, 11, 0);
  window = XwCreate(0, 120, 120, 420, 300, Handle);
  XwSetGround(window, NULL, 1);
  MakeMenus();
  XwShow(window, 1);
  XwSetFocus(window);
  XwRunEventLoop();
}
