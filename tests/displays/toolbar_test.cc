// A toolbar and the alert that one of its buttons asks, by the pointer and by the keyboard alone.
#include <gtest/gtest.h>

#include "tests/displays/two_displays.h"
#include "tests/support/trace.h"

namespace {

constexpr char kAsk[] = "click 20 18 1\nwait 300\n";
constexpr char kAnswer[] = R"(
click 170 50 1     # the second button
wait 300
move 60 18         # the menu of the next item
down
up
key Down
key Down
hold Return
release Return
click 180 18 1     # the slider
click 260 20 1     # the edit box
key 7
key Return
)";
constexpr char kByKeyboard[] = R"(
hold Tab           # the first button
release Tab
hold space
release space
wait 300
hold Escape
release Escape
wait 300
hold space         # once more: its second button
release space
wait 300
hold Tab
release Tab
hold Return
release Return
wait 300
hold Tab           # menu button, list, slider
release Tab
hold Tab
release Tab
hold Tab
release Tab
key Right
)";

XwMenuItem menu[] = {{"First", 0, 71, nullptr}, {"Second", 0, 72, nullptr}, {}};
const char* const kPapers[] = {"A4", "A3", "A2", nullptr};
XwWindow* top;
char line[40];

template <typename T>
XwValue Of(T* pointer) {
  return reinterpret_cast<XwValue>(pointer);
}

const XwToolbarItem kItems[] = {
    {XWB_ICON, Of(IC_ARROWS), 1, 0},
    {XWB_ICON, Of(IC_EXCHANGE), 2, Of(menu)},
    {XWB_LIST, Of(kPapers), 3, 0},
    {XWB_SLIDER | 90, Of("0,100,40"), 4, 0},
    {XWB_EDIT | 60, Of("2"), 5, 0},
    {XWB_ICON | XWB_DISABLED, Of(IC_ARROWS), 6, 0},
    {},
};

int Handle(int type) {
  if (type == XWE_TOOLBAR && Inp.item == 1) {
    const int answer = XwConfirm("?", "", "Remove 3 jobs?", "Keep", "Remove", nullptr);
    snprintf(line, sizeof line, "Answer %d", answer);
    XwSendEvent(top, 900, answer, 0, 0);
    XwSendEvent(top, XWE_EXPOSE, 0, 0, 0);
  }
  if (type == XWE_EXPOSE) {
    XwSet(top);
    XwDrawText(nullptr, 0, 10, 80, 0, 0, line, 0, -1);
  }
  return type == XWE_CLOSE ? type : 0;
}

XwWindow* Make() {
  top = XwCreate(0, 300, 300, 380, 120, Handle);
  XwSetGround(top, nullptr, 1);
  XwSetToolbar(top, kItems);
  support::HookTrace(top, "top");
  XwShow(top, 1);
  XwSetFocus(top);
  return top;
}

TEST(ToolbarScript, GivesTheSameTraceAndPictureOnBothDisplays) {
  using displays::Act;
  displays::ExpectTheSame(
      {Make,
       {{kAsk}, {kAnswer, Act::kPicture}, {kByKeyboard, Act::kPicture}, {"close\n"}},
       false,
       {"top 795 item 1", "top 795 item 72", "top 795 item 4", "top 795 item 5", "top 900 item 1",
        "top 900 item 2"}});
}

}  // namespace
