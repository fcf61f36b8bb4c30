// Toolbars: what their lists become, what reaches the window, and their place on the screen.
#include <gtest/gtest.h>

#include <cstring>

#include "platform/controls/controls.h"
#include "tests/toolkit/control_stage.h"
#include "toolkit/core/alive.h"
#include "toolkit/target/selection.h"

namespace {

using namespace stage;

XwValue Of(const void* pointer) {
  return reinterpret_cast<XwValue>(pointer);
}

constexpr uint32_t kEnter = 0xFF0D, kTab = 0xFF09, kRight = 0xFF53, kDown = 0xFF54;
XwMenuItem menu[] = {{"One", 0, 71, nullptr}, {"Two", 0, 72, nullptr}, {}};
const char* const kTexts[] = {"a", "wwwwwwwwwwww", nullptr};

// Each item between two others tells its width and its advance.
TEST(Toolbar, ItemsStandSideBySide) {
  ControlScreen s;
  const int text = XwTextWidth(FT_BUTTON, "Print");
  const int longest = XwTextWidth(nullptr, kTexts[1]);
  const int label = XwTextWidth(nullptr, "Print"), check = XwTextWidth(XWF_NORMAL, "Print");
  const struct {
    XwToolbarItem item;
    int kind, x, y, width, height, advance;
  } rows[] = {
      {{XWB_BUTTON, Of("Print"), 1, 0}, XWK_BUTTON, 0, 9, text + 30, 27, text + 35},
      {{XWB_BUTTON, 0, 1, 0}, XWK_BUTTON, 0, 9, 30, 27, 35},
      {{XWB_BUTTON, Of("Print"), 1, Of(menu)}, XWK_BUTTON, 0, 7, text + 20, 26, text + 30},
      {{XWB_BUTTON, Of(""), 1, Of(menu)}, XWK_BUTTON, 0, 7, 15, 26, 25},
      {{XWB_EDIT_COMBO | 10, Of(kTexts), 1, 0}, XWK_COMBO, 0, 7, longest + 55, 26, longest + 57},
      {{XWB_LIST | 300, Of(kTexts), 1, 0}, XWK_COMBO, 0, 7, 300, 26, 302},
      {{XWB_LIST, Of(kTexts), 1, 0}, XWK_COMBO, 0, 7, longest + 45, 26, longest + 47},
      {{XWB_LIST | 80, 0, 1, 0}, XWK_COMBO, 0, 7, 80, 26, 82},
      {{XWB_COLOR, 0x123456, 1, 0}, XWK_COLOR, 0, 7, 50, 26, 52},
      {{XWB_GAP, 0, 1, 0}, 0, 0, 0, 0, 0, 5},
      {{XWB_ICON, Of(IC_ARROWS), 1, 0}, XWK_BUTTON, 0, 7, 26, 26, 28},
      {{XWB_ICON | XWB_CLOSER, Of(IC_ARROWS), 1, 0}, XWK_BUTTON, 0, 7, 26, 26, 25},
      {{XWB_ICON, Of(IC_ARROWS), 1, Of(menu)}, XWK_BUTTON, 0, 7, 34, 26, 36},
      {{XWB_ICON, 0, 1, 0}, XWK_BUTTON, 0, 7, 26, 26, 28},
      {{XWB_OPTIONS, 0, 1, 0}, XWK_BUTTON, -3, 7, 15, 26, 14},
      {{XWB_LABEL, Of("Print"), 1, 0}, XWK_LABEL, 0, 7, label + 25, 26, label + 25},
      {{XWB_LABEL | 90, Of("Print"), 1, 0}, XWK_LABEL, 0, 7, 90, 26, 90},
      {{XWB_SLIDER | 90, Of("-5,20,7"), 1, 0}, XWK_SCROLL, 0, 7, 90, 26, 92},
      {{XWB_EDIT | 60, Of("2"), 1, 0}, XWK_EDIT, 0, 9, 60, 24, 62},
      {{XWB_CHECK_BOX, Of("Print"), 1, 0}, XWK_CHECK_BOX, 0, 12, -1, 16, check + 45},
      {{XWB_CHECK_BOX | 33, Of("Print"), 1, 0}, XWK_CHECK_BOX, 0, 12, -1, 16, 33},
      {{1, 0, 1, 0}, 0, 0, 0, 0, 0, 0},
      {{0xC000000, 0, 1, 0}, 0, 0, 0, 0, 0, 0},
      {{0xF000000, 0, 1, 0}, 0, 0, 0, 0, 0, 0},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.item.word);
    const XwToolbarItem items[] = {row.item, {XWB_COLOR, 0, 2, 0}, {}};
    ASSERT_TRUE(XwSetToolbar(s.main, items));
    XwWindow* w = XwGetToolbarItem(s.main, 1);
    ASSERT_EQ(w != nullptr, row.kind != 0);
    EXPECT_EQ(XwGetToolbarItem(s.main, 2)->x, 7 + row.advance);
    if (!w) continue;
    EXPECT_EQ(w->kind, row.kind);
    EXPECT_EQ(w->x, 7 + row.x);
    EXPECT_EQ(w->y, row.y);
    if (row.width >= 0) {
      EXPECT_EQ(w->width, row.width);
    }
    EXPECT_EQ(w->height, row.height);
    EXPECT_TRUE(w->enabled);
  }
}

