// The window tree: making and ending windows.
#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <cstring>

#include "platform/display/window.h"
#include "platform/events/queue.h"
#include "platform/windows/windows.h"
#include "tests/toolkit/stage.h"
#include "toolkit/core/alive.h"
#include "toolkit/core/record.h"
#include "toolkit/core/state.h"
#include "toolkit/core/trace.h"

namespace {

using namespace stage;

TEST(Tree, StylesOfTopLevelWindows) {
  Open();
  using namespace platform;
  constexpr uint32_t kStandard = 0x2000000, kBoxes = 0x200000F;
  const struct {
    int style, window_class;
    uint32_t attributes;
    int brush;
  } rows[] = {
      {0, kDocumentWindowClass, kBoxes, 52},
      {-1000, kDocumentWindowClass, kBoxes, 52},
      {-257, kDocumentWindowClass, kBoxes, 52},
      {-256, kAlertWindowClass, kStandard, 52},
      {-255, kDocumentWindowClass, kStandard, 0},
      {-254, kFloatingWindowClass, kStandard, 7},
      {-253, kDocumentWindowClass, kStandard, 1},
      {-252, kFloatingWindowClass, kStandard, 7},
      {-251, kDocumentWindowClass, kStandard, 0},
      {-250, kAlertWindowClass, kStandard, 3},
      {-249, kToolbarWindowClass, kStandard, 0},
      {-1, kToolbarWindowClass, kBoxes, 0},
      {-256 + 1 + 8, kDocumentWindowClass, kStandard | kWindowCollapseBoxAttribute, 0},
      {-256 + 1 + 16, kDocumentWindowClass, kStandard | kWindowFullZoomAttribute, 0},
      {-256 + 1 + 32, kDocumentWindowClass, kStandard | kWindowCloseBoxAttribute, 0},
  };
  for (const auto& row : rows) {
    XwWindow* w = XwCreate(row.style, 10, 40, 20, 20, Record);
    ASSERT_NE(w, nullptr);
    EXPECT_EQ(stage::Native(w)->window_class, row.window_class) << row.style;
    EXPECT_EQ(stage::Native(w)->attributes, row.attributes) << row.style;
    EXPECT_EQ(w->brush, row.brush) << row.style;
    EXPECT_EQ(w->color, -1);
    EXPECT_FALSE(IsWindowVisible(stage::Native(w)));
    EXPECT_EQ(stage::Native(w)->state & kStateModal, row.style == -253 ? kStateModal : 0u);
    EXPECT_EQ(w->cursor, XWcursors[0]);
  }
}

TEST(Tree, TheFirstWindowIsTheMainOne) {
  Open();
  XwWindow* w = XwCreate(0, 100, 100, 30, 20, Record);
  EXPECT_EQ(W_Start, w);
  EXPECT_EQ(W_End, w);
  EXPECT_EQ(w->parent, W_Root);
  EXPECT_EQ(input::ShownTitle(Native(w)), "Stage");
  XwWindow* second = XwCreate(0, 100, 100, 30, 20, Record);
  EXPECT_EQ(input::ShownTitle(Native(second)), "");
  EXPECT_EQ(W_Start, w);
  EXPECT_EQ(W_End, second);
  EXPECT_EQ(w->next, second);
  EXPECT_EQ(second->previous, w);
  const uint16_t limits[] = {30, 20, 30, 20, 0, 0};
  EXPECT_EQ(memcmp(&second->min_width, limits, sizeof limits), 0);
}

TEST(Tree, BoundsAreKeptOnTheScreen) {
  setenv("XW_SCREEN", "800x600", 1);
  Open();
  const struct {
    int x, y, width, height;
    Rect first, later;  // with and without the menu bar
  } rows[] = {
      {-50, 100, 200, 100, {0, 100, 200, 200}, {0, 100, 200, 200}},
      {700, 100, 200, 100, {600, 100, 800, 200}, {600, 100, 800, 200}},
      {10, 590, 200, 100, {10, 500, 210, 600}, {10, 500, 210, 600}},
      {10, 0, 200, 100, {10, 24, 210, 124}, {10, 0, 210, 100}},
      {10, 10, 2000, 1000, {0, 24, 2000, 1024}, {0, 0, 2000, 1000}},
      {40000, -40000, 50, 50, {750, 24, 800, 74}, {750, 0, 800, 50}},
      {5, 50, -5, 70000, {5, 24, 6, 32791}, {5, 0, 6, 32767}},
      {5, 50, 0, 100, {0, 24, 800, 600}, {0, 24, 800, 600}},
      {5, 50, 100, 0, {0, 24, 800, 600}, {0, 24, 800, 600}},
  };
  auto bounds = [](XwWindow* w) { return Rect{w->x, w->y, w->x + w->width, w->y + w->height}; };
  XwWindow* first = XwCreate(0, rows[0].x, rows[0].y, rows[0].width, rows[0].height, Record);
  EXPECT_EQ(bounds(first), rows[0].first);
  for (const auto& row : rows) {
    XwWindow* w = XwCreate(0, row.x, row.y, row.width, row.height, Record);
    EXPECT_EQ(bounds(w), row.later) << row.x << " " << row.y;
    EXPECT_EQ((Native(w)->state & platform::kStateFullScreen) != 0,
              row.width == 0 || row.height == 0);
    EXPECT_EQ(Native(first)->state & platform::kStateFullScreen, 0u);
  }
}

TEST(Tree, OriginsOfSubWindows) {
  XwWindow* main = OpenMain();
  XwWindow* outer = XwCreate(main, 10, 20, 100, 100, Record);
  XwWindow* inner = XwCreate(outer, 5, 7, 50, 50, Record);
  EXPECT_EQ(outer->origin_x, 10);
  EXPECT_EQ(inner->origin_x, 15);
  EXPECT_EQ(inner->origin_y, 27);
  EXPECT_EQ(inner->x, 5);
  EXPECT_EQ(inner->kind, 12);
  EXPECT_EQ(inner->flags & XW_SHOWN, 0);
  EXPECT_EQ(inner->platform, main->platform);
  EXPECT_EQ(inner->min_width, 0);
  EXPECT_TRUE(main->flags & XW_HAS_SUBWINDOWS);
  EXPECT_TRUE(outer->flags & XW_HAS_SUBWINDOWS);
  XwWindow* far = XwCreate(inner, 40000, -40000, 100000, -3, Record);
  EXPECT_EQ(far->x, 32767);
  EXPECT_EQ(far->origin_x, 32767);
  EXPECT_EQ(far->y, -32768);
  EXPECT_EQ(far->origin_y, -32741);
  EXPECT_EQ(far->width, 32767);
  EXPECT_EQ(far->height, -3);
  XwDestroy(inner);
  EXPECT_FALSE(outer->flags & XW_HAS_SUBWINDOWS);
  EXPECT_TRUE(main->flags & XW_HAS_SUBWINDOWS);
}

TEST(Tree, SlotsAreUsedAgain) {
  XwWindow* main = OpenMain();
  std::vector<XwWindow*> children;
  for (int i = 0; i < 25; ++i) {
    children.push_back(XwCreate(main, i, 0, 10, 10, Record));
    children.back()->id = 100 + i % 20;
    ASSERT_EQ(main->children[i], children.back());
  }
  EXPECT_EQ(main->child_count, 25);
  EXPECT_EQ(XwFind(main, 103), children[3]) << "the first with that id";
  XwDestroy(children[3]);
  XwDestroy(children[7]);
  EXPECT_EQ(main->child_count, 25) << "the count never shrinks";
  EXPECT_EQ(XwFind(main, 103), children[23]);
  EXPECT_EQ(XwFind(main, 999), nullptr);
  EXPECT_EQ(XwFind(nullptr, 100), nullptr);
  XwWindow* again = XwCreate(main, 0, 0, 1, 1, Record);
  EXPECT_EQ(main->children[3], again);
  EXPECT_EQ(main->children[7], nullptr);
  XwCreate(again, 0, 0, 1, 1, Record)->id = 555;
  EXPECT_EQ(XwFind(main, 555), nullptr) << "grandchildren are not searched";
  // A record stands in one list once.
  AddSubWindow(main, children[0]);
  AddSubWindow(again, children[0]);
  AddSubWindow(nullptr, again);
  AddSubWindow(main, nullptr);
  EXPECT_EQ(main->children[7], nullptr);
  EXPECT_EQ(again->child_count, 1);
}

TEST(Tree, Descent) {
  XwWindow* main = OpenMain();
  XwWindow* a = XwCreate(main, 0, 0, 10, 10, Record);
  XwWindow* b = XwCreate(a, 0, 0, 10, 10, Record);
  XwWindow* docked = XwCreateDocked(main, 0, 0, 10, 10, Record);
  const struct {
    XwWindow *window, *candidate;
    int below;
  } rows[] = {{main, a, 1},    {main, b, 1},      {a, b, 1},      {b, a, 0},
              {main, main, 0}, {main, docked, 1}, {W_Root, b, 1}, {nullptr, a, 0},
              {a, nullptr, 0}, {docked, main, 0}};
  for (const auto& row : rows) EXPECT_EQ(IsSubWindow(row.window, row.candidate), row.below);
}

TEST(Tree, DockedWindows) {
  XwWindow* main = OpenMain();
  XwWindow* docked = XwCreateDocked(main, 450, 120, 60, 80, Record);
  Name(docked, "docked");
  EXPECT_EQ(docked->parent, main);
  EXPECT_EQ(docked->kind, 0);
  EXPECT_EQ(docked->flags2, XW_DOCKED);
  EXPECT_EQ(docked->brush, 3);
  EXPECT_EQ(docked->x, 450) << "on the screen when made";
  EXPECT_EQ(Native(docked)->window_class, platform::kSimpleWindowClass);
  EXPECT_EQ(Native(docked)->attributes, 0x2200000u);
  XwShow(docked, 1);
  Settle();
  // It follows the main window, without a notice of its own, before the main window is told.
  input::Configure(Native(main), {110, 105, 410, 305});
  static XwWindow* watched;
  watched = docked;
  on_event = [](int) { EXPECT_EQ(watched->x, 460); };
  RunLoop();
  on_event = nullptr;
  EXPECT_EQ(Trace(), "main 768");
  EXPECT_EQ(docked->y, 125);
  seen.clear();
  XwMove(main, 100, 100, 300, 200);
  RunLoop();
  EXPECT_EQ(docked->x, 450);
  EXPECT_EQ(platform::GetWindowBounds(Native(docked), platform::kWindowContentRgn).left, 450);
  // Moved by the program it is placed relative to its parent, which stays.
  seen.clear();
  XwMove(docked, 10, 10, 60, 80);
  EXPECT_EQ(RunTrace(), "docked 768");
  EXPECT_EQ(docked->x, 110);
  EXPECT_EQ(docked->y, 110);
  EXPECT_EQ(main->x, 100);
  XwMove(docked, INT_MAX, INT_MIN, 60, 80);
  EXPECT_EQ(docked->x, 32767);
  XwMove(main, 200, 100, 300, 200);
  platform::ActivateWindow(Native(main), false);
  XwDestroy(docked);
  EXPECT_TRUE(platform::IsWindowActive(Native(main)));
}

TEST(Tree, WindowsNestAsDeepAsMemoryAllows) {
  constexpr int kDeep = 20000;
  XwWindow* main = OpenMain();
  std::vector<XwWindow*> chain{main};
  for (int i = 0; i < kDeep; ++i) {
    // Here and there another child, before the way down or after it.
    if (i % 100 == 1) XwCreate(chain.back(), 0, 0, 5, 5, Record);
    chain.push_back(XwCreate(chain.back(), 0, 0, 100, 100, Record));
    if (i % 100 == 0) XwCreate(chain[size_t(i)], 0, 0, 5, 5, Record);
    XwShow(chain.back(), 1);
  }
  platform::FlushEventQueue(platform::GetMainEventQueue(), free);
  XwWindow* deepest = chain.back();
  XwTimer(deepest, 1, 10);
  XwPush(deepest);
  XwFillRect(0, 0, 10, 10);
  EXPECT_NE(deepest->context, nullptr);
  // Whatever changes above it makes its clip again.
  XwMove(chain[1], 5, 5, 100, 100);
  XwShow(chain[2], 0);
  XwSet(deepest);
  input::Configure(Native(main), {110, 105, 420, 315});
  RunFor(0.001);
  XwSet(nullptr);
  EXPECT_EQ(deepest->context, nullptr);
  EXPECT_EQ(IsSubWindow(main, deepest), 1);
  XwSet(deepest);
  GrabWindow = deepest;
  XwDestroy(chain[kDeep / 2 + 2]);
  EXPECT_FALSE(IsLive(deepest));
  EXPECT_EQ(XW, nullptr);
  EXPECT_EQ(GrabWindow, nullptr);
  ASSERT_TRUE(IsLive(chain[kDeep / 2 + 1]));
  EXPECT_TRUE(chain[kDeep / 2 + 1]->flags & XW_HAS_SUBWINDOWS) << "one child is left";
  XwDestroy(chain[1]);
  int left = 0;
  for (XwWindow* w = W_Start; w; w = w->next) ++left;
  EXPECT_EQ(left, 2) << "the main window and the child beside the chain";
  EXPECT_EQ(W_End->parent, main);
}

TEST(Tree, EndingAWindowLeavesNoPointerToIt) {
  XwWindow* main = OpenMain();
  XwWindow* top = XwCreate(0, 500, 100, 200, 200, Record);
  XwWindow* a = Sub(top, "a", 0, 0, 50, 50);
  XwWindow* b = Sub(a, "b", 0, 0, 20, 20);
  XwWindow* last = XwCreate(main, 0, 0, 10, 10, Record);
  Settle();
  b->user_data = malloc(10);
  b->text = static_cast<char*>(malloc(10));
  static char not_owned;
  a->user_data = &not_owned;
  a->flags |= XW_DATA_NOT_OWNED;
  XwSet(b);
  XwBoxList(3, 0, 0, 0, 0);
  XwPush(a);
  XwPush(main);
  XwPush(b);
  main->toolbar = nullptr;
  top->toolbar = a;
  SetLinked(last, b);
  SetLinked(main, b);
  W_MenuBar = b;
  Inp.window = a;
  Inp.focus = b;
  GrabWindow = b;
  PassiveGrab = true;
  XwTimer(b, 1, 10);
  XwTimer(a, 2, 10);
  XwSendEvent(b, 1000, 0, 0, 0);
  XwSendEvent(main, 1001, 0, 0, 0);
  XwSendEvent(a, 1002, 0, 0, 0);
  XwDestroy(a);
  EXPECT_EQ(top->toolbar, nullptr);
  EXPECT_EQ(main->linked, nullptr);
  EXPECT_EQ(last->linked, nullptr);
  EXPECT_EQ(W_MenuBar, nullptr);
  EXPECT_EQ(Inp.window, nullptr);
  EXPECT_EQ(Inp.focus, nullptr);
  EXPECT_EQ(GrabWindow, nullptr);
  EXPECT_FALSE(PassiveGrab);
  EXPECT_EQ(XW, nullptr);
  XwPop();
  EXPECT_EQ(XW, main);
  XwPop();
  EXPECT_EQ(XW, nullptr);
  XwPop();
  EXPECT_EQ(XW, nullptr);
  EXPECT_EQ(XStackCount, 0);
  EXPECT_EQ(top->children[0], nullptr);
  EXPECT_EQ(top->next, last);
  EXPECT_EQ(last->previous, top);
  EXPECT_FALSE(IsLive(a));
  EXPECT_FALSE(IsLive(b));
  RunFor(1);
  ASSERT_EQ(Trace(), "main 1001");
  EXPECT_EQ(seen[0].event.focus, nullptr) << "in what was queued too";
  XwDestroy(last);
  EXPECT_EQ(W_End, top);
}

TEST(Tree, TheMainWindowsRecordStays) {
  XwWindow* main = OpenMain();
  XwWindow* docked = XwCreateDocked(main, 450, 120, 60, 80, Record);
  XwWindow* sub = Sub(main, "sub", 0, 0, 10, 10);
  XwWindow* other = XwCreate(0, 500, 100, 200, 200, Record);
  Name(other, "other");
  XwShow(docked, 1);
  XwShow(other, 1);
  Settle();
  EXPECT_FALSE(IsWindowActive(Native(main)));
  EXPECT_TRUE(IsWindowActive(Native(docked))) << "while any window is";
  XwSendEvent(main, 1000, 0, 0, 0);
  int native = input::Counts().windows;
  XwDestroy(main);
  EXPECT_EQ(input::Counts().windows, native - 2);
  EXPECT_FALSE(IsLive(docked));
  EXPECT_FALSE(IsLive(sub));
  EXPECT_EQ(W_Start, main);
  EXPECT_EQ(main->next, other);
  EXPECT_EQ(main->platform, nullptr);
  EXPECT_EQ(main->handler, nullptr);
  EXPECT_EQ(main->child_count, 0);
  XwDestroy(main);
  XwSendEvent(main, 1000, 0, 0, 0);
  EXPECT_EQ(XwCreate(main, 0, 0, 1, 1, Record), nullptr);
  XwMove(main, 0, 0, 10, 10);
  XwShow(main, 1);
  input::Preferences();
  input::OpenFile("/a");
  EXPECT_EQ(RunLoop(), 0);
  EXPECT_EQ(Trace(), "");
  XwDestroy(other);
  EXPECT_EQ(W_End, main);
  EXPECT_EQ(main->next, nullptr);
  XwWindow* late = XwCreate(0, 10, 50, 20, 20, Record);
  EXPECT_EQ(main->next, late);
  EXPECT_EQ(W_Start, main);
  EXPECT_EQ(W_End, late);
}

TEST(Tree, AParentHoldsAsManyAsItsCountCanSay) {
  XwWindow* main = OpenMain();
  for (int i = 0; i < INT16_MAX; ++i) ASSERT_NE(XwCreate(main, 0, 0, 1, 1, nullptr), nullptr);
  TakeRefusal();
  EXPECT_EQ(XwCreate(main, 0, 0, 1, 1, nullptr), nullptr);
  EXPECT_EQ(TakeRefusal(), Refusal::kTooManyChildren);
  EXPECT_EQ(XwCreateDocked(main, 0, 0, 1, 1, nullptr), nullptr);
  XwDestroy(main->children[5000]);
  XwWindow* w = XwCreate(main, 0, 0, 1, 1, nullptr);
  ASSERT_NE(w, nullptr);
  EXPECT_EQ(main->children[5000], w);
}

}  // namespace
