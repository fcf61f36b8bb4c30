// Pointer events: the window that gets them, coordinates, buttons, grabs, pens, the wheel.
#include <gtest/gtest.h>

#include "tests/toolkit/stage.h"
#include "toolkit/core/state.h"
#include "toolkit/events/mouse.h"

namespace {

using namespace stage;
using platform::RawEvent;
using platform::TabletPoint;

XwWindow* LastWindow() {
  return seen.empty() ? nullptr : seen.back().window;
}

TEST(Mouse, GoesToTheSubWindowUnderThePointer) {
  XwWindow* main = OpenMain();
  XwWindow* a = Sub(main, "a", 10, 20, 100, 100);
  XwWindow* b = Sub(main, "b", 60, 60, 100, 100);
  XwWindow* hidden = Sub(main, "hidden", 0, 0, 300, 200);
  XwShow(hidden, 0);
  XwWindow* nested = Sub(a, "nested", 5, 5, 30, 30);
  Settle();
  const struct {
    int x, y;
    XwWindow* window;
    int px, py;
  } rows[] = {
      {105, 105, main, 5, 5},   {111, 121, a, 1, 1},        {110, 121, main, 10, 21},
      {111, 120, main, 11, 20}, {209, 159, a, 99, 39},      {209, 161, b, 49, 1},
      {170, 170, b, 10, 10},    {160, 170, a, 50, 50},      {120, 130, a, 10, 10},
      {259, 259, b, 99, 99},    {260, 259, main, 160, 159},
  };
  for (const auto& row : rows) {
    MoveTo(row.x, row.y);
    ASSERT_FALSE(seen.empty());
    const XwEvent& e = seen.back().event;
    EXPECT_EQ(e.window, row.window) << row.x << " " << row.y;
    EXPECT_EQ(e.focus, row.window);
    EXPECT_EQ(e.px, row.px);
    EXPECT_EQ(e.py, row.py);
    EXPECT_EQ(e.root_x, row.x);
    EXPECT_EQ(e.root_y, row.y);
  }
  EXPECT_EQ(FindVirtualWindow(main, 21, 31), a) << "only direct children are searched";
  EXPECT_EQ(FindVirtualWindow(a, 7, 7), nullptr) << "origins are those of the top-level window";
  EXPECT_EQ(FindVirtualWindow(nested, 1, 1), nullptr);
}

TEST(Mouse, PressAndReleaseSayWhatIsHeld) {
  OpenMain();
  MoveTo(150, 150);
  const struct {
    int button, type;
    uint32_t state;
  } rows[] = {{1, 771, 1}, {2, 772, 2}, {3, 773, 4}, {4, 774, 8}, {5, 775, 16}};
  for (const auto& row : rows) {
    seen.clear();
    input::UseSteppedClock(5000.1239);
    input::Press(row.button);
    RunLoop();
    input::Step(0.5);
    input::Release(row.button);
    RunLoop();
    ASSERT_EQ(seen.size(), 2u);
    EXPECT_EQ(seen[0].type, row.type);
    EXPECT_EQ(seen[0].event.state & XWS_BUTTONS, row.state);
    EXPECT_EQ(seen[0].event.time, 5000123u);
    EXPECT_EQ(seen[1].event.time, 5000623u);
    EXPECT_EQ(seen[1].type, XWE_RELEASE);
    EXPECT_EQ(seen[1].event.state & XWS_BUTTONS, 0u);
    EXPECT_EQ(XwPointerIsGrabbed(), nullptr);
  }
  // A press states its own button alone; a release takes its own away.
  input::Press(1);
  input::Press(3);
  RunLoop();
  EXPECT_EQ(Inp.state & XWS_BUTTONS, 4u);
  LetGo();
  EXPECT_EQ(Inp.state & XWS_BUTTONS, 4u);
  input::Release(3);
  RunLoop();
  EXPECT_EQ(Inp.state & XWS_BUTTONS, 0u);
}

TEST(Mouse, APrimaryPressKeepsThePointerUntilTheLastRelease) {
  XwWindow* main = OpenMain();
  XwWindow* a = Sub(main, "a", 10, 10, 50, 50);
  Sub(main, "b", 100, 10, 50, 50);
  Settle();
  MoveTo(120, 120);
  seen.clear();
  input::Press(1);
  RunLoop();
  EXPECT_EQ(XwPointerIsGrabbed(), a);
  EXPECT_TRUE(PassiveGrab);
  EXPECT_EQ(Inp.focus, a);
  input::MovePointer(220, 130);
  RunLoop();
  EXPECT_EQ(Inp.px, 110);
  EXPECT_EQ(Inp.py, 20);
  input::Release(1);
  EXPECT_EQ(RunTrace(), "a 771 a 770 a 776");
  EXPECT_EQ(seen.back().event.focus, main) << "until the next motion";
  EXPECT_EQ(seen.back().event.px, 110);
  EXPECT_EQ(XwPointerIsGrabbed(), nullptr);
  MoveTo(221, 130);
  EXPECT_EQ(LastWindow(), main->children[1]);
}

TEST(Mouse, OnlyThePrimaryButtonKeepsAGrab) {
  XwWindow* main = OpenMain();
  XwWindow* a = Sub(main, "a", 10, 10, 50, 50);
  Settle();
  MoveTo(120, 120);
  input::Press(1);
  RunLoop();
  EXPECT_EQ(GrabWindow, a);
  input::Press(2);
  RunLoop();
  EXPECT_EQ(Inp.window, a);
  EXPECT_EQ(GrabWindow, nullptr);
  input::Release(2);
  LetGo();
  XwGrabPointer(a, 7);
  input::Press(2);
  RunLoop();
  EXPECT_EQ(GrabWindow, nullptr) << "an active grab's window goes too";
  EXPECT_TRUE(ActiveGrab);
  EXPECT_EQ(GrabCursor, XWcursors[7]);
  input::Release(2);
  RunLoop();
  XwUngrabPointer();
  EXPECT_FALSE(ActiveGrab);
  EXPECT_EQ(GrabCursor, nullptr);
}

TEST(Mouse, AReleaseOutsideTheGrabWindow) {
  XwWindow* main = OpenMain();
  XwWindow* a = Sub(main, "a", 10, 10, 50, 50);
  Top("other", 600, 100, 200, 200);
  Settle();
  for (bool active : {false, true}) {
    for (int x : {700, 900}) {  // in another window; over nothing
      MoveTo(120, 120);
      seen.clear();
      if (active) XwGrabPointer(a, -1);
      input::Press(1);
      input::MovePointer(450, 130);
      RunLoop();
      uint32_t pressed = Inp.time;
      // The last motion is the one before the release; the release's own place does not count.
      input::Step(1);
      RawEvent raw;
      raw.type = RawEvent::kRelease;
      raw.window = Native(main);
      raw.button = 1;
      raw.x = float(x - 100);
      raw.y = 50;
      raw.time = 1234;
      input::Inject(raw);
      EXPECT_EQ(RunTrace(), "a 771 a 770 a 776");
      const XwEvent& e = seen.back().event;
      EXPECT_EQ(e.px, 340);
      EXPECT_EQ(e.root_x, 450);
      EXPECT_EQ(e.time, pressed);
      EXPECT_EQ(e.state & XWS_BUTTONS, 0u);
      EXPECT_FALSE(PassiveGrab);
      EXPECT_EQ(GrabWindow, active ? a : nullptr);
      LetGo();
      XwUngrabPointer();
    }
  }
}

TEST(Mouse, AReleaseOutsideWithAnotherButtonHeld) {
  XwWindow* main = OpenMain();
  MoveTo(120, 120);
  input::Press(1);
  RunLoop();
  Inp.state |= 4;
  input::MovePointer(900, 500);
  LetGo();
  // The pointer is outside: its leaving follows the release.
  ASSERT_GE(seen.size(), 2u);
  EXPECT_EQ(seen.back().type, XWE_MOTION);
  EXPECT_EQ(seen[seen.size() - 2].type, XWE_RELEASE);
  EXPECT_EQ(seen.back().event.state & XWS_BUTTONS, 4u);
  EXPECT_EQ(GrabWindow, main);
  EXPECT_FALSE(PassiveGrab);
  Inp.state = 0;
  MoveTo(150, 150);
  input::Press(3);
  input::Release(3);
  RunLoop();
  EXPECT_EQ(GrabWindow, nullptr);
}

// Whatever becomes of the window that a button was pressed in, none stays held.
TEST(Mouse, NoButtonStaysHeld) {
  XwWindow* main = OpenMain();
  enum End { kOutside, kDestroyed, kHidden, kPolled };
  const struct {
    int button;
    End end;
    const char* trace;
  } rows[] = {
      {1, kOutside, "other 776 other 770"},
      {2, kOutside, "other 770"},
      {1, kPolled, "other 770"},
      {2, kPolled, "other 770"},
      {1, kDestroyed, "main 770"},
      {3, kDestroyed, "main 770"},
      {1, kHidden, "other 776 main 770"},
      {2, kHidden, "main 776 main 770"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << "button " << row.button << ", end " << row.end);
    XwWindow* other = Top("other", 600, 100, 200, 200);
    Settle();
    MoveTo(650, 150);
    input::Press(row.button);
    RunLoop();
    EXPECT_EQ(Inp.state & XWS_BUTTONS, 1u << (row.button - 1));
    EXPECT_EQ(GrabWindow, row.button == 1 ? other : nullptr);
    if (row.end == kDestroyed) XwDestroy(other);
    if (row.end == kHidden) XwShow(other, 0);
    MoveTo(900, 500);
    Settle();
    input::Release(row.button);
    // A release that no window heard comes with the next motion over one.
    if (row.end == kDestroyed || row.end == kHidden) input::MovePointer(140, 150);
    if (row.end == kPolled) {
      XwGetEvent(nullptr, 1);
      input::Step(0.03);
      EXPECT_EQ(XwGetEvent(nullptr, 1), 0);
    }
    EXPECT_EQ(RunTrace(), row.trace);
    EXPECT_EQ(Inp.state & XWS_BUTTONS, 0u);
    EXPECT_EQ(GrabWindow, nullptr);
    EXPECT_FALSE(PassiveGrab);
    // The pointer moves freely again: the window under it has it, and shows its cursor.
    XwSetCursor(main, row.button);
    MoveTo(150, 150);
    EXPECT_EQ(Inp.window, main);
    EXPECT_EQ(reinterpret_cast<XwCursor*>(input::ShownCursor(Native(main))), XWcursors[row.button]);
    input::Release(row.button);
    RunLoop();
    EXPECT_EQ(Inp.state & XWS_BUTTONS, 0u);
    XwDestroy(other);
    Settle();
  }
}

TEST(Mouse, ButtonsBeyondFive) {
  OpenMain();
  MoveTo(120, 120);
  seen.clear();
  input::Press(6);
  EXPECT_EQ(RunLoop(), 0);
  EXPECT_EQ(Trace(), "");
  input::Release(6);
  EXPECT_EQ(RunLoop(), platform::eventNotHandledErr);
  EXPECT_EQ(Trace(), "");
  input::Release(255);
  EXPECT_EQ(RunLoop(), platform::eventNotHandledErr);
  EXPECT_EQ(RunLoop(), 0);
}

TEST(Mouse, TheFirstClickOnlyActivates) {
  XwWindow* main = OpenMain();
  input::Focus(nullptr);
  Settle();
  EXPECT_FALSE(AppActive);
  MoveTo(150, 160);
  seen.clear();
  input::Press(1);
  EXPECT_EQ(RunTrace(), "");
  EXPECT_EQ(Inp.state & XWS_BUTTONS, 1u);
  EXPECT_EQ(Inp.focus, main);
  EXPECT_EQ(XwPointerIsGrabbed(), nullptr);
  EXPECT_TRUE(AppActive) << "the window was selected";
  input::Release(1);
  EXPECT_EQ(RunTrace(), "main 776");
  input::Click(150, 160);
  EXPECT_EQ(RunTrace(), "main 776 main 770 main 771 main 776");
  // Where the desktop moves the focus before the press is passed on, the click acts.
  input::Focus(nullptr);
  Settle();
  input::Focus(Native(main));
  input::Press(1);
  input::Release(1);
  EXPECT_EQ(RunTrace(), "main 771 main 776");
}

TEST(Mouse, AnActiveGrabTakesAllPointerEvents) {
  XwWindow* main = OpenMain();
  XwWindow* a = Sub(main, "a", 10, 10, 50, 50);
  XwWindow* b = Sub(main, "b", 100, 10, 50, 50);
  Settle();
  XwGrabPointer(a, 7);
  EXPECT_EQ(input::PointerGrab(), Native(main));
  EXPECT_EQ(reinterpret_cast<XwCursor*>(input::ShownCursor(Native(main))), XWcursors[7]);
  XwSetCursor(b, 6);
  input::Click(220, 130);
  input::MovePointer(900, 900);
  EXPECT_EQ(RunTrace(), "a 770 a 771 a 776 a 770");
  EXPECT_EQ(XwPointerIsGrabbed(), a) << "it survives releases";
  EXPECT_EQ(reinterpret_cast<XwCursor*>(input::ShownCursor(Native(main))), XWcursors[7]);
  MoveTo(220, 130);
  XwUngrabPointer();
  EXPECT_EQ(input::PointerGrab(), nullptr);
  EXPECT_EQ(reinterpret_cast<XwCursor*>(input::ShownCursor(Native(main))), XWcursors[6])
      << "at once: the pointer may rest";
  MoveTo(225, 130);
  EXPECT_EQ(LastWindow(), b);
  // A window that ends takes its grab along; flag and cursor stay until the program ends the grab.
  XwGrabPointer(a, 22);
  EXPECT_EQ(GrabCursor, nullptr) << "no such cursor";
  XwGrabPointer(a, 6);
  XwDestroy(a);
  EXPECT_EQ(XwPointerIsGrabbed(), nullptr);
  EXPECT_TRUE(ActiveGrab);
  EXPECT_EQ(GrabCursor, XWcursors[6]);
  XwUngrabPointer();
}

TEST(Mouse, ASecondButtonSharesAnActiveGrab) {
  XwWindow* main = OpenMain();
  XwWindow* other = Top("other", 600, 100, 100, 100);
  Settle();
  XwGrabPointer(main, 7);
  input::MovePointer(650, 150);
  input::Press(2);
  EXPECT_EQ(RunTrace(), "main 770 main 772");
  EXPECT_EQ(XwPointerIsGrabbed(), nullptr);
  input::MovePointer(655, 150);
  input::Release(2);
  EXPECT_EQ(RunTrace(), "main 770 main 772 main 770 other 770 other 776");
  EXPECT_EQ(input::ShownCursor(Native(other)), reinterpret_cast<platform::CursorRef>(XWcursors[7]));
  XwUngrabPointer();
  EXPECT_EQ(input::PointerGrab(), nullptr);
  XwDestroy(other);
}

TEST(Mouse, ALostGrabLetsGoOfButtonsWithoutAnEvent) {
  XwWindow* main = OpenMain();
  MoveTo(150, 150);
  input::Press(1);
  RunLoop();
  input::StealPointer(true);
  RunLoop();
  EXPECT_EQ(Inp.state & XWS_BUTTONS, 1u) << "still down";
  input::Release(1);
  seen.clear();
  XwGrabPointer(main, 6);
  EXPECT_EQ(RunTrace(), "");
  EXPECT_EQ(Inp.state & XWS_BUTTONS, 0u);
  EXPECT_FALSE(PassiveGrab);
  EXPECT_TRUE(ActiveGrab);
  EXPECT_EQ(XwPointerIsGrabbed(), main);
  EXPECT_EQ(GrabCursor, XWcursors[6]);
  EXPECT_EQ(input::PointerGrab(), nullptr) << "refused";
  input::StealPointer(false);
  XwShow(main, 0);
  XwShow(main, 1);
  Settle();
  EXPECT_EQ(input::PointerGrab(), Native(main)) << "tried again";
  XwUngrabPointer();
}

// The order on the screen counts, not the program's own.
TEST(Mouse, ThePressBelongsToWhatTheScreenShows) {
  XwWindow* main = OpenMain();
  XwWindow* over = Top("over", 150, 60, 100, 80);  // covers some of the menu bar
  Settle();
  auto click = [] {
    seen.clear();
    input::MovePointer(200, 90);
    Settle();
    input::Press(1);
    LetGo();
    return Trace();
  };
  EXPECT_EQ(click(), "over 771 over 776");
  input::Raise(Native(main));
  EXPECT_EQ(click(), "") << "the menu bar";
  EXPECT_EQ(Inp.state & XWS_BUTTONS, 0u);
  platform::SelectWindow(Native(main));
  input::Raise(Native(over));
  EXPECT_EQ(click(), "over 771 over 776");
  // A release over another window that covers the pressed one is outside it.
  MoveTo(300, 130);
  input::Press(1);
  input::MovePointer(200, 120);
  Settle();
  input::Release(1);
  EXPECT_EQ(RunTrace(), "main 776 main 770");
  EXPECT_EQ(Inp.state & XWS_BUTTONS, 0u);
  XwDestroy(over);
}

TEST(Mouse, MotionsMergeButPenSamplesDoNot) {
  OpenMain();
  for (int x = 110; x < 200; ++x) input::MovePointer(x, 150);
  EXPECT_EQ(RunTrace(), "main 770");
  EXPECT_EQ(Inp.px, 99);
  seen.clear();
  for (int i = 0; i < 3; ++i) {
    input::MovePointer(150 + i, 150);
    RunLoop();
  }
  seen.clear();
  for (int i = 1; i <= 3; ++i)
    input::Pen({1, uint16_t(i * 257), int16_t(-i), int16_t(i)}, RawEvent::kMotion);
  EXPECT_EQ(RunTrace(), "main 770") << "the same place again is dropped";
  EXPECT_EQ(seen[0].event.pressure, 1);
  EXPECT_EQ(seen[0].event.tilt_x, -1);
  EXPECT_EQ(seen[0].event.tilt_y, 1);
  MoveTo(180, 150);
  EXPECT_EQ(Inp.pressure, 0) << "a mouse presses nothing";
}

TEST(Mouse, PensPress) {
  OpenMain();
  MoveTo(150, 150);
  const struct {
    uint16_t buttons;
    int type;
    uint32_t state;
  } rows[] = {{1, 771, 1}, {3, 771, 1}, {2, 773, 4}, {4, 772, 2}, {6, 773, 4}, {0, 770, 31}};
  for (const auto& row : rows) {
    seen.clear();
    input::Pen({row.buttons, 65535, 100, -200}, RawEvent::kPress, 1);
    RunLoop();
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0].type, row.type);
    EXPECT_EQ(seen[0].event.state & XWS_BUTTONS, row.state);
    EXPECT_EQ(seen[0].event.pressure, 255);
    EXPECT_EQ(seen[0].event.tilt_x, 100);
    EXPECT_EQ(seen[0].event.tilt_y, -200);
    input::Pen({0, 0, 0, 0}, RawEvent::kRelease, 1);
    RunLoop();
    EXPECT_EQ(seen.back().type, XWE_RELEASE);
    EXPECT_EQ(seen.back().event.state & XWS_BUTTONS, 0u);
    EXPECT_EQ(XwPointerIsGrabbed(), nullptr);
  }
}

