/* One page that uses every drawing call. */
#include <stdlib.h>

#include "toolkit/xw.h"

enum { INK = 0x1D2022, GREY = 0x646A6E, PAPER = 0xFFFFFF, NONE = -1, BACKGROUND = -2 };
enum { BLUE = 0xD77538, RED = 0x2B39C0, GREEN = 0x578B2E, GOLD = 0x0E77B9 };
enum { RIGHT = 0x200, LEFT = 0x400, UNDERLINED = 0x800 };

static XwFont *title, *caption, *serif, *typewriter;
static uint8_t* picture;

static void Caption(int x, int y, const char* text) {
  XwDrawText(caption, 0, x, y, 0, 0, text, GREY, NONE);
}

static void Lines(int x, int y) {
  static const uint8_t dashes[] = {6, 3, 0}, ants[] = {4, 4, 0};
  int i;
  Caption(x, y, "LINES AND DASHES");
  XwSetColor(INK);
  for (i = 0; i <= 12; ++i) XwDrawLine(x, y + 96, x + i * 9, y + 24);
  for (i = 1; i < 6; ++i) XwDrawLine(x, y + 96, x + 108, y + 24 + i * 14);
  XwSetDashes(dashes, 0, BLUE, GOLD);
  XwDrawRect(x + 128, y + 24, 92, 32);
  XwSetDashes(ants, 2, INK, PAPER);
  XwDrawRect(x + 128, y + 64, 92, 32);
  XwSetDashes(NULL, 0, 0, 0);
}

static void Shapes(int x, int y) {
  static const int16_t star[] = {308, 86, 330, 154, 272, 112, 344, 112, 286, 154};
  static const int16_t wave[] = {420, 150, 430, 140, 430, 150, 450, 140, 450, 150, 465, 150};
  Caption(x, y, "SHAPES");
  XwSetColor(GOLD);
  XwFillPolygon(star, 5);
  XwSetColor(RED);
  XwFillEllipse(x + 86, y + 24, 44, 44);
  XwSetColor(GREEN);
  XwDrawEllipse(x + 80, y + 74, 56, 22);
  XwBox(x + 148, y + 24, 30, 30, BLUE);
  XwSetColor(GREEN);
  XwFillRect(x + 163, y + 39, 30, 30);
  XwSetColor(INK);
  XwDrawLines(wave, 6);
}

static void Elements(int x, int y) {
  static const char* const states[] = {"Inactive", "Active", "Pressed"};
  static const int columns[] = {88, 72, 66, 0};
  static const char* const cells[7][3] = {
      {"Name", "Size", "Time"},     {"brochure", "4.2 MB", "09:41"}, {"cover", "118 MB", "09:12"},
      {"invoice", "83 KB", "Mon"},  {"labels", "640 KB", "Mon"},     {"poster", "22 MB", "Mon"},
      {"stickers", "1.1 MB", "Fri"}};
  int i, row;
  Caption(x, y, "ELEMENTS");
  for (i = 0; i < 3; ++i) {
    XwDrawBevel(x + i * 78, y + 24, 70, 24, i);
    XwDrawText(FT_BUTTON, 0, x + i * 78, y + 24, 70, 24, states[i], i ? INK : 0xB0ACA8, NONE);
  }
  XwDrawHole(x, y + 60, 70, 28, RED);
  XwDrawHole(x + 78, y + 60, 70, 28, BACKGROUND);
  XwDrawSeparator(x + 160, y + 74, 66, 0);
  XwDrawProgress(x, y + 106, 226, 12, 128);
  XwDrawTable(x, y + 132, 7, 22, columns);
  for (row = 0; row < 7; ++row) {
    int left = x;
    for (i = 0; i < 3; left += columns[i++])
      XwDrawText(row ? XWF_VIEW : caption, i ? RIGHT : LEFT, left, y + 132 + row * 22, columns[i],
                 22, cells[row][i], row ? INK : GREY, NONE);
  }
}

