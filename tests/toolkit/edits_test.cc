// Edit boxes: what keys and the pointer do in them, which events they send and in which order, what
// they take from the clipboard.
#include <gtest/gtest.h>

#include "platform/clipboard/clipboard.h"
#include "platform/controls/edit_text.h"
#include "platform/display/cursor.h"
#include "tests/toolkit/control_stage.h"
#include "toolkit/core/state.h"

namespace {

using namespace stage;
using namespace platform;

constexpr uint32_t kF10 = 0xFFC7, kMenuKey = 0xFF67, kBack = 0xFF08, kTab = 0xFF09,
                   kReturn = 0xFF0D, kEscape = 0xFF1B, kHome = 0xFF50, kLeft = 0xFF51,
                   kRight = 0xFF53, kEnd = 0xFF57, kInsert = 0xFF63, kKeypadDecimal = 0xFFAC,
                   kDelete = 0xFFFF;

std::string Text(XwWindow* w) {
  char text[1000];
  XwGetTextUtf8(w, text, sizeof text);
  return text;
}

// What came, "type", with "=value" where it is not 0 and the item before a colon where it is not 5.
// Releases of keys, redraws and what the pointer does outside are left out.
std::string Came() {
  std::string out;
  for (const Seen& s : seen) {
    if (s.type == XWE_KEY_UP || s.type == XWE_MODIFIERS || s.type == XWE_MOTION ||
        s.type == XWE_EXPOSE)
      continue;
    out += out.empty() ? "" : " ";
    if (s.type >= XWE_CONTROL && s.event.item != 5) out += std::to_string(s.event.item) + ":";
    out += std::to_string(s.type);
    if (s.type >= XWE_CONTROL && s.event.value && s.type != XWE_MENU_OPENING)
      out += "=" + std::to_string(s.event.value);
  }
  seen.clear();
  return out;
}
std::string Type(uint32_t keysym, uint32_t unicode = 0, uint32_t modifiers = 0) {
  if (modifiers) input::Modifiers(modifiers);
  input::KeyDown(keysym, unicode);
  input::KeyUp(keysym, unicode);
  if (modifiers) input::Modifiers(0);
  RunFor(0.001);
  return Came();
}
void TypeText(const char* text) {
  for (; *text; ++text) Type(uint8_t(*text), uint8_t(*text));
}

struct Boxes : ControlScreen {
  XwWindow* box;
  Boxes() { box = XwEditBox(main, "one two", 5, 10, 10, 120, 24, kOn); }
  void Focus() {
    XwSetFocus(box);
    RunFor(0.001);
    seen.clear();
  }
  // The column of a character's left edge in the box, global.
  int Column(int character) {
    SelectEditText(static_cast<ControlRef>(box->platform), character, character);
    return GetEditCaret(static_cast<ControlRef>(box->platform)).left + 100;
  }
};

TEST(EditBoxes, KeysEditAndEndAsOneEventEach) {
  Boxes s;
  EXPECT_EQ(Type('x', 'x'), "120") << "without the keyboard the key is the window's";
  XwSetFocus(s.box);
  RunFor(0.001);
  EXPECT_EQ(Came(), "788=1");
  EXPECT_TRUE(s.box->flags & XW_EDITING);
  // Its text is selected.
  EXPECT_EQ(Type('a', 'a'), "789");
  EXPECT_EQ(Text(s.box), "a");
  TypeText("bc de");
  struct {
    uint32_t key, modifiers;
    const char *text, *came;
  } const kSteps[] = {
      {kLeft, 0, "abc de", "789"},
      {kBack, 0, "abc e", "789"},
      {kHome, 0, "abc e", "789"},
      {kDelete, 0, "bc e", "789"},
      {kEnd, 0, "bc e", "789"},
      {kLeft, shiftKey, "bc e", "789"},
      {kDelete, 0, "bc ", "789"},
      {'z', controlKey, "bc e", "122 789"},
      {'z', controlKey, "abc e", "122 789"},
      {'y', controlKey, "bc e", "121 789"},
      {'y', controlKey, "bc ", "121 789"},
      {kLeft, controlKey, "bc ", "527"},
      {kRight, controlKey | shiftKey, "bc ", "529"},
      {kBack, 0, " ", "789"},
      {'y', controlKey, " ", "121"},
      {'a', controlKey, " ", "97"},
      {kDelete, shiftKey, "", "789"},
      {kInsert, shiftKey, " ", "520 789"},
      {'v', controlKey, "  ", "118 789"},
      {'z', controlKey, " ", "122 789"},
  };
  for (const auto& step : kSteps) {
    SCOPED_TRACE(step.key);
    EXPECT_EQ(Type(step.key, step.key < 0x80 ? step.key : 0, step.modifiers), step.came);
    EXPECT_EQ(Text(s.box), step.text);
  }
  XwSetText(s.box, "");
  EXPECT_EQ(Type('z', 'z', controlKey), "122") << "a program's text cannot be undone";
  TypeText("ab cd");
  for (const char* text : {"ab ", ""}) {
    Type('z', 'z', controlKey);
    EXPECT_EQ(Text(s.box), text) << "a word at a time, with the spaces behind it";
  }
  TypeText("x");
  Type('y', 'y', controlKey);
  EXPECT_EQ(Text(s.box), "x") << "nothing is done again over something new";
  TypeText("yz");
  for (uint32_t key : {kLeft, kRight}) {
    Type('a', 'a', controlKey);
    Type(key);
    TypeText(key == kLeft ? "<" : ">");
  }
  EXPECT_EQ(Text(s.box), "<xyz>") << "a selection ends at the side to which the caret goes";
  Type('a', 'a', controlKey);
  Type(kBack);
  Type('z', 'z', controlKey);
  Type('c', 'C', controlKey | shiftKey);
  EXPECT_EQ(OfferedText(Selection::kClipboard)->find('x'), std::string::npos) << "Control alone";
  Type(kInsert, 0, controlKey);
  EXPECT_EQ(*OfferedText(Selection::kClipboard), "<xyz>") << "what was deleted is selected again";
  XwSetText(s.box, "a1_b-c");
  for (const char* text : {"a1_b-|c", "a1_b|-|c", "|a1_b|-|c"}) {
    Type(kLeft, 0, controlKey);
    TypeText("|");
    EXPECT_EQ(Text(s.box), text) << "letters, digits and lines are words; signs are others";
    Type(kLeft);
  }
  XwSetText(s.box, "");
  for (int i = 0; i < 600; ++i) {
    TypeText("x");
    Type(kHome);
  }
  for (int i = 0; i < 600; ++i) Type('z', 'z', controlKey);
  EXPECT_EQ(Text(s.box).size(), 100u) << "what can be undone has an end";
  XwSetText(s.box, "");
  EXPECT_EQ(Type(kKeypadDecimal, ','), "789");
  EXPECT_EQ(Text(s.box), ".");
  // What has no place in the toolkit's set.
  EXPECT_EQ(Type(0x1000416, 0x416), "789");
  EXPECT_EQ(Text(s.box), ".\u0416");
  char eight[256];
  EXPECT_STREQ(XwGetText(s.box, eight), ".?");
  input::KeyDown('k', 'k', "\u4e2d\u6587");
  RunFor(0.001);
  EXPECT_EQ(Text(s.box), ".\u0416\u4e2d\u6587");
  // A letter with its mark is selected as one, and in the order in which it is stored.
  XwSetTextUtf8(s.box, "e\u0301\u05E9\u05DC");
  Type(kHome);
  Type(kRight, 0, shiftKey);
  Type('x', 'x', controlKey);
  EXPECT_EQ(Text(s.box), "\u05E9\u05DC");
}

TEST(EditBoxes, TheKeyboardGoesFromBoxToBox) {
  Boxes s;
  XwWindow* read = XwEditBox(s.main, "", 6, 10, 40, 120, 24, kOn | XWC_VARIANT);
  XwWindow* second = XwEditBox(s.main, "", -7, 10, 70, 120, 24, kOn);
  XwWindow* off = XwEditBox(s.main, "", 8, 10, 100, 120, 24, XWC_VISIBLE);
  s.Focus();
  EXPECT_EQ(Type(kReturn), "790 788 7:788=1");
  EXPECT_EQ(FocusedId(), -7);
  EXPECT_EQ(Type(kReturn), "7:790 7:788 788=1") << "around, past those that cannot be written";
  EXPECT_EQ(Type(kTab), "513 790 788 7:788=1");
  input::Modifiers(shiftKey);
  EXPECT_EQ(Type(kTab), "513 788=1") << "the box that is left says nothing";
  EXPECT_TRUE(second->flags & XW_EDITING);
  input::Modifiers(0);
  EXPECT_EQ(Type(kTab), "513 790 788") << "which it has not been told has ended";
  EXPECT_EQ(FocusedId(), -7);
  EXPECT_EQ(Type(kEscape), "7:788 7:788");
  EXPECT_EQ(FocusedId(), 0);
  // A single one is its own next.
  XwShow(second, 0);
  s.Focus();
  EXPECT_EQ(Type(kReturn), "790 788 788=1");
  // What is hidden, greyed or read-only takes nothing, and nobody has the keyboard then.
  for (XwWindow* w : {second, off, read}) {
    XwSetFocus(w);
    RunFor(0.001);
    EXPECT_EQ(FocusedId(), 0) << w->id;
    XwSetFocus(s.box);
  }
  XwEnable(read, 0);
  XwEnable(read, 1);
  XwSetFocus(read);
  EXPECT_EQ(FocusedId(), 0);
  s.Focus();
  XwEnable(s.box, 0);
  RunFor(0.001);
  EXPECT_EQ(Came(), "788");
  XwEnable(s.box, 1);
  s.Focus();
  XwDestroy(s.box);
  RunFor(0.001);
  EXPECT_EQ(Came(), "");
  // Return that leaves, and a press on one that can only be read.
  XwWindow* last = XwEditBox(s.main, "", 5, 10, 10, 120, 24, kOn | XWC_DROPS_FOCUS);
  XwSetFocus(last);
  RunFor(0.001);
  Came();
  EXPECT_EQ(Type(kReturn), "790 788");
  EXPECT_EQ(FocusedId(), 0);
  EXPECT_EQ(ClickAt(120, 150), "6=0");
  EXPECT_EQ(ClickAt(120, 210), "");
  XwEditBox(s.main, "", 9, 10, 130, 120, 24, XWC_VISIBLE | XWC_VARIANT);
  EXPECT_EQ(ClickAt(120, 240), "");
}

TEST(EditBoxes, ThePointerSelects) {
  Boxes s;
  const int two = (s.Focus(), s.Column(4)), one = s.Column(1);
  XwSetFocus(s.main);
  Settle();
  auto type = [&](const char* text) {
    seen.clear();
    TypeText(text);
    return Text(s.box);
  };
  auto press = [](int x) {
    input::MovePointer(x, 122);
    input::Press(1);
    RunFor(0.001);
  };
  auto release = [] {
    input::Release(1);
    RunFor(0.001);
  };
  press(two);
  release();
  EXPECT_EQ(Came(), "788=1");
  EXPECT_EQ(OfferedText(Selection::kPrimary), nullptr) << "not the user's selection";
  Type(kEscape);
  press(two);
  release();
  EXPECT_EQ(type("one two"), "one two")
      << "a press before the box had the keyboard is no first one";
  RunFor(1);
  press(two);
  release();
  Type('a', 'a', controlKey);
  EXPECT_EQ(OfferedText(Selection::kPrimary), nullptr) << "neither by the pointer nor by Shift";
  XwSetFocus(s.main);
  RunFor(1);
  // All of a drag waits before the box gets the keyboard.
  input::MovePointer(one - 1, 122);
  input::Press(1);
  input::MovePointer(two, 122);
  release();
  EXPECT_EQ(type("_"), "o_two");
  XwSetText(s.box, "one two");
  RunFor(1);
  press(two);
  release();
  seen.clear();
  EXPECT_EQ(type("-"), "one -two") << "the first press selects all, the next sets the caret";
  RunFor(1);
  press(two);
  release();
  press(two);
  release();
  EXPECT_EQ(*OfferedText(Selection::kPrimary), "-") << "two presses: a word, or a run of signs";
  press(two);
  release();
  EXPECT_EQ(type("x"), "x") << "three: all";
  XwSetText(s.box, "one two");
  RunFor(1);
  press(one - 1);
  input::MovePointer(two, 300);
  release();
  EXPECT_EQ(*OfferedText(Selection::kPrimary), "ne ");
  EXPECT_EQ(Came(), "") << "selecting is no change";
  EXPECT_EQ(type("_"), "o_two");
  // From a press that extends, by words, and past the border.
  XwSetText(s.box, "one two three four five six seven eight nine ten");
  press(two);
  release();
  RunFor(1);
  input::Modifiers(shiftKey);
  press(one);
  release();
  input::Modifiers(0);
  EXPECT_NE(*OfferedText(Selection::kPrimary), "ne ") << "a longer or shorter one";
  XwSetText(s.box, "one two three four five six seven eight nine ten");
  RunFor(1);
  Type(kHome);
  press(two + 2);
  release();
  press(two + 2);
  input::MovePointer(400, 122);
  RunFor(3);
  release();
  EXPECT_EQ(*OfferedText(Selection::kPrimary), "two three four five six seven eight nine ten");
  // The middle button pastes what is selected, where it is pressed.
  XwSetText(s.box, "ab");
  const int end = s.Column(2);
  Came();
  input::Click(end, 122, 3);
  RunFor(0.01);
  EXPECT_EQ(Text(s.box), "abtwo three four five six seven eight nine ten");
  EXPECT_EQ(Came(), "789");
  XwSetText(s.box, "ab");
  XwSetFocus(s.main);
  Settle();
  input::Click(end, 122, 3);
  RunFor(0.01);
  EXPECT_EQ(Text(s.box).substr(0, 5), "abtwo") << "also where the box gets the keyboard by it";
}

TEST(EditBoxes, TheClipboardComesLaterOrNotAtAll) {
  Boxes s;
  s.Focus();
  input::OfferText(Selection::kClipboard,
                   "a\x01\tb\xC3\xA4\xFF"
                   "c\rrest");
  Type(kEnd);
  Type('v', 'v', controlKey);
  EXPECT_EQ(Text(s.box),
            "one twoab\u00E4\uFFFD"
            "c")
      << "its first line, without control characters";
  Type('a', 'a', controlKey);
  Type('c', 'c', controlKey);
  EXPECT_EQ(*input::AskForText(Selection::kClipboard),
            "one twoab\u00E4\uFFFD"
            "c");
  input::OfferText(Selection::kClipboard, std::string(65535, 'x') + "\u00E4");
  XwSetText(s.box, "");
  Type('v', 'v', controlKey);
  EXPECT_EQ(XwGetTextUtf8(s.box, nullptr, 0), 65535) << "64 KiB, in whole characters";
  input::OfferTextLater(Selection::kClipboard);
  for (int i = 0; i < 20; ++i) Type('v', 'v', controlKey);
  EXPECT_EQ(input::WaitingTextRequests(), 8) << "a key that repeats asks for no more";
  RunFor(2.1);
  XwSetText(s.box, "");
  EXPECT_EQ(Type('v', 'v', controlKey), "118");
  const std::string late = "late";
  input::AnswerTextRequests(&late);
  RunFor(0.001);
  EXPECT_EQ(Text(s.box), "late");
  EXPECT_EQ(Came(), "789");
  // It comes when the box has lost the keyboard, when it has ended, or never.
  Type('v', 'v', controlKey);
  XwSetFocus(s.main);
  input::AnswerTextRequests(&late);
  RunFor(0.001);
  EXPECT_EQ(Text(s.box), "late");
  s.Focus();
  Type('v', 'v', controlKey);
  RunFor(2.1);
  EXPECT_EQ(input::WaitingTextRequests(), 0);
  Type('v', 'v', controlKey);
  XwDestroy(s.box);
  input::AnswerTextRequests(&late);
  RunFor(0.001);
  EXPECT_EQ(FocusedId(), 0);
}

TEST(EditBoxes, MenuKeysComeAfterTheBox) {
  Boxes s;
  static XwMenuItem items[] = {{"Copy", 0, 31, nullptr},
                               {"Find", 0, 32, nullptr},
                               {"A", 0, 33, nullptr},
                               {"Back", 0, 34, nullptr},
                               {}};
  static XwMenuItem bar[] = {{"Edit", 0, XwValue(items), nullptr}, {}};
  XwSetMenu(s.main, bar);
  XwSetMenuItemKey(items, 31, 'c', XWS_CONTROL);
  XwSetMenuItemKey(items, 32, 'f', XWS_CONTROL);
  XwSetMenuItemKey(items, 33, 'a', 0);
  XwSetMenuItemKey(items, 34, XWE_LEFT, XWS_CONTROL);
  Settle();
  auto chosen = [&](uint32_t key, uint32_t modifiers) {
    return Type(key, key, modifiers).find("794") != std::string::npos;
  };
  EXPECT_TRUE(chosen('c', controlKey));
  s.Focus();
  EXPECT_FALSE(chosen('c', controlKey));
  EXPECT_FALSE(chosen('a', 0));
  EXPECT_TRUE(chosen('f', controlKey));
  EXPECT_EQ(Type(kLeft, 0, controlKey), "0:793 527 34:794");
  // The box's own menu, by keys; what cannot be done now is greyed.
  for (uint32_t key : {kMenuKey, kF10}) {
    static uint32_t undo, redo;
    undo = redo = 0;
    Type('x', 'x');
    Type('z', 'z', controlKey);
    Type('x', 'x');
    EventLoopTimerRef look = InstallEventLoopTimer(
        0.1, 0,
        [](EventLoopTimerRef, void*) {
          undo = State("Undo");
          redo = State("Redo");
        },
        nullptr);
    if (key == kF10) input::Modifiers(shiftKey);
    input::KeyDown(key);
    input::KeyUp(key);
    input::Modifiers(0);
    RunFor(0.2);
    RemoveEventLoopTimer(look);
    EXPECT_TRUE(undo & kIsEnabled);
    EXPECT_FALSE(redo & kIsEnabled) << "something new was typed";
  }
  // By the pointer it comes with the keyboard; of what can only be read it copies all.
  XwWindow* read = XwEditBox(s.main, "fixed", 6, 10, 40, 120, 24, kOn | XWC_VARIANT);
  for (XwWindow* w : {s.box, read}) {
    XwSetFocus(s.main);
    EventLoopTimerRef copy = InstallEventLoopTimer(
        0.1, 0,
        [](EventLoopTimerRef, void*) {
          input::KeyDown('c', 'c');
          input::KeyUp('c', 'c');
          input::KeyDown(kReturn);
          input::KeyUp(kReturn);
        },
        nullptr);
    input::Click(120, w->y + 110, 2);
    RunFor(0.2);
    RemoveEventLoopTimer(copy);
    EXPECT_EQ(FocusedId(), w == read ? 0 : 5);
  }
  EXPECT_EQ(*OfferedText(Selection::kClipboard), "fixed");
}

TEST(EditBoxes, AProgramEditsAndOpensItsOwnContextMenu) {
  static int asked;
  asked = 0;
  Boxes s;
  XwSetContextMenuHandler(s.main, [] { ++asked; });
  s.Focus();
  Type(kEnd);
  XwEdit(s.box, XWU_CUT);
  EXPECT_EQ(Text(s.box), "one two") << "nothing is selected";
  XwEdit(s.box, XWU_SELECT_ALL);
  EXPECT_TRUE(XwCanEdit(s.box, XWU_CUT));
  XwEdit(s.box, XWU_CUT);
  RunFor(0.001);
  EXPECT_EQ(Came(), "789");
  EXPECT_EQ(Text(s.box), "");
  EXPECT_FALSE(XwCanEdit(s.box, XWU_CUT) || XwCanEdit(s.box, 99) || XwCanEdit(s.main, XWU_PASTE));
  XwEdit(s.box, XWU_PASTE);
  RunFor(0.1);
  EXPECT_EQ(Text(s.box), "one two");
  XwEdit(s.box, XWU_UNDO);
  EXPECT_TRUE(XwCanEdit(s.box, XWU_REDO));
  // The window's menu comes where no control has one, by the Menu key and by F10 with Shift alone.
  XwSetFocus(s.main);
  RunFor(0.001);
  Type(kMenuKey);
  EXPECT_EQ(Type(kF10, 0, shiftKey), "265");
  Type(kF10, 0, shiftKey | controlKey);
  EXPECT_EQ(asked, 2);
}

TEST(EditBoxes, AFieldIsEditedInPlace) {
  Boxes s;
  char text[256] = "old";
  static XwWindow* field;
  static int steps;
  steps = 0;
  input::SetIdleHandler([] {
    if (steps++ > 2) return false;
    field = XwGetFocus(W_Start);
    if (steps == 1) {
      EXPECT_EQ(field->height, 22);
      EXPECT_EQ(field->y, 47);
      input::KeyDown('n', 'n');
    }
    if (steps == 2) input::Quit();
    if (steps == 3) input::KeyDown(kReturn);
    return true;
  });
  EXPECT_EQ(XwEditField(s.main, 10, 50, 100, 16, text), 1);
  EXPECT_STREQ(text, "oldn");
  EXPECT_EQ(FocusedId(), 5) << "Return went on to the next";
  seen.clear();
  RunFor(0.001);
  bool quit = false;
  for (const Seen& e : seen) quit |= e.type == XWE_QUIT;
  EXPECT_TRUE(quit) << "what it dropped comes again";
  input::SetIdleHandler([] {
    input::Click(110, 290, 2);
    return true;
  });
  EXPECT_EQ(XwEditField(s.main, 10, 50, 100, 30, text), 0);
  input::SetIdleHandler(nullptr);
  EXPECT_STREQ(text, "oldn");
}

TEST(EditBoxes, ItDescribesItselfAndItsCaretRests) {
  Boxes s;
  XwLabel(s.main, "Name", 9, 10, 80, 60, 16, kOn);
  XwWindow* read = XwEditBox(s.main, "fixed", 6, 80, 80, 100, 24, kOn | XWC_VARIANT);
  XwDescribeControl(s.box, "Box");
  s.Focus();
  DescribedNode n = Node("Box");
  EXPECT_EQ(n.what.role, ObjectRole::kTextField);
  EXPECT_EQ(n.what.value, "one two");
  EXPECT_EQ(n.what.state & (kIsFocused | kIsEnabled | kIsReadOnly), kIsFocused | kIsEnabled);
  XwDescribeControl(read, "Read");
  EXPECT_EQ(State("Read") & (kIsReadOnly | kIsFocusable | kIsEnabled), kIsReadOnly | kIsEnabled);
  auto shown = [&](const std::string& text) {
    XwSetText(read, text.c_str());
    RunFor(0.001);
    return input::TakePicture(Native(s.main)).pixels;
  };
  EXPECT_EQ(shown("fixed" + std::string(60, ' ') + "end"), shown("fixed")) << "from its beginning";
  Type(kEnd);
  auto look = [&] { return input::TakePicture(Native(s.main)).pixels; };
  const auto on = look();
  RunFor(0.6);
  EXPECT_NE(look(), on);
  RunFor(0.5);
  EXPECT_EQ(look(), on);
  RunFor(20);
  EXPECT_EQ(look(), on) << "it rests";
  RunFor(0.6);
  EXPECT_EQ(look(), on);
  // What a key draws again is what all of the box would be, in a text that scrolls too.
  XwSetText(s.box, "one two three four");
  for (uint32_t key :
       {uint32_t{'f'}, kLeft, kLeft, uint32_t{'W'}, kBack, kDelete, kHome, uint32_t{'j'}}) {
    Type(key, key < 0x80 ? key : 0);
    const auto part = look();
    Draw1Control(static_cast<ControlRef>(s.box->platform));
    RunFor(0.001);
    EXPECT_EQ(look(), part) << key;
  }
  const auto whole = look();
  RedrawPane(RootPane(Native(s.main)), {0, 0, 200, 60});
  RunFor(0.001);
  EXPECT_EQ(look(), whole) << "the ring's corners are whole";
  const auto presented = input::Counts().presented_pixels;
  Type('x', 'x');
  EXPECT_LE(input::Counts().presented_pixels - presented, 130 * 34) << "the box alone is drawn";
}

TEST(EditBoxes, NumbersAndTexts) {
  Boxes s;
  MoveTo(130, 122);
  EXPECT_EQ(input::ShownCursor(Native(s.main))->shape, Cursor::kText);
  MoveTo(300, 122);
  EXPECT_EQ(input::ShownCursor(Native(s.main))->shape, Cursor::kArrow);
  XwSetValue(s.box, -12);
  EXPECT_EQ(Text(s.box), "-12");
  EXPECT_EQ(XwGetValue(s.box), -12);
  XwSetText(s.box, "7abc");
  EXPECT_EQ(XwGetValue(s.box), 7);
  XwSetText(s.box, "99999999999");
  EXPECT_EQ(XwGetValue(s.box), INT32_MAX);
  XwSetTextUtf8(s.box, "a\nb\u20AC\xFF");
  EXPECT_EQ(Text(s.box), "a b\u20AC\uFFFD");
  char cut[7];
  EXPECT_EQ(XwGetTextUtf8(s.box, cut, 7), 9);
  EXPECT_STREQ(cut, "a b\u20AC");
  XwSetText(s.box, nullptr);
  EXPECT_EQ(XwGetTextUtf8(s.box, nullptr, 0), 0);
  const std::string longer(3000, 'x');
  XwSetText(s.box, longer.c_str());
  char eight[256];
  EXPECT_EQ(strlen(XwGetText(s.box, eight)), 255u);
  EXPECT_EQ(XwGetTextUtf8(s.box, nullptr, 0), 3000);
  XwDialogItem items[] = {{3, nullptr, 44, 10, 150, 80, 24, kOn, 31, 0, 0, 0, 0}, {}};
  XwCreateDialogItems(s.main, items, 0, 0);
  EXPECT_EQ(Text(XwFind(s.main, 44)), "31");
}

}  // namespace
