// The platform's queue, its timers and its handlers, without a toolkit above them.
#include <gtest/gtest.h>

#include <random>

#include "platform/display/headless/headless.h"
#include "platform/display/window.h"
#include "platform/events/clock.h"
#include "platform/events/queue.h"
#include "platform/events/targets.h"
#include "platform/events/timers.h"
#include "platform/loop/receive.h"
#include "platform/loop/start.h"
#include "platform/windows/windows.h"

namespace platform {
namespace {

std::string log;
WindowRef window;

WindowRef Open() {
  headless::UseSteppedClock(1000);
  setenv("XW_DISPLAY", "headless", 1);
  EXPECT_TRUE(InitPlatform("test"));
  window = CreateNewWindow(kDocumentWindowClass, 0, {100, 100, 300, 300});
  return window;
}

TEST(Queue, KeepsItsOrderWhileItGrowsAndIsThinnedOut) {
  Open();
  EventQueueRef queue = GetMainEventQueue();
  std::mt19937 random(1);
  std::vector<uint32_t> expected;
  uint32_t next = 0;
  for (int step = 0; step < 3000; ++step) {
    switch (random() % 8) {
      default:
        for (uint32_t n = random() % 20; n-- > 0;) {
          PostEventToQueue(queue, Event(FourCC("test"), next));
          expected.push_back(next++);
        }
        break;
      case 5:
      case 6:
        for (uint32_t n = random() % 40; n-- > 0 && !expected.empty();) {
          Event e;
          ASSERT_TRUE(ReceiveNextEvent(0, &e));
          EXPECT_EQ(e.kind, expected.front());
          expected.erase(expected.begin());
        }
        break;
      case 7: {
        uint32_t odd = random() % 2 + 2;
        auto drop = [odd](uint32_t kind) { return kind % odd == 0; };
        RemoveEventsFromQueue(queue, [&](const Event& e) { return drop(e.kind); });
        std::erase_if(expected, drop);
      }
    }
    ASSERT_EQ(main_event_queue.size(), expected.size());
  }
  static int disposed;
  disposed = 0;
  FlushEventQueue(queue, [](void*) { ++disposed; });
  EXPECT_TRUE(main_event_queue.empty());
  EXPECT_EQ(disposed, 0) << "no payloads";
  PostEventToQueue(nullptr, Event());
  FlushEventQueue(nullptr, nullptr);
}

TEST(Queue, UserEventsHaveOneOwner) {
  Open();
  EventQueueRef queue = GetMainEventQueue();
  int payloads[3];
  for (int& p : payloads) {
    Event e(FourCC("mine"), 0);
    e.payload = &p;
    PostEventToQueue(queue, e);
    PostEventToQueue(queue, Event(FourCC("else"), 0));
  }
  std::vector<void*> seen;
  ForEachUserEvent(queue, FourCC("mine"), [&](void* p) { seen.push_back(p); });
  EXPECT_EQ(seen, (std::vector<void*>{&payloads[0], &payloads[1], &payloads[2]}));
  static int disposed;
  disposed = 0;
  FlushEventQueue(queue, [](void*) { ++disposed; });
  EXPECT_EQ(disposed, 3);
}

void Fired(EventLoopTimerRef, void* name) {
  log += static_cast<const char*>(name);
}
void Fire() {
  FireTimers(GetCurrentEventTime());
  log += ' ';
}

TEST(PlatformTimers, FireInOrderKeepTheirPhaseAndMerge) {
  Open();
  EventLoopTimerRef b = InstallEventLoopTimer(0.25, 0.25, Fired, const_cast<char*>("b"));
  InstallEventLoopTimer(0.125, 0.125, Fired, const_cast<char*>("a"));
  InstallEventLoopTimer(0.1875, 0, Fired, const_cast<char*>("c"));
  const struct {
    double step;
    const char* fired;
  } rows[] = {{0.0625, ""}, {0.0625, "a"}, {0.125, "cba"}, {0.4375, "ab"}, {0.0625, "ba"},
              {0.0625, ""}, {0.0625, "a"}, {10.0, "ba"},   {0.0, ""}};
  for (const auto& row : rows) {
    headless::Step(row.step);
    log.clear();
    Fire();
    EXPECT_EQ(log, row.fired + std::string(" ")) << GetCurrentEventTime();
  }
  SetEventLoopTimerNextFireTime(b, 5);
  RemoveEventLoopTimer(nullptr);
  SetEventLoopTimerNextFireTime(nullptr, 1);
  RemoveEventLoopTimer(b);
  RemoveEventLoopTimer(b);
  SetEventLoopTimerNextFireTime(b, 1);
  headless::Step(6);
  log.clear();
  Fire();
  EXPECT_EQ(log, "a ");
}

EventLoopTimerRef first, second;
TEST(PlatformTimers, ACallMayEndAndStartTimersAndReceive) {
  Open();
  first = InstallEventLoopTimer(
      0.1, 0.1,
      [](EventLoopTimerRef self, void*) {
        log += 'f';
        RemoveEventLoopTimer(second);
        RemoveEventLoopTimer(self);
        InstallEventLoopTimer(0, 0, Fired, const_cast<char*>("n"));
        Event e;
        EXPECT_FALSE(ReceiveNextEvent(0, &e));
      },
      nullptr);
  second = InstallEventLoopTimer(0.1, 0.1, Fired, const_cast<char*>("s"));
  headless::Step(0.1);
  log.clear();
  Fire();
  Fire();
  EXPECT_EQ(log, "fn  ");
  EXPECT_LT(NextTimer(GetCurrentEventTime()), 0) << "none runs";
}

TEST(PlatformTimers, AWaitEndsWithItsTime) {
  Open();
  log.clear();
  InstallEventLoopTimer(0.5, 0.5, Fired, const_cast<char*>("t"));
  Event e;
  EXPECT_FALSE(ReceiveNextEvent(1.25, &e));
  EXPECT_EQ(log, "tt");
  EXPECT_NEAR(GetCurrentEventTime(), 1001.25, 1e-6);
}

OSStatus Pass(HandlerCall*, Event*, void* name) {
  log += static_cast<const char*>(name);
  return eventNotHandledErr;
}
OSStatus Take(HandlerCall*, Event*, void* name) {
  log += static_cast<const char*>(name);
  return noErr;
}
constexpr EventKind kPress[] = {{kEventClassMouse, kEventMouseDown}};

OSStatus Send(WindowRef w) {
  Event e(kEventClassMouse, kEventMouseDown, w);
  log.clear();
  return SendEventToEventTarget(&e, GetEventDispatcherTarget());
}

TEST(Handlers, RunNewestFirstUntilOneTakesTheEvent) {
  Open();
  EventTargetRef target = GetWindowEventTarget(window);
  for (const char* name : {"1", "2"})
    InstallEventHandler(target, Pass, kPress, 1, const_cast<char*>(name));
  EXPECT_EQ(Send(window), eventNotHandledErr);
  EXPECT_EQ(log, "21");
  InstallEventHandler(target, Take, kPress, 1, const_cast<char*>("3"));
  InstallEventHandler(target, Pass, kPress, 1, const_cast<char*>("4"));
  EXPECT_EQ(Send(window), noErr);
  EXPECT_EQ(log, "43");
  Event other(kEventClassMouse, kEventMouseUp, window);
  log.clear();
  EXPECT_EQ(SendEventToEventTarget(&other, GetEventDispatcherTarget()), eventNotHandledErr);
  EXPECT_EQ(log, "");
  InstallEventHandler(nullptr, Pass, kPress, 1, nullptr);
  InstallEventHandler(target, nullptr, kPress, 1, nullptr);
  EXPECT_EQ(SendEventToEventTarget(&other, nullptr), eventNotHandledErr);
  EXPECT_EQ(GetWindowEventTarget(nullptr), nullptr);
}

TEST(Handlers, MayInstallOthersAndEndTheWindow) {
  Open();
  WindowRef w = CreateNewWindow(kDocumentWindowClass, 0, {0, 0, 50, 50});
  EventTargetRef target = GetWindowEventTarget(w);
  InstallEventHandler(target, Pass, kPress, 1, const_cast<char*>("1"));
  InstallEventHandler(
      target,
      [](HandlerCall*, Event* e, void*) -> OSStatus {
        log += 'd';
        for (int i = 0; i < 100; ++i)
          InstallEventHandler(GetWindowEventTarget(e->window), Pass, kPress, 1,
                              const_cast<char*>("x"));
        PostEventToQueue(GetMainEventQueue(), Event(kEventClassMouse, kEventMouseDown, e->window));
        DisposeWindow(e->window);
        EXPECT_FALSE(IsValidWindow(e->window));
        return eventNotHandledErr;
      },
      kPress, 1, nullptr);
  Send(w);
  EXPECT_EQ(log, "d") << "nothing runs for a window that has ended";
  Event e;
  EXPECT_FALSE(ReceiveNextEvent(0, &e)) << "its events are gone";
  EXPECT_EQ(Send(w), eventNotHandledErr) << "a stale window";
  DisposeWindow(w);
}

}  // namespace
}  // namespace platform
