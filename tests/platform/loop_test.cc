// The loop: trackers and nested waits, sources to wait on, what is released after its window has
// ended, the focus that the desktop moves, lost regions, and a second start in one process.
#include <gtest/gtest.h>
#include <sched.h>
#include <unistd.h>

#include <fstream>
#include <string>
#include <vector>

#include "platform/display/headless/headless.h"
#include "platform/events/clock.h"
#include "platform/events/queue.h"
#include "platform/events/raw_event.h"
#include "platform/events/sources.h"
#include "platform/events/targets.h"
#include "platform/events/timers.h"
#include "platform/loop/receive.h"
#include "platform/loop/start.h"
#include "platform/loop/tracking.h"
#include "platform/windows/internal.h"

namespace platform {
namespace {

constexpr uint32_t kOwn = FourCC("test");

WindowRef Make(const Rect& content) {
  WindowRef w = CreateNewWindow(kDocumentWindowClass, 0, content);
  ShowWindow(w);
  return w;
}

std::string Name(const Event& e) {
  if (e.cls == kOwn) return static_cast<const char*>(e.payload);
  const char* cls = e.cls == kEventClassMouse      ? "mouse"
                    : e.cls == kEventClassKeyboard ? "key"
                    : e.cls == kEventClassWindow   ? "window"
                                                   : "other";
  return cls + std::to_string(e.kind);
}

// All that waits, dispatched where it is the platform's.
std::string Drain(bool dispatch = true) {
  std::string out;
  Event e;
  while (ReceiveNextEvent(kEventDurationNoWait, &e)) {
    out += (out.empty() ? "" : " ") + Name(e);
    if (dispatch && e.cls != kOwn) SendEventToEventTarget(&e, GetEventDispatcherTarget());
  }
  return out;
}

void Post(const char* name) {
  PostUserEvent(GetMainEventQueue(), kOwn, const_cast<char*>(name));
}

class Loop : public ::testing::Test {
 protected:
  void SetUp() override {
    setenv("XW_DISPLAY", "headless", 1);
    headless::UseSteppedClock(1000);
    ASSERT_TRUE(InitPlatform("loop"));
    first = Make({100, 100, 300, 300});
    second = Make({500, 100, 700, 300});
    headless::MovePointer(600, 200);
    Drain();
  }
  void TearDown() override { FinishPlatform(); }

  WindowRef first = nullptr, second = nullptr;
};

// Takes what happens in the second window, leaves what happens in the first for later.
struct Menu {
  WindowRef window, other;
  int presses = 0, lost = 0;
  std::string seen{};
  Tracker tracker{Ask, this, nullptr, 0};

