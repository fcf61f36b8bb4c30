// Keys of a real keyboard, by their place on it: what the toolkit makes of them, in several
// layouts.
#include <cstdlib>
#include <string>
#include <vector>

#include "platform/display/x11/xkb.h"
#include "tests/os/scratch.h"
#include "tests/x11/reports.h"
#include "tests/x11/turn.h"
#include "toolkit/xw.h"

namespace x11_test {
namespace {

// The numbers that servers give to keys.
enum Code : uint8_t {
  kEscape = 9,
  k1 = 10,
  k2,
  kMinus = 20,
  kBackSpace = 22,
  kTab = 23,
  kQ = 24,
  kE = 26,
  kReturn = 36,
  kControlL = 37,
  kA = 38,
  kC = 54,
  kShiftL = 50,
  kAltL = 64,
  kCapsLock = 66,
  kF1 = 67,
  kNumLock = 77,
  kPad7 = 79,
  kPadMinus = 82,
  kPadPlus = 86,
  kPad1 = 87,
  kPad0 = 90,
  kPadDecimal = 91,
  kF11 = 95,
  kF12 = 96,
  kPadEnter = 104,
  kPadDivide = 106,
  kPadMultiply = 63,
  kHome = 110,
  kUp = 111,
  kPageUp = 112,
  kLeft = 113,
  kRight = 114,
  kEnd = 115,
  kDown = 116,
  kPageDown = 117,
  kInsert = 118,
  kDelete = 119,
  kPadEqual = 125,
  kSuperL = 133,
  kHelp = 146,
  kF13 = 191,
};

std::vector<int> types;
std::vector<unsigned> states;
int Handle(int type) {
  if (type == XWE_KEY_UP) {
    types.push_back(-Inp.value);
  } else if (type == XWE_MODIFIERS) {
    states.push_back(Inp.state);
  } else if (type < 768) {
    types.push_back(type);
  }
  return 0;
}

// A session of the toolkit, with its window in focus.
class Keys : public Toolkit<X11Test> {
 protected:
  void SetUp() override {
    StartServer("", {});
    XwSession("Keys", "Keys", 0);
    top = XwCreate(0, 100, 124, 300, 200, Handle);
    XwShow(top, 1);
    XwSetFocus(top);
    FlushWindow(nullptr);
    types.clear();
    states.clear();
  }
  void Settled() {
    ASSERT_TRUE(Run([] { return x11::x.late_done && IsApplicationActive(); }));
  }
  // The code that a key gives, checked with its release; 0 when it gives none.
  int Press(int code) {
    types.clear();
    user().Code(code, true);
    user().Code(code, false);
    // A key that gives nothing is followed by one that does.
    user().Code(kEscape, true);
    user().Code(kEscape, false);
    EXPECT_TRUE(Run([] { return !types.empty() && types.back() == -XWE_ESCAPE; }));
    if (types.size() == 2) return 0;
    EXPECT_EQ(types.size(), 4u);
    EXPECT_EQ(types[1], -types[0]);
    return types[0];
  }
  int PressWith(int modifier, int code) {
    user().Code(modifier, true);
    const int type = Press(code);
    user().Code(modifier, false);
    return type;
  }
  void Layout(const std::string& arguments) {
    ASSERT_EQ(system(("setxkbmap " + arguments).c_str()), 0);
  }
  // What a layout switch of the desktop does.
  void LockGroup(int group) {
    xcb_connection_t* c = user().connection();
    free(xcb_xkb_use_extension_reply(c, xcb_xkb_use_extension(c, 1, 0), nullptr));
    xcb_xkb_latch_lock_state(c, XCB_XKB_ID_USE_CORE_KBD, 0, 0, 1, uint8_t(group), 0, 0, 0);
    user().Sync();
  }
};

struct Row {
  int code, type;
};

TEST_F(Keys, EveryKeyHasItsCode) {
  Settled();
  const Row rows[] = {
      {kBackSpace, XWE_BACKSPACE},
      {kTab, XWE_TAB},
      {kReturn, XWE_RETURN},
      {kInsert, XWE_HELP},
      {kHelp, XWE_HELP},
      {kDelete, XWE_DELETE},
      {kHome, XWE_HOME},
      {kEnd, XWE_END},
      {kPageUp, XWE_PAGE_UP},
      {kPageDown, XWE_PAGE_DOWN},
      {kUp, XWE_UP},
      {kDown, XWE_DOWN},
      {kLeft, XWE_LEFT},
      {kRight, XWE_RIGHT},
      {kF11, XWE_F1 + 10},
      {kF12, XWE_F1 + 11},
      {kF13, XWE_F13},
      {kA, 'a'},
      {k1, '1'},
      {kPadEnter, XWE_RETURN},
      {kPadDivide, '/'},
      {kPadMultiply, '*'},
      {kPadMinus, '-'},
      {kPadPlus, '+'},
      {kPadEqual, '='},
      {kPad7, XWE_HOME},
      {kPad7 + 1, XWE_UP},
      {kPad7 + 2, XWE_PAGE_UP},
      {kPad1, XWE_END},
      {kPad1 + 1, XWE_DOWN},
      {kPad1 + 2, XWE_PAGE_DOWN},
      {kPad0, XWE_HELP},
      {kPadDecimal, XWE_DELETE},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(Press(row.code), row.type) << row.code;
  }
  for (int i = 0; i < 10; ++i) EXPECT_EQ(Press(kF1 + i), XWE_F1 + i);
  EXPECT_EQ(PressWith(kShiftL, kF1), XWE_F1);
  EXPECT_EQ(PressWith(kShiftL, kTab), XWE_TAB);
  EXPECT_EQ(PressWith(kShiftL, kA), 'A');
}

// With Num Lock the keypad types; its decimal key is a point in every layout.
TEST_F(Keys, TheKeypadTypesWithNumLock) {
  Settled();
  user().Code(kNumLock, true);
  user().Code(kNumLock, false);
  const Row rows[] = {{kPad0, '0'},     {kPad1, '1'},    {kPad1 + 1, '2'},
                      {kPad1 + 2, '3'}, {83, '4'},       {84, '5'},
                      {85, '6'},        {kPad7, '7'},    {kPad7 + 1, '8'},
                      {kPad7 + 2, '9'}, {kPadPlus, '+'}, {kPadEnter, XWE_RETURN}};
  for (const Row& row : rows) EXPECT_EQ(Press(row.code), row.type) << row.code;
  for (const char* layout : {"us", "de", "fr", "fr -variant oss", "us -option kpdl:commaoss",
                             "us -option kpdl:momayyezoss", "us -option kpdl:dotoss"}) {
    Layout(std::string(layout) + " -option");
    Layout(layout);
    EXPECT_EQ(Press(kPadDecimal), '.') << layout;
  }
}

TEST_F(Keys, ALayoutThatIsChangedOrSwitchedIsFollowed) {
  Settled();
  Layout("de");
  EXPECT_EQ(Press(kMinus), 0);  // a sharp s, which has no code
  EXPECT_EQ(Press(29), 'z');
  Layout("us,ru");
  EXPECT_EQ(Press(kA), 'a');
  LockGroup(1);
  EXPECT_EQ(Press(kA), 0);
  for (int control : {int{kControlL}, 105}) EXPECT_EQ(PressWith(control, kA), 'a') << control;
  EXPECT_EQ(Press(k1), '1');
  LockGroup(0);
  EXPECT_EQ(Press(kA), 'a');
  // Where the other layout comes first, a letter with Control is the same.
  Layout("ru,us");
  EXPECT_EQ(Press(kA), 0);
  EXPECT_EQ(PressWith(kControlL, kC), 'c');
  LockGroup(1);
  EXPECT_EQ(Press(kA), 'a');
}

TEST_F(Keys, DeadKeysComeFirst) {
  Settled();
  Layout("us -variant intl");
  for (int code : std::initializer_list<int>{48, kE}) {
    user().Code(code, true);
    user().Code(code, false);
  }
  EXPECT_EQ(Press(kA), 'a');
  // The accented letter has no code; an accent on its own is an apostrophe.
  types.clear();
  user().Code(48, true);
  user().Code(48, false);
  EXPECT_EQ(Press(65), '\'');
}

// The whole of it is the text of the event, cut between characters where it is too long.
TEST_F(Keys, ASequenceMayTypeMoreThanOneCharacter) {
  const Scratch scratch;
  setenv("XCOMPOSEFILE",
         scratch
             .File("sequences",
                   "<dead_acute> <e> : \"q\u0301!\"\n<dead_acute> <a> : \"0123456789abcd\u4e2d\"\n")
             .c_str(),
         1);
  Settled();
  Layout("us -variant intl");
  static std::vector<std::string> typed;
  typed.clear();
  const EventKind kind{kEventClassKeyboard, kEventRawKeyDown};
  InstallEventHandler(
      GetWindowEventTarget(static_cast<WindowRef>(top->platform)),
      [](HandlerCall*, Event* e, void*) -> OSStatus {
        typed.push_back(e->key.text);
        return eventNotHandledErr;
      },
      &kind, 1, nullptr);
  for (int code : std::initializer_list<int>{48, kE, 48, kA}) {
    user().Code(code, true);
    user().Code(code, false);
  }
  ASSERT_TRUE(Run([] { return typed.size() == 4; }));
  EXPECT_EQ(typed, (std::vector<std::string>{"", "q\u0301!", "", "0123456789abcd"}));
}

TEST_F(Keys, ModifiersAreTheirOwnEvent) {
  Settled();
  struct {
    int code;
    unsigned state;
  } rows[] = {{kShiftL, XWS_SHIFT},   {kControlL, XWS_CONTROL}, {kAltL, XWS_OPTION},
              {kSuperL, XWS_COMMAND}, {62, XWS_SHIFT},          {105, XWS_CONTROL},
              {108, XWS_OPTION},      {134, XWS_COMMAND}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.code);
    states.clear();
    user().Code(row.code, true);
    user().Code(row.code, false);
    ASSERT_TRUE(Run([] { return states.size() == 2; }));
    EXPECT_EQ(states[0], row.state);
    EXPECT_EQ(states[1], 0u);
  }
  states.clear();
  user().Code(kCapsLock, true);
  user().Code(kCapsLock, false);
  ASSERT_TRUE(Run([] { return !states.empty(); }));
  EXPECT_EQ(states.back(), unsigned{XWS_CAPS});
  EXPECT_EQ(Press(kA), 'A');
}

TEST_F(Keys, AHeldKeyIsTwoInTheTable) {
  Settled();
  user().Code(kA, true);
  ASSERT_TRUE(Run([] { return types.size() >= 3; }));
  EXPECT_EQ(XwGetKeyState('a'), 2);
  for (int type : types) EXPECT_EQ(type, 'a');
  user().Code(kA, false);
  ASSERT_TRUE(Run([] { return types.back() == -'a'; }));
  EXPECT_EQ(XwGetKeyState('a'), 0);
}

// A modifier that is let go elsewhere is not down any more when the focus comes back.
TEST_F(Keys, ModifiersAreRightAfterTheFocusWasElsewhere) {
  Settled();
  user().Code(kAltL, true);
  ASSERT_TRUE(Run([] { return !states.empty() && states.back() == XWS_OPTION; }));
  xcb_connection_t* c = user().connection();
  xcb_set_input_focus(c, XCB_INPUT_FOCUS_NONE, XCB_NONE, XCB_CURRENT_TIME);
  user().Sync();
  ASSERT_TRUE(Run([] { return !IsApplicationActive(); }));
  user().Code(kAltL, false);
  user().Code(kControlL, true);
  xcb_set_input_focus(c, XCB_INPUT_FOCUS_NONE,
                      x11::NativeOf(static_cast<WindowRef>(top->platform))->id, XCB_CURRENT_TIME);
  user().Sync();
  EXPECT_TRUE(Run([] { return states.back() == XWS_CONTROL; }));
  user().Code(kControlL, false);
  EXPECT_TRUE(Run([] { return states.back() == 0; }));
}

// The keyboard is opened with the first key: that one counts already.
TEST_F(Keys, TheVeryFirstKeyMayBeAModifier) {
  ASSERT_FALSE(x11::x.late_done);
  user().Code(kShiftL, true);
  EXPECT_TRUE(Run([] { return !states.empty() && states.back() == XWS_SHIFT; }));
  EXPECT_EQ(Press(kA), 'A');
  user().Code(kShiftL, false);
  EXPECT_TRUE(Run([] { return states.back() == 0; }));
}

}  // namespace
}  // namespace x11_test