// What has come to the window but pointer events and redraws: 795 as "id=value".
std::string Heard() {
  std::string out;
  for (const Seen& e : seen)
    if (e.type == XWE_TOOLBAR)
      out += std::to_string(e.event.item) + "=" + std::to_string(e.event.value) + " ";
    else if (e.type != XWE_KEY_UP && (e.type < XWE_CONFIGURE || e.type > XWE_TIMER))
      out += std::to_string(e.type) + " ";
  seen.clear();
  return out;
}
void Type(std::initializer_list<uint32_t> keys) {
  for (const uint32_t key : keys) {
    input::KeyDown(key, key < 128 ? key : 0);
    input::KeyUp(key, key < 128 ? key : 0);
  }
  RunLoop();
}
std::string Keys(std::initializer_list<uint32_t> keys) {
  Type(keys);
  return Heard();
}

TEST(Toolbar, WhatTheUserDoesComesToTheWindow) {
  ControlScreen s;
  const XwToolbarItem items[] = {
      {XWB_ICON, Of(IC_ARROWS), 1, 0},         {XWB_ICON, Of(IC_ARROWS), 2, Of(menu)},
      {XWB_LIST | 90, Of(kTexts), 3, 0},       {XWB_SLIDER | 60, Of("0,100,40"), 4, 0},
      {XWB_EDIT | 40, Of("2"), 5, 0},          {XWB_ICON | XWB_DISABLED, Of(IC_ARROWS), 6, 0},
      {XWB_EDIT_COMBO | 90, Of(kTexts), 7, 0}, {},
  };
  XwSetToolbar(s.main, items);
  XwMove(s.main, 100, 100, 500, 200);
  Settle();
  auto click = [&](int id, int dx = 10, std::initializer_list<uint32_t> keys = {}) {
    const XwWindow* w = XwGetToolbarItem(s.main, id);
    input::Click(100 + w->x + dx, 100 + w->y + 10);
    return Keys(keys);
  };
  input::Click(100 + 10, 100 + 17);
  RunLoop();
  ASSERT_FALSE(seen.empty());
  EXPECT_EQ(seen.back().event.window, s.main);
  EXPECT_EQ(seen.back().event.root_x, 110);
  EXPECT_EQ(seen.back().event.root_y, 117);
  EXPECT_EQ(Heard(), "1=0 ");
  input::Click(100 + XwGetToolbarItem(s.main, 2)->x + 10, 117);
  Type({kDown, kDown, kEnter});
  EXPECT_EQ(seen.back().event.root_x, 100 + XwGetToolbarItem(s.main, 2)->x + 10);
  EXPECT_EQ(Heard(), "72=0 ");
  EXPECT_EQ(click(3, 10, {kDown, kEnter}), "3=1 ");
  EXPECT_EQ(click(4, 1), "4=0 ");
  EXPECT_EQ(click(5, 10, {'7', kEnter}), "5=0 ");
  EXPECT_EQ(click(6), "");
  EXPECT_EQ(click(7, 10), "-7=0 ");
  // A press on the background of the bar is not the window's.
  input::Click(100 + 2, 100 + 20);
  RunLoop();
  for (const Seen& e : seen) EXPECT_NE(e.type, XWE_PRESS);
  seen.clear();
  // By the keyboard alone.
  XwSetFocus(s.main);
  EXPECT_EQ(Keys({kTab, ' '}), "513 1=0 ");
  EXPECT_EQ(Keys({kTab, kEnter, kDown, kEnter}), "513 71=0 ");
  EXPECT_EQ(Keys({kTab, kTab, kRight}), "513 513 4=1 ");
}

