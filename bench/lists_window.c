/* A window with a list of 100,000 rows, whose first picture ends the program: drawn, sent, and
 * answered by the server. */
#include <stdio.h>

#include "bench/first_picture.h"

enum { WIDTH = 320, HEIGHT = 184, ROWS = 100000 };

static char texts[ROWS][16];
static const char* rows[ROWS + 1];

int main(void) {
  int i;
  XwSession("lists", "Lists", 7);
  XwWindow* window = XwCreate(0, 40, 40, WIDTH, HEIGHT, EndWithPicture);
  XwSetGround(window, NULL, 2);
  for (i = 0; i < ROWS; ++i) {
    snprintf(texts[i], sizeof texts[i], "Job %d", i + 1);
    rows[i] = texts[i];
  }
  XwListBox(window, rows, 1, 8, 8, WIDTH - 16, HEIGHT - 16, XWC_ENABLED | XWC_VISIBLE);
  XwShow(window, 1);
  XwRunEventLoop();
}
