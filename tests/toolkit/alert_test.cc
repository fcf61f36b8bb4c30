// Alerts: their place and shape, how they are answered, and what happens to the rest of the program
// until then.
#include <gtest/gtest.h>
#include <unistd.h>

#include <functional>

#include "platform/events/queue.h"
#include "tests/support/picture.h"
#include "tests/toolkit/control_stage.h"
#include "toolkit/core/post.h"
#include "toolkit/target/selection.h"

namespace {

using namespace stage;

constexpr uint32_t kEnter = 0xFF0D, kTab = 0xFF09, kEscape = 0xFF1B, kLeft = 0xFF51,
                   kRight = 0xFF53;

// What happens while an alert is open, one after the other, each when all is quiet.
std::vector<std::function<void()>> steps;
XwWindow* alert;

bool NextStep() {
  alert = W_End;
  while (alert && alert->parent != W_Root) alert = alert->previous;
  if (steps.empty()) return false;
  const auto step = steps.front();
  steps.erase(steps.begin());
  step();
  return true;
}

template <typename... Label>
int Ask(std::vector<std::function<void()>> then, const char* kind, const char* message,
        Label... labels) {
  steps = then;
  input::SetIdleHandler(NextStep);
  return XwConfirm(kind, "title", message, labels..., nullptr);
}
std::function<void()> Press(uint32_t key) {
  return [key] {
    input::KeyDown(key, key < 128 ? key : 0);
    input::KeyUp(key, key < 128 ? key : 0);
  };
}
std::function<void()> ClickOn(int id) {
  return [id] {
    const XwWindow* b = XwFind(alert, 10000 + id);
    input::Click(alert->x + b->x + 20, alert->y + b->y + 12);
  };
}

TEST(Alert, ItIsAnsweredByThePointerAndByTheKeyboard) {
  ControlScreen s;
  Inp.root_x = 600;
  Inp.root_y = 400;
  const struct {
    std::vector<std::function<void()>> steps;
    int answer;
  } rows[] = {{{ClickOn(2)}, 2},
              {{ClickOn(3)}, 3},
              {{Press(' ')}, 1},
              {{Press(kEnter)}, 1},
              {{Press(kEscape)}, 1},
              {{Press(kTab), Press(' ')}, 2},
              {{Press(kTab), Press(kTab), Press(kEscape)}, 1},
              {{Press(kTab), Press(kTab), Press(kEnter)}, 3},
              {{Press(kLeft), Press(kRight), Press(kEnter)}, 2},
              {{Press(kRight), Press(kRight), Press(kRight), Press(kLeft), Press(' ')}, 2},
              // The window behind gives the keyboard back.
              {{[] { input::Focus(Native(W_Start)); }, Press(kTab), Press(' ')}, 2},
              {{[] { platform::SelectWindow(Native(W_Start)); },
                [] { EXPECT_TRUE(platform::IsWindowActive(Native(alert))); }, Press(' ')},
               1},
              // A press of the background does nothing.
              {{[] { input::Click(alert->x + 5, alert->y + 90); }, ClickOn(1)}, 1}};
  for (const auto& row : rows) {
    XwWindow* last = W_End;
    EXPECT_EQ(Ask(row.steps, "!", "Remove?", "Keep", "Remove", "Both"), row.answer);
    EXPECT_EQ(Inp.type, 0);
    EXPECT_EQ(Inp.focus, s.main);
    EXPECT_EQ(W_End, last);
    EXPECT_EQ(XStackCount, 0);
    platform::ForEachUserEvent(platform::GetMainEventQueue(), kToolkitEventClass,
                               [](void* e) { EXPECT_NE(static_cast<XwEvent*>(e)->type, 0); });
    // Neither the press nor the key is heard outside.
    Quiet();
    RunLoop();
    EXPECT_EQ(Reports() + Others(), "");
  }
}

platform::TreeListener listener = {[](void*, uint64_t, platform::Change) {}, nullptr};

TEST(Alert, ItsShape) {
  ControlScreen s;
  platform::AddTreeListener(&listener);
  const std::string wide(60, 'w');
  const int text = XwTextWidth(FT_ALERT, wide.c_str());
  auto look = [&](const char* message, int width, int x, std::initializer_list<int> buttons) {
    return [=] {
      EXPECT_EQ(alert->width, width) << message;
      EXPECT_EQ(alert->height, 100);
      EXPECT_EQ(alert->x, x);
      EXPECT_EQ(alert->y, 350);
      int id = 10001;
      for (const int left : buttons) {
        const XwWindow* b = XwFind(alert, id++);
        ASSERT_TRUE(b);
        EXPECT_EQ(b->x, left);
        EXPECT_EQ(b->y, 70);
        EXPECT_EQ(b->width, 100);
        EXPECT_TRUE(b->enabled);
      }
      EXPECT_EQ(XwFind(alert, id), nullptr);
      EXPECT_EQ(XwGetFocus(alert), XwFind(alert, 10001));
      EXPECT_EQ(Node(message).what.role, platform::ObjectRole::kLabel);
      Press(kEnter)();
    };
  };
  Inp.root_x = 601;
  Inp.root_y = 400;
  Ask({look("Go?", 410, 601 - 205, {200, 305})}, "!", "Go?", "A", "B");
  Ask({look("Go?", 630, 601 - 315, {105, 210, 315, 420, 525})}, "!", "Go?", "A", "B", "C", "D",
      "E");
  Ask({look(wide.c_str(), text + 110, 601 - (text + 110) / 2, {text + 5})}, "!", wide.c_str(), "A");
  // Longer than the screen is wide.
  Ask({[] {
        EXPECT_LE(alert->width, XW_SCREENX);
        EXPECT_GT(alert->width, XW_SCREENX - 20);
        EXPECT_GT(alert->height, 130);
        Press(kEnter)();
      }},
      "!", std::string(900, 'w').c_str(), "A");
  platform::RemoveTreeListener(&listener);
}

TEST(Alert, ItLiesOnTheScreen) {
  ControlScreen s;
  for (const int x : {-5000, 0, 1279, 90000})
    for (const int y : {-90000, 0, 1023, 5000}) {
      Inp.root_x = x;
      Inp.root_y = y;
      Ask({[] {
            EXPECT_GE(alert->x, 0);
            EXPECT_GE(alert->y, 0);
            EXPECT_LE(alert->x + alert->width, XW_SCREENX);
            EXPECT_LE(alert->y + alert->height, XW_SCREENY);
            Press(kEnter)();
          }},
          "!", "Go?", "A");
    }
}

TEST(Alert, WhatItDroppedComesAgain) {
  ControlScreen s;
  XwWindow* other = XwCreate(0, 500, 100, 100, 100, Record);
  Name(other, "other");
  XwShow(other, 1);
  Settle();
  int beeps = 0;
  static std::string dragged;
  XwSetDragHandler(
      s.main, 1, [](int what) { dragged += std::to_string(what) + "@" + std::to_string(Inp.px); });
  Ask({[&] {
         input::DragFiles(Native(s.main), 10, 10);
         input::EndDragOfFiles(Native(s.main), true);
         for (XwWindow* w : {s.main, other}) {
           XwSendEvent(w, XWE_EXPOSE, 0, 0, 0);
           XwSendEvent(w, XWE_EXPOSE, 0, 0, 0);
           XwSendEvent(w, XWE_CONFIGURE, 0, 0, 0);
           XwSendEvent(w, XWE_CONTROL, 10001, 0, 0);
         }
         XwSendEvent(s.main, XWE_OPEN, 0, "first", 0);
         XwSendEvent(s.main, XWE_QUIT, 0, 0, 1);
         XwSendEvent(s.main, XWE_PREFERENCES, 0, 0, 0);
         XwSendEvent(s.main, XWE_OPEN, 0, "last", 0);
         XwSendEvent(s.main, 1000, 0, 0, 0);
       },
       [&] {
         beeps = input::Counts().beeps;
         input::Focus(Native(other));
         input::Click(510, 190);
       },
       [&] {
         EXPECT_EQ(input::Counts().beeps, beeps + 1);
         EXPECT_TRUE(IsWindowActive(Native(alert))) << "the keyboard has come back to it";
         XwWindow* gone = other;
         XwDestroy(gone);
       },
       ClickOn(1)},
      "?", "Go?", "A");
  EXPECT_TRUE(seen.empty());
  EXPECT_EQ(dragged, std::to_string(XW_DRAG_DROPPED) + "@10") << "of a drag it hears the end alone";
  Quiet();
  RunLoop();
  EXPECT_EQ(Trace(), "main 768 main 769 main 796 main 797 main 798");
  EXPECT_STREQ(reinterpret_cast<const char*>(seen.back().event.value), "last");
  EXPECT_EQ(seen[2].event.param, 1);
}

// They are inactive then, with a lighter background, but nobody would draw them; and what a control
// erases for itself has the background that is there.
TEST(Alert, OtherWindowsKeepWhatTheyShow) {
  ControlScreen s;
  XwSetGround(s.main, nullptr, 2);
  XwFocusControl(XwButton(s.main, "Go", 1, 200, 50, 80, 26, kOn, 0));
  Settle();
  XwSet(s.main);
  XwBox(50, 50, 100, 100, 0x0000FF);
  XwSet(nullptr);
  auto shown = [&](int x, int y) {
    XwSync();
    const auto p = input::TakePicture(Native(s.main));
    return p.pixels[size_t((y + platform::GetMBarHeight()) * p.width + x)] & 0xFFFFFF;
  };
  const uint32_t before = shown(20, 20);
  auto look = [&] {
    EXPECT_EQ(shown(100, 100), 0xFF0000u);
    // Beside the button, where its ring was.
    for (int x = 190; x < 200; ++x) EXPECT_EQ(shown(x, 60), before) << x;
  };
  Ask({[] {}, look, ClickOn(1)}, "!", "Go?", "A");
  Quiet();
  RunLoop();
  EXPECT_EQ(shown(100, 100), 0xFF0000u);
}

TEST(Alert, OneThatTheProgramDestroysIsOver) {
  ControlScreen s;
  auto end = [](platform::EventLoopTimerRef, void*) { XwDestroy(alert); };
  auto handler = +[](int type) { return type == 1000 ? XwDestroy(Inp.window), 0 : type; };
  auto fail = [] { FAIL() << "it waits for something else"; };
  const std::vector<std::function<void()>> rows[] = {{[=] {
                                                        input::Focus(nullptr);
                                                        platform::InstallEventLoopTimer(0.1, 0, end,
                                                                                        nullptr);
                                                      },
                                                      fail},
                                                     {[=] {
                                                        alert->handler = handler;
                                                        XwSendEvent(alert, 1000, 0, 0, 0);
                                                      },
                                                      fail}};
  for (const auto& steps_of_row : rows) EXPECT_EQ(Ask(steps_of_row, nullptr, nullptr, "A"), 0);
}

TEST(Alert, TextsOfEveryScript) {
  ControlScreen s;
  platform::AddTreeListener(&listener);
  steps = {[] {
    EXPECT_EQ(Node("Löschen “ж”?").what.role, platform::ObjectRole::kLabel);
    EXPECT_EQ(Node("Нет").what.role, platform::ObjectRole::kButton);
    ClickOn(2)();
  }};
  input::SetIdleHandler(NextStep);
  EXPECT_EQ(XwConfirmUtf8("!", nullptr, "Löschen “ж”?", "Нет", "Да", nullptr), 2);
  // A long one takes more lines and pushes the buttons down.
  std::string words;
  while (XwTextWidthUtf8(FT_ALERT, words.c_str()) < 3 * 420) words += "Löschen ";
  steps = {[&] {
    EXPECT_LE(alert->width, 420 + 110);
    const int lines = (alert->height - 100) / (FT_ALERT->ascent + FT_ALERT->descent);
    EXPECT_TRUE(lines == 3 || lines == 4) << lines;
    EXPECT_EQ(XwFind(alert, 10001)->y, alert->height - 30);
    EXPECT_EQ(Node(words).what.role, platform::ObjectRole::kLabel);
    ClickOn(1)();
  }};
  EXPECT_EQ(XwConfirmUtf8("!", nullptr, words.c_str(), "A", nullptr), 1);
  platform::RemoveTreeListener(&listener);
}

TEST(Alert, TheFileOfTheProgram) {
  FSSpec spec;
  EXPECT_EQ(GetApplicationBundleFSSpec(&spec), 0);
  char path[5000] = "";
  ASSERT_GT(readlink("/proc/self/exe", path, sizeof path - 1), 0);
  EXPECT_STREQ(spec.path, path);
  EXPECT_EQ(GetApplicationBundleFSSpec(nullptr), -43);
}

// Each kind at one scale.
// Its left half red, the rest see-through.
TEST(Alert, ShowsTheProgramsIcon) {
  ControlScreen s;
  std::vector<uint32_t> argb(256, 0);
  for (size_t i = 0; i < argb.size(); ++i)
    if (i % 16 < 8) argb[i] = 0xFFFF0000;
  XwSetProgramIcon(argb.data(), 16);
  Ask({[] {
        XwSync();
        const auto p = input::TakePicture(Native(alert));
        auto at = [&](int x, int y) { return p.pixels[size_t(y * p.width + x)] & 0xFFFFFF; };
        const int bar = int(p.height) - 100;  // of the menu
        EXPECT_EQ(at(12, bar + 40), 0xFF0000u);
        EXPECT_EQ(at(41, bar + 40), 0xFF0000u);
        EXPECT_EQ(at(42, bar + 40), at(5, bar + 40));
        Press(kEscape)();
      }},
      "i", "About", "Close");
  XwSetProgramIcon(nullptr, 16);
}

class AlertPictures : public testing::TestWithParam<const char*> {};

TEST_P(AlertPictures, AreCrisp) {
  setenv("XW_SCALE", GetParam(), 1);
  ControlScreen s;
  testkit::Picture sheet;
  for (const char* kind : {"!", "?", "i"}) {
    // Drawn twice it looks as when it is drawn once.
    Ask({[] { XwSendEvent(alert, XWE_EXPOSE, 0, 0, 0); },
         [&] {
           XwSync();
           const auto p = input::TakePicture(Native(alert));
           sheet.width = p.width;
           sheet.height += p.height;
           sheet.pixels.insert(sheet.pixels.end(), p.pixels.begin(), p.pixels.end());
           Press(kEnter)();
         }},
        kind, "Remove 3 jobs from the queue?", "Cancel", "Remove");
  }
  EXPECT_TRUE(testkit::MatchesReference(sheet, PICTURES, std::string("alerts-") + GetParam()));
  unsetenv("XW_SCALE");
}

INSTANTIATE_TEST_SUITE_P(Scales, AlertPictures, testing::Values("1", "1.5", "2"),
                         [](const auto& i) { return "Scale" + std::to_string(i.index); });

}  // namespace
