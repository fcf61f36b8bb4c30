// A user at the keyboard and the pointer, with and without a window manager.
#include "platform/display/x11/x.h"
#include "platform/events/clock.h"
#include "platform/events/raw_event.h"
#include "platform/windows/internal.h"
#include "tests/x11/reports.h"

namespace x11_test {
namespace {

using namespace platform;

TEST_F(Reports, FiveButtonsAndAWheel) {
  Start();
  Ready();
  for (int button : {1, 3, 2, 8, 9}) user().Click(button);
  for (int button : {4, 5, 6, 7}) user().Click(button);
  ASSERT_TRUE(Wait(RawEvent::kScroll, 4));
  const auto presses = Of(RawEvent::kPress), releases = Of(RawEvent::kRelease);
  ASSERT_EQ(presses.size(), 5u);
  ASSERT_EQ(releases.size(), 5u);
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(presses[size_t(i)].button, i + 1);
    EXPECT_EQ(releases[size_t(i)].button, i + 1);
    EXPECT_EQ(presses[size_t(i)].x, 50);
    EXPECT_EQ(presses[size_t(i)].y, 100);  // the menu bar is part of the buffer
    EXPECT_EQ(presses[size_t(i)].root_y, 200);
  }
  const auto scrolls = Of(RawEvent::kScroll);
  EXPECT_LT(scrolls[0].dy, 0);
  EXPECT_GT(scrolls[1].dy, 0);
  EXPECT_LT(scrolls[2].dx, 0);
  EXPECT_GT(scrolls[3].dx, 0);
}

// The button comes up where nobody listens: its window is gone, and the pointer over none of ours.
TEST_F(Reports, AReleaseThatNobodyHeardIsNotForgotten) {
  Start();
  Ready();
  WindowRef pressed = Show("Pressed", {500, 300, 600, 400});
  user().Move(550, 350);
  user().Button(1, true);
  user().Button(8, true);
  ASSERT_TRUE(Wait(RawEvent::kPress, 2));
  DisposeWindow(pressed);
  kX11Display.flush(true);
  user().Button(1, false);
  user().Move(150, 200);
  user().Move(160, 200);
  ASSERT_TRUE(Wait(RawEvent::kMotion, 2));
  const auto releases = Of(RawEvent::kRelease);
  ASSERT_EQ(releases.size(), 1u);
  EXPECT_EQ(releases[0].button, 1);
  EXPECT_EQ(releases[0].root_x, 150);
  user().Button(8, false);
  ASSERT_TRUE(Wait(RawEvent::kRelease, 2));
  EXPECT_EQ(Of(RawEvent::kRelease)[1].button, 4);
}

// The server takes no grab for a window that is not on the screen.
TEST_F(Reports, AGrabWaitsForItsWindow) {
  Start("openbox");
  WindowRef w = CreateNewWindow(kDocumentWindowClass, kAllBoxes, {100, 124, 400, 424});
  auto grabbed = [&] {
    return Collect([&] {
      reports.clear();
      user().Move(700, 500);
      user().Move(710, 510);
      user().Sync();
      return Collect([&] { return true; }) && !Of(RawEvent::kMotion).empty();
    });
  };
  ShowWindow(w);
  CapturePointer(w, nullptr);
  Settle();
  EXPECT_TRUE(grabbed()) << "grabbed before the manager had shown it";
  HideWindow(w);
  ShowWindow(w);
  Settle();
  EXPECT_TRUE(grabbed()) << "hidden before it ends";
  CapturePointer(nullptr, nullptr);
  Settle();
  reports.clear();
  user().Move(600, 500);
  user().Sync();
  Settle();
  EXPECT_TRUE(Collect([] { return true; }));
  EXPECT_TRUE(Of(RawEvent::kMotion).empty());
}

// The release of a held key goes elsewhere: the program is told all the same.
TEST_F(Reports, LosingTheFocusEndsHeldKeys) {
  Start();
  Ready();
  user().Key('x', true);
  ASSERT_TRUE(Wait(RawEvent::kKeyDown));
  xcb_set_input_focus(user().connection(), XCB_INPUT_FOCUS_NONE, XCB_NONE, XCB_CURRENT_TIME);
  user().Sync();
  ASSERT_TRUE(Wait(RawEvent::kFocusOut));
  EXPECT_EQ(Of(RawEvent::kKeyUp).size(), 1u);
  user().Key('x', false);
}

// A key that goes down in a window and ends it comes up where nobody hears it.
TEST_F(Reports, AKeyThatEndsItsWindowDoesNotStayDown) {
  Start();
  Ready();
  WindowRef other = Show("Ended", {500, 124, 600, 200});
  SelectWindow(other);
  ASSERT_TRUE(RunUntil([&] { return other->focused; }));
  user().Move(900, 700);  // in no window, which would get the focus back, and lose it
  user().Key('x', true);
  ASSERT_TRUE(Wait(RawEvent::kKeyDown));
  DisposeWindow(other);
  xcb_set_input_focus(user().connection(), XCB_INPUT_FOCUS_NONE, XCB_NONE, XCB_CURRENT_TIME);
  Settle();
  reports.clear();
  user().Key('x', false);
  user().Sync();
  SelectWindow(WindowList().front());
  ASSERT_TRUE(Wait(RawEvent::kFocusIn));
  ASSERT_TRUE(Wait(RawEvent::kKeyUp));
  EXPECT_EQ(Of(RawEvent::kKeyUp).front().window, nullptr);
  user().Key('x', true);
  ASSERT_TRUE(Wait(RawEvent::kKeyDown));
  EXPECT_TRUE(Of(RawEvent::kKeyRepeat).empty());
  user().Key('x', false);
}

TEST_F(Reports, TimesAreOnOurClock) {
  Start();
  Ready();
  const double before = GetCurrentEventTime();
  user().Click(1);
  ASSERT_TRUE(Wait(RawEvent::kRelease));
  const double after = GetCurrentEventTime();
  for (RawEvent::Type type : {RawEvent::kPress, RawEvent::kRelease}) {
    EXPECT_GE(Of(type)[0].time, before - 0.5);
    EXPECT_LE(Of(type)[0].time, after);
  }
}

}  // namespace
}  // namespace x11_test
