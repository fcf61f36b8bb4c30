// Moving, showing, focus, titles, the selection; and cursors of windows.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>

#include "platform/display/window.h"
#include "platform/windows/windows.h"
#include "tests/toolkit/stage.h"
#include "toolkit/core/state.h"
#include "toolkit/core/trace.h"

namespace {

using namespace stage;

TEST(Geometry, AMovedSubWindowIsRedrawnWithItsFamily) {
  XwWindow* main = OpenMain();
  Sub(main, "a", 0, 0, 20, 20);
  XwWindow* b = Sub(main, "b", 30, 0, 20, 20);
  XwWindow* inner = Sub(b, "inner", 5, 5, 5, 5);
  Sub(main, "c", 60, 0, 20, 20);
  Settle();
  XwMove(b, 30, 0, 20, 20);
  EXPECT_EQ(RunTrace(), "") << "nothing changed";
  XwMove(b, 40, 10, 25, 22);
  EXPECT_EQ(RunTrace(), "main 769 b 769 a 769 b 769 c 769");
  const int sizes[][2] = {{300, 200}, {25, 22}, {20, 20}, {25, 22}, {20, 20}};
  for (size_t i = 0; i < seen.size(); ++i) {
    EXPECT_EQ(seen[i].event.x, 0);
    EXPECT_EQ(seen[i].event.width, sizes[i][0]);
    EXPECT_EQ(seen[i].event.height, sizes[i][1]);
  }
  EXPECT_EQ(b->origin_x, 40);
  EXPECT_EQ(inner->origin_x, 35) << "those of descendants stay";
  XwMove(inner, 1, 2, 5, 5);
  EXPECT_EQ(inner->origin_x, 1);
  EXPECT_EQ(inner->origin_y, 2);
  seen.clear();
  Settle();
  XwMove(b, INT_MAX, INT_MIN, 100000, -100000);
  EXPECT_EQ(b->x, 32767);
  EXPECT_EQ(b->y, -32768);
  EXPECT_EQ(b->width, 32767);
  EXPECT_EQ(b->height, -32768);
  Settle();
  XwMove(b, INT_MAX - 1, INT_MIN, 100000, -100000);
  EXPECT_EQ(RunTrace(), "") << "the same after saturation";
}

TEST(Geometry, AMovedTopLevelWindowGetsOneNotice) {
  XwWindow* main = OpenMain();
  Inp.item = 5;
  const struct {
    int x, y, width, height;
    const char* trace;
  } rows[] = {
      {150, 160, 300, 200, "main 768"}, {150, 160, 300, 200, "main 768"},
      {150, 160, 200, 150, "main 768"}, {150, 160, 220, 150, "main 768 main 769"},
      {150, 160, 33, 44, "main 768"},
  };
  for (const auto& row : rows) {
    seen.clear();
    XwMove(main, row.x, row.y, row.width, row.height);
    EXPECT_EQ(Inp.x, row.x);
    EXPECT_EQ(Inp.width, row.width);
    EXPECT_EQ(RunTrace(), row.trace) << row.width;
    EXPECT_EQ(seen[0].event.height, row.height);
    EXPECT_EQ(main->width, row.width);
    EXPECT_EQ(platform::GetWindowBounds(Native(main), platform::kWindowContentRgn).width(),
              row.width);
  }
  XwSetSizes(main, 100, 100, 500, 500, 50, 50);
  XwMove(main, 150, 160, 33, 777);
  EXPECT_EQ(main->width, 33) << "a program's own size is never snapped";
  EXPECT_EQ(main->height, 777);
  XwMove(main, 0, 100, 0, INT_MIN);
  EXPECT_EQ(main->width, 1);
  EXPECT_EQ(main->height, 1);
}

TEST(Geometry, CentredOver) {
  XwWindow* main = OpenMain();
  XwWindow* w = XwCreate(0, 10, 50, 51, 31, Record);
  XwCenter(w, main);
  EXPECT_EQ(w->x, 100 + 150 - 25);
  EXPECT_EQ(w->y, 100 + 100 - 15);
  EXPECT_EQ(w->width, 51);
  XwCenter(w, nullptr);
  XwCenter(nullptr, main);
  XwCenter(main, main);
  EXPECT_EQ(main->x, 100);
}

TEST(Geometry, FullScreenUntilMoved) {
  Open();
  XwSetFullScreen();
  XwWindow* main = Main();
  XwSetFullScreen();
  RunLoop();
  EXPECT_EQ(main->x, 0);
  EXPECT_EQ(main->y, platform::GetMBarHeight());
  EXPECT_EQ(main->width, XW_SCREENX);
  EXPECT_EQ(main->height, XW_SCREENY - platform::GetMBarHeight());
  EXPECT_TRUE(Native(main)->state & platform::kStateFullScreen);
  XwMove(main, 50, 50, 100, 100);
  EXPECT_FALSE(Native(main)->state & platform::kStateFullScreen);
}

TEST(Geometry, SizeLimitsSaturate) {
  XwWindow* main = OpenMain();
  EXPECT_FALSE(Native(main)->attributes & platform::kWindowResizableAttribute);
  XwSetSizes(main, -1, 100, 70000, 0, INT_MAX, INT_MIN);
  EXPECT_EQ(main->min_width, 0);
  EXPECT_EQ(main->min_height, 100);
  EXPECT_EQ(main->max_width, 65535);
  EXPECT_EQ(main->max_height, 0);
  EXPECT_EQ(main->step_x, 65535);
  EXPECT_EQ(main->step_y, 0);
  EXPECT_TRUE(Native(main)->attributes & platform::kWindowResizableAttribute);
}

TEST(Geometry, ShowingASubWindow) {
  XwWindow* main = OpenMain();
  XwWindow* a = XwCreate(main, 10, 10, 50, 60, Record);
  Name(a, "a");
  Sub(a, "inner", 0, 0, 5, 5);
  Settle();
  const struct {
    int show;
    const char* trace;
    int width;
  } rows[] = {{0, "", 0}, {1, "a 769", 50}, {-7, "", 0}, {0, "main 769", 300}, {0, "", 0}};
  for (const auto& row : rows) {
    seen.clear();
    XwShow(a, row.show);
    EXPECT_EQ(RunTrace(), row.trace);
    EXPECT_EQ((a->flags & XW_SHOWN) != 0, row.show != 0);
    if (!seen.empty()) {
      EXPECT_EQ(seen[0].event.width, row.width);
    }
  }
}

TEST(Geometry, HiddenSubWindowsShowNothing) {
  XwWindow* main = OpenMain();
  XwWindow* a = XwCreate(main, 10, 10, 50, 50, nullptr);
  XwWindow* inner = XwCreate(a, 10, 10, 20, 20, nullptr);
  XwShow(inner, 1);
  auto paint = [&](XwWindow* w, int32_t colour) {
    XwSet(w);
    XwBox(0, 0, 100, 100, colour);
    XwSet(nullptr);
    platform::FlushWindow(nullptr);
    input::Picture p = input::TakePicture(Native(main));
    return p.pixels[size_t((24 + 25) * p.width + 25)];
  };
  Settle();
  paint(main, 0xFFFFFF);
  EXPECT_EQ(paint(inner, 0x0000FF), 0xFFFFFFFFu) << "its parent is hidden";
  XwShow(a, 1);
  EXPECT_EQ(paint(inner, 0x0000FF), 0xFFFF0000u);
  EXPECT_EQ(paint(main, 0x00FF00), 0xFFFF0000u) << "shown children are cut out";
  XwShow(a, 0);
  EXPECT_EQ(paint(inner, 0xFF0000), 0xFFFF0000u);
  EXPECT_EQ(paint(main, 0x00FF00), 0xFF00FF00u);
  // What happens to one sub-window is nothing to its siblings: showing many costs no more for each.
  XwWindow* sibling = Sub(main, "sibling", 100, 100, 20, 20);
  XwSet(sibling);
  XwContext* kept = sibling->context;
  XwShow(a, 1);
  XwMove(a, 20, 20, 50, 50);
  EXPECT_EQ(sibling->context, kept);
}

TEST(Geometry, ShowingAndEnablingATopLevelWindow) {
  XwWindow* main = OpenMain();
  XwShow(main, 0);
  EXPECT_FALSE(platform::IsWindowVisible(Native(main)));
  EXPECT_EQ(main->flags & XW_SHOWN, 0) << "no flag is kept";
  XwShow(main, 1);
  XwShow(main, 1);
  EXPECT_EQ(RunTrace(), "main 769") << "shown again: drawn once";
  XwEnable(main, 0);
  EXPECT_FALSE(platform::IsWindowActive(Native(main)));
  EXPECT_EQ(main->enabled, 0);
  XwEnable(main, 256);
  EXPECT_TRUE(platform::IsWindowActive(Native(main)));
  EXPECT_EQ(main->enabled, 1);
  XwWindow* sub = Sub(main, "sub", 0, 0, 10, 10);
  XwEnable(sub, 1);
  EXPECT_EQ(sub->enabled, 1);
}

TEST(Geometry, FocusIsTheTopLevelWindows) {
  XwWindow* main = OpenMain();
  XwWindow* other = XwCreate(-255, 500, 100, 50, 50, Record);
  XwShow(other, 1);
  XwWindow* inner = Sub(Sub(main, "a", 0, 0, 20, 20), "inner", 0, 0, 5, 5);
  Settle();
  XwSetFocus(inner);
  EXPECT_EQ(Inp.focus, main);
  input::KeyDown('k');
  RunLoop();
  EXPECT_EQ(seen.back().window, main);
  EXPECT_TRUE(platform::IsWindowActive(Native(main)));
}

TEST(Geometry, Titles) {
  XwWindow* main = OpenMain();
  char text[256];
  const struct {
    const char *title, *shown;
  } rows[] = {
      {"Caf\x8E", "Caf\u00E9"},
      {"\xA5 \xDB \xF0", "\u2022 \u20AC \uF8FF"},
      {"", ""},
      {"tab\tand\nline", nullptr},
  };
  for (const auto& row : rows) {
    XwSetText(main, row.title);
    if (row.shown) {
      EXPECT_EQ(input::ShownTitle(Native(main)), row.shown);
    }
    EXPECT_STREQ(XwGetText(main, text), row.title);
    XwSetValue(main, 1);
    if (row.shown) {
      EXPECT_EQ(input::ShownTitle(Native(main)), std::string("\u2022 ") + row.shown);
    }
    EXPECT_STREQ(XwGetText(main, text), row.title) << "without the mark";
    XwSetValue(main, 0);
    if (row.shown) {
      EXPECT_EQ(input::ShownTitle(Native(main)), row.shown);
    }
  }
  // Every character survives, and 255 fit.
  std::string all;
  for (int c = 1; c < 256; ++c) all.push_back(char(c));
  XwSetText(main, all.c_str());
  EXPECT_EQ(XwGetText(main, text), all);
  XwSetText(main, (all + "more").c_str());
  EXPECT_EQ(XwGetText(main, text), all);
  XwSetText(main, std::string(1000, '\xF0').c_str());
  EXPECT_EQ(XwGetText(main, text), std::string(255, '\xF0'));
  XwSetTextUtf8(main, "印刷 \xff");
  EXPECT_EQ(input::ShownTitle(Native(main)), "印刷 \ufffd");
  EXPECT_STREQ(XwGetText(main, text), "?? ?");
  XwSetTextUtf8(main, std::string(5000, '\xff').c_str());
  EXPECT_EQ(input::ShownTitle(Native(main)).size(), 4095u) << "cut between characters";
  XwSetTextUtf8(main, nullptr);
  EXPECT_STREQ(XwGetText(main, text), "");
  EXPECT_EQ(XwGetText(main, nullptr), nullptr);
  EXPECT_STREQ(XwGetText(nullptr, text), "");
  XwSetValue(main, 0x100);
  EXPECT_EQ(input::ShownTitle(Native(main)), "");
}

TEST(Geometry, TheSelectionStack) {
  XwWindow* main = OpenMain();
  XwWindow* a = Sub(main, "a", 0, 0, 20, 20);
  XwPop();
  EXPECT_EQ(XW, nullptr);
  XwSet(main);
  XwPush(a);
  XwPush(nullptr);
  EXPECT_EQ(XW, nullptr);
  XwPop();
  EXPECT_EQ(XW, a);
  XwPop();
  EXPECT_EQ(XW, main);
  for (int i = 0; i < 250; ++i) XwPush(i % 2 ? a : main);
  EXPECT_EQ(XW, a);
  TakeRefusal();
  XwPush(main);
  EXPECT_EQ(TakeRefusal(), Refusal::kStackTooDeep);
  EXPECT_EQ(XW, main);
  for (int i = 0; i < 50; ++i) XwPop();
  EXPECT_EQ(XW, main) << "what was not kept is not selected again";
  for (int i = 0; i < 201; ++i) XwPop();
  EXPECT_EQ(XW, main);
  EXPECT_EQ(XStackCount, 0);
  XwPop();
  EXPECT_EQ(XW, main);
  XwSet(a);
  XwPush(main);
  XwDestroy(a);
  EXPECT_EQ(XStack[0], nullptr);
}

TEST(Cursors, ByIndex) {
  XwWindow* main = OpenMain();
  XwWindow* sub = Sub(main, "sub", 50, 50, 100, 100);
  Settle();
  auto shown = [&] { return reinterpret_cast<XwCursor*>(input::ShownCursor(Native(main))); };
  for (int i = 0; i < 19; ++i) EXPECT_NE(XWcursors[i], nullptr) << i;
  for (int i = 19; i < XW_CURSORS; ++i) EXPECT_EQ(XWcursors[i], nullptr) << i;
  MoveTo(110, 110);
  EXPECT_EQ(Inp.window, main);
  const struct {
    int index, entry;
  } rows[] = {{0, 0}, {1, 1}, {18, 18}, {19, 19}, {20, 20}, {21, 0}, {-1, 0}, {INT_MAX, 0}};
  for (const auto& row : rows) {
    XwCursor* before = shown();
    XwSetCursor(main, row.index);
    EXPECT_EQ(main->cursor, XWcursors[row.entry]) << row.index;
    EXPECT_EQ(shown(), XWcursors[row.entry] ? XWcursors[row.entry] : before) << row.index;
  }
  // Of a window that does not have the current event: when the pointer next enters it.
  XwSetCursor(sub, 6);
  EXPECT_EQ(shown(), XWcursors[0]);
  MoveTo(180, 180);
  EXPECT_EQ(shown(), XWcursors[6]);
  MoveTo(110, 112);
  EXPECT_EQ(shown(), XWcursors[0]);
  XwSetCursor(main, 19);
  MoveTo(181, 180);
  MoveTo(110, 110);
  EXPECT_EQ(shown(), XWcursors[6]) << "none: the pointer stays as it was";
}

}  // namespace