  static Tracking Ask(void* data, Event* e) {
    auto* m = static_cast<Menu*>(data);
    m->seen += (m->seen.empty() ? "" : " ") + Name(*e);
    if (e->cls == kEventClassMouse && e->kind == kEventMouseDown) ++m->presses;
    if (e->cls == kEventClassMouse && e->kind == kEventMouseUp) m->lost += !e->window;
    if (e->window == m->other) return Tracking::kLater;
    return e->cls == kEventClassMouse ? Tracking::kTake : Tracking::kPass;
  }
  static bool Pressed(void* data) { return static_cast<Menu*>(data)->presses > 0; }
  static bool Never(void*) { return false; }
};

TEST_F(Loop, ANestedWaitLeavesTheRestInOrder) {
  Menu menu{second, first};
  Post("a");
  headless::MovePointer(200, 200);
  headless::MovePointer(210, 200);
  Post("b");
  headless::Inject([&] {
    RawEvent close;
    close.type = RawEvent::kClose;
    close.window = first;
    return close;
  }());
  headless::Click(600, 200);
  EXPECT_EQ(WaitTracking(&menu.tracker, Menu::Pressed, kEventDurationForever), WaitEnd::kDone);
  // What the tracker was asked about, and what was deferred in the order in which it had come.
  EXPECT_NE(menu.seen.find("mouse1"), std::string::npos);
  EXPECT_EQ(Drain(false), "a b mouse5 window72 mouse5 mouse2");
}

TEST_F(Loop, WhatLiesByIsPurgedRemovedAndMergedWith) {
  Menu menu{second, first};
  static Menu* inner = nullptr;
  inner = &menu;
  // In the middle of the wait, while the first motion over the other window is deferred.
  InstallEventLoopTimer(
      0.1, 0, [](EventLoopTimerRef, void*) { headless::MovePointer(220, 220); }, nullptr);
  InstallEventLoopTimer(
      0.2, 0,
      [](EventLoopTimerRef, void*) {
        Post("gone");
        Post("kept");
      },
      nullptr);
  // They are deferred by now.
  InstallEventLoopTimer(
      0.25, 0,
      [](EventLoopTimerRef, void*) {
        RemoveEventsFromQueue(GetMainEventQueue(),
                              [](const Event& e) { return e.cls == kOwn && Name(e) == "gone"; });
      },
      nullptr);
  InstallEventLoopTimer(
      0.3, 0, [](EventLoopTimerRef, void*) { inner->presses = 1; }, nullptr);
  headless::MovePointer(200, 200);
  Post("early");
  EXPECT_EQ(WaitTracking(&menu.tracker, Menu::Pressed, 10), WaitEnd::kDone);
  std::vector<int> x;
  ForEachEvent(GetMainEventQueue(), [&](Event* e) {
    if (e->cls == kEventClassMouse) x.push_back(e->mouse.where.x);
  });
  EXPECT_EQ(x, std::vector<int>{220}) << "neighbouring motions are one";
  EXPECT_EQ(Drain(false), "early mouse5 kept");
}

TEST_F(Loop, AWaitEndsWithItsTimeOrItsOwner) {
  Menu menu{second, first};
  menu.tracker.owner = &second->object;
  EXPECT_EQ(WaitTracking(&menu.tracker, Menu::Never, 0.5), WaitEnd::kTimeout);
  EXPECT_EQ(GetCurrentEventTime(), 1000.5);
  static WindowRef ends;
  ends = second;
  InstallEventLoopTimer(
      0.1, 0, [](EventLoopTimerRef, void*) { DisposeWindow(ends); }, nullptr);
  Post("kept");
  EXPECT_EQ(WaitTracking(&menu.tracker, Menu::Never, kEventDurationForever), WaitEnd::kOwnerEnded);
  EXPECT_EQ(Drain(false).substr(0, 4), "kept");
}

TEST_F(Loop, ATrackerSeesEventsBeforeHandlersAndEndsWithItsOwner) {
  static int handled;
  handled = 0;
  constexpr EventKind kDown[] = {{kEventClassMouse, kEventMouseDown}};
  InstallEventHandler(
      GetWindowEventTarget(second),
      [](HandlerCall*, Event*, void*) {
        ++handled;
        return noErr;
      },
      kDown, 1, nullptr);
  Menu menu{second, first};
  menu.tracker.owner = &first->object;
  StartTracking(&menu.tracker);
  headless::Click(600, 200);
  Drain();
  EXPECT_EQ(handled, 0);
  EXPECT_EQ(menu.presses, 1);
  // The newest one is asked, as long as its owner lives; another object in its place is none.
  Menu newer{second, first};
  const ObjectType type{ObjectKind::kControl, [](void*) {}, nullptr};
  Object owner{&type, nullptr, 0, {}};
  EnterObject(&owner);
  newer.tracker.owner = &owner;
  StartTracking(&newer.tracker);
  headless::Click(600, 200);
  Drain();
  EXPECT_EQ(newer.presses, 1);
  EXPECT_EQ(newer.lost, 0);
  EXPECT_EQ(menu.lost, 1) << "where the button comes up is not its own";
  EndObject(&owner);
  EnterObject(&owner);
  headless::Click(600, 200);
  Drain();
  EXPECT_EQ(newer.presses, 1);
  EXPECT_EQ(menu.presses, 2);
  EndObject(&owner);
  DisposeWindow(first);
  first = nullptr;
  headless::Click(600, 200);
  Drain();
  EXPECT_EQ(handled, 1);
  EXPECT_EQ(menu.presses, 2);
}

// The process waits in the kernel.
bool Sleeps(pid_t process) {
  std::ifstream stat("/proc/" + std::to_string(process) + "/stat");
  std::string line;
  std::getline(stat, line);
  const size_t state = line.rfind(") ");
  return state != std::string::npos && line[state + 2] == 'S';
}

// Five descriptors of two sources, and a stepped clock: the last one wakes the loop.
struct Pipes {
  int fds[5][2];
  int taken = 0;
};
Pipes pipes;

TEST_F(Loop, AnyDescriptorOfAnySourceWakesAWait) {
  for (auto& fd : pipes.fds) ASSERT_EQ(pipe(fd), 0);
  auto take = [] {
    for (auto& fd : pipes.fds) {
      pollfd p{fd[0], POLLIN, 0};
      char byte;
      if (poll(&p, 1, 0) == 1 && read(fd[0], &byte, 1) == 1) {
        ++pipes.taken;
        Post("came");
      }
    }
  };
  const WaitSource sources[] = {{[](PollList* list) {
                                   list->push_back({pipes.fds[0][0], POLLIN, 0});
                                 },
                                 nullptr},
                                {[](PollList* list) {
                                   for (int i = 1; i < 5; ++i)
                                     list->push_back({pipes.fds[i][0], POLLIN, 0});
                                 },
                                 take}};
  for (const WaitSource& s : sources) AddWaitSource(s);
  RemoveWaitSource({sources[1].descriptors, nullptr});  // another one
  Event e;
  // What is ready comes first: the clock does not step to the timer.
  InstallEventLoopTimer(
      1, 0, [](EventLoopTimerRef, void*) { Post("timer"); }, nullptr);
  ASSERT_EQ(write(pipes.fds[4][1], "x", 1), 1);
  ASSERT_TRUE(ReceiveNextEvent(kEventDurationForever, &e));
  EXPECT_EQ(Name(e), "came");
  EXPECT_EQ(GetCurrentEventTime(), 1000);
  ASSERT_TRUE(ReceiveNextEvent(kEventDurationForever, &e));
  EXPECT_EQ(Name(e), "timer");
  // With no timer left the wait lasts until a descriptor is ready.
  const pid_t self = getpid();
  if (fork() == 0) {
    while (!Sleeps(self)) sched_yield();
    _exit(write(pipes.fds[4][1], "x", 1) == 1 ? 0 : 1);
  }
  ASSERT_TRUE(ReceiveNextEvent(kEventDurationForever, &e));
  EXPECT_EQ(Name(e), "came");
  for (const WaitSource& s : sources) RemoveWaitSource(s);
  for (auto& fd : pipes.fds) {
    close(fd[0]);
    close(fd[1]);
  }
}

TEST_F(Loop, ReleasesOutliveTheirWindow) {
  headless::Press(1);
  headless::KeyDown('a');
  Drain();
  headless::Release(1);
  headless::KeyUp('a');
  headless::Modifiers(shiftKey);
  headless::MovePointer(601, 200);
  DisposeWindow(second);
  std::string got;
  Event e;
  while (ReceiveNextEvent(kEventDurationNoWait, &e)) {
    const bool release =
        e.cls == kEventClassMouse ? e.kind == kEventMouseUp : e.cls == kEventClassKeyboard;
    if (!release) continue;
    EXPECT_EQ(e.window, nullptr);
    got += Name(e) + " ";
  }
  EXPECT_EQ(got, "mouse2 key3 key4 ");
  // What is reported after the end: the button and the key come up over nothing.
  WindowRef third = Make({500, 100, 700, 300});
  Drain();
  headless::MovePointer(600, 200);
  headless::Press(1);
  headless::KeyDown('b');
  Drain();
  DisposeWindow(third);
  headless::MovePointer(900, 900);
  headless::Release(1);
  headless::KeyUp('b');
  EXPECT_EQ(Drain(), "window200 mouse2 key3");
}

TEST_F(Loop, OnlyTheDesktopsOwnFocusIsAnEvent) {
  const std::string acquired = "window" + std::to_string(kEventWindowFocusAcquired);
  const struct {
    const char* what;
    void (*act)(WindowRef w);
    bool told;
  } rows[] = {
      {"select", [](WindowRef w) { SelectWindow(w); }, false},
      {"ask", [](WindowRef w) { SetUserFocusWindow(w); }, false},
      {"show",
       [](WindowRef w) {
         HideWindow(w);
         Drain();
         ShowWindow(w);
       },
       false},
      {"desktop", [](WindowRef w) { headless::Focus(w); }, true},
  };
  for (const auto& row : rows) {
    headless::Focus(second);
    Drain();
    row.act(first);
    EXPECT_EQ(Drain().find(acquired) != std::string::npos, row.told) << row.what;
    EXPECT_TRUE(first->focused) << row.what;
  }
  // In the order of input.
  headless::Focus(second);
  Drain();
  headless::KeyDown('a');
  headless::KeyUp('a');
  headless::Focus(first);
  EXPECT_EQ(Drain(), "key1 key3 " + acquired);
  // A request that is never answered stands for no later action of the desktop.
  headless::Focus(nullptr);
  Drain();
  SetUserFocusWindow(second);
  headless::Step(3);
  EXPECT_NE(Drain().find(acquired), std::string::npos) << "too late for an answer";
  headless::Focus(first);
  Drain();
  headless::Focus(second);
  EXPECT_NE(Drain().find(acquired), std::string::npos);
}

TEST_F(Loop, LostPartsAreDrawnOnceWithTheirBounds) {
  auto drawn = [] {
    std::vector<Rect> all;
    Event e;
    while (ReceiveNextEvent(kEventDurationNoWait, &e))
      if (e.cls == kEventClassWindow && e.kind == kEventWindowDrawContent)
        all.push_back(e.bounds.current);
    return all;
  };
  InvalidateWindow(first, {10, 20, 30, 40}, false);
  InvalidateWindow(first, {50, 25, 500, 30}, false);
  InvalidateWindow(first, {-20, -20, 0, 0}, false);
  EXPECT_EQ(drawn(), (std::vector<Rect>{{10, 20, 200, 40}}));
  EXPECT_TRUE(first->lost.empty());
  for (int i = 0; i < 60; ++i) InvalidateWindow(first, {3 * i, 2 * i, 3 * i + 1, 2 * i + 1}, false);
  EXPECT_LE(first->lost.boxes().size(), 32u);
  EXPECT_EQ(drawn(), (std::vector<Rect>{{0, 0, 178, 119}}));
  // The window that has waited longest comes first.
  InvalidateWindow(second, {1, 1, 2, 2}, false);
  headless::Step(0.01);
  InvalidateWindow(first, {3, 3, 4, 4}, false);
  EXPECT_EQ(drawn(), (std::vector<Rect>{{1, 1, 2, 2}, {3, 3, 4, 4}}));
  SetWindowBounds(first, {100, 100, 310, 300});
  EXPECT_EQ(drawn(), (std::vector<Rect>{{200, 0, 210, 200}}));
}

// A start leaves nothing behind that the next could see.
TEST(Restart, EachStartIsLikeTheFirst) {
  setenv("XW_DISPLAY", "headless", 1);
  uint64_t serial = 0;
  std::vector<uint32_t> picture;
  for (int round = 0; round < 3; ++round) {
    headless::UseSteppedClock(1000);
    ASSERT_TRUE(InitPlatform("again"));
    WindowRef w = Make({100, 100, 300, 300});
    EXPECT_EQ(w->number, 1u);
    EXPECT_EQ(w, MenuBarWindow());
    EXPECT_GT(w->object.serial, serial);
    serial = w->object.serial;
    EXPECT_EQ(Drain(), "other1 window2");
    const std::vector<uint32_t> now = headless::TakePicture(w).pixels;
    if (round > 0) {
      EXPECT_EQ(now, picture);
    }
    picture = now;
    // All of this is dropped with the platform.
    Make({0, 0, 50, 50});
    InstallEventLoopTimer(
        0.1, 0.1, [](EventLoopTimerRef, void*) { FAIL(); }, nullptr);
    headless::Press(1);
    headless::KeyDown('x');
    InvalidateWindow(w, {0, 0, 10, 10}, false);
    FinishPlatform();
    EXPECT_FALSE(IsValidWindow(w));
    EXPECT_TRUE(GetMainEventQueue()->empty());
  }
}

}  // namespace
}  // namespace platform
