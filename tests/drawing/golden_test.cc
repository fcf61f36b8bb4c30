// Reference pictures of frames, images and clips at four scales. Shapes, dashes and icons are held
// against a second reading in random_test.cc.
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
  } const pages[] = {{"frames", Frames}, {"images", ImagesAndClips}};
  for (const auto& page : pages) {
    for (double scale : {1.0, 1.25, 1.5, 2.0}) {
      char name[64];
      snprintf(name, sizeof name, "%s_%g", page.name, scale);
      EXPECT_TRUE(testkit::MatchesReference(Paint(scale, page.draw), PICTURES, name));
    }
  }
}
