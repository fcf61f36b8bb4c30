// From reports of the display to events; where windows are and what lies under a point.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "platform/display/headless/headless.h"
#include "platform/display/window.h"
#include "platform/events/queue.h"
#include "platform/events/raw_event.h"
#include "platform/events/targets.h"
#include "platform/input/translate.h"
#include "platform/loop/receive.h"
#include "platform/loop/start.h"
#include "platform/windows/windows.h"

namespace platform {
namespace {

using headless::MovePointer;

WindowRef Open() {
  headless::UseSteppedClock(1000);
  setenv("XW_DISPLAY", "headless", 1);
  EXPECT_TRUE(InitPlatform("test"));
  WindowRef w = CreateNewWindow(kDocumentWindowClass, 0, {100, 100, 300, 300});
  ShowWindow(w);
  Event e;
  while (ReceiveNextEvent(0, &e)) {
  }
  return w;
}

std::string Receive() {
  std::string out;
  Event e;
  while (ReceiveNextEvent(0, &e)) {
    char name[5] = {char(e.cls >> 24), char(e.cls >> 16), char(e.cls >> 8), char(e.cls), 0};
    out += std::string(out.empty() ? "" : " ") + name + std::to_string(e.kind);
    if (e.cls == kEventClassMouse)
      out += "(" + std::to_string(e.mouse.where.x) + "," + std::to_string(e.mouse.where.y) + ")";
    if (e.cls == kEventClassWindow && e.kind == kEventWindowBoundsReported)
      SendEventToEventTarget(&e, GetEventDispatcherTarget());
  }
  return out;
}

TEST(Translate, PlacesAtAFractionalScale) {
  setenv("XW_SCALE", "1.25", 1);
  WindowRef w = Open();
  RawEvent raw;
  raw.type = RawEvent::kMotion;
  raw.window = w;
  for (int x = 0; x < 50; ++x) {
    raw.x = float(DeviceEdge(x, 1.25));  // the first of its device pixels
    headless::Inject(raw);
    Event e;
    ASSERT_TRUE(ReceiveNextEvent(0, &e)) << x;
    EXPECT_EQ(e.mouse.where.x, w->content.left + x);
  }
  FinishPlatform();
  setenv("XW_SCALE", "1.5", 1);
  w = Open();
  for (int x = 100; x < 149; ++x) {
    MovePointer(x, 2 * x);
    Event e;
    ASSERT_TRUE(ReceiveNextEvent(0, &e)) << x;
    EXPECT_EQ(e.mouse.where, (Point{x, 2 * x})) << x;
  }
  // A size that rounds to the granted one is the same size.
  headless::Configure(w, w->content);
  Rect before = w->content;
  Receive();
  EXPECT_EQ(w->content, before);
}

TEST(Translate, DrawRequestsWaitUntilIdleOrFiftyMilliseconds) {
  WindowRef w = Open();
  InvalidateWindow(w, {20, 20, 30, 30}, false);
  InvalidateWindow(w, {0, 0, 10, 10}, true);
  EventQueueRef queue = GetMainEventQueue();
  for (uint32_t i = 0; i < 3; ++i) PostEventToQueue(queue, Event(FourCC("test"), i));
  EXPECT_EQ(Receive(), "test0 test1 test2 wind2") << "one request, after the rest";
  InvalidateWindow(w, {20, 20, 30, 30}, false);
  for (uint32_t i = 0; i < 3; ++i) PostEventToQueue(queue, Event(FourCC("test"), i));
  Event e;
  ReceiveNextEvent(0, &e);
  headless::Step(0.03);
  InvalidateWindow(w, {40, 20, 50, 30}, false);  // the first request counts
  headless::Step(0.0201);
  EXPECT_EQ(Receive(), "wind2 test1 test2") << "it has waited long enough";
  InvalidateWindow(w, {20, 20, 30, 30}, false);
  HideWindow(w);
  EXPECT_EQ(Receive(), "appl2") << "a hidden window draws nothing";
}

TEST(Translate, ReportsOfAnyKindAndNumberDoNoHarm) {
  WindowRef w = Open();
  const float odd[] = {0, -1e30f, 1e30f, NAN, INFINITY, -INFINITY, 32767.5f};
  for (int type = 0; type <= RawEvent::kScreens; ++type) {
    for (float f : odd) {
      for (WindowRef target : {w, WindowRef(nullptr), reinterpret_cast<WindowRef>(16)}) {
        RawEvent raw;
        raw.type = RawEvent::Type(type);
        raw.window = target;
        raw.x = raw.y = raw.root_x = raw.root_y = raw.dx = raw.dy = f;
        raw.width = f < 0 ? std::numeric_limits<int>::min() : std::numeric_limits<int>::max();
        if (f == 0) raw.width = 0;
        raw.height = raw.width;
        raw.frame = {raw.width, raw.width, raw.width, raw.width};
        raw.scale = f;
        raw.under = target;
        raw.state = raw.held = 0xFFFFFFFF;
        raw.button = 255;
        raw.keycode = raw.keysym = raw.unicode = raw.modifiers = 0xFFFFFFFF;
        if (type == RawEvent::kOpenFile) raw.text = "/x";
        if (type == RawEvent::kQuit) continue;
        headless::Inject(raw);
      }
      Event e;
      while (ReceiveNextEvent(0, &e)) {
        // Sizes that no display grants are not for the buffers of this test.
        if (e.cls == kEventClassWindow && e.kind == kEventWindowBoundsReported) {
          EXPECT_GE(e.bounds.current.width(), 1);
          EXPECT_GE(e.bounds.current.height(), 1);
          continue;
        }
        SendEventToEventTarget(&e, GetEventDispatcherTarget());
      }
    }
  }
  EXPECT_TRUE(IsValidWindow(w));
}

TEST(Reports, FrameStateAndExposure) {
  WindowRef w = Open();
  SetWindowSizeLimits(w, {50, 60, 400, 400, 0, 0});
  headless::Frame(w, {2, 20, 3, 4});
  Receive();
  EXPECT_EQ(GetWindowBounds(w, kWindowStructureRgn), (Rect{98, 56, 303, 304}));
  // The user makes it full screen, past its limits, and ends that.
  headless::SetState(w, kStateFullScreen);
  headless::Configure(w, {0, 24, 1280, 1024});
  Receive();
  EXPECT_EQ(w->content.width(), 1280);
  EXPECT_TRUE(w->state & kStateFullScreen);
  headless::SetState(w, 0);
  headless::Configure(w, {100, 100, 300, 300});
  Receive();
  EXPECT_FALSE(w->state & kStateFullScreen);
  EXPECT_EQ(w->content.width(), 200);
  // What the screen forgets is sent once more, and not drawn.
  FlushWindow(w);
  const int64_t sent = headless::Counts().presented_pixels;
  headless::Expose(w, {10, 20, 40, 30});
  EXPECT_EQ(Receive(), "");
  FlushWindow(w);
  EXPECT_EQ(headless::Counts().presented_pixels, sent + 30 * 10);
}

TEST(Configure, LimitsStepsAndThoseWhoInsist) {
  WindowRef w = Open();
  SetWindowSizeLimits(w, {50, 60, 400, 0, 0, 0});
  const struct {
    Rect reported, taken;
  } rows[] = {
      {{100, 100, 350, 350}, {100, 100, 350, 350}},
      {{100, 100, 120, 120}, {100, 100, 150, 160}},
      {{90, 80, 900, 5000}, {90, 80, 490, 80 + 1024}},
  };
  for (const auto& row : rows) {
    headless::Configure(w, row.reported);
    EXPECT_NE(Receive(), "");
    EXPECT_EQ(w->content, row.taken);
    EXPECT_EQ(w->surface.width, row.taken.width());
    EXPECT_EQ(w->surface.height, row.taken.height() + w->menu_bar_height);
  }
  headless::Configure(w, {90, 80, 900, 5000});
  Receive();
  EXPECT_EQ(w->content.width(), 810) << "insisted";
  // A program's own size widens the limits.
  SetWindowBounds(w, {0, 50, 20, 2000});
  headless::Configure(w, {0, 50, 30, 1900});
  Receive();
  EXPECT_EQ(w->content.width(), 30);
  EXPECT_EQ(w->content.height(), 1850);
}

TEST(Windows, WhichPartLiesUnderAPoint) {
  WindowRef w = Open();
  WindowRef plain = CreateNewWindow(kDocumentWindowClass, 0, {250, 150, 350, 250});
  const struct {
    WindowRef window;
    Point where;
    int part;
  } rows[] = {
      {w, {100, 100}, inContent}, {w, {99, 100}, inDesk},         {w, {299, 299}, inContent},
      {w, {300, 300}, inDesk},    {w, {100, 99}, inMenuBar},      {w, {299, 76}, inMenuBar},
      {w, {100, 75}, inDesk},     {plain, {250, 150}, inContent}, {plain, {250, 149}, inDesk},
      {nullptr, {0, 0}, inDesk},
  };
  for (const auto& row : rows)
    EXPECT_EQ(FindWindow(row.where, row.window), row.part) << row.where.x << " " << row.where.y;
}

TEST(Windows, StaleAndNullHandles) {
  Open();
  WindowRef stale = CreateNewWindow(kDocumentWindowClass, 0, {0, 0, 10, 10});
  DisposeWindow(stale);
  for (WindowRef w : {WindowRef(nullptr), stale}) {
    DisposeWindow(w);
    ShowWindow(w);
    HideWindow(w);
    SelectWindow(w);
    ActivateWindow(w, true);
    SetWindowTitle(w, "x");
    SetWindowModified(w, true);
    SetWindowBounds(w, {0, 0, 5, 5});
    MoveWindowStructure(w, 1, 1);
    InvalidateWindow(w, {}, true);
    EraseRect(w, {0, 0, 5, 5});
    SetWindowGroup(w, nullptr);
    SetWindowFullScreen(w, true);
    CapturePointer(w, nullptr);
    EXPECT_EQ(FindWindow({0, 0}, w), inDesk);
    FlushWindow(w);
    EXPECT_FALSE(IsWindowVisible(w));
    EXPECT_FALSE(IsWindowActive(w));
    EXPECT_STREQ(GetWindowTitle(w), "");
    EXPECT_EQ(GetWindowBounds(w, kWindowContentRgn), Rect());
    EXPECT_EQ(ConstrainWindowToScreen(w), Rect());
    EXPECT_EQ(WindowGeneration(w), 0u);
  }
}

}  // namespace
}  // namespace platform
