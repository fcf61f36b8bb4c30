// Hit-box lists.
#include <gtest/gtest.h>

#include <climits>

#include "tests/toolkit/control_stage.h"
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
  XwWindow* w = OpenMain();
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
  XwWindow* w = OpenMain();
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
  XwWindow* w = OpenMain();
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
  XwWindow* w = OpenMain();
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

// --- What is drawn describes itself.

struct Thing {
  int id, x;
  int role;
  uint32_t state;
  const char *name, *value;
};
std::vector<Thing> things;
int draws = 0;
int DrawThings(int type) {
  if (type != XWE_EXPOSE) return Record(type);
  ++draws;
  XwSet(Inp.window);
  XwBoxList(3, 0, 0, 0, 0);
  for (const Thing& t : things) {
    XwBoxList(t.id, t.x, 10, 40, 20);
    XwDescribe(-1, t.role, t.state, t.name, t.value);
  }
  XwBoxList(4, 0, 0, 0, 0);
  XwDescribe(0, XWA_TABLE, 0, "jobs", std::to_string(things.size()).c_str());
  return 0;
}

// Everything that was told, by the first letters of what has changed.
std::string told;
uint64_t told_of;  // the last one's serial
void Hear(void*, uint64_t serial, platform::Change what) {
  told += "nvsbce"[int(what)];
  told_of = serial;
}
platform::TreeListener listener = {Hear, nullptr};

std::string Redraw(XwWindow* w) {
  told.clear();
  XwSendEvent(w, XWE_EXPOSE, 0, 0, 0);
  RunLoop();
  return told;
}

TEST(Describe, IsKeptOnlyWhileSomebodyListens) {
  Open();
  things = {{7, 10, XWA_ROW, XWT_SELECTED, "a.pdf", "3 pages"},
            {8, 60, XWA_BUTTON, XWT_DISABLED, "Stop", nullptr},
            {0, 290, 99, 0, "no role", ""},
            {0, 300, int(platform::ObjectRole::kMenu), 0, "no role of a program's", ""},
            {9, 400, XWA_STATUS, XWT_EXPANDED | 1u << 31, "out\xFF", "of sight"}};
  XwWindow* w = Main(DrawThings);
  XwWindow* sub = Sub(w, "sub", 20, 40, 200, 100, DrawThings);
  Settle();
  EXPECT_EQ(Node("Stop").serial, 0u);
  draws = 0;
  platform::AddTreeListener(&listener);
  RunLoop();
  EXPECT_EQ(draws, 2) << "each window was asked to draw";
  EXPECT_EQ(XwBoxId(w, 2), 8);
  EXPECT_EQ(XwBoxId(w, 0) + XwBoxId(w, 6) + XwBoxId(nullptr, 1), 0);
  const auto roots = platform::DescribeTree();
  ASSERT_EQ(roots[0].children.size(), 5u) << "the bar, three things, the sub-window";
  const DescribedNode &row = roots[0].children[1], &far = roots[0].children[3];
  EXPECT_EQ(row.what.role, platform::ObjectRole::kRow);
  EXPECT_EQ(row.what.value, "3 pages");
  EXPECT_EQ(row.what.state, platform::kIsShown | platform::kIsEnabled | platform::kIsSelected);
  EXPECT_EQ(row.what.bounds, (Rect{110, 110, 150, 130}));
  EXPECT_EQ(far.what.name, "out\uFFFD");
  EXPECT_EQ(far.what.state, platform::kIsEnabled | platform::kIsExpanded);
  EXPECT_EQ(State("Stop"), platform::kIsShown);
  EXPECT_EQ(roots[0].what.role, platform::ObjectRole::kWindow);
  EXPECT_EQ(roots[0].what.value, "5");
  const DescribedNode& pane = roots[0].children[4];
  EXPECT_EQ(pane.what.role, platform::ObjectRole::kTable);
  ASSERT_EQ(pane.children.size(), 3u);
  EXPECT_EQ(pane.children[0].what.bounds, (Rect{130, 150, 170, 170}));
  XwSet(sub);
  XwDescribe(0, XWA_TABLE, 0, "jobs", "none");
  EXPECT_EQ(told_of, pane.serial);
  platform::RemoveTreeListener(&listener);
  EXPECT_EQ(Node("Stop").serial, 0u) << "nothing is kept";
  XwDestroy(sub);
}

TEST(Describe, TheSameThingKeepsItsSerialAndChangesAreTold) {
  Open();
  things = {{7, 10, XWA_ROW, 0, "a.pdf", "waits"}, {8, 60, XWA_ROW, 0, "b.pdf", "waits"}};
  XwWindow* w = Main(DrawThings);
  platform::AddTreeListener(&listener);
  RunLoop();
  const uint64_t a = Node("a.pdf").serial, b = Node("b.pdf").serial;
  EXPECT_NE(a, b);
  EXPECT_EQ(Redraw(w), "");
  things[0] = {7, 12, XWA_ROW, XWT_SELECTED, "a.pdf", "prints"};
  EXPECT_EQ(Redraw(w), "vsb");
  EXPECT_EQ(Node("a.pdf").serial, a);
  things[1].role = XWA_CELL;
  EXPECT_EQ(Redraw(w), "ec");
  EXPECT_NE(Node("b.pdf").serial, b);
  std::swap(things[0], things[1]);
  EXPECT_EQ(Redraw(w), "ecec") << "another place: another thing";
  EXPECT_NE(Node("a.pdf").serial, a);
  things.pop_back();
  EXPECT_EQ(Redraw(w), "ev") << "it has gone, and the window tells how many there are";
  XwSet(w);
  XwDescribe(1, XWA_CELL, 0, "b.pdf", "done");
  EXPECT_EQ(Node("b.pdf").what.value, "done") << "also between redraws";
  told.clear();
  XwDestroy(w);
  EXPECT_NE(told.find('e'), std::string::npos);
  XwSet(nullptr);
  XwDescribe(1, XWA_CELL, 0, "nobody", "");
  platform::RemoveTreeListener(&listener);
}

}  // namespace
