// Drawing into real windows: clips, backgrounds and sub-windows of a session on the headless
// display.
#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/display/window.h"
#include "platform/windows/windows.h"
#include "toolkit/xw.h"

using namespace platform;

namespace {

constexpr int32_t kRed = 0x0000FF, kGreen = 0x00FF00;

class Target : public testing::Test {
 protected:
  void SetUp() override {
    setenv("XW_DISPLAY", "headless", 1);
    XwSession("target", "Target", 7);
    w_ = XwCreate(0, 50, 50, 100, 80, nullptr);
    XwShow(w_, 1);
    sub_ = XwCreate(w_, 20, 30, 40, 30, nullptr);
  }
  // A pixel of the window's content, 0xRRGGBB.
  uint32_t At(int x, int y) {
    const Window* native = static_cast<WindowRef>(w_->platform);
    const Surface& s = native->surface;
    return s.pixels[(y + native->menu_bar_height) * s.stride + x] & 0xFFFFFF;
  }
  int Count(uint32_t rgb) {
    int n = 0;
    for (int y = 0; y < 80; ++y)
      for (int x = 0; x < 100; ++x) n += At(x, y) == rgb;
    return n;
  }
  XwWindow *w_, *sub_;
};

}  // namespace

TEST_F(Target, ClipRectangles) {
  struct {
    uint16_t x, y, width, height;
    int painted;
  } const cases[] = {{10, 10, 5, 6, 30},   {0, 0, 0, 0, 8000},   {10, 10, 0, 6, 8000},
                     {10, 10, 5, 0, 8000}, {95, 75, 60, 60, 25}, {200, 200, 5, 5, 0},
                     {65535, 0, 9, 9, 0}};
  XwSet(w_);
  for (const auto& c : cases) {
    XwClip(0, 0, 0, 0);
    XwBox(0, 0, 100, 80, kGreen);
    XwClip(c.x, c.y, c.width, c.height);
    EXPECT_EQ(XW, w_);
    XwBox(-500, -500, 2000, 2000, kRed);
    EXPECT_EQ(Count(0xFF0000), c.painted) << c.x << " " << c.width;
  }
  XwClip(3, 3, 4, 4);
  XwSet(nullptr);
  ResetClipMask(w_);
  XwSet(w_);  // the rectangle outlives the context
  XwBox(0, 0, 100, 80, 0xFF0000);
  EXPECT_EQ(Count(0x0000FF), 16);
}

TEST_F(Target, SubWindowsAreCutOutAndTranslated) {
  XwSet(w_);
  XwBox(0, 0, 100, 80, kGreen);
  XwSet(sub_);
  XwBox(0, 0, 100, 100, kRed);  // hidden: nothing shows
  EXPECT_EQ(Count(0xFF0000), 0);
  XwShow(sub_, 1);
  XwSet(sub_);
  XwBox(-5, -5, 100, 100, kRed);
  EXPECT_EQ(Count(0xFF0000), 40 * 30);
  EXPECT_EQ(At(20, 30), 0xFF0000u);
  XwSetColor(0xFF0000);
  XwDrawLine(0, 0, 5, 0);
  EXPECT_EQ(At(25, 30), 0x0000FFu);
  XwSet(w_);
  XwBox(0, 0, 100, 80, 0x123456);  // the sub-window stays
  EXPECT_EQ(Count(0xFF0000), 40 * 30 - 6);
}

// Selecting another window gives its context back the solid lines that it was made with.
TEST_F(Target, SubWindowsForgetDashes) {
  const uint8_t dashes[] = {2, 2, 0}, none[] = {0};
  XwShow(sub_, 1);
  for (XwWindow* w : {sub_, w_}) {
    XwSet(w);
    XwSetDashes(dashes, 0, kRed, kRed);
    XwDrawLine(0, 0, 9, 0);
    XwSetDashes(none, 0, 0, 0);
    XwSet(w == w_ ? sub_ : w_);
    XwSet(w);
    XwBox(0, 10, 20, 1, kGreen);
    XwSetColor(kRed);
    XwDrawLine(0, 10, 19, 10);
    EXPECT_EQ(Count(0x00FF00) == 0, w == sub_) << (w == w_);
    XwSetDashes(nullptr, 0, 0, 0);
    XwBox(0, 10, 20, 1, kRed);
  }
}

TEST_F(Target, Grounds) {
  struct {
    int code, brush;
  } const cases[] = {{0, 0}, {1, 15}, {4, 52}, {9, 9}, {-1, -1}, {1 << 20, 32767}};
  for (const auto& c : cases) {
    for (XwWindow* w : {w_, sub_}) {
      XwSetGround(w, nullptr, c.code);
      EXPECT_EQ(w->brush, c.brush);
    }
  }
  int32_t colour = kRed;
  XwSetGround(w_, &colour, 3);
  EXPECT_EQ(w_->brush, 0);
  EXPECT_EQ(w_->color, kRed);
  EXPECT_EQ(WindowBackground(static_cast<WindowRef>(w_->platform)), 0xFF0000u);
  XwSetGround(w_, nullptr, 0);  // no brush; the colour is kept
  EXPECT_EQ(w_->color, kRed);
  XwSet(w_);
  XwClear(0, 0, 0, 0);
  EXPECT_EQ(Count(0xFF0000), 8000);
  XwSetGround(w_, nullptr, 1);
  XwBox(0, 0, 100, 80, kGreen);
  XwClear(0, 0, 10, 10);
  EXPECT_EQ(Count(0xFFFFFF), 100);
  XwSetGround(reinterpret_cast<XwWindow*>(&colour), nullptr, 1);  // not a window
}

// It has no part in the first window's background, and covers none of its content.
TEST_F(Target, ADockedWindowStandsByItself) {
  const int32_t colour = kGreen;
  XwSetGround(w_, &colour, 3);
  XwWindow* docked = XwCreateDocked(w_, 10, 10, 30, 20, nullptr);
  XwSetGround(docked, nullptr, 0);
  XwShow(docked, 1);
  XwSet(docked);
  XwBox(0, 0, 30, 20, kRed);
  XwDrawHole(0, 0, 30, 20, -2);
  const Surface& s = static_cast<WindowRef>(docked->platform)->surface;
  EXPECT_EQ(s.pixels[5 * s.stride + 5] & 0xFFFFFF, 0xFFFFFFu);
  XwSet(w_);
  XwBox(0, 0, 100, 80, kRed);
  EXPECT_EQ(Count(0xFF0000), 8000);
}
