// Sliders and scroll bars: what the pointer, the keyboard and the wheel do to them, what they
// report and when, and how they describe themselves.
#include <gtest/gtest.h>

#include "platform/controls/controls.h"
#include "tests/toolkit/control_stage.h"

namespace {

using namespace stage;
using namespace platform;

constexpr uint32_t kHome = 0xFF50, kLeft = 0xFF51, kUp = 0xFF52, kRight = 0xFF53, kDown = 0xFF54,
                   kPageUp = 0xFF55, kPageDown = 0xFF56, kEnd = 0xFF57;

// What was reported since the last call: "-v" while it moved, "v" at the end; with the id before it
// where that is not 5. Other types as "type!".
std::string Moves() {
  RunFor(0.001);
  std::string out;
  for (const Seen& s : seen) {
    const int type = s.type;
    if (type == XWE_MOTION || type == XWE_EXPOSE || type == XWE_KEY_UP || type == XWE_MODIFIERS)
      continue;
    if (!out.empty()) out += " ";
    if (type != XWE_SCROLLING && type != XWE_SCROLLED) {
      out += std::to_string(type) + "!";
      continue;
    }
    if (s.event.item != 5) out += std::to_string(s.event.item) + ":";
    out += (type == XWE_SCROLLING ? "~" : "") + std::to_string(s.event.value);
  }
  seen.clear();
  return out;
}
// What several steps have reported, one after the other.
std::string All(std::initializer_list<std::string> steps) {
  std::string out;
  for (const std::string& s : steps)
    if (!s.empty()) out += (out.empty() ? "" : " ") + s;
  return out;
}
std::string Drag(int x, int y) {
  input::MovePointer(x, y);
  return Moves();
}
std::string Press(int x, int y) {
  input::MovePointer(x, y);
  input::Press(1);
  return Moves();
}
std::string Release() {
  input::Release(1);
  return Moves();
}
std::string Wheel(float dx, float dy) {
  input::Scroll(dx, dy);
  return Moves();
}
std::string Type(uint32_t keysym) {
  input::KeyDown(keysym);
  input::KeyUp(keysym);
  return Moves();
}
// A slider or bar called "it" with the id 5, alone in its window.
struct One : ControlScreen {
  XwWindow* w = nullptr;
  XwWindow* Use(XwWindow* made) {
    XwDestroy(w);
    XwDescribeControl(made, "it");
    Settle();
    return w = made;
  }
  // One pixel a step: its knob begins at 110 + value, and is 15 long.
  XwWindow* Slider(int minimum = 0, int maximum = 100, int value = 0) {
    return Use(XwSlider(main, 5, 10, 10, 118, 20, kOn, minimum, maximum, value));
  }
  // At the window's right side; its thumb has 94 pixels.
  XwWindow* Bar(int minimum, int maximum, int line, int page, int value, uint32_t style = 0) {
    return Use(
        XwScrollBar(main, 5, 280, 10, 15, 100, kOn | style, minimum, maximum, line, page, value));
  }
};

TEST(Sliders, LieWhereTheirShapePutsThem) {
  One s;
  const struct {
    int w, h;
    Rect made, moved;
  } rows[] = {{20, 100, {120, 130, 140, 227}, {110, 120, 130, 220}},
              {100, 20, {120, 131, 217, 151}, {110, 120, 210, 140}},
              {20, 20, {120, 130, 140, 147}, {110, 120, 130, 140}}};
  for (const auto& row : rows) {
    s.Use(XwSlider(s.main, 5, 20, 30, row.w, row.h, kOn, 3, 40, 7));
    EXPECT_EQ(Node("it").what.bounds, row.made) << row.w;
    EXPECT_EQ(s.w->height, row.h);
    XwMove(s.w, 10, 20, row.w, row.h);
    EXPECT_EQ(Node("it").what.bounds, row.moved) << "a new place is taken whole";
  }
  s.Bar(0, 99, 2, 10, 4);
  EXPECT_EQ(Node("it").what.bounds, (Rect{380, 110, 395, 210}));
  EXPECT_EQ(Node("it").what.maximum, 90);
  const XwDialogItem items[] = {{6, nullptr, 21, -90, 150, 80, 20, kOn, 3, 1, 9, 0, 0},
                                {7, nullptr, 22, 5, 6, 15, 80, kOn, 30, 0, 99, 2, 10},
                                {}};
  XwCreateDialogItems(s.main, items, 2, 3);
  XwWindow *slider = XwFind(s.main, 21), *bar = XwFind(s.main, 22);
  EXPECT_EQ(slider->kind * 1000 + slider->x + XwGetValue(slider), 7213);
  EXPECT_EQ(bar->kind * 1000 + bar->x + XwGetValue(bar), 7037);
}

TEST(Sliders, FollowThePointer) {
  One s;
  s.Slider();
  EXPECT_EQ(Press(117, 120), "");
  EXPECT_TRUE(State("it") & kIsPressed);
  EXPECT_EQ(Drag(127, 300), "~10") << "wherever it is beside it";
  EXPECT_EQ(Drag(900, 120), "~100");
  EXPECT_EQ(All({Drag(147, 120), Release()}), "~30 30");
  EXPECT_EQ(XwGetValue(s.w) * 1000 + s.w->value, 30030);
  EXPECT_FALSE(State("it") & kIsPressed);
  EXPECT_EQ(Press(110 + 60 + 7, 120), "~60") << "the knob comes to the pointer";
  EXPECT_EQ(All({Drag(110 + 61 + 7, 120), Release()}), "~61 61");
  EXPECT_EQ(All({Press(110 + 61, 120), Release()}), "61") << "also when nothing changed";
  EXPECT_EQ(FocusedId(), 0) << "a press gives it no keyboard";
  // What the program sets does not count as reported.
  XwSetValue(s.w, 200);
  EXPECT_EQ(XwGetValue(s.w) * 1000 + s.w->value, 100061);
  XwSetSliderRange(s.w, 0, 50, 20);
  EXPECT_EQ(XwGetValue(s.w) * 1000 + s.w->value, 20020);
  EXPECT_EQ(All({Press(110 + 40 + 5, 120), Drag(110 + 44 + 5, 120), Release()}), "~22 22");
  // More values than pixels: back where it began it has its value again.
  XwSetSliderRange(s.w, 0, 1000000, 123456);
  EXPECT_EQ(All({Press(125, 120), Drag(124, 120), Drag(125, 120), Release()}),
            "~110000 ~123456 123456");
  s.Use(XwSlider(s.main, 5, 10, 10, 20, 118, kOn, 0, 100, 90));
  EXPECT_EQ(All({Press(120, 110 + 10 + 7), Drag(120, 110 + 30 + 7), Release()}), "~70 70")
      << "the maximum is at the top";
}

TEST(Sliders, StopWhereTheirBoundIs) {
  One s;
  s.Slider(10, 20, 10);
  EXPECT_EQ(All({Press(110 + 7, 120), Drag(900, 120), Drag(190, 120), Release()}), "~11 11");
  EXPECT_EQ(XwGetValue(s.w), 11);
  s.Slider(20, 25, 21);
  EXPECT_EQ(All({Press(900, 120), Release()}), "") << "beside it";
  EXPECT_EQ(All({Press(200, 120), Release()}), "~6 20") << "the bound wins";
  s.Bar(5, 50, 1, 10, 5);
  EXPECT_EQ(All({Press(387, 120), Drag(387, 300), Release()}), "~36 36");
}

TEST(Sliders, ByTheKeyboardAlone) {
  One s;
  s.Slider();
  XwButton(s.main, "next", 6, 10, 50, 60, 26, kOn, 0);
  XwScrollBar(s.main, 7, 10, 100, 15, 60, kOn, 0, 99, 2, 10, 0);
  for (int id : {5, 6, 5}) {
    input::KeyDown(0xFF09, 9);
    input::KeyUp(0xFF09, 9);
    RunLoop();
    EXPECT_EQ(FocusedId(), id);
  }
  Moves();
  auto all = [](std::initializer_list<uint32_t> keys) {
    std::string out;
    for (uint32_t k : keys) out += Type(k) + "; ";
    return out;
  };
  EXPECT_EQ(all({kRight, kUp, kLeft, kDown, kLeft}), "~1 1; ~2 2; ~1 1; ~0 0; 0; ");
  EXPECT_EQ(all({kPageUp, kEnd, kEnd, kPageDown, kHome}), "~10 10; ~100 100; 100; ~90 90; ~0 0; ");
  input::KeyDown(kRight);
  for (int i = 0; i < 2; ++i) input::KeyDown(kRight);
  EXPECT_EQ(Moves(), "~1 1 ~2 2 ~3 3") << "repeats count";
  input::KeyUp(kRight);
  input::Modifiers(controlKey);
  EXPECT_EQ(Type(kRight), std::to_string(XWE_RIGHT) + "!") << "a command is the program's";
  input::Modifiers(0);
  XwSetSliderRange(s.w, 0, 5, 0);
  EXPECT_EQ(Type(kPageUp), "~1 1") << "a page is at least one";

  for (uint32_t style : {0u, uint32_t{XWC_VARIANT}}) {
    s.Bar(0, 99, 2, 10, 50, style);
    XwFocusControl(s.w);
    RunLoop();
    Moves();
    const std::string keys =
        all({kDown, kUp, kLeft, kRight, kPageDown, kPageUp, kEnd, kDown, kHome});
    if (style)
      EXPECT_EQ(keys, "52; 50; 48; 50; 60; 50; 90; 90; 0; ");
    else
      EXPECT_EQ(keys, "~52 52; ~50 50; ~48 48; ~50 50; ~60 60; ~50 50; ~90 90; 90; ~0 0; ");
  }
}

TEST(ScrollBars, PagesRepeatUntilThePointerIsReached) {
  One s;
  s.Bar(0, 999, 3, 100, 0);  // 20 pixels of thumb on 94: 74 to go for 900
  EXPECT_EQ(Press(387, 110 + 3 + 50), "~100");
  RunFor(0.39);
  EXPECT_EQ(Moves(), "");
  RunFor(1);
  EXPECT_EQ(Moves(), "~200 ~300 ~400") << "then the thumb is under it";
  EXPECT_EQ(Drag(387, 110 + 3 + 60), "");
  RunFor(1);
  EXPECT_EQ(Moves(), "~500") << "it goes on when the pointer does";
  input::MovePointer(300, 209);
  RunFor(1);
  EXPECT_EQ(Moves(), "") << "and waits while it is outside";
  EXPECT_EQ(All({Drag(387, 110 + 4), Release()}), "500") << "never back";
  EXPECT_EQ(All({Press(387, 110 + 5), Release()}), "~400 400");
  // The thumb, of which a tenth shows.
  EXPECT_EQ(All({Press(387, 110 + 40), Drag(387, 110 + 77), Release()}), "~851 851");
  s.Bar(0, 999, 3, 100, 0, XWC_VARIANT);
  EXPECT_EQ(Press(387, 190), "");
  RunFor(1);
  EXPECT_EQ(All({Moves(), Release()}), "100") << "without tracking once, at the release";
  EXPECT_EQ(All({Press(387, 190), Drag(300, 190), Release()}), "100")
      << "unless it was let go outside";
  EXPECT_EQ(All({Press(387, 125), Drag(387, 140)}), "");
  EXPECT_EQ(XwGetValue(s.w), 280) << "the thumb follows all the same";
  EXPECT_EQ(Release(), "280");
  // One that lies, and a thumb that half of the document sizes.
  s.Use(XwScrollBar(s.main, 5, 10, 10, 206, 15, kOn, 0, 99, 1, 50, 0));
  EXPECT_EQ(All({Press(110 + 3 + 99, 117), Drag(110 + 3 + 149, 117), Release()}), "~25 25");
}

TEST(ScrollBars, TheWheelTurnsWhatIsUnderIt) {
  One s;
  s.Bar(0, 999, 3, 100, 0);
  input::MovePointer(387, 150);
  EXPECT_EQ(Wheel(0, 48), "~3 ~6 ~9 9") << "three lines a notch";
  EXPECT_EQ(All({Wheel(0, 8), Wheel(0, 8)}), "9 ~12 12") << "fractions add up";
  EXPECT_EQ(All({Wheel(0, 15), Wheel(0, -16)}), "12 ~9 9") << "turning back begins at once";
  EXPECT_EQ(Wheel(48, 0), "") << "not across";
  EXPECT_GT(Wheel(0, 1e30f).size(), 900u);
  EXPECT_EQ(Wheel(0, -1e30f).substr(0, 5), "~897 ");
  EXPECT_EQ(Wheel(0, -48), "0") << "also at its end";
  Drag(150, 150);
  EXPECT_EQ(Wheel(0, 16), "~3 3") << "the only one that stands, from anywhere in the window";
  XwWindow* second = XwScrollBar(s.main, 6, 200, 10, 15, 100, kOn, 0, 99, 1, 10, 0);
  EXPECT_EQ(Wheel(0, 16), "") << "not of two";
  XwShow(second, 0);
  XwScrollBar(s.main, 7, 10, 180, 100, 15, kOn, 0, 99, 1, 10, 0);
  EXPECT_EQ(Wheel(0, 16), "~6 6") << "of those that show and stand";
  XwSetScrollHandler(s.main, [](float, float) { XwSendEvent(W_Start, 1000, 0, 0, 0); });
  EXPECT_EQ(Wheel(0, 16), "1000!") << "the program's handler comes first";
  Drag(150, 287);
  EXPECT_EQ(All({Wheel(0, 16), Wheel(32, 0)}), "7:~1 7:1 7:~2 7:~3 7:3") << "but not over a bar";
  XwWindow* slider = s.Slider(0, 100, 50);
  Drag(150, 120);
  EXPECT_EQ(Wheel(0, -48), "1000!") << "a slider without the keyboard lets it pass";
  XwFocusControl(slider);
  EXPECT_EQ(Wheel(0, -48), "~51 51") << "a slider by one a notch, up for more";
  EXPECT_EQ(All({Wheel(0, 24), Wheel(0, 24)}), "51 ~50 50");
  EXPECT_EQ(Wheel(96, 0), "~52 52");
  Wheel(0, 40);
  Drag(150, 287);
  EXPECT_EQ(Wheel(0, 8), "7:3") << "a fraction is its own bar's";
  Drag(150, 120);
  XwEnable(slider, 0);
  EXPECT_EQ(All({Wheel(0, -48), Press(200, 120), Release()}), "1000!") << "greyed as well";
}

TEST(ScrollBars, WithNothingToScrollTakeNothing) {
  One s;
  for (int page : {100, 2000}) {
    s.Bar(0, 99, 3, page, 7);
    EXPECT_EQ(XwGetValue(s.w), 0);
    XwFocusControl(s.w);
    EXPECT_EQ(All({Press(387, 150), Drag(387, 190), Release(), Wheel(0, 48)}), "");
    EXPECT_EQ(Type(kDown), std::to_string(XWE_DOWN) + "!") << "the key is the program's";
  }
  XwSetScrollRange(s.w, 0, 199, 3, 100, 10);
  EXPECT_EQ(Type(kDown), "~13 13") << "as soon as there is something";
  XwSetValue(s.w, 50);
  EXPECT_EQ(Type(kDown), "~16 16") << "counted from what was reported last";
  XwSetScrollRange(s.w, INT32_MIN, INT32_MAX, INT32_MAX, INT32_MIN, INT32_MAX);
  EXPECT_NE(All({Type(kUp), Type(kPageDown), Type(kEnd), Press(387, 150), Release()}), "");
}

TEST(Sliders, WhatIsReportedAndToWhom) {
  One s;
  s.Use(XwSlider(s.main, 0, 10, 10, 118, 20, kOn, 0, 100, 0));
  EXPECT_EQ(All({Press(117, 120), Drag(118, 120), Release()}), "0:~1") << "without an id";
  XwFocusControl(s.w);
  EXPECT_EQ(All({Type(kRight), Type(kHome), Type(kHome)}), "0:~2 0:~0") << "it takes the keys";
  s.Bar(0, 999, 3, 100, 0);
  XwWindow* other = XwCreate(0, 500, 100, 200, 100, Answer);
  XwShow(other, 1);
  XwSlider(other, 5, 10, 10, 118, 20, kOn, 0, 100, 0);
  Settle();
  // A wait for another window keeps it still, from elsewhere in its window too.
  for (int x : {387, 300}) {
    input::MovePointer(x, 150);
    RunLoop();
    input::Scroll(0, 48);
    RunLoop(other);
    EXPECT_EQ(Moves(), "") << x;
  }
  // What a handler answers to 792 is not delivered again.
  result = XWE_SCROLLING;
  EXPECT_EQ(All({Press(517, 120), Drag(527, 120)}), "~10");
  result = 0;
  EXPECT_EQ(Release(), "10");
}

XwWindow *doomed, *moved;
TEST(Sliders, TheirReportsMayDoAnything) {
  One s;
  const struct {
    int type;
    const char *pressed, *typed;
  } rows[] = {{XWE_SCROLLING, "~100", "~3"}, {XWE_SCROLLED, "~100 100", "~3 3"}};
  for (const auto& row : rows) {
    static int when;
    when = row.type;
    on_event = [](int type) {
      if (type == when) XwDestroy(doomed);
    };
    doomed = s.Bar(0, 999, 3, 100, 0);
    EXPECT_EQ(All({Press(387, 190), Release()}), row.pressed);
    s.w = nullptr;
    doomed = s.Bar(0, 999, 3, 100, 0);
    XwFocusControl(doomed);
    EXPECT_EQ(Type(kDown), row.typed);
    s.w = nullptr;
  }
  // One that goes in the middle of a repeat, of several lines, or while another is moved by it.
  on_event = [](int type) {
    if (type == XWE_SCROLLING && Inp.value >= 300) XwDestroy(doomed);
  };
  doomed = s.Bar(0, 999, 150, 100, 0);
  EXPECT_EQ(Press(387, 205), "~100");
  RunFor(2);
  EXPECT_EQ(All({Moves(), Release()}), "~200 ~300");
  s.w = nullptr;
  doomed = s.Bar(0, 999, 150, 100, 0);
  EXPECT_EQ(Wheel(0, 48), "~150 ~300");
  s.w = nullptr;
  on_event = [](int type) {
    if (type == XWE_SCROLLING) XwSetScrollRange(moved, 0, 9, 1, 10, 0);
  };
  moved = s.Bar(0, 999, 3, 100, 0);
  EXPECT_EQ(All({Press(387, 125), Drag(387, 140), Drag(387, 160), Release()}), "~182 0")
      << "there is nothing left to scroll";
  on_event = [](int type) {
    if (type == XWE_SCROLLING) XwEnable(moved, 0);
  };
  moved = s.Bar(0, 999, 3, 100, 0);
  EXPECT_EQ(All({Press(387, 190), Release()}), "~100") << "greyed it reports no more";
  moved = s.Bar(0, 999, 3, 100, 0);
  EXPECT_EQ(All({Press(387, 120), Drag(387, 125), Drag(387, 160), Release()}), "~61");
  moved = s.Slider();
  EXPECT_EQ(All({Press(117, 120), Drag(127, 120), Drag(147, 120), Release()}), "~10");
}

TEST(Sliders, DescribeThemselves) {
  One s;
  s.Slider(10, 60, 20);
  const DescribedNode slider = Node("it");
  EXPECT_EQ(slider.what.role, ObjectRole::kSlider);
  EXPECT_EQ(slider.what.value, "20");
  EXPECT_EQ(slider.what.minimum * 1000 + slider.what.maximum, 10060);
  EXPECT_EQ(slider.what.actions, uint32_t{kActionIncrease | kActionDecrease | kActionFocus});
  EXPECT_TRUE(ActOn(slider.serial, kActionIncrease));
  EXPECT_EQ(Moves(), "~21 21");
  s.Bar(0, 99, 3, 10, 50, XWC_VARIANT);
  const DescribedNode bar = Node("it");
  EXPECT_EQ(bar.what.role, ObjectRole::kScrollBar);
  EXPECT_TRUE(ActOn(bar.serial, kActionDecrease));
  EXPECT_EQ(Moves(), "47");
  XwEnable(s.w, 0);
  EXPECT_FALSE(ActOn(bar.serial, kActionDecrease));
}

}  // namespace
