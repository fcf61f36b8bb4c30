// Who has the pointer and the keyboard, and what lies under the pointer, on a screen that other
// programs share; and pop-ups.
#include "platform/display/x11/x.h"
#include "platform/events/raw_event.h"
#include "tests/x11/managed.h"
#include "tests/x11/reports.h"

namespace x11_test {
namespace {

class Grabs : public Reports {
 protected:
  xcb_window_t Id(WindowRef w) { return x11::NativeOf(w)->id; }
  // As a window manager or another program does it: this one is not told.
  void Restack(WindowRef w) {
    const uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(user().connection(), Id(w), XCB_CONFIG_WINDOW_STACK_MODE, &above);
    user().Sync();
  }
  bool Steal() {
    xcb_connection_t* c = user().connection();
    x11::Reply<xcb_grab_pointer_reply_t> r(xcb_grab_pointer_reply(
        c,
        xcb_grab_pointer(c, 0, user().root(), 0, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC, XCB_NONE,
                         XCB_NONE, XCB_CURRENT_TIME),
        nullptr));
    return r && r->status == XCB_GRAB_STATUS_SUCCESS;
  }
  void GiveBack() {
    xcb_ungrab_pointer(user().connection(), XCB_CURRENT_TIME);
    user().Sync();
  }
  // A press and what it was reported with.
  RawEvent PressAt(int x, int y) {
    reports.clear();
    user().Move(x, y);
    user().Click(1);
    EXPECT_TRUE(Wait(RawEvent::kRelease));
    return Of(RawEvent::kPress).empty() ? RawEvent() : Of(RawEvent::kPress)[0];
  }
};

TEST_F(Grabs, EachModeHasItsWindow) {
  Start();
  WindowRef w = Ready();
  WindowRef other = Show("Other", {400, 124, 600, 300});
  user().Sync();
  kX11Display.grab(w, GrabMode::kWindow, nullptr);
  RawEvent press = PressAt(450, 200);
  EXPECT_EQ(press.window, w);
  EXPECT_EQ(press.x, 350);
  EXPECT_EQ(press.under, other);
  press = PressAt(900, 700);
  EXPECT_EQ(press.window, w);
  EXPECT_EQ(press.under, nullptr);
  for (GrabMode mode : {GrabMode::kProgram, GrabMode::kMenu}) {
    kX11Display.grab(w, mode, nullptr);
    press = PressAt(450, 200);
    EXPECT_EQ(press.window, other);
    EXPECT_EQ(press.under, other);
    EXPECT_EQ(press.x, 50);
    press = PressAt(900, 700);
    EXPECT_EQ(press.window, w);
    EXPECT_EQ(press.under, nullptr);
    EXPECT_EQ(PressAt(150, 200).under, w);
  }
  // The keyboard comes with the menu, whichever window has the focus.
  SelectWindow(other);
  ASSERT_TRUE(RunUntil([&] { return other->focused; }));
  reports.clear();
  user().Type('a');
  ASSERT_TRUE(Wait(RawEvent::kKeyUp));
  EXPECT_EQ(Of(RawEvent::kKeyDown)[0].window, w);
  kX11Display.grab(nullptr, GrabMode::kNone, nullptr);
  kX11Display.flush(true);
  reports.clear();
  user().Type('a');
  ASSERT_TRUE(Wait(RawEvent::kKeyUp));
  EXPECT_EQ(Of(RawEvent::kKeyDown)[0].window, other);
}

// While a button is held the pressed window hears of everything, and what lies under the pointer is
// told in the order of the screen.
TEST_F(Grabs, TheScreenSaysWhatIsUnderThePointer) {
  Start();
  WindowRef w = Ready();
  WindowRef other = Show("Other", {200, 200, 400, 400});
  auto drag = [&] {
    reports.clear();
    user().Move(120, 150);
    user().Button(1, true);
    user().Move(250, 250);
    user().Button(1, false);
    EXPECT_TRUE(Wait(RawEvent::kRelease));
    const RawEvent release = Of(RawEvent::kRelease).at(0);
    EXPECT_EQ(release.window, w);
    return release.under;
  };
  EXPECT_EQ(drag(), other);
  Restack(w);
  EXPECT_EQ(drag(), w);
  Restack(other);
  EXPECT_EQ(drag(), other);
}

TEST_F(Grabs, OneBeginsWhileAButtonIsHeld) {
  Start();
  WindowRef w = Ready();
  WindowRef other = Show("Other", {400, 124, 600, 300});
  user().Sync();
  for (GrabMode mode : {GrabMode::kWindow, GrabMode::kProgram, GrabMode::kMenu}) {
    reports.clear();
    user().Move(150, 200);
    user().Button(1, true);
    ASSERT_TRUE(Wait(RawEvent::kPress));
    kX11Display.grab(w, mode, nullptr);
    kX11Display.flush(true);
    reports.clear();
    user().Move(450, 200);
    user().Button(1, false);
    ASSERT_TRUE(Wait(RawEvent::kRelease));
    EXPECT_TRUE(Of(RawEvent::kGrabLost).empty());
    const WindowRef heard = mode == GrabMode::kWindow ? w : other;
    for (auto type : {RawEvent::kMotion, RawEvent::kRelease}) {
      ASSERT_EQ(Of(type).size(), 1u);
      EXPECT_EQ(Of(type)[0].window, heard);
    }
    EXPECT_EQ(Of(RawEvent::kRelease)[0].under, other);
    kX11Display.grab(nullptr, GrabMode::kNone, nullptr);
    kX11Display.flush(true);
  }
}

TEST_F(Grabs, ARefusalIsTold) {
  Start();
  WindowRef w = Ready();
  user().Button(1, true);
  ASSERT_TRUE(Wait(RawEvent::kPress));
  HideWindow(w);
  ASSERT_TRUE(Wait(RawEvent::kGrabLost)) << "that of the press, with its window";
  EXPECT_EQ(Of(RawEvent::kGrabLost)[0].held, 2u);
  Settle();
  ASSERT_TRUE(support::Eventually([&] { return Steal(); }));
  user().Button(1, false);
  user().Sync();
  ShowWindow(w);
  Settle();
  reports.clear();
  kX11Display.grab(w, GrabMode::kWindow, nullptr);
  ASSERT_TRUE(Wait(RawEvent::kGrabLost));
  EXPECT_EQ(Of(RawEvent::kGrabLost)[0].window, w);
  EXPECT_EQ(Of(RawEvent::kGrabLost)[0].held, 0u);
  GiveBack();
  HideWindow(w);
  Settle();
  ShowWindow(w);
  Settle();
  reports.clear();
  user().Move(700, 500);
  user().Move(710, 510);
  EXPECT_TRUE(Wait(RawEvent::kMotion)) << "tried again";
  reports.clear();
  HideWindow(w);
  EXPECT_TRUE(Wait(RawEvent::kGrabLost)) << "and lost with its window";
}

class PopUps : public Managed, public testing::WithParamInterface<const char*> {};

TEST_P(PopUps, LieWhereTheirParentIs) {
  Start(GetParam());
  WindowRef w = Show("Parent", {200, 200, 400, 300});
  RunUntil([&] { return w->focused || *GetParam() == 0; });
  WindowRef menu = CreatePopUpWindow(
      w, {{10, 20, 60, 40}, kEdgeLeft | kEdgeBottom, kEdgeRight | kEdgeBottom, kAdjustAll, 90, 70});
  ShowWindow(menu);
  ASSERT_TRUE(RunUntil([&] { return user().Viewable(Id(menu)); }));
  auto agrees = [&] {
    const auto at = user().Where(Id(menu));
    const Rect& c = w->content;
    return at.x == c.left + 10 && at.y == c.top + 40 && menu->content.left == at.x &&
           menu->content.top == at.y;
  };
  EXPECT_TRUE(RunUntil(agrees));
  EXPECT_TRUE(AboveId(Id(menu), Id(w)));
  EXPECT_EQ(user().Frame(Id(menu)), Id(menu)) << "no frame around it";
  SetWindowBounds(w, {300, 250, 500, 350});
  Settle();
  EXPECT_TRUE(RunUntil(agrees)) << "it follows";
  const auto clicked = [&] {
    const Event* e = Last(kEventClassMouse, kEventMouseDown);
    return e != nullptr && e->window == menu && e->mouse.under == menu;
  };
  user().Move(menu->content.left + 5, menu->content.top + 5);
  user().Click(1);
  EXPECT_TRUE(RunUntil(clicked));
  // Near the lower edge it turns over.
  const auto screen = user().Look();
  SetWindowBounds(w, {300, screen.height - 120, 500, screen.height - 20});
  Settle();
  EXPECT_TRUE(RunUntil([&] {
    const auto at = user().Where(Id(menu));
    return at.y + at.height <= screen.height && menu->content.top == at.y;
  }));
  EXPECT_EQ(menu->content.height(), 70);
  HideWindow(w);
  EXPECT_TRUE(RunUntil([&] { return !user().Viewable(Id(menu)); }));
}

INSTANTIATE_TEST_SUITE_P(Managers, PopUps, testing::Values("", "openbox"),
                         [](const auto& i) { return *i.param ? i.param : "None"; });

}  // namespace
}  // namespace x11_test
