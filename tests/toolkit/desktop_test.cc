// What the desktop does to windows and asks of the program.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <functional>

#include "tests/toolkit/stage.h"
#include "toolkit/core/alive.h"
#include "toolkit/core/state.h"
#include "toolkit/core/trace.h"
#include "toolkit/events/desktop.h"

namespace {

using namespace stage;

Rect Bounds(const XwWindow* w) {
  return {w->x, w->y, w->x + w->width, w->y + w->height};
}

TEST(Desktop, MovesAndSizesAreTold) {
  XwWindow* w = OpenMain();
  XwSetSizes(w, 50, 50, 600, 600, 0, 0);
  const struct {
    Rect to;
    const char* trace;
  } rows[] = {
      {{120, 130, 420, 330}, "main 768"},           // moved
      {{120, 130, 440, 340}, "main 768 main 769"},  // grown: the platform asks for drawing
      {{120, 130, 420, 400}, "main 768 main 769"},  // one side grew
      {{120, 130, 400, 390}, "main 768 main 769"},  // shrunk
      {{120, 130, 390, 390}, "main 768 main 769"},  // one side shrank
      {{120, 130, 390, 380}, "main 768 main 769"},  // the other side
      {{120, 130, 390, 380}, ""},
  };
  for (const auto& row : rows) {
    seen.clear();
    input::Configure(Native(w), row.to);
    EXPECT_EQ(RunTrace(), row.trace);
    EXPECT_EQ(Bounds(w), row.to);
    if (seen.empty()) continue;
    const XwEvent& e = seen[0].event;
    EXPECT_EQ((Rect{e.x, e.y, e.x + e.width, e.y + e.height}), row.to);
    EXPECT_EQ(e.item, 0);
    EXPECT_EQ(e.value, 0);
    if (seen.size() < 2) continue;
    const XwEvent& redraw = seen[1].event;
    EXPECT_EQ((Rect{redraw.x, redraw.y, redraw.width, redraw.height}),
              (Rect{0, 0, w->width, w->height}));
  }
}

std::vector<int> activity;
void NoteActivity(int active) {
  activity.push_back(active);
}

// Told in the order of the events, to the window that it is about.
TEST(Desktop, ActivityIsTold) {
  XwWindow* w = OpenMain();
  XwWindow* other = Top("other", 500, 100, 50, 50);
  Settle();
  XwSetFocus(w);
  Settle();
  activity.clear();
  XwSetActivationHandler(w, NoteActivity);
  input::Focus(Native(other));
  EXPECT_EQ(activity, std::vector<int>{});
  RunLoop();
  EXPECT_EQ(activity, std::vector<int>{0});
  input::Focus(Native(w));
  RunLoop();
  EXPECT_EQ(activity, (std::vector<int>{0, 1}));
  XwSetActivationHandler(w, nullptr);
  input::Focus(nullptr);
  RunLoop();
  EXPECT_EQ(activity.size(), 2u);
}

std::string dragged;
void NoteDrag(int what) {
  dragged += std::to_string(what) + ":" + std::to_string(Inp.px) + "," + std::to_string(Inp.py) +
             (Inp.item ? "b " : " ");
}

// Where files are dragged is told until they leave or are dropped. A window that refuses them hears
// nothing.
TEST(Desktop, DragsOfFilesAreTold) {
  XwWindow* w = OpenMain();
  XwSetDragHandler(w, 1, NoteDrag);
  XwPush(w);
  XwBoxList(3, 0, 0, 0, 0);
  XwBoxList(10, 20, 30, 40, 40);
  XwPop();
  Settle();
  dragged.clear();
  input::DragFiles(Native(w), 10, 20);
  RunLoop();
  input::DragFiles(Native(w), 11, 21);  // of two that wait the newer counts
  input::DragFiles(Native(w), 30, 40);
  input::EndDragOfFiles(Native(w), true);
  EXPECT_EQ(RunTrace(), "");
  EXPECT_EQ(dragged, "1:10,20 1:30,40b 2:30,40b ");
  dragged.clear();
  input::FailDrop(Native(w));
  input::FailDrop(Native(w));  // of no drop
  EXPECT_EQ(RunTrace(), "");
  EXPECT_EQ(dragged, "3:30,40 ");
  dragged.clear();
  XwSetDragHandler(w, 0, NoteDrag);
  input::DragFiles(Native(w), 10, 20);
  RunLoop();
  EXPECT_EQ(dragged, "");
  // One end each, whatever ends it.
  XwWindow* other = Top("other", 500, 100, 50, 50);
  const auto refuse = [w](int refuses) { XwSetDragHandler(w, !refuses, NoteDrag); };
  const struct {
    const char* what;
    std::function<void()> end;
    char told;
  } rows[] = {{"left", [w] { input::EndDragOfFiles(Native(w), false); }, '0'},
              {"dropped", [w] { input::EndDragOfFiles(Native(w), true); }, '2'},
              {"refused", [&] { refuse(1); }, '0'},
              {"refused, and taken again", [&] { refuse(1), refuse(0); }, '0'},
              {"over another window", [&] { input::DragFiles(Native(other), 1, 1); }, '0'},
              {"destroyed", [w] { XwDestroy(w); }, '0'}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    refuse(0);
    input::DragFiles(Native(w), 10, 20);
    RunLoop();
    dragged.clear();
    row.end();
    RunLoop();
    if (IsLive(w)) input::EndDragOfFiles(Native(w), true);
    RunLoop();
    EXPECT_EQ(dragged.substr(0, 1), std::string(1, row.told));
    EXPECT_EQ(std::count(dragged.begin(), dragged.end(), ':'), 1) << dragged;
  }
}

TEST(Desktop, AFrameInTheCornerLiesOnTheScreen) {
  Open();
  input::Frames({4, 20, 4, 6});
  XwWindow* w = XwCreate(0, 0, 0, 300, 200, Record);
  EXPECT_EQ(Bounds(w), (Rect{4, 44, 304, 244})) << "title bar and menu bar above the content";
  XwWindow* low = XwCreate(0, XW_SCREENX - 50, XW_SCREENY - 50, 100, 100, Record);
  EXPECT_EQ(low->x + low->width, XW_SCREENX - 4);
  EXPECT_EQ(low->y + low->height, XW_SCREENY - 6);
}

TEST(Desktop, RedrawsGoToTheWindowAndItsShownSubWindows) {
  XwWindow* w = OpenMain();
  XwWindow* a = Sub(w, "a", 10, 10, 50, 40);
  Sub(a, "inner", 5, 5, 10, 10);
  XwShow(Sub(w, "hidden", 100, 10, 50, 50), 0);
  Sub(w, "b", 200, 10, 50, 50);
  Settle();
  input::Lose(Native(w));
  EXPECT_EQ(RunTrace(), "main 769 a 769 b 769");
  EXPECT_EQ(seen[1].event.width, 50);
  EXPECT_EQ(seen[1].event.height, 40);
}

TEST(Desktop, SizesKeepToSteps) {
  Open();
  XwWindow* w = Top("w", 100, 100, 101, 200);
  XwSetSizes(w, 20, 20, 1000, 1000, 10, 0);
  Settle();
  const struct {
    int asked, given;
  } rows[] = {{104, 101}, {106, 111}, {92, 91}, {999, 991}, {1200, 991}, {5, 21}, {101, 101}};
  for (const auto& row : rows) {
    input::Configure(Native(w), {100, 100, 100 + row.asked, 300});
    RunLoop();
    EXPECT_EQ(w->width, row.given) << row.asked;
    EXPECT_EQ(platform::GetWindowBounds(Native(w), platform::kWindowContentRgn).width(), row.given);
  }
  // Who insists gets the size: the answer comes once.
  input::Configure(Native(w), {100, 100, 204, 300});
  RunLoop();
  EXPECT_EQ(w->width, 101);
  seen.clear();
  input::Configure(Native(w), {100, 100, 204, 300});
  RunLoop();
  EXPECT_EQ(w->width, 104);
  EXPECT_EQ(Trace(), "w 768 w 769");
}

TEST(Desktop, SnappingIsDoneInSinglePrecision) {
  XwWindow* w = OpenMain();
  const struct {
    int original, current, step, expected;
  } rows[] = {
      {101, 110, 10, 111},    {101, 105, 10, 101},   {101, 106, 10, 111}, {101, 95, 10, 91},
      {101, 96, 10, 101},     {100, 103, 1, 103},    {100, 103, 0, 103},  {99, 1, 100, -1},
      {640, 30000, 7, 29998}, {33, 32767, 3, 32766},
  };
  for (const auto& row : rows) {
    w->step_x = uint16_t(row.step);
    w->step_y = 0;
    platform::Event e(platform::kEventClassWindow, platform::kEventWindowBoundsChanging, Native(w));
    e.bounds.original = {0, 0, row.original, 100};
    e.bounds.current = {7, 9, 7 + row.current, 9 + 33};
    EXPECT_EQ(EVwindow_func(nullptr, &e, w), platform::noErr);
    EXPECT_EQ(e.bounds.current.left, 7);
    EXPECT_EQ(e.bounds.current.bottom, 42);
    EXPECT_EQ(e.bounds.current.width(), row.expected) << row.original << " " << row.current;
  }
}

TEST(Desktop, AFixedWindowAnswersOnce) {
  XwWindow* w = OpenMain();
  input::Configure(Native(w), {100, 100, 500, 400});
  RunLoop();
  EXPECT_EQ(w->width, 300);
  EXPECT_EQ(Trace(), "");
  input::Configure(Native(w), {100, 100, 500, 400});
  RunLoop();
  EXPECT_EQ(w->width, 400);
  EXPECT_EQ(Trace(), "main 768 main 769");
}

TEST(Desktop, OddReportsLeaveAWindowOfAtLeastOnePixel) {
  XwWindow* w = OpenMain();
  XwSetSizes(w, 0, 0, 0, 0, 50, 50);
  for (Rect r : {Rect{0, 0, 0, 0}, Rect{5, 5, -100, -100}, Rect{-40000, 40000, 30000, 40001},
                 Rect{0, 0, 100000, 3}}) {
    for (int again = 0; again < 2; ++again) {
      input::Configure(Native(w), r);
      RunLoop();
      EXPECT_GE(w->width, 1);
      EXPECT_GE(w->height, 1);
      EXPECT_GE(platform::GetWindowBounds(Native(w), platform::kWindowContentRgn).height(), 1);
    }
  }
}

TEST(Desktop, TheCloseBoxOnlyAsks) {
  XwWindow* w = OpenMain();
  input::Close(Native(w));
  EXPECT_EQ(RunTrace(), "main 778");
  EXPECT_TRUE(platform::IsWindowVisible(Native(w)));
}

TEST(Desktop, DocumentsGoToTheMainWindow) {
  Open();
  input::OpenFile("/too/early");
  RunLoop();
  Main();
  Top("other", 500, 100, 50, 50);
  Settle();
  input::OpenFile("/tmp/a file");
  on_event = [](int) { EXPECT_STREQ(reinterpret_cast<const char*>(Inp.value), "/tmp/a file"); };
  EXPECT_EQ(RunTrace(), "main 798");
  EXPECT_EQ(Inp.item, 0);
  on_event = nullptr;
  seen.clear();
  TakeRefusal();
  std::string longest = "/" + std::string(PATH_MAX - 2, 'x');
  input::OpenFile((longest + "x").c_str());
  EXPECT_EQ(RunTrace(), "");
  EXPECT_EQ(TakeRefusal(), Refusal::kPathTooLong);
  input::OpenFile(longest.c_str());
  RunLoop();
  ASSERT_EQ(Trace(), "main 798");
  EXPECT_EQ(reinterpret_cast<const char*>(seen[0].event.value), longest);
}

// One event has the first document that fits, XwDroppedFiles has them all; each request its own.
std::vector<std::vector<std::string>> requests;
TEST(Desktop, ARequestHasAllItsDocuments) {
  XwWindow* w = OpenMain();
  on_event = [](int type) {
    int count = -1;
    const char* const* files = XwDroppedFiles(&count);
    ASSERT_EQ(files != nullptr, type == 798);
    auto& all = requests.emplace_back(files, files + count);
    all.push_back(Inp.param ? "asked" : "dropped " + std::to_string(XwDropNumber()));
    all.push_back(reinterpret_cast<const char*>(Inp.value));
  };
  const std::string longer(PATH_MAX, 'x');
  const auto drop = [w](const std::vector<std::string>& files) {
    input::DragFiles(Native(w), 10, 20);
    input::EndDragOfFiles(Native(w), true);
    files.empty() ? input::FailDrop(Native(w)) : input::OpenFiles(files, false);
  };
  // The second drop comes before the first is handled: both keep their numbers.
  drop({"/a", "/two\nlines\\", "/\xff"});
  input::OpenFiles({"/" + longer, "/c"}, true);
  input::OpenFiles({}, true);
  drop({});
  drop({"/" + longer});
  drop({"/d"});
  input::OpenFile("/e");
  XwSetDragHandler(w, 1, [](int what) {
    if (what == XW_DRAG_FAILED) requests.push_back({"failed " + std::to_string(XwDropNumber())});
  });
  RunLoop();
  EXPECT_EQ(requests, (std::vector<std::vector<std::string>>{
                          {"failed 2"},
                          {"failed 3"},
                          {"/a", "/two\nlines\\", "/\xff", "dropped 1", "/a"},
                          {"/" + longer, "/c", "asked", "/c"},
                          {"/d", "dropped 4", "/d"},
                          {"/e", "dropped 0", "/e"}}));
  int count = 5;
  EXPECT_EQ(XwDroppedFiles(&count), nullptr);
  EXPECT_EQ(count, 0);
}

TEST(Desktop, ActivationOfTheProgram) {
  XwWindow* w = OpenMain();
  EXPECT_TRUE(AppActive);
  XwWindow* other = Top("other", 500, 100, 50, 50);
  Settle();
  EXPECT_TRUE(platform::IsWindowActive(Native(other)));
  EXPECT_FALSE(platform::IsWindowActive(Native(w)));
  input::Focus(Native(w));
  RunLoop();
  EXPECT_TRUE(AppActive);
  input::Focus(nullptr);
  RunLoop();
  EXPECT_FALSE(AppActive);
  EXPECT_FALSE(platform::IsWindowActive(Native(w)));
  XwDestroy(other);
  input::Focus(Native(w));
  RunLoop();
  EXPECT_TRUE(AppActive);
}

TEST(Desktop, CommandsReachTheMainWindowAndOthersPass) {
  OpenMain();
  platform::Event e(platform::kEventClassCommand, platform::kEventCommandProcess);
  const struct {
    uint32_t command;
    platform::OSStatus status;
  } rows[] = {{platform::kHICommandQuit, platform::noErr},
              {platform::kHICommandPreferences, platform::noErr},
              {platform::FourCC("none"), platform::eventNotHandledErr}};
  for (const auto& row : rows) {
    e.request = {row.command, nullptr, 0};
    EXPECT_EQ(EVapp_func(nullptr, &e, nullptr), row.status);
  }
  EXPECT_EQ(RunTrace(), "main 796 main 797");
}

}  // namespace