struct Scrolled {
  XwWindow* window;
  float dx, dy;
  int px, py, item;
};
std::vector<Scrolled> scrolled;
void OnScroll(float dx, float dy) {
  scrolled.push_back({Inp.window, dx, dy, Inp.px, Inp.py, Inp.item});
}

TEST(Mouse, TheWheelIsForThoseWhoAskForIt) {
  XwWindow* main = OpenMain();
  XwWindow* a = Sub(main, "a", 10, 10, 50, 50);
  Settle();
  MoveTo(130, 130);
  seen.clear();
  input::Scroll(0, 15);
  EXPECT_EQ(RunTrace(), "") << "never a press";
  XwSetScrollHandler(main, OnScroll);
  XwSet(main);
  XwBoxList(3, 0, 0, 0, 0);
  XwBoxList(1, 0, 0, 100, 100);
  input::Scroll(1.5f, -15);
  RunLoop();
  XwSetScrollHandler(a, OnScroll);
  input::Scroll(0, 2);
  RunLoop();
  XwSetScrollHandler(a, nullptr);
  XwSetScrollHandler(main, nullptr);
  input::Scroll(0, 2);
  EXPECT_EQ(RunTrace(), "");
  ASSERT_EQ(scrolled.size(), 2u);
  EXPECT_EQ(scrolled[0].window, main);
  EXPECT_EQ(scrolled[0].dx, 1.5f);
  EXPECT_EQ(scrolled[0].dy, -15);
  EXPECT_EQ(scrolled[0].px, 30);
  EXPECT_EQ(scrolled[0].item, 1);
  EXPECT_EQ(scrolled[1].window, a);
  EXPECT_EQ(scrolled[1].py, 20);
}

TEST(Mouse, TheWheelOfAWindowThatAWaitKeepsOutTurnsNothing) {
  XwWindow* main = OpenMain();
  XwWindow* dialog = Top("dialog", 500, 100, 100, 100);
  Settle();
  XwSetScrollHandler(main, OnScroll);
  XwSetScrollHandler(dialog, OnScroll);
  const struct {
    int x;
    XwWindow* modal;
    size_t calls;
  } rows[] = {{550, dialog, 1}, {150, dialog, 0}, {150, nullptr, 1}};
  for (const auto& row : rows) {
    MoveTo(row.x, 150);
    scrolled.clear();
    input::Scroll(0, 5);
    RunLoop(row.modal);
    EXPECT_EQ(scrolled.size(), row.calls) << row.x;
  }
  scrolled.clear();
  input::Scroll(0, 5);
  XwSendEvent(main, 1000, 0, 0, 0);
  EXPECT_EQ(XwGrabEvent(), 1000);
  EXPECT_TRUE(scrolled.empty()) << "a loop of the program's own";
}

}  // namespace
