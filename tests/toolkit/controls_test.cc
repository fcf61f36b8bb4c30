// Controls: what the pointer and the keyboard do to them, what they report, where they lie, and how
// they describe themselves.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "platform/access/access.h"
#include "platform/controls/controls.h"
#include "tests/toolkit/control_stage.h"
#include "toolkit/core/state.h"

namespace {

using namespace stage;
using namespace platform;

constexpr uint32_t kTabKey = 0xFF09, kReturnKey = 0xFF0D, kEscapeKey = 0xFF1B;

TEST(Controls, APressIsHeldInsideAndReportsWhenItIsLetGo) {
  ControlScreen s;
  XwButton(s.main, "Go", 5, 10, 10, 100, 26, kOn, 0);
  Settle();
  const Rect r = Node("Go").what.bounds;
  EXPECT_EQ(r, (Rect{112, 111, 206, 133}));
  PressAt(r.left, r.top);
  EXPECT_TRUE(State("Go") & kIsPressed);
  input::MovePointer(r.right, r.top);
  RunLoop();
  EXPECT_FALSE(State("Go") & kIsPressed);
  input::MovePointer(r.right - 1, r.bottom - 1);
  RunLoop();
  EXPECT_TRUE(State("Go") & kIsPressed);
  EXPECT_EQ(Others(), "") << "the window sees nothing of it";
  LetGo();
  EXPECT_EQ(Reports(), "5=0");
  EXPECT_FALSE(State("Go") & kIsPressed);
  EXPECT_EQ(Inp.state & XWS_BUTTONS, 0u);

  input::Press(1);
  input::MovePointer(r.right, r.top);
  LetGo();
  EXPECT_EQ(Reports(), "") << "let go outside";
  // The record reaches further than the button.
  input::Click(110, 110);
  RunLoop();
  EXPECT_EQ(Others(), "771 776");
  // While one button holds it, others are swallowed.
  input::MovePointer(r.left, r.top);
  for (int held : {1, 2}) input::Press(held);
  input::Release(2);
  RunLoop();
  EXPECT_EQ(Reports(), "");
  LetGo();
  EXPECT_EQ(Reports(), "5=0");
  input::Press(3);
  RunLoop();
  EXPECT_FALSE(State("Go") & kIsPressed);
  input::Release(3);
  // The pointer is taken away, or the window goes, with the button down: it is let go of.
  for (bool hidden : {false, true}) {
    PressAt(r.left, r.top);
    hidden ? XwShow(s.main, 0) : input::StealPointer(true);
    RunLoop();
    EXPECT_FALSE(State("Go") & kIsPressed);
    hidden ? XwShow(s.main, 1) : input::StealPointer(false);
    input::Release(1);
    EXPECT_EQ(ClickAt(r.left, r.top), "5=0") << "once, for this click";
  }
}

TEST(Controls, WhoGetsAPress) {
  ControlScreen s;
  XwButton(s.main, "off", 1, 10, 10, 60, 26, XWC_VISIBLE, 0);
  XwButton(s.main, "silent", 0, 80, 10, 60, 26, kOn, 0);
  XwButton(s.main, "hidden", 3, 150, 10, 60, 26, XWC_ENABLED, 0);
  XwButton(s.main, "lower", 4, 10, 50, 60, 26, kOn | XWC_VARIANT, 0);
  XwButton(s.main, "upper", 5, 40, 50, 60, 26, kOn | XWC_VARIANT, 0);
  XwWindow* sub = Sub(s.main, "sub", 10, 100, 120, 60);
  XwButton(sub, "inner", 6, 10, 10, 60, 26, kOn, 0);
  XwButton(s.main, "covered", 7, 100, 110, 60, 26, kOn | XWC_VARIANT, 0);
  XwCheckBox(s.main, "box", 8, 200, 100, kOn, 0);
  XwLabel(s.main, "label", 9, 200, 50, 80, 20, kOn);
  Settle();
  const struct {
    int x, y, button;
    const char *reports, *others;
  } rows[] = {
      {120, 120, 1, "", ""},  // disabled: no press for the window either
      {120, 120, 2, "", ""},        {190, 120, 1, "", ""},     // id 0
      {260, 120, 1, "", "771 776"},                            // hidden
      {120, 160, 1, "4=0", ""},                                // of two, the later one
      {145, 160, 1, "5=0", ""},     {130, 222, 1, "6=0", ""},  // in a sub-window
      {215, 220, 1, "", "771 776"},                            // a sub-window covers it
      {240, 220, 1, "7=0", ""},                                // and not here
      {240, 220, 2, "7=0", ""},  // the secondary button of a button reports at once
      {240, 220, 3, "", ""},     // others are swallowed
      {305, 210, 2, "", ""},     // also on what is no button
      {305, 210, 1, "8=1", ""},     {330, 160, 1, "9=-1", ""},
  };
  for (const auto& row : rows) {
    input::Click(row.x, row.y, row.button);
    RunLoop();
    std::vector<Seen> kept = seen;
    EXPECT_EQ(Reports(), row.reports) << row.x << " " << row.y << " " << row.button;
    seen = kept;
    EXPECT_EQ(Others(), row.others) << row.x << " " << row.y << " " << row.button;
  }
  // A press that is a control's changes nothing but the time.
  const XwEvent before = Inp;
  input::MovePointer(120, 120);
  RunLoop();
  Inp.focus = s.main;
  input::Step(3);
  input::Press(1);
  RunLoop();
  EXPECT_NE(Inp.time, before.time);
  EXPECT_EQ(Inp.state & XWS_BUTTONS, 0u);
  input::Release(1);
  Settle();
  // During a grab the window gets it.
  XwGrabPointer(s.main, 0);
  input::Click(120, 160);
  RunLoop();
  EXPECT_EQ(Others(), "771 776");
  XwUngrabPointer();
  // Of two sub-windows the later one is above, and so is what is in it.
  XwWindow* above = Sub(s.main, "above", 10, 100, 120, 60);
  XwButton(above, "topmost", 12, 10, 10, 60, 26, kOn, 0);
  Settle();
  EXPECT_EQ(ClickAt(130, 222), "12=0");
  XwDestroy(above);
  RunLoop();
  // Hidden and shown with its sub-window.
  XwShow(sub, 0);
  RunLoop();
  EXPECT_FALSE(State("inner") & kIsShown);
  seen.clear();
  EXPECT_EQ(ClickAt(215, 220), "7=0");
  XwShow(sub, 1);
  XwMove(sub, 150, 140, 120, 60);
  Settle();
  EXPECT_EQ(Node("inner").what.bounds, (Rect{262, 251, 316, 273}));
  EXPECT_EQ(ClickAt(265, 255), "6=0");
  // What the sub-window cuts off is outside of it, also while it is held.
  XwMove(sub, 150, 140, 40, 60);
  Settle();
  for (int to : {285, 295}) {
    input::MovePointer(265, 255);
    input::Press(1);
    input::MovePointer(to, 255);
    LetGo();
    EXPECT_EQ(Reports(), to < 290 ? "6=0" : "");
  }
}

TEST(Controls, ValuesStayInTheirRanges) {
  ControlScreen s;
  const struct {
    XwWindow* w;
    int set[4], got[4];
  } rows[] = {
      {XwButton(s.main, "a", 1, 0, 0, 60, 26, kOn, 1), {0, 1, 2, -1}, {0, 1, 1, 0}},
      {XwButton(s.main, "b", 2, 0, 30, 60, 26, kOn | XWC_VARIANT, 7), {9, -5, 0, 3}, {9, -5, 0, 3}},
      {XwCheckBox(s.main, "c", 3, 0, 60, kOn, 0), {0, 2, 3, -1}, {0, 2, 2, 0}},
      {XwCheckBox(s.main, "d", 4, 0, 90, kOn | XWC_VARIANT, 0), {1, 2, 3, -1}, {1, 2, 2, 0}},
      {XwButton(s.main, "e", 5, 0, 120, 60, 26, kOn | XWC_HEADER, 1), {1, 2, -1, 0}, {0, 0, 0, 0}},
      {XwColor(s.main, "f", 6, 0, 150, 60, 26, kOn, 0x123456), {5, 6, 7, 8}, {0, 0, 0, 0}},
      {XwLabel(s.main, "g", 7, 100, 0, 60, 26, kOn), {5, 6, 7, 8}, {0, 0, 0, 0}},
  };
  EXPECT_EQ(XwGetValue(rows[0].w), 0) << "a push button begins at 0";
  EXPECT_EQ(XwGetValue(rows[1].w), 7);
  for (const auto& row : rows)
    for (int i = 0; i < 4; ++i) {
      XwSetValue(row.w, row.set[i]);
      EXPECT_EQ(XwGetValue(row.w), row.got[i]) << int(row.w->kind) << " " << row.set[i];
    }
  EXPECT_EQ(rows[5].w->value, 8);
  EXPECT_EQ(Node("f").what.value, "#080000");
  XwSetValue(rows[2].w, 2);
  EXPECT_TRUE(State("c") & kIsMixed);
  XwSetValue(rows[3].w, 0);
  Settle();
  EXPECT_EQ(ClickAt(105, 170) + " " + ClickAt(105, 170) + " " + ClickAt(105, 170), "3=0 3=1 3=0");
  EXPECT_EQ(ClickAt(105, 200) + " " + ClickAt(105, 200), "4=1 4=1");
}

TEST(Controls, RecordsTextsAndPlaces) {
  ControlScreen s;
  XwWindow* push = XwButton(s.main, "Open", 1, 10, 10, 100, 20, kOn | XWC_DOTS | XWC_COLON, 0);
  EXPECT_EQ(push->height, 23);
  EXPECT_EQ(Node("Open ...:").what.bounds, (Rect{112, 111, 206, 127}));
  XwMove(push, 20, 20, push->width, push->height);
  EXPECT_EQ(push->height, 26) << "it grows with each move to its own height";
  XwWindow* box = XwCheckBox(s.main, "Box", 2, 10, 60, kOn, 0);
  EXPECT_EQ(box->y, 62);
  EXPECT_EQ(box->height, 16);
  EXPECT_GT(box->width, 16 + 6 + 15);
  XwWindow* label = XwLabel(s.main, "Label", 3, 10, 80, 100, 40, kOn);
  EXPECT_EQ(Node("Label").what.bounds, (Rect{112, 192, 203, 208}));
  EXPECT_EQ(label->height, 40);

  char text[256];
  memset(text, 'x', sizeof text);
  XwSetText(push, "OK");
  EXPECT_EQ(std::string(XwGetText(push, text), 10), std::string("\x07OK ...:xx"))
      << "no ending zero";
  for (XwWindow* w : {label, XwColor(s.main, "well", 4, 10, 130, 40, 20, kOn, 0),
                      XwButton(s.main, "head", 5, 60, 130, 40, 20, kOn | XWC_HEADER, 0)}) {
    memset(text, 'x', sizeof text);
    EXPECT_EQ(std::string(XwGetText(w, text), 2), std::string("\0x", 2));
  }
  XwSetText(push, std::string(300, 'a').c_str());
  EXPECT_EQ(uint8_t(XwGetText(push, text)[0]), 255);

  static XwIcon icon = *IC_ARROWS;
  XwWindow* with_icon = XwButton(s.main, &icon, 6, 120, 130, 20, 20, kOn | XWC_ICON, 0);
  EXPECT_EQ(with_icon->user_data, &icon);
  EXPECT_TRUE(with_icon->flags & XW_DATA_NOT_OWNED);
  EXPECT_EQ(XwLabel(s.main, &icon, 7, 150, 130, 20, 20, kOn | XWC_ICON)->kind, XWK_LABEL);
  XwWindow* sub = Sub(s.main, "sub", 200, 10, 90, 90);
  EXPECT_EQ(XwGetValue(sub), 0);
  EXPECT_EQ(*XwGetText(sub, text), 0);

  const XwDialogItem items[] = {{1, nullptr, 21, -90, 150, 80, 26, kOn, 0, 0, 0, 0, 0},
                                {2, "check", 22, 5, -30, 0, 0, kOn, 1, 0, 0, 0, 0},
                                {77, "none", 23, 0, 0, 0, 0, kOn, 0, 0, 0, 0, 0},
                                {5, "text", 24, 5, 6, 30, 20, kOn, 0, 0, 0, 0, 0},
                                {8, "well", 25, 5, 6, 30, 20, kOn, 0x0000FF, 0, 0, 0, 0},
                                {0, nullptr, 26, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}};
  XwCreateDialogItems(s.main, items, 2, 3);
  const struct {
    int id, kind, x, y;
  } made[] = {{21, XWK_BUTTON, 210, 153},
              {22, XWK_CHECK_BOX, 7, 172},
              {24, XWK_LABEL, 7, 9},
              {25, XWK_COLOR, 7, 9}};
  for (const auto& m : made) {
    const XwWindow* w = XwFind(s.main, m.id);
    ASSERT_TRUE(w) << m.id;
    EXPECT_EQ(w->kind, m.kind);
    EXPECT_EQ(w->x, m.x);
    EXPECT_EQ(w->y, m.y) << m.id;
  }
  EXPECT_FALSE(XwFind(s.main, 23));
  EXPECT_FALSE(XwButton(push, "in a control", 1, 0, 0, 9, 9, kOn, 0));
}

TEST(Controls, TheKeyboardAlone) {
  ControlScreen s;
  XwButton(s.main, "First", 1, 10, 10, 60, 26, kOn, 0);
  XwLabel(s.main, "Text", 2, 80, 10, 60, 26, kOn);
  XwButton(s.main, "grey", 3, 150, 10, 60, 26, XWC_VISIBLE, 0);
  XwButton(s.main, "Head", 4, 10, 40, 60, 22, kOn | XWC_HEADER, 0);
  XwCheckBox(s.main, "Check", 5, 10, 70, kOn, 0);
  XwWindow* sub = Sub(s.main, "sub", 10, 100, 200, 40);
  XwCheckBox(sub, "radio", 6, 10, 10, kOn | XWC_VARIANT, 0);
  XwColor(s.main, "well", 7, 10, 150, 40, 26, kOn, 0);
  XwWindow* ok = XwButton(s.main, "OK", 8, 60, 150, 60, 26, kOn, 0);
  XwWindow* cancel = XwButton(s.main, "Leave", 9, 130, 150, 60, 26, kOn, 0);
  XwButton(s.main, "\216tage", 10, 200, 150, 60, 26, kOn | XWC_VARIANT, 0);
  Settle();
  for (int id : {1, 5, 6, 7, 8, 9, 10, 1}) {
    Key(kTabKey, 9);
    EXPECT_EQ(FocusedId(), id);
  }
  for (int id : {10, 9}) {
    Key(kTabKey, 9, shiftKey);
    EXPECT_EQ(FocusedId(), id);
  }
  XwShow(sub, 0);
  XwFocusControl(XwFind(s.main, 5));
  Key(kTabKey, 9);
  EXPECT_EQ(FocusedId(), 7) << "what is hidden is left out";
  XwShow(sub, 1);
  XwFocusControl(XwFind(s.main, 4));
  EXPECT_EQ(FocusedId(), 4) << "a list header by request only";
  for (int id : {2, 3}) XwFocusControl(XwFind(s.main, id));
  EXPECT_EQ(FocusedId(), 4);

  const struct {
    int focus;
    uint32_t keysym, unicode, modifiers;
    const char* reports;
  } rows[] = {
      {1, ' ', ' ', 0, "1=0"},
      {1, kReturnKey, 13, 0, "1=0"},
      {1, 0xFF8D, 13, 0, "1=0"},
      {1, ' ', ' ', controlKey, ""},
      {5, ' ', ' ', 0, "5=1"},
      {5, kReturnKey, 13, 0, "5=0"},
      {7, ' ', ' ', 0, "7=0"},
      {4, ' ', ' ', 0, "4=0"},
      {0, kReturnKey, 13, 0, "8=0"},
      {0, kEscapeKey, 27, 0, "9=0"},
      {1, kEscapeKey, 27, 0, "9=0"},
      {0, 'c', 'c', optionKey, "5=1"},
      {0, 'C', 'C', optionKey, "5=0"},
      {0, 'r', 'r', optionKey, "6=1"},
      {0, 0xE9, 0xE9, optionKey, "10=0"},
      {0, 'g', 'g', optionKey, ""},
      {0, 'c', 'c', optionKey | controlKey, ""},
      {0, 't', 't', optionKey, ""},
  };
  XwSetDefaultButtons(s.main, ok, cancel);
  for (const auto& row : rows) {
    XwSetFocus(s.main);
    if (row.focus) XwFocusControl(XwFind(s.main, row.focus));
    EXPECT_EQ(Key(row.keysym, row.unicode, row.modifiers), row.reports)
        << row.focus << " " << row.keysym;
  }
  // The report takes the place of the key; other keys are delivered as ever.
  XwFocusControl(XwFind(s.main, 1));
  seen.clear();
  Key('x', 'x');
  input::KeyDown(' ', ' ');
  input::KeyDown(' ', ' ');
  RunLoop();
  EXPECT_EQ(Others(), "32") << "a repeat presses nothing and is an ordinary key";
  input::KeyUp(' ', ' ');
  XwFocusControl(XwButton(s.main, "silent", 0, 10, 170, 60, 26, kOn, 0));
  Key(' ', ' ');
  input::KeyDown(kReturnKey, 13);
  RunLoop();
  EXPECT_EQ(Others(), "") << "one that reports nothing takes the key all the same";
  input::KeyUp(kReturnKey, 13);
  input::Modifiers(optionKey);
  for (int i = 0; i < 3; ++i) input::KeyDown('r', 'r');
  RunLoop();
  EXPECT_EQ(Reports(), "6=1") << "of a letter either";
  input::KeyUp('r', 'r');
  // The letters that Alt shows go with the window's keyboard.
  auto look = [&] {
    RunLoop();
    return input::TakePicture(Native(s.main)).pixels;
  };
  input::Focus(nullptr);
  const auto shown = look();
  input::Modifiers(0);
  input::Focus(Native(s.main));
  RunLoop();
  input::Focus(nullptr);
  EXPECT_EQ(look(), shown);
  input::Focus(Native(s.main));
  XwFocusControl(XwFind(s.main, 1));
  XwSetTab(s.main, 0);
  Settle();
  Key(kTabKey, 9);
  EXPECT_EQ(FocusedId(), 1) << "Tab is the program's";
  // What is hidden, greyed or destroyed loses the keyboard.
  for (int id : {1, 5}) {
    XwFocusControl(XwFind(s.main, id));
    id == 1 ? XwShow(XwFind(s.main, id), 0) : XwEnable(XwFind(s.main, id), 0);
    EXPECT_EQ(FocusedId(), 0);
  }
  XwFocusControl(XwFind(s.main, 7));
  XwDestroy(XwFind(s.main, 7));
  EXPECT_EQ(FocusedId(), 0);
  XwSetTab(s.main, 1);
  Key(kTabKey, 9);
  EXPECT_EQ(FocusedId(), 8) << "on from its place";
  XwDestroy(ok);
  XwEnable(cancel, 0);
  EXPECT_EQ(Key(kReturnKey, 13) + Key(kEscapeKey, 27), "");
}

uint32_t PixelAt(const XwWindow* w, int x, int y) {
  const input::Picture p = input::TakePicture(Native(const_cast<XwWindow*>(w)));
  return p.pixels[size_t(y + 24) * size_t(p.width) + size_t(x)] & 0xFFFFFF;
}

// The title is cut before the mark; where both have no room, the mark is alone.
TEST(Controls, ATitleLeavesRoomForTheSortingMark) {
  constexpr int kMark = 17;  // from the right
  ControlScreen s;
  for (const uint32_t align : {uint32_t{XWC_LEFT}, uint32_t{XWC_RIGHT}, 0u})
    for (const int width : {60, 36, 12}) {
      const auto look = [&](const char* title, int from, int to) {
        XwWindow* head = XwButton(s.main, title, 5, 10, 40, width, 22, kOn | XWC_HEADER | align, 1);
        Settle();
        std::vector<uint32_t> pixels;
        for (int x = from; x < to; ++x)
          for (int y = 4; y < 18; ++y) pixels.push_back(PixelAt(s.main, 10 + x, 40 + y));
        XwDestroy(head);
        return pixels;
      };
      const int mark = std::max(0, width - kMark);
      EXPECT_EQ(look("Submitted", mark, width), look("", mark, width)) << width;
      EXPECT_EQ(look("Submitted", 0, mark) == look("", 0, mark), width < 60) << width;
    }
}

TEST(Controls, TheRingAndWhatIsDrawnAgain) {
  ControlScreen s;
  const int32_t green = 0x00FF00;
  XwSetGround(s.main, &green, 0);
  XwWindow* bevel = XwButton(s.main, "b", 1, 50, 50, 80, 30, kOn | XWC_VARIANT, 0);
  XwButton(s.main, "c", 2, 132, 50, 80, 30, kOn | XWC_VARIANT, 0);
  RunLoop();
  const input::Picture plain = input::TakePicture(Native(s.main));
  EXPECT_EQ(PixelAt(s.main, 48, 65), 0x00FF00u);
  seen.clear();
  XwFocusControl(bevel);
  RunLoop();
  EXPECT_NE(PixelAt(s.main, 48, 65), 0x00FF00u);
  EXPECT_EQ(PixelAt(s.main, 46, 65), 0x00FF00u) << "no further";
  // The window's own drawing leaves the ring alone.
  XwPush(s.main);
  XwClear(0, 0, 0, 0);
  XwBox(0, 0, 300, 200, 0x0000FF);
  XwPop();
  RunLoop();
  EXPECT_NE(PixelAt(s.main, 48, 65), 0xFF0000u);
  EXPECT_EQ(PixelAt(s.main, 46, 65), 0xFF0000u);
  // An inactive window shows none.
  seen.clear();
  input::Focus(nullptr);
  RunLoop();
  EXPECT_EQ(PixelAt(s.main, 48, 65), 0x00FF00u);
  input::Focus(Native(s.main));
  RunLoop();
  EXPECT_NE(PixelAt(s.main, 48, 65), 0x00FF00u);
  seen.clear();
  XwSetFocus(s.main);
  RunLoop();
  EXPECT_EQ(Others(), "769") << "what it covered is lost content";
  EXPECT_EQ(input::TakePicture(Native(s.main)).pixels, plain.pixels);
  // A press draws the control and nothing else.
  const int64_t before = input::Counts().presented_pixels;
  PressAt(190, 165);
  EXPECT_GT(input::Counts().presented_pixels, before);
  EXPECT_LE(input::Counts().presented_pixels - before, 128 * 128);
  LetGo();
  EXPECT_EQ(input::TakePicture(Native(s.main)).pixels, plain.pixels);
  // One that goes leaves the background and one redraw.
  seen.clear();
  XwShow(bevel, 0);
  RunLoop();
  EXPECT_EQ(Others(), "769");
  EXPECT_EQ(PixelAt(s.main, 60, 65), 0x00FF00u);
  XwShow(bevel, 1);
  RunLoop();
  EXPECT_EQ(input::TakePicture(Native(s.main)).pixels, plain.pixels);
  XwMove(bevel, 50, 100, 80, 30);
  XwMove(bevel, 50, 50, 80, 30);
  RunLoop();
  EXPECT_EQ(input::TakePicture(Native(s.main)).pixels, plain.pixels);
}

TEST(Controls, AWaitForAnotherWindowKeepsThemStill) {
  ControlScreen s;
  XwWindow* go = XwButton(s.main, "Go", 5, 10, 10, 100, 26, kOn, 0);
  XwWindow* other = Top("other", 500, 100, 100, 100);
  XwFocusControl(go);
  input::Focus(Native(s.main));
  Settle();
  const int beeps = input::Counts().beeps;
  input::Click(120, 120);
  EXPECT_EQ(RunLoop(other), XWE_MOTION);
  EXPECT_EQ(RunLoop(other), 0) << "the press goes nowhere";
  EXPECT_EQ(input::Counts().beeps, beeps + 1);
  input::KeyDown(' ', ' ');
  EXPECT_EQ(RunLoop(other), ' ') << "the key is returned, and presses nothing";
  input::KeyUp(' ', ' ');
  EXPECT_EQ(RunLoop(other), XWE_KEY_UP);
  EXPECT_EQ(Reports(), "");
  input::Click(120, 120);
  EXPECT_EQ(XwWaitEvent(reinterpret_cast<XwWindow*>(intptr_t{-1})), XWE_MOTION);
  while (XwWaitEvent(reinterpret_cast<XwWindow*>(intptr_t{-1})) != XWE_CONTROL) {
  }
  EXPECT_EQ(Inp.item, 5) << "a raw wait lets them work";
}

XwWindow* doomed;
TEST(Controls, MayEndInTheirOwnReport) {
  ControlScreen s;
  on_event = [](int type) {
    if (type == XWE_CONTROL) XwDestroy(doomed);
  };
  XwWindow* sub = Sub(s.main, "sub", 10, 50, 200, 60);
  XwWindow* ends[] = {XwButton(s.main, "a", 1, 10, 10, 60, 26, kOn, 0),
                      XwCheckBox(s.main, "b", 2, 100, 10, kOn, 0), sub};
  XwButton(sub, "c", 3, 10, 10, 60, 26, kOn, 0);
  Settle();
  const Point at[] = {{120, 120}, {205, 120}, {130, 170}};
  for (int i = 0; i < 3; ++i) {
    doomed = ends[i];
    EXPECT_EQ(ClickAt(at[i].x, at[i].y), std::to_string(i + 1) + "=" + (i == 1 ? "1" : "0"));
  }
  // One that goes while it is held swallows its release.
  doomed = XwButton(s.main, "d", 4, 10, 10, 60, 26, kOn, 0);
  PressAt(120, 120);
  XwDestroy(doomed);
  Settle();
  LetGo();
  EXPECT_EQ(Others(), "");
}

TEST(Controls, DescribeThemselves) {
  ControlScreen s;
  XwLabel(s.main, "Copies", 1, 10, 10, 60, 20, kOn);
  XwWindow* well = XwColor(s.main, nullptr, 2, 80, 10, 40, 20, kOn, 0x0000FF);
  XwWindow* icon = XwButton(s.main, IC_ARROWS, 3, 130, 10, 20, 20, kOn | XWC_ICON, 0);
  XwSetDefaultButtons(s.main, icon, nullptr);
  const auto children = DescribeTree().front().children;
  ASSERT_EQ(children.size(), 4u) << "behind the menu bar";
  EXPECT_EQ(children[2].what.name, "Copies") << "of the label before it";
  EXPECT_EQ(children[2].what.role, ObjectRole::kColorWell);
  EXPECT_EQ(children[3].what.name, "") << "only of one that stands directly before it";
  EXPECT_TRUE(children[3].what.state & kIsDefault);
  XwDescribeControl(icon, "Reload \xE2\x86\xBB");
  EXPECT_EQ(DescribeTree().front().children[3].what.name, "Reload \xE2\x86\xBB");

  // Each change is told while somebody listens.
  static std::vector<std::pair<uint64_t, Change>> told;
  TreeListener listener{[](void*, uint64_t serial, Change what) {
                          told.push_back({serial, what});
                        },
                        nullptr};
  AddTreeListener(&listener);
  const struct {
    void (*act)(XwWindow*);
    Change what;
  } rows[] = {
      {[](XwWindow* w) { XwEnable(w, 0); }, Change::kState},
      {[](XwWindow* w) { XwShow(w, 0); }, Change::kState},
      {[](XwWindow* w) { XwMove(w, 0, 50, 50, 20); }, Change::kBounds},
      {[](XwWindow* w) { XwSetText(w, "new"); }, Change::kName},
      {[](XwWindow* w) { XwSetValue(w, 77); }, Change::kValue},
      {[](XwWindow* w) { XwDestroy(w); }, Change::kEnded},
  };
  for (const auto& row : rows) {
    told.clear();
    row.act(well);
    const std::pair<uint64_t, Change> wanted{children[2].serial, row.what};
    EXPECT_NE(std::find(told.begin(), told.end(), wanted), told.end()) << int(row.what);
  }
  XwWindow* sub = Sub(s.main, "sub", 5, 100, 50, 50);
  EXPECT_EQ(DescribeTree().front().children.back().serial, sub->serial);
  told.clear();
  XwMove(sub, 9, 100, 50, 50);
  XwShow(sub, 0);
  XwMove(s.main, 90, 100, 300, 200);
  const decltype(told) all{{sub->serial, Change::kBounds},
                           {sub->serial, Change::kState},
                           {DescribeTree().front().serial, Change::kBounds}};
  EXPECT_EQ(told, all);
  RemoveTreeListener(&listener);
  told.clear();
  // What is done through the tree is reported like a press.
  Settle();
  XwShow(icon, 0);
  EXPECT_FALSE(ActOn(children[3].serial, kActionPress)) << "nobody sees it";
  XwShow(icon, 1);
  Settle();
  EXPECT_TRUE(ActOn(children[3].serial, kActionPress));
  EXPECT_TRUE(ActOn(children[3].serial, kActionFocus));
  EXPECT_FALSE(ActOn(children[2].serial, kActionPress)) << "it has ended";
  RunLoop();
  EXPECT_EQ(Reports(), "3=0");
  EXPECT_EQ(FocusedId(), 3);
  EXPECT_TRUE(told.empty());
}

}  // namespace
