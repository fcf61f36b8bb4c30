// Where windows go and how large their pixels are: pop-ups beside their anchor, and two screens of
// different scales.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "platform/display/headless/headless.h"
#include "platform/display/pop_up.h"
#include "platform/display/screens.h"
#include "platform/display/window.h"
#include "platform/events/targets.h"
#include "platform/loop/receive.h"
#include "platform/loop/start.h"
#include "platform/windows/windows.h"
#include "toolkit/xw.h"

namespace platform {
namespace {

constexpr uint8_t kLB = kEdgeLeft | kEdgeBottom, kRB = kEdgeRight | kEdgeBottom,
                  kRT = kEdgeRight | kEdgeTop, kLT = kEdgeLeft | kEdgeTop;

TEST(PopUps, LieBesideTheirAnchorAndOnTheScreen) {
  const DeviceRect screen{0, 0, 1000, 800};
  const DeviceRect top{100, 100, 200, 120}, low{100, 700, 200, 720}, right{900, 100, 950, 120};
  const DeviceRect tall{100, 300, 200, 500}, out{-50, 100, 0, 120}, corner{900, 700, 950, 750};
  constexpr uint8_t kAll = kAdjustAll, kCut = kResizeX | kResizeY;
  const struct {
    const char* what;
    DeviceRect anchor;
    uint8_t edge, gravity, adjust;
    int width, height;
    DeviceRect place;
  } rows[] = {
      {"below", top, kLB, kRB, kAll, 300, 50, {100, 120, 400, 170}},
      {"beside", top, kRT, kRB, kAll, 50, 60, {200, 100, 250, 160}},
      {"above, ends aligned", top, kRT, kLT, kAll, 50, 60, {150, 40, 200, 100}},
      {"centred", top, 0, 0, kAll, 40, 10, {130, 105, 170, 115}},
      {"just room", low, kLB, kRB, kAll, 50, 80, {100, 720, 150, 800}},
      {"turned over", low, kLB, kRB, kAll, 50, 100, {100, 600, 150, 700}},
      {"turned to the left", right, kRT, kRB, kAll, 80, 60, {820, 100, 900, 160}},
      {"no room on either side", tall, kLB, kRB, kAll, 50, 400, {100, 400, 150, 800}},
      {"may not turn", low, kLB, kRB, kSlideY, 50, 100, {100, 700, 150, 800}},
      {"slides back", out, kLB, kRB, kAll & ~kFlipX, 80, 50, {0, 120, 80, 170}},
      {"too large", {0, 100, 10, 120}, kLB, kRB, kAll, 1500, 900, {0, 0, 1000, 800}},
      {"start first", {500, 100, 510, 120}, kLB, kRB, kSlideX, 1500, 50, {0, 120, 1500, 170}},
      {"only cut", corner, kLB, kRB, kCut, 300, 300, {900, 750, 1000, 800}},
      {"as it is", corner, kLB, kRB, 0, 300, 300, {900, 750, 1200, 1050}},
      {"elsewhere", {2000, 100, 2010, 110}, kLB, kRB, kResizeX, 0, -5, {2000, 110, 2001, 111}},
  };
  for (const auto& row : rows) {
    const PopUpPlace place{{}, row.edge, row.gravity, row.adjust, 0, 0};
    EXPECT_EQ(PlacePopUp(row.anchor, row.width, row.height, place, screen), row.place) << row.what;
  }
}

void Receive() {
  Event e;
  while (ReceiveNextEvent(0, &e)) SendEventToEventTarget(&e, GetEventDispatcherTarget());
}

WindowRef Open(const char* screens) {
  setenv("XW_DISPLAY", "headless", 1);
  setenv("XW_SCREEN", screens, 1);
  headless::UseSteppedClock(1000);
  EXPECT_TRUE(InitPlatform("test"));
  WindowRef w = CreateNewWindow(kDocumentWindowClass, 0, {100, 124, 300, 300});
  ShowWindow(w);
  Receive();
  return w;
}

TEST(PopUps, FollowParentAndScreen) {
  WindowRef w = Open("1000x800");
  PopUpPlace place{{10, 20, 60, 40}, kLB, kRB, kAdjustAll, 150, 100};
  WindowRef menu = CreatePopUpWindow(w, place);
  ShowWindow(menu);
  Receive();
  EXPECT_EQ(menu->content, (Rect{110, 164, 260, 264}));
  EXPECT_TRUE(w->focused) << "pop-ups take no focus";
  WindowRef sub = CreatePopUpWindow(menu, {{150, 0, 150, 20}, kRT, kRB, kAdjustAll, 120, 60});
  ShowWindow(sub);
  Receive();
  EXPECT_EQ(sub->content, (Rect{260, 164, 380, 224}));
  headless::MovePointer(270, 170);
  headless::Press(1);
  Event press;
  while (ReceiveNextEvent(0, &press) && press.kind != kEventMouseDown) {
  }
  EXPECT_EQ(press.window, sub);
  headless::Release(1);
  headless::Configure(w, {850, 700, 1050, 876});
  Receive();
  EXPECT_EQ(menu->content, (Rect{760, 620, 910, 720})) << "turned over twice";
  EXPECT_EQ(sub->content, (Rect{790, 620, 910, 680})) << "and what hangs on it";
  headless::ChangeScreen(900, 690, 1);
  Receive();
  EXPECT_EQ(menu->content.right, 900);
  place.width = 2000;
  place.anchor = {0, 0, 10, 10};
  headless::ChangeScreen(1000, 800, 1);
  SetPopUpPlace(menu, place);
  Receive();
  EXPECT_EQ(menu->content.width(), 1000) << "cut to the screen";
  EXPECT_EQ(menu->surface.width, 1000);
  // Its corners show what lies below, at every scale.
  menu->place.corner = 5;
  for (const auto& [scale, outside] : {std::pair{1.0, "31100"}, {2.0, "7532211000"}}) {
    menu->surface.scale = scale;
    std::string columns;
    for (const DeviceRect& row : PopUpOutline(*menu, 100, 60)) {
      if (row.height() > 1) break;
      EXPECT_EQ(row.right, 100 - row.left);
      columns += std::to_string(row.left);
    }
    EXPECT_EQ(columns, outside);
  }
  menu->surface.scale = 1;
  HideWindow(w);
  EXPECT_FALSE(menu->visible || sub->visible);
  ShowWindow(w);
  DisposeWindow(w);
  ShowWindow(menu);
  EXPECT_FALSE(menu->visible);
  EXPECT_EQ(CreatePopUpWindow(w, place), nullptr);
}

TEST(Screens, AScaleIsANumberAndNothingElse) {
  const struct {
    const char* text;
    double scale;
  } rows[] = {{"2", 2},   {"1.25", 1.25}, {"0.5", 0.5}, {"8", 8}, {"2x", 0},
              {"2,0", 0}, {"8.1", 0},     {"0.4", 0},   {"", 0},  {" 2", 0},
              {"1e0", 0}, {nullptr, 0},   {"nan", 0}};
  for (const auto& row : rows) EXPECT_EQ(ScaleInText(row.text), row.scale) << row.text;
}

TEST(Screens, AreReadFromLeftToRight) {
  const struct {
    const char* text;
    std::vector<Screen> screens;
  } rows[] = {
      {"640x480", {{{0, 0, 640, 480}, 1}}},
      {"640x480@2,800x600,10x20@1.5",
       {{{0, 0, 640, 480}, 2}, {{640, 0, 1440, 600}, 1}, {{1440, 0, 1450, 20}, 1.5}}},
      {"640x480,nothing", {{{0, 0, 640, 480}, 1}}},
      {"640x480@99", {{{0, 0, 640, 480}, 1}}},
      {"0x9", {{{0, 0, 1280, 1024}, 1}}},
  };
  for (const auto& row : rows) {
    Open(row.text);
    Screen screens[4];
    ASSERT_EQ(kHeadlessDisplay.screens(screens, 4), int(row.screens.size())) << row.text;
    for (size_t i = 0; i < row.screens.size(); ++i) {
      EXPECT_EQ(screens[i].bounds, row.screens[i].bounds) << row.text;
      EXPECT_EQ(screens[i].scale, row.screens[i].scale) << row.text;
    }
    FinishPlatform();
  }
}

int Draw(int type) {
  if (type != XWE_EXPOSE) return type == XWE_TIMER ? type : 0;
  XwSet(Inp.window);
  XwDrawText(XWF_BOLD, 0x400, 0, 4, 200, 20, "Sharp", 0x1D2022, -1);
  return 0;
}

// Whether every square of `side` pixels below the menu bar has one colour: a picture blown up.
bool IsBlownUp(const headless::Picture& p, int side) {
  for (int y = 24 * side; y < p.height; ++y)
    for (int x = 0; x < p.width; ++x)
      if (p.pixels[size_t(y * p.width + x)] !=
          p.pixels[size_t(y / side * side * p.width + x / side * side)])
        return false;
  return true;
}

TEST(Screens, AWindowThatMovesAcrossIsSharpAgain) {
  setenv("XW_DISPLAY", "headless", 1);
  setenv("XW_SCREEN", "1280x1024,2560x2048@2", 1);
  setenv("HOME", "/", 1);
  headless::UseSteppedClock(1000);
  XwSession("screens", "Screens", 7);
  XwWindow* top = XwCreate(nullptr, 100, 100, 200, 100, Draw);
  XwShow(top, 1);
  XwSetCursor(top, 7);
  auto w = static_cast<WindowRef>(top->platform);
  auto run = [&] {
    XwTimer(top, 9, 1);
    EXPECT_EQ(XwWaitEvent(nullptr), XWE_TIMER);
    XwSync();
  };
  run();
  const headless::Picture small = headless::TakePicture(w);
  EXPECT_EQ(small.width, 200);
  const int cursor = headless::ShownCursorPicture(w).width;
  headless::Configure(w, {1500, 100, 1700, 200});
  run();
  const headless::Picture large = headless::TakePicture(w);
  EXPECT_EQ(large.width, 400);
  EXPECT_EQ(large.height, 248);
  EXPECT_FALSE(IsBlownUp(large, 2));
  EXPECT_EQ(headless::ShownCursorPicture(w).width, 2 * cursor);
  EXPECT_EQ(top->width, 200);
  EXPECT_EQ(top->x, 750) << "the same place on the screen";
  // The pointer meets it where it is drawn.
  headless::MovePointerIn(w, 30, 40);
  run();
  EXPECT_EQ(Inp.px, 30);
  EXPECT_EQ(Inp.py, 40);
  headless::MovePointer(1560, 156);
  run();
  EXPECT_EQ(Inp.px, 30);
  headless::Configure(w, {50, 50, 250, 150});
  run();
  EXPECT_EQ(headless::TakePicture(w).pixels, small.pixels);
  // The program itself moves it.
  XwMove(top, 1400, 100, 200, 100);
  run();
  EXPECT_EQ(w->surface.scale, 2);
  headless::ChangeScreens({{{0, 0, 2560, 2048}, 1.5}});
  run();
  EXPECT_EQ(w->surface.scale, 1.5);
  EXPECT_EQ(headless::TakePicture(w).width, 300);
  XwDestroy(top);
  XwEndSession();
}

}  // namespace
}  // namespace platform