static void Texts(int x, int y) {
  const char* name = "ISO Coated v2 300% (ECI) \245 proof of 12 July.pdf";
  Caption(x, y, "TEXT");
  XwDrawText(serif, 0, x, y + 20, 0, 0, "Quick wafting zephyrs", INK, NONE);
  XwDrawText(typewriter, 0, x, y + 48, 0, 0, "vex bold Jim: \212 \216 \232 \237 \247 \333", INK,
             NONE);
  XwDrawText(XWF_NORMAL, UNDERLINED, x, y + 72, 0, 0, "underlined", BLUE, NONE);
  XwDrawText(XWF_BOLD, 0, x + 16 + XwTextWidth(XWF_NORMAL, "underlined"), y + 72, 0, 0,
             " on a colour ", PAPER, GREEN);
  XwDrawText(XWF_NORMAL, LEFT, x, y + 92, 220, 20, XwTextFit(XWF_NORMAL, name, 220), INK, PAPER);
  XwDrawText(XWF_NORMAL, LEFT, x, y + 115, 220, 20, XwTextTrim(XWF_NORMAL, name, 200), INK, PAPER);
}

static void Icons(int x, int y) {
  XwIcon* const icons[] = {
      IC_POPUP_MORE_DATA_UP, IC_POPUP_MORE_DATA_DOWN, IC_EXCHANGE, IC_SMALL_ARROW_UP,
      IC_SMALL_ARROW_DOWN,   IC_OPT_DIALOG,           IC_OPT_MENU, IC_CHECKBOX};
  Caption(x, y, "ICONS");
  for (int i = 0; i < 8; ++i) XwDrawIcon(XwLoadIcon(icons[i]), x + i * 30, y + 24, 0, 0, INK, NONE);
  XwDrawIcon(IC_ARROWS, x, y + 50, 224, 20, BLUE, PAPER);
}

static void Images(int x, int y) {
  static uint8_t stripes[16 * 16 * 4];
  int i, w = 110, h = 62;
  Caption(x, y, "IMAGES");
  picture = picture ? XwReallocImage(picture, w, h) : XwAllocImage(w, h);
  for (i = 0; i < w * h; ++i) {
    picture[4 * i + 1] = (uint8_t)(40 + i % w * 200 / w);
    picture[4 * i + 2] = (uint8_t)(90 + i / w * 120 / h);
    picture[4 * i + 3] = (uint8_t)(220 - i % w * 120 / w);
  }
  XwPutImage(0, 0, x, y + 24, w, h, picture);
  for (i = 0; i < 256; ++i) stripes[4 * i + 1] = (uint8_t)((i / 16 + i % 16) / 4 % 2 ? 220 : 40);
  XwClip((uint16_t)(x + 122), (uint16_t)(y + 24), 100, 62);
  for (i = 0; i < 28; ++i)
    XwPutImageData(x + 122 + i % 7 * 16, y + 24 + i / 7 * 16, 16, 16, stripes);
  XwPutImage(30, 10, x + 142, y + 36, 60, 38, picture);
  XwClip(0, 0, 0, 0);
}

static void Draw(XwWindow* w) {
  XwSet(w);
  XwClear(0, 0, 0, 0);
  XwDrawText(title, LEFT, 19, 14, 400, 30, "Everything that Xw draws", INK, NONE);
  Lines(24, 60);
  Shapes(272, 60);
  Elements(24, 176);
  Texts(272, 176);
  Icons(272, 318);
  Images(272, 404);
  XwDrawBorder();
  XwSync();
}

static int Handle(int type) {
  if (type == XWE_EXPOSE) Draw(Inp.window);
  if (type == XWE_CLOSE || type == XWE_QUIT) {
    XwFreeImage(picture);
    XwEndSession();
    exit(0);
  }
  return 0;
}

int main(void) {
  XwWindow* w;
  XwSession("drawing", "Drawing", 7);
  caption = LoadFont(XWF_BOLD->name, 11, 0);
  title = LoadFont(XWF_BOLD->name, 20, 0);
  serif = XwLoadFont("-*-times-medium-i-normal-*-20-*-*-*-*-*-*-*");
  typewriter = LoadFont("Courier", 14, 1);
  w = XwCreate(0, 120, 120, 520, 514, Handle);
  XwSetGround(w, NULL, 2);
  XwShow(w, 1);
  XwRunEventLoop();
}
