// The queue, the loop, and what it hands to whom.
#include <gtest/gtest.h>

#include <climits>

#include "tests/toolkit/stage.h"

namespace {

using namespace stage;

TEST(Events, ACopyOfTheWholeRecordTravels) {
  XwWindow* w = OpenMain();
  Inp.state = XWS_SHIFT;
  Inp.root_x = 77;
  Inp.spare = 4711;
  Inp.focus = w;
  int target = 0;
  XwSendEvent(w, 1000, 1, &target, 3);
  Inp.state = 0;
  Inp.root_x = Inp.spare = 0;
  Inp.focus = nullptr;
  XwSendEvent(w, 1001, -1, XwValue{INTPTR_MIN}, INT_MIN);
  RunLoop();
  ASSERT_EQ(Trace(), "main 1000 main 1001");
  const XwEvent& first = seen[0].event;
  EXPECT_EQ(first.item, 1);
  EXPECT_EQ(first.value, reinterpret_cast<XwValue>(&target));
  EXPECT_EQ(first.param, 3);
  EXPECT_EQ(first.state, uint32_t{XWS_SHIFT});
  EXPECT_EQ(first.root_x, 77);
  EXPECT_EQ(first.spare, 4711);
  EXPECT_EQ(first.focus, w);
  EXPECT_EQ(seen[1].event.value, INTPTR_MIN);
  EXPECT_EQ(seen[1].event.param, INT_MIN);
}

TEST(Events, OnlyAnOtherCodeOfAHandlerEndsTheWait) {
  XwWindow* w = OpenMain(Answer);
  const struct {
    int answer, returned;
  } rows[] = {{0, 0}, {768, 0}, {769, 0}, {770, 770}, {-1, -1}, {1, 1}};
  for (const auto& row : rows) {
    result = row.answer;
    XwSendEvent(w, 1000, 0, 0, 0);
    EXPECT_EQ(RunLoop(), row.returned) << row.answer;
    if (row.returned) {
      EXPECT_EQ(Inp.type, row.answer);
    }
    result = 0;
    RunLoop();
  }
  // A redraw never ends it.
  result = 5;
  XwSendEvent(w, XWE_EXPOSE, 0, 0, 0);
  EXPECT_EQ(RunLoop(), 0);
}

TEST(Events, ARedrawIsClearedForItsHandlerOnly) {
  XwWindow* w = OpenMain();
  int32_t red = 0x0000FF;
  XwSetGround(w, &red, 0);
  Settle();
  auto paint = [w] {
    XwSet(w);
    XwBox(0, 0, 300, 200, 0x00FF00);
    XwSet(nullptr);
  };
  auto shown = [w] {
    platform::FlushWindow(Native(w));
    input::Picture p = input::TakePicture(Native(w));
    return p.pixels[size_t(60 * p.width + 50)];
  };
  paint();
  EXPECT_EQ(shown(), 0xFF00FF00u);
  XwSendEvent(w, XWE_EXPOSE, 0, 0, 0);
  EXPECT_EQ(XwWaitEvent(reinterpret_cast<XwWindow*>(intptr_t{-1})), XWE_EXPOSE);
  EXPECT_EQ(shown(), 0xFF00FF00u) << "a raw wait clears nothing";
  w->handler = nullptr;
  XwSendEvent(w, XWE_EXPOSE, 0, 0, 0);
  EXPECT_EQ(XwWaitEvent(nullptr), XWE_EXPOSE);
  EXPECT_EQ(shown(), 0xFF00FF00u) << "no handler, no clearing";
  w->handler = Record;
  XwSendEvent(w, XWE_CONFIGURE, 0, 0, 0);
  RunLoop();
  EXPECT_EQ(shown(), 0xFF00FF00u) << "configure does not clear in a wait";
  XwSendEvent(w, XWE_EXPOSE, 0, 0, 0);
  XwSet(w);
  RunLoop();
  EXPECT_EQ(XW, w) << "the selection is the program's";
  EXPECT_EQ(shown(), 0xFFFF0000u);
  // Polling clears for both.
  XwSet(nullptr);
  for (int type : {XWE_CONFIGURE, XWE_EXPOSE}) {
    paint();
    XwSendEvent(w, type, 0, 0, 0);
    XwGetEvent(nullptr, 0);
    input::Step(0.03);
    EXPECT_EQ(XwGetEvent(nullptr, 0), type);
    EXPECT_EQ(shown(), 0xFFFF0000u) << type;
  }
}

TEST(Events, TheSelectedWindowIsRedrawnAfterItShrank) {
  XwWindow* w = OpenMain();
  XwSetSizes(w, 10, 10, 0, 0, 0, 0);
  int32_t red = 0x0000FF;
  XwSetGround(w, &red, 0);
  XwSet(w);
  Settle();
  input::Configure(Native(w), {100, 100, 350, 250});
  on_event = [](int type) {
    if (type != XWE_EXPOSE) return;
    XwSet(Inp.window);
    XwBox(0, 0, 40, 40, 0xFF0000);
  };
  EXPECT_EQ(RunTrace(), "main 768 main 769");
  platform::FlushWindow(nullptr);
  input::Picture p = input::TakePicture(Native(w));
  EXPECT_EQ(p.width, 250);
  EXPECT_EQ(p.pixels[size_t(30 * p.width + 10)], 0xFF0000FFu);
  EXPECT_EQ(p.pixels[size_t(100 * p.width + 10)], 0xFFFF0000u);
}

TEST(Events, DirectDelivery) {
  XwWindow* w = OpenMain(Answer);
  result = 42;
  Inp.param = 9;
  EXPECT_EQ(DirectSendEvent(w, 1000, 7, 8), 42);
  EXPECT_EQ(Inp.type, 42);
  ASSERT_EQ(seen.size(), 1u);
  EXPECT_EQ(seen[0].event.item, 7);
  EXPECT_EQ(seen[0].event.value, 8);
  EXPECT_EQ(seen[0].event.param, 0);
  // Without a handler it waits in the queue.
  XwWindow* silent = Sub(w, "silent", 0, 0, 10, 10, nullptr);
  result = 0;
  Settle();
  EXPECT_EQ(DirectSendEvent(silent, 1000, 7, 8), 0);
  EXPECT_EQ(XwWaitEvent(nullptr), 1000);
  EXPECT_EQ(Inp.window, silent);
  EXPECT_EQ(DirectSendEvent(nullptr, 1000, 0, 0), 0);
}

TEST(Events, PollingTakesOneEventInTwentyFiveMilliseconds) {
  XwWindow* w = OpenMain();
  for (int i = 0; i < 4; ++i) XwSendEvent(w, 1000 + i, 0, 0, 0);
  EXPECT_EQ(XwGetEvent(nullptr, 1), 0) << "the first call only starts the clock";
  input::Step(0.0249);
  EXPECT_EQ(XwGetEvent(nullptr, 1), 0);
  input::Step(0.0002);
  EXPECT_EQ(XwGetEvent(nullptr, 0), 1000) << "undispatched";
  EXPECT_TRUE(seen.empty());
  EXPECT_EQ(XwGetEvent(nullptr, 0), 0);
  input::Step(0.026);
  EXPECT_EQ(XwPeekEvents(nullptr, 1), 0);
  EXPECT_EQ(Trace(), "main 1001");
  input::Step(0.026);
  w->handler = Answer;
  result = 55;
  EXPECT_EQ(XwGetEvent(nullptr, 1), 55) << "the handler's answer";
}

TEST(Events, PollingPausesAfterTheClockWraps) {
  XwWindow* w = OpenMain();
  // 2^31 microseconds are the top of the signed count.
  input::UseSteppedClock(2147.40);
  XwGetEvent(nullptr, 1);
  for (int i = 0; i < 3; ++i) XwSendEvent(w, 1000 + i, 0, 0, 0);
  input::Step(0.05);
  EXPECT_EQ(XwGetEvent(nullptr, 0), 1000);
  input::Step(0.1);
  EXPECT_EQ(XwGetEvent(nullptr, 0), 0) << "wrapped";
  input::Step(2000);
  EXPECT_EQ(XwGetEvent(nullptr, 0), 0);
  input::Step(4294.967296 - 2000 - 0.07);
  EXPECT_EQ(XwGetEvent(nullptr, 0), 1001);
}

TEST(Events, AModalWaitKeepsOthersOut) {
  XwWindow* main = OpenMain();
  XwWindow* dialog = Top("dialog", 500, 100, 100, 100);
  Sub(dialog, "inner", 10, 10, 50, 50);
  Settle();
  int beeps = input::Counts().beeps;
  // Motion and keys of others are returned undelivered, presses and closings only beep.
  input::MovePointer(150, 150);
  EXPECT_EQ(RunLoop(dialog), XWE_MOTION);
  EXPECT_EQ(Inp.window, main);
  XwSendEvent(main, XWE_TIMER, 0, 0, 0);
  EXPECT_EQ(RunLoop(dialog), XWE_TIMER);
  input::Press(1);
  input::Close(Native(main));
  EXPECT_EQ(RunLoop(dialog), 0);
  EXPECT_EQ(input::Counts().beeps, beeps + 2);
  input::Release(1);
  EXPECT_EQ(RunLoop(dialog), XWE_RELEASE);
  EXPECT_EQ(Trace(), "");
  // Its own and its sub-windows' are delivered; the pointer's leaving is the other's motion.
  input::MovePointer(530, 130);
  EXPECT_EQ(RunLoop(dialog), XWE_MOTION);
  EXPECT_EQ(Inp.window, main);
  input::Click(530, 130);
  input::Click(590, 190);
  RunLoop(dialog);
  EXPECT_EQ(Trace(), "inner 770 inner 771 inner 776 dialog 770 dialog 771 dialog 776");
  // Polling beeps and returns the press.
  seen.clear();
  XwSendEvent(main, XWE_PRESS, 0, 0, 0);
  XwGetEvent(dialog, 1);
  input::Step(0.03);
  EXPECT_EQ(XwGetEvent(dialog, 1), XWE_PRESS);
  EXPECT_EQ(input::Counts().beeps, beeps + 3);
  // Raw: nothing is delivered.
  XwSendEvent(main, 1000, 0, 0, 0);
  input::Step(0.03);
  EXPECT_EQ(XwGetEvent(reinterpret_cast<XwWindow*>(intptr_t{-1}), 1), 1000);
  EXPECT_TRUE(seen.empty());
}

XwWindow *modal_window, *successor;
TEST(Events, AModalWindowThatEndsLetsAllOthersIn) {
  XwWindow* main = OpenMain();
  modal_window = XwCreate(-255, 500, 100, 100, 100, Record);
  XwShow(modal_window, 1);
  Settle();
  on_event = [](int type) {
    if (type != 1000) return;
    // One of the next records is likely to take the same place in memory, once there are others.
    XwWindow* others[10];
    for (XwWindow*& w : others) w = XwCreate(W_Start, 0, 0, 5, 5, Record);
    for (XwWindow* w : others) XwDestroy(w);
    XwDestroy(modal_window);
    for (int i = 0; i < 100 && successor != modal_window; ++i)
      successor = XwCreate(W_Start, 0, 0, 5, 5, Record);
  };
  XwSendEvent(modal_window, 1000, 0, 0, 0);
  XwSendEvent(main, 1001, 0, 0, 0);
  XwWindow* modal = modal_window;
  EXPECT_EQ(RunLoop(modal), 0);
  ASSERT_EQ(seen.size(), 2u);
  EXPECT_EQ(seen[1].type, 1001);
  // A stale window is no modal one.
  if (successor != modal) {
    XwSendEvent(main, 1001, 0, 0, 0);
    EXPECT_EQ(RunLoop(modal), 0);
  }
}

TEST(Events, AGrabLoopDropsTimersOfWindowsWithAHandler) {
  XwWindow* w = OpenMain();
  XwWindow* silent = Sub(w, "silent", 0, 0, 10, 10, nullptr);
  Settle();
  XwSendEvent(w, XWE_TIMER, 0, 1, 0);
  XwSendEvent(silent, XWE_TIMER, 0, 2, 0);
  XwSendEvent(w, 1000, 0, 0, 0);
  EXPECT_EQ(XwGrabEvent(), XWE_TIMER);
  EXPECT_EQ(Inp.window, silent);
  EXPECT_EQ(XwGrabEvent(), 1000);
  EXPECT_TRUE(seen.empty()) << "raw events reach no handler";
}

TEST(Events, DoubleClicks) {
  Open();
  const struct {
    uint32_t time;
    int item;
    bool twice;
  } rows[] = {
      {1000, 3, false}, {1219, 3, true},        {1439, 3, false}, {1500, 4, false},
      {1500, 4, true},  {1499, 4, false},       {1499, 3, false}, {0xFFFFFFF0u, 3, false},
      {0x20, 3, true},  {0x20 + 220, 3, false}, {0, -1, false},
  };
  uint32_t last = 0;
  for (const auto& row : rows) {
    Inp.time = row.time;
    Inp.item = row.item;
    EXPECT_EQ(XwDoubleClick(&last) != 0, row.twice) << row.time;
    EXPECT_EQ(last, row.time);
  }
  EXPECT_EQ(XwDoubleClick(nullptr), 0);
}

TEST(Events, ThePointerIsInsideABoxButNotOnItsBorder) {
  const struct {
    int px, py, x, y, w, h;
    bool inside;
  } rows[] = {
      {10, 10, 9, 9, 2, 2, true},
      {10, 10, 10, 9, 2, 2, false},
      {10, 10, 9, 10, 2, 2, false},
      {10, 10, 8, 8, 2, 3, false},
      {10, 10, 8, 8, 3, 2, false},
      {10, 10, 9, 9, 0, 0, false},
      {10, 10, 11, 11, -5, -5, false},
      {-3, -3, -4, -4, 2, 2, true},
      {INT_MAX - 1, 0, INT_MAX - 2, -1, INT_MAX, 2, true},
      {0, 0, INT_MIN, INT_MIN, INT_MAX, INT_MAX, false},
  };
  for (const auto& row : rows) {
    Inp.px = row.px;
    Inp.py = row.py;
    EXPECT_EQ(XwCheckPointer(row.x, row.y, row.w, row.h) != 0, row.inside) << row.x;
  }
}

XwWindow* victim;
TEST(Events, AHandlerMayDestroyItsOwnWindow) {
  XwWindow* main = OpenMain();
  for (int type : {1000, int(XWE_EXPOSE), int(XWE_PRESS)}) {
    victim = Top("victim", 500, 100, 100, 100);
    Sub(victim, "inner", 0, 0, 100, 100);
    Settle();
    on_event = [](int) {
      if (victim) XwDestroy(victim);
      victim = nullptr;
    };
    XwSendEvent(victim, 1001, 0, 0, 0);
    if (type == XWE_PRESS)
      input::Click(550, 150);
    else
      XwSendEvent(victim, type, 0, 0, 0);
    EXPECT_EQ(RunLoop(), 0);
    on_event = nullptr;
    EXPECT_EQ(victim, nullptr);
    EXPECT_EQ(Inp.window, nullptr);
    EXPECT_EQ(XwPointerIsGrabbed(), nullptr);
  }
  EXPECT_EQ(W_Start, main);
}

}  // namespace
