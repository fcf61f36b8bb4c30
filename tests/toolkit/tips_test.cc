// Tips: when they show and go, and what the described tree says of them.
#include <gtest/gtest.h>

#include <cmath>

#include "platform/windows/internal.h"
#include "tests/toolkit/control_stage.h"
#include "toolkit/events/session.h"
#include "toolkit/windows/tips.h"

namespace {

using namespace stage;

// The window of the tip that shows; null.
platform::WindowRef Tip() {
  for (platform::WindowRef w : platform::WindowList())
    if (w->parent && w->visible) return w;
  return nullptr;
}
// Whether there is text in it.
bool HasInk(platform::WindowRef tip) {
  XwSync();
  const auto picture = input::TakePicture(tip);
  int dark = 0;
  for (uint32_t pixel : picture.pixels) dark += pixel && (pixel & 0xFF) < 0x80;
  return dark > 9;
}
void Rest() {
  RunFor(0.6);
}

struct TipScreen : ControlScreen {
  TipScreen() {
    XwButton(main, IC_ARROWS, 1, 10, 10, 26, 26, kOn | XWC_ICON, 0);
    XwWindow* sub = Sub(main, "sub", 150, 50, 100, 100);
    XwSetTip(XwFind(main, 1), 0, "Pause");
    XwSetTip(sub, 0, "All");
    MakeList(sub, "One");
    XwButton(sub, "", 3, 5, 20, 30, 20, kOn, 0);
    main->children[1]->id = 2;
    Settle();
  }
  static void MakeList(XwWindow* sub, const char* first, int before = 0) {
    XwPush(sub);
    XwBoxList(3, 0, 0, 0, 0);
    for (int i = 0; i < before; ++i) {
      XwBoxList(9, 80, 0, 10, 20);
      XwSetTip(sub, i + 1, "Elsewhere");
    }
    XwBoxList(7, 0, 0, 50, 40);
    XwSetTip(sub, before + 1, first);
    XwBoxList(8, 50, 0, 50, 20);
    XwBoxList(4, 0, 0, 0, 0);
    XwPop();
  }
  XwWindow* sub() const { return XwFind(main, 2); }
};

TEST(Tips, TheyShowWhereThePointerRests) {
  TipScreen s;
  const struct {
    int x, y;
    bool shows;
    int top;                                   // of the tip on the screen
  } rows[] = {{275, 180, true, 180 + 16 + 4},  // a control over the box
              {120, 120, true, 100 + 36 + 4},
              {270, 160, true, 150 + 40 + 4},
              {320, 160, true, 160 + 16 + 4},  // another box: that of the window
              {120, 250, false, 0}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.x);
    input::MovePointer(row.x, row.y);
    RunFor(0.4);
    EXPECT_FALSE(Tip());
    RunFor(0.2);
    ASSERT_EQ(Tip() != nullptr, row.shows);
    if (!row.shows) continue;
    EXPECT_EQ(Tip()->content.top, row.top);
    EXPECT_EQ(Tip()->content.left, row.x);
    EXPECT_GT(Tip()->content.width(), 20);
    // It stays while the pointer moves over the same thing, and no time ends it.
    input::MovePointer(row.x + 3, row.y + 1);
    RunFor(3);
    EXPECT_TRUE(Tip());
  }
  // A pointer that does not rest shows none.
  for (int i = 0; i < 9; ++i) {
    input::MovePointer(112 + 2 * i, 120);
    RunFor(0.3);
    EXPECT_FALSE(Tip());
  }
  // Nor does one that has left, and what it rested before does not count when it comes back.
  input::MovePointer(120, 120);
  RunFor(0.4);
  input::MovePointer(600, 600);
  Rest();
  EXPECT_FALSE(Tip());
  input::MovePointer(120, 120);
  RunFor(0.4);
  EXPECT_FALSE(Tip());
  RunFor(0.2);
  EXPECT_TRUE(Tip());
}

