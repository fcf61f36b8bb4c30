// Menus on both displays: one script with the bar, a pop-up, a menu key and a pointer that another
// program holds.
#include <gtest/gtest.h>

#include "tests/displays/two_displays.h"
#include "tests/support/trace.h"

namespace {

constexpr char kBarAndPopUp[] = R"(
move 75 -12
down              # held down from the title to an item
move 80 16
move 80 38
wait 300
up
key F10
key Right
key Down
hold Return
release Return
hold F5           # the key of an item
release F5
move 60 60
click 60 60 2
move 75 100
)";
XwMenuItem deep[] = {{"Inner", 0, 301, nullptr}, {}};
XwMenuItem file[] = {{"Open", XWM_DOTS, 101, nullptr}, {"Print", 0, 102, nullptr}, {}};
XwMenuItem bar[] = {{"File", 0, 0, nullptr}, {}};
XwMenuItem popup[] = {{"Red", XWM_COLOUR, 0x5A35D9, nullptr}, {"", 0, 0, nullptr},
                      {"Marked", XWM_CHECKED, 201, nullptr},  {"More", 0, 0, nullptr},
                      {"Off", XWM_DISABLED, 203, nullptr},    {}};
XwWindow* top;

int Handle(int type) {
  if (type == XWE_PRESS + 1 || type == 'p') {
    if (type == 'p') XwPopupLocation(top, 60, 60);
    XwSendEvent(top, XWE_CONTROL, XwPopupMenu(popup), XwValue{0}, 0);
  }
  return type == XWE_CLOSE ? type : 0;
}

XwWindow* Make() {
  top = XwCreate(0, 200, 200, 300, 200, Handle);
  XwSetGround(top, nullptr, 1);
  bar[0].id = reinterpret_cast<XwValue>(file);
  popup[3].id = reinterpret_cast<XwValue>(deep);
  XwSetMenuItemKey(file, 102, XWE_F1 + 4, 0);
  XwSetMenu(top, bar);
  support::HookTrace(top, "top");
  XwShow(top, 1);
  XwSetFocus(top);
  return top;
}

TEST(MenuScript, GivesTheSameTraceAndPictureOnBothDisplays) {
  displays::ExpectTheSame({Make,
                           {{kBarAndPopUp, displays::Act::kPicture},
                            {"click 75 100 1\nmove 20 20\n", displays::Act::kSteal},
                            {"hold p\nrelease p\n", displays::Act::kGiveBack},
                            {"move 30 30\nclose\n"}},
                           false,
                           {"top 793", "top 794 item 102", "top 783 item 201", "top 783 item 0"}});
}

}  // namespace
