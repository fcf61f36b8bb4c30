/* Everything that is clicked: buttons, check boxes, radio buttons, colour wells, column heads,
 * labels, some of them in a sub-window. The last line says what was reported. */
#include <stdio.h>
#include <stdlib.h>

#include "toolkit/xw.h"

enum { INK = 0x1D2022, GREY = 0x646A6E, NONE = -1 };
enum { RED = 0x5A35D9, GOLD = 0x5FD2F5, BLUE = 0xD77538 };
enum { WELL_COLOURS = 3, HEADS = 3, RADIOS = 3, SIZES = 3 };
/* Ids of the controls that do more than report. */
enum { GO = 3, CANCEL = 4, KEYBOARD = 5, WELL = 11, TABS = 24, PANE = 25, RADIO = 30, HEAD = 50 };
enum { SIZE = 101 };
enum { ON = XWC_ENABLED | XWC_VISIBLE, OFF = XWC_VISIBLE };
enum { BUTTON = 1, CHECK = 2, LABEL = 5 }; /* types of dialog items */

static XwWindow *window, *pane, *status, *go, *cancel, *heads[HEADS], *radios[RADIOS];
static XwWindow* wells[WELL_COLOURS];
static const int32_t colours[WELL_COLOURS] = {RED, GOLD, BLUE};
static int well_colour[WELL_COLOURS] = {0, 1, 2};
static int sorted_by = 0;
static XwFont* caption;

static XwMenuItem sizes[] = {{"A4", XWM_CHECKED, SIZE, NULL},
                             {"A3", 0, SIZE + 1, NULL},
                             {"Letter", 0, SIZE + 2, NULL},
                             {NULL, 0, 0, NULL}};

#define ITEM(type, text, id, x, y, w, h, style, value) \
  { type, text, id, x, y, w, h, style, value, 0, 0, 0, 0 }
/* Controls that nothing below refers to. */
static const XwDialogItem items[] = {
    ITEM(BUTTON, "Normal", 1, 18, 36, 98, 26, ON, 0),
    ITEM(BUTTON, "Off", 2, 122, 36, 98, 26, OFF, 0),
    ITEM(BUTTON, "Keyboard", KEYBOARD, -118, 36, 102, 26, ON, 0),
    ITEM(BUTTON, "Bevel", 6, 20, 96, 80, 26, ON | XWC_VARIANT, 0),
    ITEM(BUTTON, "Held", 7, 108, 96, 80, 26, ON | XWC_VARIANT, 1),
    ITEM(CHECK, "Unset", 20, 20, 154, 0, 0, ON, 0),
    ITEM(CHECK, "Set", 21, 20, 176, 0, 0, ON, 1),
    ITEM(CHECK, "Mixed", 22, 20, 198, 0, 0, ON, 2),
    ITEM(CHECK, "Out of use", 23, 20, 220, 0, 0, OFF, 1),
    ITEM(CHECK, "Tab moves on", TABS, 124, 154, 0, 0, ON, 1),
    ITEM(CHECK, "Pane", PANE, 124, 176, 0, 0, ON, 1),
    ITEM(CHECK, "Out of use", 34, 256, 220, 0, 0, OFF | XWC_VARIANT, 1),
    ITEM(LABEL, "To the left", 40, 378, 154, 164, 20, ON | XWC_LEFT, 0),
    ITEM(LABEL, "In the middle", 41, 378, 174, 164, 20, ON, 0),
    ITEM(LABEL, "To the right", 42, 378, 194, 164, 20, ON | XWC_RIGHT, 0),
    ITEM(LABEL, "Bold", 43, 378, 218, 70, 20, ON | XWC_LEFT | XWC_VARIANT, 0),
    ITEM(LABEL, "Out of use", 44, 440, 218, 100, 20, OFF | XWC_LEFT, 0),
    {0, NULL, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}};

static void Caption(int x, int y, const char* text) {
  XwDrawText(caption, 0, x, y, 0, 0, text, GREY, NONE);
}

static void Draw(void) {
  XwSet(window);
  Caption(20, 16, "PUSH BUTTON");
  Caption(20, 76, "BEVEL AND ICON");
  Caption(354, 76, "COLOUR WELL");
  Caption(20, 136, "CHECK BOX");
  Caption(256, 136, "RADIO BUTTON");
  Caption(380, 136, "LABEL");
  Caption(20, 254, "COLUMN HEAD");
  Caption(354, 254, "PANE");
  XwSync();
}