TEST(Tips, WhatEndsOne) {
  const struct {
    const char* name;
    bool stays;
    void (*act)();
  } rows[] = {
      {"press", true, [] { input::Click(120, 120); }},
      {"key", true, [] { input::KeyDown('a', 'a'); }},
      {"wheel", true, [] { input::Scroll(0, 48); }},
      {"leave", false, [] { input::MovePointer(600, 600); }},
      {"other thing", false, [] { input::MovePointer(110, 250); }},
      {"taken away", true, [] { XwSetTip(XwFind(W_Start, 1), 0, nullptr); }},
      {"destroyed", true, [] { XwDestroy(XwFind(W_Start, 1)); }},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    TipScreen s;
    input::MovePointer(120, 120);
    Rest();
    ASSERT_TRUE(Tip());
    row.act();
    RunFor(0.01);
    EXPECT_FALSE(Tip());
    // Nor does it come again over the same thing, moved there or not.
    if (row.stays) input::MovePointer(121, 121);
    Rest();
    EXPECT_FALSE(Tip());
    input::Release(1);
    RunFor(0.01);
    DropSession();
  }
}

TEST(Tips, ThoseOfBoxesBelongToTheirList) {
  TipScreen s;
  input::MovePointer(270, 160);
  Rest();
  const platform::WindowRef tip = Tip();
  ASSERT_TRUE(tip);
  const uint64_t serial = tip->object.serial;
  EXPECT_TRUE(HasInk(tip));
  input::ChangeScreen(1920, 1080, 1.5);
  RunLoop();
  EXPECT_TRUE(HasInk(tip)) << "at another scale too";
  input::ChangeScreen(1280, 1024, 1);
  RunLoop();
  // Drawn again alike, the tip stays; with another text it changes; without one it goes.
  s.MakeList(s.sub(), "One");
  ASSERT_EQ(Tip(), tip);
  EXPECT_EQ(tip->object.serial, serial);
  s.MakeList(s.sub(), "One and more words");
  ASSERT_TRUE(Tip());
  EXPECT_GT(Tip()->content.width(), 80);
  // Boxes that come before it change its position, not what the pointer is on.
  const uint64_t longer = Tip()->object.serial;
  s.MakeList(s.sub(), "One and more words", 1);
  ASSERT_TRUE(Tip());
  EXPECT_EQ(Tip()->object.serial, longer);
  XwPush(s.sub());
  XwBoxList(3, 0, 0, 0, 0);
  XwBoxList(7, 0, 0, 50, 20);
  XwBoxList(4, 0, 0, 0, 0);
  XwPop();
  EXPECT_FALSE(Tip());
  // There is no such box.
  XwSetTip(s.sub(), 3, "None");
  XwSetTip(s.sub(), -1, "None");
  XwSetTip(nullptr, 0, "None");
  EXPECT_EQ(TipOf(s.sub(), 3), "");
  XwSetTip(s.sub(), 0, "a\xFF");
  EXPECT_EQ(TipOf(s.sub(), 0), "a\uFFFD");
}

TEST(Tips, AnAlertKeepsThemAway) {
  TipScreen s;
  XwWindow* other = XwCreate(0, 700, 100, 100, 100, Record);
  XwShow(other, 1);
  Settle();
  input::MovePointer(120, 120);
  RunFor(0.7, other);
  EXPECT_FALSE(Tip());
}

TEST(Tips, TheDescribedTreeHasThem) {
  TipScreen s;
  EXPECT_EQ(Node("Pause").help, "Pause");
  EXPECT_EQ(Node("Pause").what.role, platform::ObjectRole::kButton);
  XwDescribeControl(XwFind(s.main, 1), "Hold");
  EXPECT_EQ(Node("Hold").help, "Pause");
  const XwWindow* button = XwFind(s.main, 1);
  XwDestroy(XwFind(s.main, 1));
  EXPECT_EQ(TipOf(button, 0), "") << "whatever takes its place in memory";
}

