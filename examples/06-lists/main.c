/* Lists and what scrolls: a list box of many rows and one of few, combo boxes of several items, of
 * two and with separators, sliders and scroll bars. The last line says what was reported. */
#include <stdio.h>
#include <stdlib.h>

#include "toolkit/xw.h"

enum { GREY = 0x646A6E, NONE = -1 };
enum { ON = XWC_ENABLED | XWC_VISIBLE, OFF = XWC_VISIBLE };
enum { MANY = 1, FEW = 2, LESS = 3, PRINTER = 10, PAPER = 11, SIDES = 12, OFF_COMBO = 13 };
enum { SLIDER = 20, STANDING = 21, BAR = 22, STANDING_BAR = 23 };
enum { ROWS = 100000, MANY_LINES = 8 };

static XwWindow *window, *status, *few;
static XwFont* caption;
static const char* rows[ROWS + 1];
static char texts[ROWS][16];
static const char* const papers[] = {"A4", "A3", "A2", "SRA3", "Letter", "Tabloid", NULL};
static const char* const fewer[] = {"A4", "A3", NULL};
/* The empty one is a separator. */
static const char* const printers[] = {"Proof printer", "Wide format", "", "Office", "Label", NULL};
static const char* const sides[] = {"One side", "Both sides", NULL};

static void Caption(int x, int y, const char* text) {
  XwDrawText(caption, 0, x, y, 0, 0, text, GREY, NONE);
}

static void Draw(void) {
  XwSet(window);
  Caption(20, 16, "LIST BOX");
  Caption(288, 16, "COMBO BOX");
  Caption(20, 214, "SLIDER");
  Caption(288, 214, "SCROLL BAR");
  XwSync();
}

static const char* NameOf(int id, int value) {
  static const char* const none = "";
  if (id == MANY) return rows[value];
  if (id == FEW) return papers[value];
  if (id == PRINTER || id == PAPER) return (id == PRINTER ? printers : papers)[value];
  return id == SIDES ? sides[value] : none;
}

static void Report(int type, int id, int value) {
  char text[80];
  static uint32_t last_click;
  const char* twice = id == MANY && XwDoubleClick(&last_click) ? " twice" : "";
  if (id == LESS) XwUpdateListBox(few, value ? fewer : papers);
  snprintf(text, sizeof text, "Control %d %s %d%s %s", id,
           type == XWE_SCROLLING ? "moves to" : "reported", value, twice, NameOf(id, value));
  XwSetText(status, text);
}

static int Handle(int type) {
  if (type == XWE_EXPOSE) Draw();
  if (type == XWE_CONTROL || type == XWE_SCROLLED || type == XWE_SCROLLING)
    Report(type, Inp.item, (int)Inp.value);
  if (type == XWE_CLOSE || type == XWE_QUIT) {
    XwEndSession();
    exit(0);
  }
  return 0;
}

static void MakeLists(void) {
  XwWindow* many;
  int i;
  for (i = 0; i < ROWS; ++i) {
    snprintf(texts[i], sizeof texts[i], "Job %d", i + 1);
    rows[i] = texts[i];
  }
  many = XwListBox(window, rows, MANY, 18, 34, 134, MANY_LINES * 18 + 8, ON);
  XwDescribeControl(many, "Jobs");
  XwSetValue(many, 2);
  few = XwListBox(window, papers, FEW, 158, 34, 104, 6 * 18 + 8, ON);
  XwDescribeControl(few, "Papers");
  XwSetValue(few, 1);
  XwCheckBox(window, "Less", LESS, 162, 160, ON, 0);
}

static void MakeCombos(void) {
  XwDescribeControl(XwComboBox(window, printers, PRINTER, 286, 34, 180, 24, ON, 0), "Printer");
  XwDescribeControl(XwComboBox(window, papers, PAPER, 286, 68, 120, 24, ON, 4), "Paper");
  XwDescribeControl(XwComboBox(window, sides, SIDES, 286, 102, 120, 24, ON, 0), "Sides");
  XwComboBox(window, papers, OFF_COMBO, 286, 136, 120, 24, OFF, 2);
  XwDescribeControl(XwComboBox(window, papers, 14, 412, 68, 54, 24, ON, -1), "No paper");
}

static void MakeSliders(void) {
  XwDescribeControl(XwSlider(window, SLIDER, 20, 236, 180, 22, ON, 0, 100, 40), "Priority");
  XwSlider(window, 24, 20, 266, 180, 22, OFF, 0, 100, 60);
  XwDescribeControl(XwSlider(window, STANDING, 220, 232, 22, 72, ON, 0, 10, 6), "Copies");
  XwDescribeControl(XwScrollBar(window, BAR, 288, 238, 150, 15, ON, 0, 99, 1, 20, 10), "Page");
  XwScrollBar(window, 25, 288, 266, 150, 15, OFF, 0, 99, 1, 50, 10);
  XwDescribeControl(XwScrollBar(window, STANDING_BAR, 450, 232, 15, 72, ON, 0, 99, 3, 30, 0),
                    "Line");
}

int main(void) {
  XwSession("lists", "Lists", 7);
  caption = LoadFont(XWF_BOLD->name, 11, 0);
  window = XwCreate(0, 120, 120, 486, 344, Handle);
  XwSetGround(window, NULL, 2);
  MakeLists();
  MakeCombos();
  MakeSliders();
  status = XwLabel(window, "Nothing was chosen", 0, 18, 314, 450, 20, ON | XWC_LEFT);
  XwShow(window, 1);
  XwRunEventLoop();
}