/* The chosen column has the mark; a second press turns it around. */
static void SortBy(int head) {
  if (head == sorted_by) heads[head]->style ^= XWC_SORT_DOWN;
  sorted_by = head;
  for (int i = 0; i < HEADS; ++i) XwSetValue(heads[i], i == head);
}

static void Report(int id, int value) {
  char text[64];
  if (id >= RADIO && id < RADIO + RADIOS)
    for (int i = 0; i < RADIOS; ++i) XwSetValue(radios[i], id == RADIO + i);
  if (id >= HEAD && id < HEAD + HEADS) SortBy(id - HEAD);
  if (id >= WELL && id < WELL + WELL_COLOURS) {
    int* colour = &well_colour[id - WELL];
    *colour = (*colour + 1) % WELL_COLOURS;
    XwSetValue(wells[id - WELL], colours[*colour]);
  }
  if (id >= SIZE && id < SIZE + SIZES) XwCheckMenuRadioItem(sizes, SIZE, SIZE + SIZES - 1, id);
  if (id == TABS) XwSetTab(window, value);
  if (id == PANE) XwShow(pane, value);
  if (id == KEYBOARD) XwFocusControl(cancel);
  snprintf(text, sizeof text, "Control %d reported %d", id, value);
  XwSetText(status, text);
}

static int Handle(int type) {
  if (type == XWE_EXPOSE && Inp.window == window) Draw();
  if (type == XWE_CONTROL) Report(Inp.item, Inp.value);
  if (type == XWE_CLOSE || type == XWE_QUIT) {
    XwEndSession();
    exit(0);
  }
  return 0;
}

static void MakeButtons(void) {
  XwCreateDialogItems(window, items, 0, 0);
  go = XwButton(window, "Default", GO, 226, 36, 98, 26, ON, 0);
  cancel = XwButton(window, "Cancel", CANCEL, 330, 36, 98, 26, ON, 0);
  XwSetDefaultButtons(window, go, cancel);
  for (int i = 0; i < 3; ++i) /* an icon button: free, held down and out of use */
    XwButton(window, (const char*)IC_EXCHANGE, 8 + i, 196 + i * 32, 96, 26, 26,
             XWC_ICON | (i < 2 ? ON : OFF), i == 1 ? 2 : 0);
  XwDescribeControl(XwButton(window, "Size", 15, 292, 96, 52, 26, ON | XWC_MENU, (XwValue)sizes),
                    "Paper size");
}

static void MakeRest(void) {
  static const uint32_t frames[] = {XWC_VARIANT, XWC_ICON, 0};
  static const char* const names[] = {"Job", "Rush", ""};
  static const char* const columns[] = {"Name", "Size", "Time"};
  static const char* const choices[] = {"Portrait", "Landscape", "As it is"};
  static const int lefts[] = {20, 160, 250, 334};
  int i;
  for (i = 0; i < WELL_COLOURS; ++i)
    wells[i] = XwColor(window, names[i], WELL + i, 354 + i * 62, 96, 52, 26, ON | frames[i],
                       colours[well_colour[i]]);
  for (i = 0; i < RADIOS; ++i)
    radios[i] = XwCheckBox(window, choices[i], RADIO + i, 256, 154 + i * 22, ON | XWC_VARIANT, !i);
  for (i = 0; i < HEADS; ++i)
    heads[i] = XwButton(window, columns[i], HEAD + i, lefts[i], 274, lefts[i + 1] - lefts[i], 22,
                        ON | XWC_HEADER | XWC_LEFT, !i);
  pane = XwCreate((XwValue)window, 354, 274, 186, 64, Handle);
  XwSetGround(pane, NULL, 1);
  XwButton(pane, "Inner", 60, 10, 10, 90, 26, ON, 0);
  XwCheckBox(pane, "Inner too", 61, 12, 40, ON, 0);
  XwLabel(pane, (const char*)IC_CHECKBOX, 62, 150, 12, 20, 20, ON | XWC_ICON);
  XwShow(pane, 1);
  status = XwLabel(window, "Nothing was pressed", 0, 18, 348, 320, 20, ON | XWC_LEFT);
}

int main(void) {
  XwSession("buttons", "Buttons", 7);
  caption = LoadFont(XWF_BOLD->name, 11, 0);
  window = XwCreate(0, 120, 120, 560, 382, Handle);
  XwSetGround(window, NULL, 2);
  MakeButtons();
  MakeRest();
  XwShow(window, 1);
  XwRunEventLoop();
}
