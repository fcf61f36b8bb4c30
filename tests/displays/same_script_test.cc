// What a user does with the pointer, the keyboard and the size of a window.
#include <gtest/gtest.h>

#include "tests/displays/two_displays.h"
#include "tests/support/trace.h"

namespace {

constexpr int kWidth = 300, kHeight = 200;

constexpr char kScript[] = R"(
move 20 20
down
move 90 60
up
move 150 100       # into the sub-window
down
move 20 150        # out of it with the button down
up
move 10 150
down 2
up 2
key a
key Return
hold F4
release F4
hold q             # let go of when the focus goes, and not once more when the key comes up
unfocus
release q
focus
key q
move 20 172        # the slider: by its knob, beside it, with keys and the wheel
down
move 50 190
move 40 172
up
click 90 172 1
key Tab
key Right
key Page_Up
key End
scroll 0 48
move 280 20        # the bar: by its thumb, beside it, with the wheel
down
move 282 40
up
click 280 150 1
scroll 0 -48
move 60 120        # the only bar that stands
scroll 0 48
resize 360 240
move 200 220
resize 280 180
move 30 30
click 40 50
)";

XwWindow *top, *sub;

void Draw(XwWindow* w) {
  XwSet(w);
  if (w == sub) {
    XwBox(0, 0, w->width, w->height, 0xDDEEFF);
    XwSetColor(0x203040);
    XwDrawRect(0, 0, w->width, w->height);
    return;
  }
  XwDrawText(XWF_BOLD, 0x400, 0, 4, w->width, 20, "The same everywhere", 0x1D2022, -1);
  XwSetColor(0x3050C0);
  XwDrawLine(0, w->height - 1, w->width - 1, 0);
  XwBoxList(3, 0, 0, 0, 0);
  XwBoxList(10, 5, 5, 40, 40);
  XwBoxList(11, 30, 30, 80, 60);
  XwBoxList(4, 0, 0, 0, 0);
}

int Handle(int type) {
  if (type == XWE_EXPOSE) Draw(Inp.window);
  return type == XWE_CLOSE ? type : 0;
}

XwWindow* Make() {
  top = XwCreate(0, 200, 200, kWidth, kHeight, Handle);
  XwSetSizes(top, 100, 100, 0, 0, 0, 0);
  sub = XwCreate(top, 120, 80, 100, 60, Handle);
  XwSlider(top, 5, 10, 160, 118, 20, XWC_ENABLED | XWC_VISIBLE, 0, 100, 0);
  XwScrollBar(top, 6, 270, 10, 15, 180, XWC_ENABLED | XWC_VISIBLE, 0, 999, 7, 100, 0);
  support::HookTrace(top, "top");
  support::HookTrace(sub, "sub");
  XwShow(sub, 1);
  XwShow(top, 1);
  XwSetFocus(top);
  return top;
}

TEST(SameScript, GivesTheSameTraceAndPictureOnBothDisplays) {
  displays::ExpectTheSame({Make,
                           {{kScript, displays::Act::kPicture}, {"close\n"}},
                           true,
                           {"top 778", "top 791", "top 792"}});
}

}  // namespace
