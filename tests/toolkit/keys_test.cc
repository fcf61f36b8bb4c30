// Keys: from the platform's characters and virtual keys to the toolkit's codes.
#include <gtest/gtest.h>

#include "platform/input/translate.h"
#include "tests/toolkit/stage.h"
#include "toolkit/events/keyboard.h"

namespace {

using namespace stage;
using platform::Event;

// What one platform key gives; 0 nothing.
int Type(uint32_t kind, uint32_t key_code, uint8_t character) {
  Event e(platform::kEventClassKeyboard, kind, Native(W_Start));
  e.time = 3.5;
  e.key = {};
  e.key.key_code = key_code;
  e.key.character = character;
  Inp.type = -1;
  EXPECT_EQ(EVkeyboard_func(nullptr, &e, W_Start), platform::eventNotHandledErr);
  return Inp.type;
}

TEST(Keys, TheTable) {
  Open();
  XwSetFocus(Main());
  const struct {
    uint32_t key_code;
    int character, code;
  } rows[] = {
      {0, 'a', 'a'},    {0, ' ', 32},    {0, '~', 126},   {0x2B, ',', ','}, {0x41, ',', '.'},
      {0x41, '.', '.'}, {0x33, 8, 512},  {0x30, 9, 513},  {0x4C, 3, 514},   {0x24, 13, 514},
      {0x35, 27, 515},  {0x47, 27, 0},   {0x69, 16, 517}, {0x72, 5, 520},   {0x75, 127, 521},
      {0x73, 1, 522},   {0x77, 4, 523},  {0x74, 11, 524}, {0x79, 12, 525},  {0x7E, 30, 526},
      {0x7B, 28, 527},  {0x7D, 31, 528}, {0x7C, 29, 529}, {0x7A, 16, 256},  {0x78, 16, 257},
      {0x63, 16, 258},  {0x76, 16, 259}, {0x60, 16, 260}, {0x61, 16, 261},  {0x62, 16, 262},
      {0x64, 16, 263},  {0x65, 16, 264}, {0x6D, 16, 265}, {0x67, 16, 266},  {0x6F, 16, 267},
      {0x6B, 16, 0},    {0, 0, 0},       {0, 2, 0},       {0, 6, 0},        {0, 10, 0},
      {0, 26, 0},       {0, 128, 0},     {0, 0x8A, 0},    {0, 255, 0},
  };
  for (const auto& row : rows)
    EXPECT_EQ(Type(1, row.key_code, uint8_t(row.character)), row.code)
        << row.key_code << " " << row.character;
}

TEST(Keys, StatesAndRelease) {
  XwWindow* main = OpenMain();
  XwSetFocus(main);
  input::KeyDown('q');
  RunLoop();
  EXPECT_EQ(XwGetKeyState('q'), 1);
  input::KeyDown('q');
  RunLoop();
  EXPECT_EQ(XwGetKeyState('q'), 2);
  input::KeyUp('q');
  RunLoop();
  EXPECT_EQ(XwGetKeyState('q'), 0);
  EXPECT_EQ(Trace(), "main 113 main 113 main 800");
  EXPECT_EQ(seen.back().event.value, 'q');
  EXPECT_EQ(seen[0].event.time, 1000000u);
  for (int outside : {-1, 532, 1 << 30, INT32_MIN}) EXPECT_EQ(XwGetKeyState(outside), 0);
}

TEST(Keys, AreLetGoOfWithTheFocus) {
  XwWindow* main = OpenMain();
  XwWindow* other = Top("other", 500, 100, 100, 100);
  XwSetFocus(main);
  Settle();
  input::KeyDown('b');
  input::KeyDown('a');
  input::Modifiers(platform::shiftKey);
  input::Focus(nullptr);
  EXPECT_EQ(RunTrace(), "main 98 main 97 main 777 main 800 main 800 other 769");
  EXPECT_EQ(XwGetKeyState('a') + XwGetKeyState('b'), 0);
  // What happens elsewhere is not seen, but for what it has come to.
  seen.clear();
  input::KeyUp('a');
  input::KeyDown('c');
  input::KeyUp('c');
  input::Modifiers(platform::controlKey);
  input::Focus(Native(main));
  EXPECT_EQ(RunTrace(), "main 777");
  EXPECT_EQ(Inp.state, unsigned{XWS_CONTROL});
  // A key that is still down goes on as a new one; the window that has the focus when it comes up
  // hears of that, also when there was none for a while.
  seen.clear();
  input::KeyDown('b');
  XwDestroy(other);
  XwShow(main, 0);
  XwShow(main, 1);
  input::KeyDown('b');
  input::KeyDown('b');
  RunLoop();
  EXPECT_EQ(XwGetKeyState('b'), 2);
  input::Focus(nullptr);
  RunLoop();
  EXPECT_EQ(XwGetKeyState('b'), 0);
}

// Where the desktop moves the focus by itself, keys follow, also in what waits; a focus that
// already lies in that window stays.
TEST(Keys, FollowTheDesktopsFocus) {
  XwWindow* main = OpenMain();
  XwWindow* other = XwCreate(0, 500, 100, 100, 100, Record);
  Name(other, "other");
  XwSetGround(other, nullptr, 0);
  static XwWindow* sub;
  sub = Sub(other, "sub", 0, 0, 10, 10);
  XwShow(other, 1);
  Settle();
  input::Focus(Native(main));
  Settle();
  on_event = [](int type) {
    if (type != 'a') return;
    for (XwWindow* focus : {sub, W_Start}) {
      Inp.focus = focus;
      XwSendEvent(W_Start, 1000, 0, 0, 0);
    }
  };
  input::KeyDown('a');
  input::Focus(Native(other));
  input::KeyDown('b');
  EXPECT_EQ(RunTrace(), "main 97 main 800 other 98 main 1000 main 1000");
  EXPECT_EQ(seen[3].event.focus, sub);
  EXPECT_EQ(seen[4].event.focus, other);
  EXPECT_EQ(Inp.focus, other);
}

// Where the program moves it, what was waiting does not turn the keys away again.
TEST(Keys, FollowTheProgramsFocus) {
  XwWindow* main = OpenMain();
  XwSetFocus(main);
  XwWindow* other = Top("other", 500, 100, 100, 100);
  XwSendEvent(main, 1000, 0, 0, 0);
  XwSetFocus(other);
  RunLoop();
  seen.clear();
  input::KeyDown('a');
  EXPECT_EQ(RunTrace(), "other 97");
}

// A window that ends takes its keys along; the next one hears of what came up by then.
TEST(Keys, OfAWindowThatEndedComeUpWithoutAnEvent) {
  OpenMain();
  XwWindow* other = Top("other", 500, 100, 100, 100);
  Settle();
  input::KeyDown('k');
  RunLoop();
  EXPECT_EQ(XwGetKeyState('k'), 1);
  input::Modifiers(platform::controlKey);
  RunLoop();
  EXPECT_EQ(Inp.state, uint32_t{XWS_CONTROL});
  // Whether another window has the focus then or none.
  XwShow(W_Start, 0);
  seen.clear();
  input::KeyUp('k');
  XwDestroy(other);
  EXPECT_EQ(XwGetKeyState('k'), 1) << "not before its place in the queue";
  input::Modifiers(0);
  RunLoop();
  EXPECT_EQ(XwGetKeyState('k'), 0);
  EXPECT_EQ(Inp.state, 0u);
  EXPECT_TRUE(seen.empty());
}

// What a key types is whole UTF-8, of every script; a command or a release types nothing.
TEST(Keys, CarryTheTextThatTheyTyped) {
  Open();
  XwSetFocus(Main());
  static std::string typed;
  const platform::EventKind kinds[] = {
      {platform::kEventClassKeyboard, platform::kEventRawKeyDown},
      {platform::kEventClassKeyboard, platform::kEventRawKeyRepeat},
      {platform::kEventClassKeyboard, platform::kEventRawKeyUp}};
  platform::InstallEventHandler(
      platform::GetWindowEventTarget(Native(W_Start)),
      [](platform::HandlerCall*, Event* e, void*) -> platform::OSStatus {
        typed += std::string("[") + e->key.text + "]";
        return platform::eventNotHandledErr;
      },
      kinds, 3, nullptr);
  const struct {
    uint32_t keysym, unicode;
    const char* text;
    uint32_t modifiers;
    const char* result;
  } rows[] = {
      {'a', 0, nullptr, 0, "[a][]"},
      {0x01004E2D, 0x4E2D, nullptr, 0, "[\u4e2d][]"},
      {'x', 'x', "x\u0301", platform::optionKey, "[x\u0301][]"},
      {'c', 'c', nullptr, platform::controlKey, "[][]"},
      {'c', 'c', nullptr, platform::cmdKey, "[][]"},
      {0xFF0D, 13, nullptr, 0, "[][]"},
      {'y', 'y', "12345678901234\u00e9", 0, "[12345678901234][]"},
      {0, 0x110000, nullptr, 0, "[][]"},
      {0, 0xDFFF, nullptr, 0, "[][]"},
  };
  for (const auto& row : rows) {
    input::Modifiers(row.modifiers);
    Settle();
    typed.clear();
    input::KeyDown(row.keysym, row.unicode, row.text);
    input::KeyUp(row.keysym, row.unicode);
    RunLoop();
    EXPECT_EQ(typed, row.result) << row.keysym;
  }
}

TEST(Keys, GoToTheFocus) {
  XwWindow* main = OpenMain();
  XwWindow* a = Sub(main, "a", 10, 10, 50, 50);
  Settle();
  Inp.focus = nullptr;
  input::KeyDown('x');
  EXPECT_EQ(RunLoop(), 'x') << "produced with no window";
  EXPECT_EQ(Inp.window, nullptr);
  MoveTo(130, 130);
  input::KeyDown('y');
  RunLoop();
  EXPECT_EQ(seen.back().window, a) << "keys follow the pointer";
  XwSetFocus(a);
  input::KeyDown('z');
  RunLoop();
  EXPECT_EQ(seen.back().window, main) << "the focus is the top-level window's";
  MoveTo(131, 130);
  XwDestroy(a);
  EXPECT_EQ(Inp.focus, nullptr);
}

TEST(Keys, ModifiersChangeOnlyWithTheirOwnEvent) {
  Open();
  XwSetFocus(Main());
  const struct {
    uint32_t platform, state;
  } rows[] = {
      {platform::cmdKey, XWS_COMMAND},
      {platform::alphaLock, XWS_CAPS},
      {platform::shiftKey, XWS_SHIFT},
      {platform::rightShiftKey, XWS_SHIFT},
      {platform::optionKey, XWS_OPTION},
      {platform::rightOptionKey, XWS_OPTION},
      {platform::controlKey, XWS_CONTROL},
      {platform::rightControlKey, XWS_CONTROL},
      {0xFFFFFFFF, XWS_COMMAND | XWS_CAPS | XWS_SHIFT | XWS_OPTION | XWS_CONTROL},
      {0, 0},
  };
  MoveTo(150, 150);
  input::Press(1);
  RunLoop();
  for (const auto& row : rows) {
    seen.clear();
    input::Modifiers(row.platform);
    EXPECT_EQ(RunTrace(), "main 777");
    EXPECT_EQ(Inp.state, row.state | 1u) << row.platform;
    Inp.state ^= XWS_CAPS;  // as a copy of a record from before does
    input::KeyDown('a');
    RunLoop();
    EXPECT_EQ(Inp.state, row.state | 1u);
    Inp.state ^= XWS_CAPS;
    MoveTo(150, 151 + int(&row - rows));
    RunLoop();
    EXPECT_EQ(Inp.state, row.state | 1u) << "the pointer";
  }
}

TEST(Keys, SymbolsOfTheDisplay) {
  const struct {
    uint32_t keysym, base, unicode, modifiers;
    int key_code, character;
  } rows[] = {
      {'a', 'a', 'a', 0, -1, 'a'},
      {'A', 'a', 'A', platform::shiftKey, -1, 'A'},
      {0xE9, 0xE9, 0xE9, 0, -1, 0x8E},                     // an accented letter
      {'c', 'c', 3, platform::controlKey, -1, 'c'},        // the letter, not the control code
      {0x6D3, 'c', 0x441, platform::controlKey, -1, 'c'},  // another script: the base layout
      {0x6D3, 'c', 0x441, platform::rightControlKey, -1, 'c'},
      {'c', 'c', 0, platform::cmdKey, -1, 'c'},
      {0xFF63, 0xFF63, 0, 0, 0x72, 5},      // Insert
      {0xFF6A, 0xFF6A, 0, 0, 0x72, 5},      // Help
      {0xFF8D, 0xFF8D, 13, 0, 0x4C, 3},     // keypad Enter
      {0xFFAC, 0xFFAC, ',', 0, 0x41, ','},  // keypad decimal key
      {0xFFAE, 0xFFAE, '.', 0, 0x41, '.'},
      {0xFFBE, 0xFFBE, 0, 0, 0x7A, 16},                  // F1
      {0xFFCA, 0xFFCA, 0, 0, 0x69, 16},                  // F13
      {0xFFFF, 0xFFFF, 127, 0, 0x75, 127},               // Delete
      {0xFE20, 0xFE20, 0, platform::shiftKey, 0x30, 9},  // Tab backwards
      {0xFFE1, 0xFFE1, 0, 0, 0xFFFF, 0},                 // a modifier
      {0x4E2D, 0x4E2D, 0x4E2D, 0, 0xFFFF, 0},            // not in the character set
      {0, 0, 0, 0, 0xFFFF, 0},
      {0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFF, 0},
  };
  for (const auto& row : rows) {
    platform::MacKey key = platform::LookUpKey(row.keysym, row.base, row.unicode, row.modifiers);
    EXPECT_EQ(key.character, row.character) << std::hex << row.keysym;
    if (row.key_code >= 0) {
      EXPECT_EQ(key.key_code, row.key_code) << std::hex << row.keysym;
    }
  }
}

}  // namespace
