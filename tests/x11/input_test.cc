// A user at the keyboard and the pointer, with and without a window manager.
#include "platform/display/x11/x.h"
#include "platform/events/clock.h"
#include "platform/events/raw_event.h"
#include "platform/windows/internal.h"
#include "tests/x11/reports.h"

namespace x11_test {
namespace {

using namespace platform;

constexpr uint32_t kShiftL = 0xFFE1, kControlL = 0xFFE3, kAltL = 0xFFE9, kSuperL = 0xFFEB;

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

TEST_F(Reports, MotionFollowsAPressOutOfTheWindow) {
  Start();
  Ready();
  user().Button(1, true);
  user().Move(500, 600);
  user().Button(1, false);
  ASSERT_TRUE(Wait(RawEvent::kRelease));
  EXPECT_EQ(Of(RawEvent::kMotion).back().x, 400);
  EXPECT_EQ(Of(RawEvent::kRelease)[0].root_y, 600);
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

TEST_F(Reports, AGrabTakesThePointerEverywhere) {
  Start();
  WindowRef w = Ready();
  kX11Display.grab(w, GrabMode::kWindow, nullptr);
  user().Move(800, 650);
  user().Click(1);
  ASSERT_TRUE(Wait(RawEvent::kRelease));
  EXPECT_EQ(Of(RawEvent::kPress)[0].window, w);
  EXPECT_EQ(Of(RawEvent::kPress)[0].x, 700);
  kX11Display.grab(nullptr, GrabMode::kNone, nullptr);
  kX11Display.flush(true);
  reports.clear();
  user().Click(1);
  user().Move(150, 200);
  ASSERT_TRUE(Wait(RawEvent::kMotion));
  EXPECT_TRUE(Of(RawEvent::kPress).empty());
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

TEST_F(Reports, KeysCarrySymbolBaseAndCharacter) {
  Start();
  Ready();
  struct Row {
    uint32_t with, key, keysym, base, unicode, modifiers;
  };
  const Row rows[] = {
      {0, 'a', 'a', 'a', 'a', 0},
      {kShiftL, 'a', 'A', 'a', 'A', shiftKey},
      {kShiftL, '1', '!', '1', '!', shiftKey},
      {kControlL, 'a', 'a', 'a', 'a', controlKey},
      {kAltL, 'a', 'a', 'a', 'a', optionKey},
      {kSuperL, 'a', 'a', 'a', 'a', cmdKey},
      {0, 0xFF0D, 0xFF0D, 0xFF0D, 13, 0},
      {0, 0xFF1B, 0xFF1B, 0xFF1B, 27, 0},
      {0, 0xFFBE, 0xFFBE, 0xFFBE, 0, 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.keysym);
    reports.clear();
    if (row.with != 0) user().Key(row.with, true);
    user().Type(row.key);
    if (row.with != 0) user().Key(row.with, false);
    ASSERT_TRUE(Wait(RawEvent::kKeyUp, row.with != 0 ? 2 : 1));
    const RawEvent e = Of(RawEvent::kKeyDown).back();
    EXPECT_EQ(e.keysym, row.keysym);
    EXPECT_EQ(e.base_keysym, row.base);
    EXPECT_EQ(e.unicode, row.unicode);
    EXPECT_EQ(e.modifiers, row.modifiers);
    if (row.with != 0) {
      ASSERT_TRUE(Wait(RawEvent::kModifiers, 2));
      EXPECT_EQ(Of(RawEvent::kModifiers)[0].modifiers, row.modifiers);
      EXPECT_EQ(Of(RawEvent::kModifiers)[1].modifiers, 0u);
    }
  }
}

TEST_F(Reports, AHeldKeyRepeatsWithoutReleases) {
  Start();
  Ready();
  user().Key('x', true);
  ASSERT_TRUE(Wait(RawEvent::kKeyRepeat, 3));
  EXPECT_EQ(Of(RawEvent::kKeyDown).size(), 1u);
  EXPECT_TRUE(Of(RawEvent::kKeyUp).empty());
  user().Key('x', false);
  ASSERT_TRUE(Wait(RawEvent::kKeyUp));
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

// Gives the key that types `from` other symbols, as a change of layout does.
void Remap(support::XUser& user, uint32_t from, uint32_t to, uint32_t shifted) {
  xcb_connection_t* c = user.connection();
  const uint8_t first = xcb_get_setup(c)->min_keycode, last = xcb_get_setup(c)->max_keycode;
  auto* map = xcb_get_keyboard_mapping_reply(
      c, xcb_get_keyboard_mapping(c, first, uint8_t(last - first + 1)), nullptr);
  const xcb_keysym_t* syms = xcb_get_keyboard_mapping_keysyms(map);
  for (int i = 0; i <= last - first; ++i) {
    if (syms[i * map->keysyms_per_keycode] != from) continue;
    const xcb_keysym_t pair[2] = {to, shifted};
    xcb_change_keyboard_mapping(c, 1, uint8_t(first + i), 2, pair);
  }
  free(map);
  user.Sync();
}

TEST_F(Reports, AChangeOfLayoutIsFollowed) {
  Start();
  Ready();
  user().Type('a');
  ASSERT_TRUE(Wait(RawEvent::kKeyUp));
  Remap(user(), 'a', 0x6C6, 0x6E6);  // Cyrillic ef
  user().Type(0x6C6);
  ASSERT_TRUE(Wait(RawEvent::kKeyUp, 2));
  EXPECT_EQ(Of(RawEvent::kKeyDown)[0].unicode, uint32_t('a'));
  EXPECT_EQ(Of(RawEvent::kKeyDown)[1].unicode, 0x444u);
}

TEST_F(Reports, DeadAndComposeKeysMakeOneCharacter) {
  Start();
  Ready();
  Remap(user(), 'q', 0xFE51, 0xFE51);  // dead acute
  Remap(user(), 'w', 0xFF20, 0xFF20);  // compose
  for (uint32_t key :
       {0xFE51u, uint32_t('e'), 0xFF20u, uint32_t('a'), uint32_t('e'), uint32_t('e')}) {
    user().Type(key);
  }
  ASSERT_TRUE(Wait(RawEvent::kKeyUp, 6));
  const auto down = Of(RawEvent::kKeyDown);
  ASSERT_EQ(down.size(), 6u);
  const uint32_t characters[] = {0, 0xE9, 0, 0, 0xE6, 'e'};
  for (size_t i = 0; i < 6; ++i) EXPECT_EQ(down[i].unicode, characters[i]) << i;
  EXPECT_EQ(down[1].keysym, 0xE9u);
  EXPECT_EQ(Of(RawEvent::kKeyUp)[1].keysym, 0xE9u);
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
