// Reference pictures of shapes, frames, icons, images and clips at four scales.
#include <gtest/gtest.h>

#include "tests/support/canvas.h"
#include "tests/support/picture.h"

using namespace platform;
using testkit::Canvas;
using testkit::Picture;

namespace {

Picture Paint(double scale, void (*draw)()) {
  Canvas canvas(120, 80, scale);
  canvas.window().color = 0xEEF1F3;
  XwSetDashes(nullptr, 0, 0, 0);
  XwClear(0, 0, 0, 0);
  XwSetColor(0x1D2022);
  draw();
  Picture p{canvas.surface().width, canvas.surface().height, {}};
  for (int y = 0; y < p.height; ++y)
    for (int x = 0; x < p.width; ++x) p.pixels.push_back(canvas.at(x, y));
  return p;
}

ContextRef Target() {
  return reinterpret_cast<ContextRef>(XW->context);
}

void Shapes() {
  static const int16_t kStar[] = {62, 2, 76, 38, 44, 16, 80, 16, 48, 38};
  static const int16_t kWave[] = {4, 70, 14, 60, 14, 70, 30, 70, 40, 74, 40, 56};
  XwFillRect(2, 2, 11, 7);
  XwDrawRect(16, 2, 11, 7);
  XwDrawRect(30, 2, 1, 7);
  XwDrawLine(2, 14, 30, 14);
  XwDrawLine(34, 2, 34, 14);
  XwDrawLine(2, 18, 40, 34);
  XwDrawLine(40, 18, 2, 54);
  XwDrawLine(38, 14, 38, 14);
  XwDrawLines(kWave, 6);
  XwFillPolygon(kStar, 5);
  XwFillEllipse(84, 2, 31, 21);
  XwDrawEllipse(84, 26, 31, 21);
  XwBox(50, 50, 20, 20, 0xD77538);
  XwBox(70, 50, 20, 20, 0x2B39C0);
}

void Dashes() {
  static const uint8_t kEven[] = {4, 4, 0}, kOdd[] = {5, 2, 1, 0}, kLong[] = {9, 3, 2, 3, 0};
  static const int16_t kPath[] = {4, 76, 4, 50, 30, 50, 50, 70, 50, 50};
  XwSetDashes(kEven, 0, 0x0000FF, 0xFF0000);
  XwDrawRect(2, 2, 50, 30);
  XwSetDashes(kOdd, 1, 0x008000, 0x00FFFF);
  XwDrawLine(60, 4, 115, 4);
  XwDrawLine(60, 8, 115, 40);
  XwDrawLines(kPath, 5);
  XwSetDashes(kLong, -3, 0, 0xFFFFFF);
  XwDrawRect(60, 46, 55, 30);
  XwSetDashes(nullptr, 0, 0, 0);
}

void Frames() {
  static const int kColumns[] = {20, 15, 18, 0};
  for (int i = 0; i < 3; ++i) XwDrawBevel(3 + i * 38, 3, 34, 18, i);
  XwDrawHole(3, 25, 20, 16, -1);
  XwDrawHole(26, 25, 20, 16, -2);
  XwDrawHole(49, 25, 20, 16, 0x578B2E);
  XwDrawSeparator(74, 32, 40, 0);
  XwDrawSeparator(94, 25, 0, 16);
  XwDrawTable(3, 46, 3, 9, kColumns);
  XwDrawProgress(64, 48, 50, 12, 20);
  XwDrawProgress(64, 64, 50, 10, 42);
  XwDrawBorder();
}

void Icons() {
  XwIcon* const icons[] = {IC_POPUP_MORE_DATA_UP,
                           IC_POPUP_MORE_DATA_DOWN,
                           IC_EXCHANGE,
                           IC_SMALL_ARROW_UP,
                           IC_SMALL_ARROW_DOWN,
                           IC_OPT_DIALOG,
                           IC_OPT_MENU,
                           IC_CHECKBOX,
                           IC_ARROWS};
  int x = 2;
  for (XwIcon* icon : icons) {
    XwDrawIcon(icon, x, 3, 0, 0, 0x1D2022, -1);
    x += icon->width + 2;
  }
  XwDrawIcon(IC_ARROWS, 2, 24, 25, 0, 0xD77538, -1);
  XwDrawIcon(IC_EXCHANGE, 40, 24, 60, 40, 0x2B39C0, 0xFFFFFF);
}

void ImagesAndClips() {
  uint8_t pixels[16 * 12 * 4];
  for (int i = 0; i < 16 * 12; ++i) {
    pixels[4 * i] = 0xAA;
    pixels[4 * i + 1] = uint8_t(i % 16 * 16);
    pixels[4 * i + 2] = uint8_t(i / 16 * 20);
    pixels[4 * i + 3] = uint8_t(255 - i);
  }
  XwPutImageData(3, 3, 16, 12, pixels);
  ClipContextToRect(Target(), {24, 5, 33, 35});
  XwPutImageData(22, 3, 16, 12, pixels);
  XwFillEllipse(20, 18, 20, 20);
  RestoreContextClip(Target());
  uint8_t* image = XwAllocImage(16, 12);
  std::copy(pixels, pixels + sizeof pixels, image);
  XwPutImage(4, 3, 44, 6, 8, 6, image);
  XwPutImage(-4, -3, 60, 3, 100, 100, image);
  XwFreeImage(image);
}

}  // namespace

TEST(Golden, Pages) {
  struct {
    const char* name;
    void (*draw)();
  } const pages[] = {{"shapes", Shapes},
                     {"dashes", Dashes},
                     {"frames", Frames},
                     {"icons", Icons},
                     {"images", ImagesAndClips}};
  for (const auto& page : pages) {
    for (double scale : {1.0, 1.25, 1.5, 2.0}) {
      char name[64];
      snprintf(name, sizeof name, "%s_%g", page.name, scale);
      EXPECT_TRUE(testkit::MatchesReference(Paint(scale, page.draw), PICTURES, name));
    }
  }
}
