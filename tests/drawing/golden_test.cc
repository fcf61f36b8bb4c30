// Reference pictures of frames at four scales. Shapes, dashes, images, icons and clips are held
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

}  // namespace

TEST(Golden, Frames) {
  for (double scale : {1.0, 1.25, 1.5, 2.0}) {
    char name[64];
    snprintf(name, sizeof name, "frames_%g", scale);
    EXPECT_TRUE(testkit::MatchesReference(Paint(scale, Frames), PICTURES, name));
  }
}
