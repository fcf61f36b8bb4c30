// Hit-box lists.
#include <gtest/gtest.h>

#include <climits>

#include "tests/toolkit/stage.h"
#include "toolkit/core/trace.h"
#include "toolkit/windows/boxes.h"

namespace {

using namespace stage;

// The box under the pointer at (x, y) of `w`.
int Hit(XwWindow* w, int x, int y) {
  Inp.window = w;
  Inp.px = x;
  Inp.py = y;
  return XCheckbl(w->boxes);
}

TEST(Boxes, TheLastOneOnTopIsHitByItsPosition) {
  Open();
  XwWindow* w = Main();
  XwSet(w);
  XwBoxList(3, 0, 0, 0, 0);
  XwBoxList(10, 10, 10, 50, 50);
  XwBoxList(11, 40, 40, 50, 50);
  EXPECT_EQ(Hit(w, 20, 20), 1);
  EXPECT_EQ(Hit(w, 50, 50), 2);
  EXPECT_EQ(Inp.x, 40);
  EXPECT_EQ(Inp.y, 40);
  EXPECT_EQ(Inp.width, 50);
  EXPECT_EQ(Inp.height, 50);
  EXPECT_EQ(Hit(w, 5, 5), 0);
  EXPECT_EQ(Inp.x, 40) << "a miss leaves the rectangle";
  EXPECT_EQ(Hit(w, 10, 20), 0) << "the border is outside";
  XwBoxList(0, 45, 45, 10, 10);
  EXPECT_EQ(Hit(w, 50, 50), 0) << "id 0 hides what lies under it";
  EXPECT_EQ(Hit(w, 70, 70), 2);
  XwBoxList(65536, 60, 60, 20, 20);
  EXPECT_EQ(Hit(w, 70, 70), 0) << "cut to 16 bits the id is 0";
}

TEST(Boxes, OpenClosedAndStartedAgain) {
  Open();
  XwWindow* w = Main();
  XwSet(w);
  TakeRefusal();
  XwBoxList(5, 0, 0, 10, 10);
  EXPECT_EQ(TakeRefusal(), Refusal::kNoBoxList);
  XwBoxList(4, 0, 0, 0, 0);
  XwBoxList(3, 0, 0, 0, 0);
  for (int i = 0; i < 35; ++i) XwBoxList(100 + i, i * 4, 0, 4, 4);
  for (int i = 0; i < 35; ++i) ASSERT_EQ(Hit(w, i * 4 + 2, 2), i + 1);
  XwBoxList(4, 0, 0, 0, 0);
  XwBoxList(7, 200, 100, 20, 20);
  EXPECT_EQ(Hit(w, 210, 110), 0);
  EXPECT_EQ(Hit(w, 2, 2), 1);
  XwBoxList(3, 0, 0, 0, 0);
  EXPECT_EQ(Hit(w, 2, 2), 0);
  XwBoxList(7, 200, 100, 20, 20);
  EXPECT_EQ(Hit(w, 210, 110), 1);
}

TEST(Boxes, ManyAndFar) {
  Open();
  XwWindow* w = Main();
  XwSet(w);
  XwBoxList(3, 0, 0, 0, 0);
  XwBoxList(1, INT_MIN, INT_MIN, INT_MAX, INT_MAX);
  EXPECT_EQ(Hit(w, -5, -5), 1) << "saturated to 16 bits";
  EXPECT_EQ(Hit(w, 5, 5), 0);
  for (int i = 0; i < 70000; ++i) XwBoxList(1, 0, 0, 10, 10);
  int position = Hit(w, 5, 5);
  EXPECT_GT(position, 60000);
  EXPECT_LT(position, 65536);
}

TEST(Boxes, EventsOfOtherWindowsDoNotCount) {
  Open();
  XwWindow* w = Main();
  XwWindow* sub = Sub(w, "sub", 0, 0, 100, 100);
  XwSet(w);
  XwBoxList(3, 0, 0, 0, 0);
  XwBoxList(9, 0, 0, 300, 200);
  XwSet(sub);
  XwBoxList(3, 0, 0, 0, 0);
  XwBoxList(8, 20, 20, 20, 20);
  XwSet(nullptr);
  XwBoxList(3, 0, 0, 0, 0);
  Settle();
  Inp.window = sub;
  EXPECT_EQ(XCheckbl(w->boxes), 0);
  EXPECT_EQ(XCheckbl(nullptr), 0);
  MoveTo(130, 130);
  EXPECT_EQ(seen.back().window, sub);
  EXPECT_EQ(seen.back().event.item, 1);
  EXPECT_EQ(seen.back().event.x, 20);
  MoveTo(150, 150);
  EXPECT_EQ(seen.back().event.item, 0);
  MoveTo(250, 150);
  EXPECT_EQ(seen.back().window, w);
  EXPECT_EQ(seen.back().event.item, 1);
  input::KeyDown('k');
  RunLoop();
  EXPECT_EQ(seen.back().type, 'k');
  EXPECT_EQ(seen.back().event.item, 1);
}

}  // namespace
