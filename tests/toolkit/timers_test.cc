// Timers of windows.
#include <gtest/gtest.h>

#include <climits>

#include "platform/events/clock.h"
#include "platform/events/queue.h"
#include "tests/toolkit/stage.h"
#include "toolkit/core/post.h"
#include "toolkit/core/state.h"
#include "toolkit/core/trace.h"

namespace {

using namespace stage;

std::string Values() {
  std::string out;
  for (const Seen& s : seen)
    if (s.type == XWE_TIMER)
      out += (s.window == W_Start ? "" : "o") + std::to_string(s.event.value) + " ";
  seen.clear();
  return out;
}

TEST(Timers, ARestartMovesTheNextFiringAndKeepsThePeriod) {
  XwWindow* w = OpenMain();
  XwTimer(w, 1, 100);
  RunFor(0.05);
  XwTimer(w, 1, 500);
  RunFor(0.49);
  EXPECT_EQ(Values(), "");
  RunFor(0.22);
  EXPECT_EQ(Values(), "1 1 1 ") << "at 500, 600 and 700 milliseconds from the restart";
}

TEST(Timers, StoppingOneDropsWhatAllHaveQueued) {
  XwWindow* w = OpenMain();
  XwWindow* other = Sub(w, "other", 0, 0, 10, 10);
  Settle();
  XwTimer(w, 1, 100);
  XwTimer(w, 2, 100);
  XwTimer(other, 3, 100);
  input::Step(0.15);
  platform::FireTimers(platform::GetCurrentEventTime());
  XwSendEvent(w, 1000, 0, 0, 0);
  XwTimer(w, 1, 0);
  RunFor(0.01);
  EXPECT_EQ(Trace(), "main 1000");
  seen.clear();
  RunFor(0.1);
  EXPECT_EQ(Values(), "2 o3 ") << "the others go on";
}

TEST(Timers, TheTableIsKeptByWindowAndValue) {
  XwWindow* w = OpenMain();
  XwWindow* other = Sub(w, "other", 0, 0, 10, 10);
  Settle();
  XwTimer(w, 5, 0);
  EXPECT_EQ(Timers[0].timer, nullptr) << "stopping what does not run does nothing";
  XwTimer(w, 5, 100);
  XwTimer(other, 5, 100);
  XwTimer(w, -5, 100);
  XwTimer(w, 5, 0);
  EXPECT_EQ(Timers[0].value, 0);
  EXPECT_EQ(Timers[0].timer, nullptr);
  EXPECT_EQ(Timers[0].window, w) << "a freed slot keeps its window";
  XwTimer(other, 9, 100);
  EXPECT_EQ(Timers[0].window, other) << "the first free slot is taken";
  EXPECT_EQ(Timers[0].value, 9);
  XwTimer(w, 0, 0);
  RunFor(0.1);
  EXPECT_EQ(Values(), "o5 o9 ");
  XwDestroy(other);
  for (const XwTimerSlot& slot : Timers) {
    EXPECT_NE(slot.window, other);
    EXPECT_EQ(slot.timer, nullptr);
  }
}

TEST(Timers, AThirtyThirdIsRefused) {
  XwWindow* w = OpenMain();
  for (int i = 1; i <= 32; ++i) XwTimer(w, i, 100);
  TakeRefusal();
  XwTimer(w, 33, 100);
  EXPECT_EQ(TakeRefusal(), Refusal::kNoTimerSlot);
  XwTimer(w, 4, 200);
  EXPECT_EQ(TakeRefusal(), Refusal::kNone) << "one that runs can be restarted";
  XwTimer(w, 8, 0);
  XwTimer(w, 33, 100);
  EXPECT_EQ(TakeRefusal(), Refusal::kNone);
  RunFor(0.11);
  EXPECT_EQ(seen.size(), 31u);
  XwTimer(nullptr, 1, 100);
  EXPECT_EQ(TakeRefusal(), Refusal::kStaleWindow);
}

TEST(Timers, MissedPeriodsAndSlowHandlersLeaveOneEvent) {
  XwWindow* w = OpenMain();
  XwTimer(w, 1, 10);
  XwTimer(w, 2, 10);
  input::Step(1.0);
  RunFor(0.001);
  EXPECT_EQ(Values(), "1 2 ");
  // Each handler takes longer than the periods: the queue does not grow.
  on_event = [](int) { input::Step(0.05); };
  for (int i = 0; i < 50; ++i) {
    RunFor(0.001);
    size_t queued = 0;
    platform::ForEachUserEvent(
        platform::GetMainEventQueue(), kToolkitEventClass,
        [&](void* record) { queued += static_cast<XwEvent*>(record)->type == XWE_TIMER; });
    ASSERT_LE(queued, 2u);
  }
}

TEST(Timers, ExtremesOfPeriodAndValue) {
  XwWindow* w = OpenMain();
  XwTimer(w, INT_MIN, INT_MAX);
  XwTimer(w, INT_MAX, INT_MIN);
  RunFor(0.0025);
  EXPECT_EQ(Values(), "2147483647 2147483647 ");
  XwTimer(w, INT_MAX, 0);
  RunFor(1e6);
  EXPECT_EQ(Values(), "");
}

}  // namespace