TEST(Toolbar, SettingAnItem) {
  ControlScreen s;
  const XwToolbarItem items[] = {
      {XWB_CHECK_BOX, Of("Check"), 1, 0},
      {XWB_EDIT | 40, Of("x"), 2, 0},
      {XWB_LIST, Of(kTexts), 3, 0},
      {XWB_EDIT_COMBO, Of(kTexts), 4, 0},
      {XWB_SLIDER | 60, Of("1,9"), 5, 0},
      {XWB_SLIDER | 60, Of("1,4294967299,9"), 6, 0},
      {},
  };
  XwSetToolbar(s.main, items);
  auto value = [&](int id) { return XwGetValue(XwGetToolbarItem(s.main, id)); };
  for (const int state : {2, 0, 3, 1}) {
    for (int id = 1; id <= 4; ++id) {
      XwSetToolbarItem(s.main, id, state);
      EXPECT_EQ(XwGetToolbarItem(s.main, id)->enabled, state != 0);
    }
    EXPECT_EQ(value(1), state >> 1);
    EXPECT_EQ(value(2), state >> 1);
    EXPECT_EQ(value(3), state >> 1);
  }
  // The texts of the combo box are still there.
  const XwWindow* combo = XwGetToolbarItem(s.main, 4);
  XwMove(s.main, 100, 100, 600, 200);
  RunLoop();
  input::Click(100 + combo->x + combo->width - 5, 100 + combo->y + 5);
  Type({kDown, kDown, kEnter});
  char text[40];
  XwGetTextUtf8(XwGetToolbarItem(s.main, 4), text, sizeof text);
  EXPECT_STREQ(text, kTexts[1]);
  EXPECT_EQ(value(5), 1);
  EXPECT_EQ(value(6), 9) << "numbers that are too large are cut";
  XwSetToolbarItem(s.main, 99, 2);
  XwSetToolbarItem(nullptr, 1, 2);
  EXPECT_EQ(XwGetToolbarItem(s.main, 99), nullptr);
}

TEST(Toolbar, ItComesAndGoes) {
  ControlScreen s;
  const XwToolbarItem none[] = {{}}, one[] = {{XWB_COLOR, 0x1FFFFFFFF & INTPTR_MAX, 1, 0}, {}};
  const XwToolbarItem more[] = {{XWB_COLOR, 1, 1, 0}, {XWB_COLOR, 1, 2, 0}, {}};
  XwShowToolbar(s.main, 1);
  EXPECT_EQ(XwSetToolbar(s.main, nullptr), nullptr);
  XwWindow* bar = XwSetToolbar(s.main, none);
  ASSERT_TRUE(bar);
  EXPECT_EQ(s.main->toolbar, bar);
  EXPECT_EQ(bar->child_count, 0);
  EXPECT_EQ(bar->width, XW_SCREENX);
  EXPECT_TRUE(bar->flags & XW_SHOWN);
  for (const XwToolbarItem* items : {one, more, one}) EXPECT_EQ(XwSetToolbar(s.main, items), bar);
  EXPECT_EQ(bar->child_count, 1);
  EXPECT_TRUE(platform::FindControlUnderMouse({20, 20}, Native(s.main)));
  EXPECT_FALSE(platform::FindControlUnderMouse({70, 20}, Native(s.main))) << "it has ended";
  EXPECT_EQ(XwGetToolbarItem(s.main, 1)->value, -1);
  XwShowToolbar(s.main, 0);
  EXPECT_FALSE(bar->flags & XW_SHOWN);
  // The bar follows the screen.
  input::ChangeScreen(1600, 900, 1);
  RunLoop();
  EXPECT_EQ(bar->width, 1600);
  EXPECT_EQ(XwSetToolbar(s.main, nullptr), nullptr);
  EXPECT_FALSE(IsLive(bar));
  EXPECT_EQ(s.main->toolbar, nullptr);
  EXPECT_EQ(XwGetToolbarItem(s.main, 1), nullptr);
  EXPECT_EQ(XwSetToolbar(XwButton(s.main, "", 1, 0, 0, 9, 9, kOn, 0), none), nullptr);
}

// The line below it, and around it in a docked window.
TEST(Toolbar, ItHasALineBelow) {
  ControlScreen s;
  input::ChangeScreen(1600, 900, 1);
  XwMove(s.main, 50, 50, 1500, 150);
  XwWindow* docked = XwCreateDocked(s.main, 20, 20, 100, 80, Record);
  const XwToolbarItem none[] = {{}};
  for (XwWindow* w : {s.main, docked}) {
    XwSetToolbar(w, none);
    XwShow(w, 1);
    RunLoop();
    const auto picture = input::TakePicture(Native(w));
    const int top = picture.height - w->height;
    auto pixel = [&](int x, int y) {
      return picture.pixels[size_t(top + y) * size_t(picture.width) + size_t(x)] & 0xFFFFFF;
    };
    const uint32_t line = uint32_t(XwThemeColor(XWR_HAIRLINE));
    EXPECT_EQ(pixel(50, 39), (line & 0xFF) << 16 | (line & 0xFF00) | line >> 16);
    EXPECT_NE(pixel(50, 37), pixel(50, 39));
    EXPECT_EQ(pixel(w->width - 9, 39), pixel(50, 39)) << "as wide as the screen is now";
    const bool lines = w == docked;
    EXPECT_EQ(pixel(w->width - 1, 20) == pixel(50, 39), lines);
    EXPECT_EQ(pixel(0, 20) == pixel(50, 39), lines);
    EXPECT_EQ(pixel(50, 0) == pixel(50, 39), lines);
  }
}

}  // namespace
