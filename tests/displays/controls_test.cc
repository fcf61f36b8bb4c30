// Each kind of control on both displays, by the pointer and by the keyboard: a press held through
// its edge, a menu, one that another program's hold of the pointer keeps closed, and a window that
// goes while a control in it is held.
#include <gtest/gtest.h>

#include "tests/displays/two_displays.h"
#include "tests/support/trace.h"

namespace {

constexpr char kPointer[] = R"(
move 50 20
down               # the push button: out, in again, let go of
move 50 60
move 50 22
up
click 50 20 2      # at once
click 140 20 1     # bevel
click 20 58 1      # check box
click 120 58 1     # radio button
click 50 90 1      # list header
click 130 90 1     # icon
click 30 130 1     # well
click 100 126 1    # label
click 170 126 1    # button-like label
click 250 130 1    # in a sub-window
move 50 20
down
key h              # the window goes and comes again
wait 300
up
move 200 92
click 200 92 1     # a menu
)";
constexpr char kChoose[] = R"(
key Down
key Down
hold Return
release Return
move 20 200
)";
constexpr char kKeyboard[] = R"(
hold Tab           # push button
release Tab
key space
hold Tab
release Tab
key Return         # bevel
hold Tab
release Tab
key space          # check box
hold Tab
release Tab
key space          # radio button
hold Tab           # icon
release Tab
hold Tab           # menu button
release Tab
)";
constexpr char kSpace[] = "hold space\nrelease space\n";
constexpr char kAfter[] = R"(
hold space
release space
key Escape
hold Tab           # well
release Tab
key space
click 140 20 1
)";
constexpr uint32_t kOn = XWC_ENABLED | XWC_VISIBLE;

XwMenuItem menu[] = {{"First", 0, 71, nullptr}, {"Second", XWM_CHECKED, 72, nullptr}, {}};
XwWindow* top;

int Handle(int type) {
  if (type == 'h') {
    XwShow(top, 0);
    XwTimer(top, 1, 200);
  }
  if (type == XWE_TIMER) {
    XwTimer(top, 0, 0);
    XwShow(top, 1);
  }
  return type == XWE_CLOSE ? type : 0;
}

XwWindow* Make() {
  top = XwCreate(0, 200, 200, 320, 220, Handle);
  XwSetGround(top, nullptr, 1);
  XwButton(top, "Print", 1, 10, 10, 90, 26, kOn, 0);
  XwButton(top, "Bold", 2, 110, 10, 60, 26, kOn | XWC_VARIANT, 0);
  XwCheckBox(top, "Gloss", 3, 10, 48, kOn, 0);
  XwCheckBox(top, "Draft", 4, 110, 48, kOn | XWC_VARIANT, 0);
  XwButton(top, "Name", 5, 10, 80, 90, 20, kOn | XWC_HEADER, 1);
  XwButton(top, IC_EXCHANGE, 6, 110, 80, 40, 24, kOn | XWC_ICON, 0);
  XwButton(top, "More", 7, 160, 80, 80, 24, kOn | XWC_MENU, menu);
  XwColor(top, nullptr, 8, 10, 115, 40, 24, kOn | XWC_VARIANT, 0x3366CC);
  XwLabel(top, "Copies", 9, 60, 115, 80, 24, kOn);
  XwLabel(top, IC_CHECKBOX, 10, 150, 115, 40, 24, kOn | XWC_ICON);
  XwWindow* sub = XwCreate(top, 200, 110, 100, 60, Handle);
  XwButton(sub, "Inner", 11, 5, 5, 90, 26, kOn, 0);
  XwShow(sub, 1);
  support::HookTrace(top, "top");
  support::HookTrace(sub, "sub");
  XwShow(top, 1);
  XwSetFocus(top);
  return top;
}

TEST(ControlScript, GivesTheSameTraceAndPictureOnBothDisplays) {
  using displays::Act;
  displays::ExpectTheSame(
      {Make,
       {{kPointer, Act::kPicture},
        {kChoose, Act::kPicture},
        {kKeyboard, Act::kSteal},
        {kSpace, Act::kGiveBack},
        {kAfter, Act::kPicture},
        {"close\n"}},
       false,
       {"top 783 item 1", "top 783 item 2", "top 783 item 4", "top 783 item 5", "top 783 item 6",
        "top 783 item 8", "top 783 item 9", "top 783 item 10", "sub 783 item 11",
        "top 769 320x220\nsub 769 100x60\ntop 783 item 72"}});
}

// Edit boxes, lists and combo boxes. A caret that blinks is in no picture.
constexpr char kFields[] = R"(
click 60 22 1      # selects all
key a
key b
key -
key c
key Left
key d
key BackSpace
key Home
key Delete
wait 700
click 60 22 1; click 60 22 1   # a word
key x
wait 700
down
move 200 30
up
)";
constexpr char kMoving[] = R"(
hold Return        # to the next box
release Return
hold Tab           # to the list
release Tab
key Down
key End
click 60 106 1
click 190 106 1    # two items take turns
click 220 60 1     # reports, and takes no keyboard
hold Tab
release Tab
key Escape
)";

XwWindow* MakeFields() {
  static const char* const kRows[] = {"One", "Two", "Three", "Four", "Five", "Six", nullptr};
  static const char* const kPair[] = {"On", "Off", nullptr};
  top = XwCreate(0, 200, 200, 320, 220, Handle);
  XwSetGround(top, nullptr, 1);
  XwEditBox(top, "Text", 1, 10, 10, 140, 24, kOn);
  XwEditBox(top, "", 2, 10, 48, 140, 24, kOn);
  XwEditBox(top, "fixed", 3, 160, 48, 140, 24, kOn | XWC_VARIANT);
  XwListBox(top, kRows, 4, 10, 86, 120, 70, kOn);
  XwComboBox(top, kPair, 5, 160, 90, 120, 26, kOn, 0);
  support::HookTrace(top, "top");
  XwShow(top, 1);
  XwSetFocus(top);
  return top;
}

TEST(FieldScript, GivesTheSameTraceAndPictureOnBothDisplays) {
  using displays::Act;
  displays::ExpectTheSame({MakeFields,
                           {{kFields, Act::kPicture}, {kMoving, Act::kPicture}, {"close\n"}},
                           false,
                           {"top 788 item 1", "top 789 item 1", "top 790 item 1", "top 783 item 3",
                            "top 783 item 4", "top 783 item 5"}});
}

}  // namespace
