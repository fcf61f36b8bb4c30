/* A window of a hundred controls of all kinds, whose first picture ends the program: drawn, sent,
 * and answered by the server. */
#include <stdio.h>

#include "bench/first_picture.h"

enum { WIDTH = 800, HEIGHT = 600, COLUMNS = 10, CELL = 78, LINE = 30, ROWS = 100 };
enum { BUTTONS = 40, CHECK_BOXES = 20, LABELS = 20, EDITS = 10, SLIDERS = 5, LISTS = 5 };
enum { ON = XWC_ENABLED | XWC_VISIBLE };

static char texts[ROWS][16];
static const char* rows[ROWS + 1];

int main(void) {
  char text[16];
  int i, y = 8;
  XwSession("gallery", "Gallery", 7);
  XwWindow* window = XwCreate(0, 40, 40, WIDTH, HEIGHT, EndWithPicture);
  XwSetGround(window, NULL, 2);
  for (i = 0; i < BUTTONS; ++i) {
    snprintf(text, sizeof text, "Button %d", i + 1);
    XwButton(window, text, i + 1, 8 + i % COLUMNS * CELL, y + i / COLUMNS * LINE, CELL - 4, 26, ON,
             0);
  }
  y += BUTTONS / COLUMNS * LINE;
  for (i = 0; i < CHECK_BOXES; ++i) {
    snprintf(text, sizeof text, "Box %d", i + 1);
    XwCheckBox(window, text, 100 + i, 8 + i % COLUMNS * CELL, y + i / COLUMNS * LINE, ON, i % 2);
  }
  y += CHECK_BOXES / COLUMNS * LINE;
  for (i = 0; i < LABELS; ++i) {
    snprintf(text, sizeof text, "Label %d", i + 1);
    XwLabel(window, text, 0, 8 + i % COLUMNS * CELL, y + i / COLUMNS * LINE, CELL - 4, 22, ON);
  }
  y += LABELS / COLUMNS * LINE;
  for (i = 0; i < EDITS; ++i) XwEditBox(window, "text", 200 + i, 4 + i * CELL, y, CELL, 30, ON);
  y += LINE;
  for (i = 0; i < SLIDERS; ++i)
    XwSlider(window, 300 + i, 8 + i * 2 * CELL, y, 2 * CELL - 8, 22, ON, 0, 100, 20 * i);
  y += LINE;
  for (i = 0; i < ROWS; ++i) {
    snprintf(texts[i], sizeof texts[i], "Row %d", i + 1);
    rows[i] = texts[i];
  }
  for (i = 0; i < LISTS; ++i)
    XwListBox(window, rows, 400 + i, 8 + i * 2 * CELL, y, 2 * CELL - 8, 190, ON);
  XwShow(window, 1);
  XwRunEventLoop();
}
