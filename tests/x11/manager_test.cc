// Windows under a window manager: placement, focus, resizing, states.
#include <xcb/sync.h>

#include "platform/events/targets.h"
#include "tests/x11/managed.h"

namespace x11_test {
namespace {

using namespace platform;

TEST_F(Managed, AWindowComesWhereItWasAskedForAndTakesTheFocus) {
  Start("openbox");
  WindowRef w = Show("Placed", {200, 150, 500, 350});
  EXPECT_TRUE(RunUntil([&] { return w->focused && w->frame.top > 0; }));
  ExpectBoundsAgree(w);
  EXPECT_EQ(w->content, (Rect{200, 150, 500, 350}));
  EXPECT_EQ(user().Focus(), Id(w));
  EXPECT_TRUE(IsApplicationActive());
  EXPECT_EQ(user().Look().at(210, 160), 0x3366CCu);
  EXPECT_EQ(GetWindowBounds(w, kWindowStructureRgn).top, 150 - 24 - w->frame.top);
}

// A window that is made in a corner has its whole frame on the screen. Of the same kind and place,
// the second costs no question.
TEST_F(Managed, AFrameInACornerLiesOnTheScreen) {
  for (const char* manager : {"openbox", "icewm"}) {
    SCOPED_TRACE(manager);
    Start(manager);
    x11::x.frame_patience = 20;
    for (const Rect& asked : {Rect{0, 24, 300, 200}, Rect{800, 600, 1024, 768}}) {
      WindowRef w = CreateNewWindow(kDocumentWindowClass, kAllBoxes, asked);
      EXPECT_GT(w->frame.top, 0);
      const Rect structure = ConstrainWindowToScreen(w);
      MoveWindowStructure(w, structure.left, structure.top);
      ShowWindow(w);
      EXPECT_TRUE(RunUntil([&] { return w->focused && user().Viewable(Id(w)); }));
      Settle();
      ExpectBoundsAgree(w);
      const auto frame = user().Where(user().Frame(Id(w)));
      EXPECT_GE(frame.x, 0);
      EXPECT_GE(frame.y, 0);
      EXPECT_LE(frame.x + frame.width, 1024);
      EXPECT_LE(frame.y + frame.height, 768);
    }
    EXPECT_EQ(x11::x.manager.frames.size(), 1u);
    TearDown();
  }
}

// The manager gives no further size before it sees the picture of the last one: it is told the
// value that it announced, once the window is drawn at that size, or has not been for a while.
TEST_F(Managed, AManagerWaitsForThePictureOfANewSize) {
  Start("openbox");
  WindowRef w = Show("Growing", {200, 150, 500, 350});
  SetWindowSizeLimits(w, {100, 100, 600, 500, 0, 0});
  RunUntil([&] { return x11::NativeOf(w)->sync.counter != 0; });
  const uint32_t counter = user().Words(Id(w), "_NET_WM_SYNC_REQUEST_COUNTER").at(0);
  auto value = [&] {
    auto* reply = xcb_sync_query_counter_reply(
        user().connection(), xcb_sync_query_counter(user().connection(), counter), nullptr);
    const int64_t now = reply ? int64_t(reply->counter_value.lo) : -1;
    free(reply);
    return now;
  };
  EXPECT_EQ(value(), 0);
  // By hand, as the manager does.
  auto announce = [&](uint32_t number) {
    user().Tell(Id(w), "WM_PROTOCOLS", {user().Atom("_NET_WM_SYNC_REQUEST"), 0, number});
  };
  // Nothing grows: after a while it is told all the same, not before.
  x11::x.picture_patience = 1000;
  announce(7);
  EXPECT_TRUE(RunUntil([&] { return x11::NativeOf(w)->sync.waits; }));
  EXPECT_EQ(value(), 0);
  SetEventLoopTimerNextFireTime(x11::NativeOf(w)->sync.patience, 0);
  EXPECT_TRUE(RunUntil([&] { return value() == 7; }));
  announce(8);
  EXPECT_TRUE(RunUntil([&] { return x11::NativeOf(w)->sync.waits; }));
  user().Ask(Id(w), "_NET_MOVERESIZE_WINDOW", {0x2F00, 200, 126, 400, 300});
  EXPECT_TRUE(RunUntil([&] { return w->surface.width == 400 && !w->needs_draw; }));
  EraseRect(w, {0, 0, 300, 200});
  EXPECT_TRUE(RunUntil([&] { return value() >= 8; }));
  EXPECT_FALSE(x11::NativeOf(w)->sync.waits);
}

TEST_F(Managed, TheProgramsIconComesAfterTheFirstPicture) {
  Start("openbox");
  const std::vector<uint32_t> small(16 * 16, 0x80123456), large(256 * 256, 0xFFFFFFFF);
  SetProgramIcon(large.data(), 256);
  SetProgramIcon(small.data(), 16);
  WindowRef w = Show("Icon", {200, 150, 500, 350});
  WindowRef second = Show("Second", {250, 150, 500, 350});
  for (WindowRef each : {w, second}) {
    const auto words = user().Words(Id(each), "_NET_WM_ICON", 70000);
    ASSERT_EQ(words.size(), 2 + 16 * 16 + 2 + 256 * 256u);
    EXPECT_EQ(words[0], 16u);
    EXPECT_EQ(words[2], 0x80123456u);
    EXPECT_EQ(words[2 + 256], 256u);
  }
  SetProgramIcon(nullptr, 256);
  SetProgramIcon(small.data(), 257);
  SetProgramIcon(small.data(), 16);  // in place of the one before
  FlushWindow(w);
  EXPECT_EQ(user().Words(Id(w), "_NET_WM_ICON", 70000).size(), 2 + 16 * 16u);
}

int user_moves;
OSStatus CountUserMoves(HandlerCall*, Event* event, void*) {
  user_moves += !event->bounds.programmatic;
  return noErr;
}

// The manager reports its own steps on the way to what was asked, and each of the moves before the
// last. None of that is the user's doing.
TEST_F(Managed, MovesOfTheProgramAreNotHeardOfAgain) {
  Start("openbox");
  WindowRef w = Show("Moved", {200, 150, 500, 350});
  SetWindowSizeLimits(w, {100, 100, 600, 500, 10, 20});
  WindowRef docked = CreateNewWindow(kSimpleWindowClass, 0, {500, 150, 600, 350});
  WindowGroupRef group = CreateWindowGroup(15);
  SetWindowGroup(w, group);
  SetWindowGroup(docked, group);
  ShowWindow(docked);
  const EventKind moved = {kEventClassWindow, kEventWindowBoundsChanged};
  for (WindowRef each : {w, docked})
    InstallEventHandler(GetWindowEventTarget(each), CountUserMoves, &moved, 1, nullptr);
  Settle();
  struct Row {
    const char* what;
    WindowRef window;
    std::vector<Rect> bounds;
  };
  const Row rows[] = {
      {"moves", w, {{210, 160, 510, 360}, {220, 170, 520, 370}, {230, 180, 530, 380}}},
      {"sizes between the steps", w, {{230, 180, 537, 383}, {230, 180, 544, 386}}},
      {"below the minimum", w, {{240, 190, 290, 240}}},
      {"there and back", w, {{300, 200, 600, 400}, {240, 190, 540, 390}, {300, 200, 600, 400}}},
      {"a docked window", docked, {{500, 250, 580, 330}, {520, 260, 600, 340}}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    user_moves = 0;
    for (const Rect& r : row.bounds) SetWindowBounds(row.window, r);
    const Rect first = w->content, second = docked->content;
    Settle();
    EXPECT_EQ(w->content, first);
    EXPECT_EQ(docked->content, second);
    ExpectBoundsAgree(w);
    ExpectBoundsAgree(docked);
    EXPECT_EQ(user_moves, 0);
  }
  // What the manager grants instead comes all the same, a little later.
  user().Ask(Id(w), "_NET_WM_STATE",
             {1, user().Atom("_NET_WM_STATE_MAXIMIZED_VERT"),
              user().Atom("_NET_WM_STATE_MAXIMIZED_HORZ"), 2});
  EXPECT_TRUE(RunUntil([&] { return w->content.width() >= 500; }));
  SetWindowBounds(w, {300, 200, 600, 400});
  Settle();
  EXPECT_TRUE(RunUntil([&] {
    const auto at = user().Where(Id(w));
    return w->content.left == at.x && w->content.width() == at.width;
  }));
  ExpectBoundsAgree(w);
}

TEST_F(Managed, ResizesOfTheUserKeepToLimitsAndSteps) {
  Start("openbox");
  WindowRef w = Show("Resized", {200, 150, 503, 351});
  SetWindowSizeLimits(w, {100, 100, 600, 500, 10, 20});
  Settle();
  auto drag = [&](int dx, int dy) {
    const auto f = user().Where(user().Frame(Id(w)));
    Drag(f.x + f.width - 1, f.y + f.height - 1, dx, dy);
  };
  drag(57, 35);
  ExpectBoundsAgree(w);
  EXPECT_GT(w->content.width(), 303);
  EXPECT_EQ(w->content.width() % 10, 3);
  EXPECT_EQ(w->content.height() % 20, 1);
  drag(-500, -400);
  ExpectBoundsAgree(w);
  EXPECT_GE(w->content.width(), 100);
  EXPECT_LT(w->content.width(), 110);
  EXPECT_GE(w->content.height(), 100);
  EXPECT_LT(w->content.height(), 120);
  // The grown picture is whole on the screen.
  drag(200, 100);
  const auto at = user().Where(Id(w));
  EXPECT_EQ(user().Look().at(at.x + at.width - 1, at.y + at.height - 1), 0x3366CCu);
}

TEST_F(Managed, CloseAsksAndDoesNothing) {
  Start("openbox");
  WindowRef w = Show("Closed", {200, 150, 500, 350});
  user().Ask(Id(w), "_NET_CLOSE_WINDOW", {0, 2});
  EXPECT_TRUE(RunUntil([&] { return Count(kEventClassWindow, kEventWindowClose) == 1; }));
  Settle();
  EXPECT_TRUE(user().Viewable(Id(w)));
  EXPECT_EQ(Count(kEventClassWindow, kEventWindowClose), 1u);
}

TEST_F(Managed, SelectingRaisesAndActivates) {
  Start("openbox");
  WindowRef a = Show("A", {200, 150, 500, 350}), b = Show("B", {300, 200, 600, 400});
  EXPECT_TRUE(RunUntil([&] { return b->focused && !a->focused; }));
  EXPECT_TRUE(Above(b, a));
  ActivateWindow(a, true);  // the look only
  Settle();
  EXPECT_TRUE(Above(b, a));
  SelectWindow(a);
  EXPECT_TRUE(RunUntil([&] { return a->focused && !b->focused; }));
  EXPECT_EQ(user().Focus(), Id(a));
  EXPECT_TRUE(RunUntil([&] { return Above(a, b); }));
  EXPECT_EQ(Count(kEventClassApplication, kEventAppDeactivated), 0u);
}

TEST_F(Managed, TheApplicationIsActiveWhileOneOfItsWindowsIs) {
  Start("openbox");
  WindowRef w = Show("Mine", {200, 150, 500, 350});
  EXPECT_TRUE(RunUntil([&] { return Count(kEventClassApplication, kEventAppActivated) == 1; }));
  // A window of another program comes up, which the manager gives the focus.
  const xcb_window_t other = Foreign({600, 400, 700, 500});
  EXPECT_TRUE(RunUntil([&] { return Count(kEventClassApplication, kEventAppDeactivated) == 1; }));
  EXPECT_EQ(user().Focus(), other);
  EXPECT_FALSE(w->focused);
  xcb_destroy_window(user().connection(), other);
  user().Sync();
  EXPECT_TRUE(RunUntil([&] { return Count(kEventClassApplication, kEventAppActivated) == 2; }));
}

TEST_F(Managed, AlertsStayAboveTheFirstWindow) {
  Start("openbox");
  WindowRef first = Show("First", {200, 150, 700, 550});
  WindowRef alert = Show("Alert", {300, 250, 500, 350}, kAlertWindowClass);
  SelectWindow(first);
  Settle();
  EXPECT_TRUE(Above(alert, first));
  WindowRef modal = CreateNewWindow(kDocumentWindowClass, 0, {320, 270, 520, 370});
  ShowWindow(modal);
  FlushWindow(modal);
  SetWindowGroup(modal, GetWindowGroupOfClass(kModalWindowClass));
  EXPECT_TRUE(RunUntil([&] { return HasState(modal, "_NET_WM_STATE_MODAL"); }));
  EXPECT_EQ(user().Words(Id(modal), "_NET_WM_WINDOW_TYPE"),
            std::vector<uint32_t>{user().Atom("_NET_WM_WINDOW_TYPE_DIALOG")});
  EXPECT_EQ(user().Words(Id(modal), "WM_TRANSIENT_FOR"), std::vector<uint32_t>{Id(first)});
  SelectWindow(first);
  Settle();
  EXPECT_TRUE(Above(modal, first));
}

TEST_F(Managed, FullScreenIsTheDesktops) {
  Start("openbox");
  WindowRef w = Show("Full", {200, 150, 500, 350});
  SetSystemUIMode(kUIModeContentSuppressed, 0);
  EXPECT_TRUE(RunUntil([&] { return w->content.width() == 1024; }));
  Settle();
  EXPECT_TRUE(HasState(w, "_NET_WM_STATE_FULLSCREEN"));
  EXPECT_EQ(w->content.height() + w->menu_bar_height, 768);
  EXPECT_EQ(user().Look().at(1023, 767), 0x3366CCu);
  // Hidden, it keeps what was asked for.
  HideWindow(w);
  EXPECT_TRUE(RunUntil([&] { return !user().Viewable(Id(w)); }));
  Settle();
  EXPECT_TRUE(w->state & kStateFullScreen);
  ShowWindow(w);
  EXPECT_TRUE(RunUntil([&] { return user().Viewable(Id(w)); }));
  Settle();
  EXPECT_TRUE(HasState(w, "_NET_WM_STATE_FULLSCREEN"));
  EXPECT_EQ(w->content.width(), 1024);
  SetSystemUIMode(kUIModeNormal, 0);
  SetWindowBounds(w, {210, 160, 510, 360});
  EXPECT_TRUE(RunUntil([&] { return user().Where(Id(w)).width == 300; }));
  Settle();
  ExpectBoundsAgree(w);
  EXPECT_EQ(w->content, (Rect{210, 160, 510, 360}));
  EXPECT_FALSE(HasState(w, "_NET_WM_STATE_FULLSCREEN"));
  // The user ends it with a key of the window manager's.
  SetSystemUIMode(kUIModeContentSuppressed, 0);
  EXPECT_TRUE(RunUntil([&] { return w->content.width() == 1024; }));
  user().Ask(Id(w), "_NET_WM_STATE", {0, user().Atom("_NET_WM_STATE_FULLSCREEN"), 0, 2});
  EXPECT_TRUE(RunUntil([&] { return w->content.width() == 300; }));
  Settle();
  ExpectBoundsAgree(w);
  EXPECT_EQ(w->state, 0u);
}

TEST_F(Managed, HiddenAndIconifiedWindowsComeBackWhole) {
  Start("openbox");
  WindowRef w = Show("Hidden", {200, 150, 500, 350});
  HideWindow(w);
  EXPECT_TRUE(RunUntil([&] { return !user().Viewable(Id(w)); }));
  ShowWindow(w);
  EXPECT_TRUE(RunUntil([&] { return user().Viewable(Id(w)); }));
  Settle();
  ExpectBoundsAgree(w);
  EXPECT_EQ(user().Look().at(499, 349), 0x3366CCu);
  user().Ask(Id(w), "WM_CHANGE_STATE", {3});
  EXPECT_TRUE(RunUntil([&] { return !user().Viewable(Id(w)); }));
  SelectWindow(w);
  EXPECT_TRUE(RunUntil([&] { return user().Viewable(Id(w)); }));
  Settle();
  EXPECT_EQ(user().Look().at(499, 349), 0x3366CCu);
  // An icon that is hidden is no icon any more: it is shown as a window.
  user().Ask(Id(w), "WM_CHANGE_STATE", {3});
  EXPECT_TRUE(RunUntil([&] { return !user().Viewable(Id(w)); }));
  HideWindow(w);
  FlushWindow(nullptr);
  EXPECT_TRUE(RunUntil([&] { return user().Words(user().root(), "_NET_CLIENT_LIST").empty(); }));
  ShowWindow(w);
  EXPECT_TRUE(RunUntil([&] { return user().Viewable(Id(w)); }));
}

// Hidden and shown faster than the manager follows.
TEST_F(Managed, WhatIsShownLastCounts) {
  for (const char* manager : {"openbox", "icewm"}) {
    SCOPED_TRACE(manager);
    Start(manager);
    WindowRef w = Show("Blinking", {200, 150, 500, 350});
    for (int i = 0; i < 40; ++i) {
      HideWindow(w);
      if (i % 3 == 0) FlushWindow(w);
      if (i % 7 == 0) Settle();
      ShowWindow(w);
      if (i % 5 == 0) Settle();
      if (i % 4 == 0) FlushWindow(w);
    }
    Settle();
    EXPECT_TRUE(RunUntil([&] { return user().Viewable(Id(w)) && w->frame.top > 0; }));
    ExpectBoundsAgree(w);
    HideWindow(w);
    ShowWindow(w);
    HideWindow(w);
    Settle();
    EXPECT_FALSE(user().Viewable(Id(w)));
    TearDown();
  }
}

TEST_F(Managed, PingsAreAnswered) {
  Start("openbox");
  WindowRef w = Show("Pinged", {200, 150, 500, 350});
  const auto protocols = user().Words(Id(w), "WM_PROTOCOLS");
  EXPECT_EQ(protocols,
            (std::vector<uint32_t>{user().Atom("WM_DELETE_WINDOW"), user().Atom("_NET_WM_PING"),
                                   user().Atom("_NET_WM_SYNC_REQUEST")}));
  // The manager asks the window; the answer is the same message, at the root window.
  xcb_connection_t* c = user().connection();
  const uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
  xcb_change_window_attributes(c, user().root(), XCB_CW_EVENT_MASK, &mask);
  const std::vector<uint32_t> data = {user().Atom("_NET_WM_PING"), 4711, Id(w), 0, 0};
  user().Tell(Id(w), "WM_PROTOCOLS", data);
  bool answered = false;
  EXPECT_TRUE(RunUntil([&] {
    while (auto* e = xcb_poll_for_event(c)) {
      auto* a = reinterpret_cast<xcb_client_message_event_t*>(e);
      answered =
          answered || ((e->response_type & 0x7F) == XCB_CLIENT_MESSAGE &&
                       a->window == user().root() && a->type == user().Atom("WM_PROTOCOLS") &&
                       std::equal(data.begin(), data.end(), a->data.data32));
      free(e);
    }
    return answered;
  }));
}

}  // namespace
}  // namespace x11_test