TEST(Scale, IsThatOfTheWindowAndOfItsScreen) {
  ControlScreen s;
  EXPECT_EQ(XwGetScale(nullptr), 1);
  input::ChangeScreen(1920, 1080, 1.5);
  RunLoop();
  EXPECT_EQ(XwGetScale(s.main), 1.5);
  EXPECT_EQ(XwGetScale(nullptr), 1.5);
  bool drawn = false;
  for (const Seen& e : seen) drawn |= e.type == XWE_EXPOSE;
  EXPECT_TRUE(drawn);
  // On the second of two screens.
  input::ChangeScreens({{{0, 0, 1280, 1024}, 1}, {{1280, 0, 3280, 1024}, 2}});
  XwWindow* other = XwCreate(0, 1300, 100, 50, 50, Record);
  XwShow(other, 1);
  RunLoop();
  EXPECT_EQ(XwGetScale(other), 2);
  EXPECT_EQ(XwGetScale(s.main), 1);
  EXPECT_EQ(XwGetScale(nullptr), 1);
}

// A picture of numbered pixels, in a rectangle of 4 x 2 at each scale.
TEST(Scale, PicturesHaveTheDevicesPixels) {
  const struct {
    const char* scale;
    int width, height, first;  // its row that shows first
    std::vector<int> columns;  // and its columns there
  } rows[] = {{"2", 8, 4, 0, {0, 1, 2, 3, 4, 5, 6, 7}},
              {"2", 4, 2, 0, {0, 0, 1, 1, 2, 2, 3, 3}},
              {"2", 3, 1, 0, {0, 0, 0, 1, 1, 2, 2, 2}},
              {"1", 8, 4, 1, {1, 3, 5, 7}},
              {"1", 1, 1, 0, {0, 0, 0, 0}},
              {"1.5", 6, 3, 0, {0, 1, 2, 3, 4, 5}}};
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.scale) + " " + std::to_string(row.width));
    setenv("XW_SCALE", row.scale, 1);
    ControlScreen s;
    std::vector<uint8_t> pixels(size_t(4 * row.width * row.height));
    for (size_t i = 0; i < pixels.size(); i += 4) {
      pixels[i + 1] = uint8_t(i / 4 % size_t(row.width));
      pixels[i + 2] = uint8_t(i / 4 / size_t(row.width));
      pixels[i + 3] = 77;
    }
    XwSet(s.main);
    XwPutImageScaled(20, 10, 4, 2, pixels.data(), row.width, row.height);
    XwPutImageScaled(20, 10, 4, 2, nullptr, 9, 9);
    XwPutImageScaled(20, 10, 0, 2, pixels.data(), row.width, row.height);
    XwPutImageScaled(20, 10, 4, 2, pixels.data(), 0, row.height);
    XwSync();
    const auto p = input::TakePicture(Native(s.main));
    const double scale = atof(row.scale);
    const int left = int(20 * scale), top = int((10 + platform::GetMBarHeight()) * scale);
    const uint32_t* shown = &p.pixels[size_t(top * p.width + left)];
    for (size_t i = 0; i < row.columns.size(); ++i)
      EXPECT_EQ(shown[i] & 0xFFFFFF, uint32_t(row.columns[i] << 16 | row.first << 8 | 77)) << i;
    EXPECT_EQ(shown[row.columns.size()] & 0xFFFFFF, 0xFFFFFFu);
    unsetenv("XW_SCALE");
    DropSession();
  }
}

// At 1.5 a rectangle of 5 columns is 7 or 8 wide on the device, by where it begins; a picture for
// it has 8.
TEST(Scale, APictureOfTheRectanglesSizeIsShownOneToOne) {
  setenv("XW_SCALE", "1.5", 1);
  ControlScreen s;
  const uint8_t pixels[32] = {0, 1, 0, 0, 0, 2, 0, 0, 0, 3, 0, 0, 0, 4, 0, 0,
                              0, 5, 0, 0, 0, 6, 0, 0, 0, 7, 0, 0, 0, 8, 0, 0};
  XwSet(s.main);
  for (const int x : {20, 21}) {
    XwPutImageScaled(x, 10, 5, 1, pixels, 8, 1);
    XwSync();
    const auto p = input::TakePicture(Native(s.main));
    const int top = int(std::lround((10 + platform::GetMBarHeight()) * 1.5));
    const uint32_t* shown = &p.pixels[size_t(top * p.width + std::lround(x * 1.5))];
    for (int i = 0; i < 7; ++i) EXPECT_EQ(shown[i] >> 16 & 0xFF, unsigned(i + 1)) << x;
  }
  unsetenv("XW_SCALE");
  DropSession();
}

}  // namespace
