// Another program of the desktop that means harm: forged events and properties of every kind, with
// any bytes. The program goes on, takes no memory for them, and still works afterwards.
#include <malloc.h>

#include <cstring>

#include "platform/clipboard/clipboard.h"
#include "tests/support/seed.h"
#include "tests/x11/reports.h"

namespace x11_test {
namespace {

constexpr const char* kAtoms[] = {"WM_PROTOCOLS",
                                  "WM_STATE",
                                  "_NET_WM_PING",
                                  "WM_DELETE_WINDOW",
                                  "_NET_FRAME_EXTENTS",
                                  "_NET_WM_STATE",
                                  "MANAGER",
                                  "_XSETTINGS_S0",
                                  "_XSETTINGS_SETTINGS",
                                  "XdndEnter",
                                  "XdndPosition",
                                  "XdndLeave",
                                  "XdndDrop",
                                  "XdndSelection",
                                  "XdndTypeList",
                                  "text/uri-list",
                                  "_XW_DROP",
                                  "INCR",
                                  "RESOURCE_MANAGER",
                                  "STRING",
                                  "CARDINAL",
                                  "_NET_WM_STATE_FULLSCREEN",
                                  "CLIPBOARD",
                                  "TARGETS",
                                  "MULTIPLE",
                                  "UTF8_STRING",
                                  "_XW_TEXT"};

class Hostile : public Reports {
 protected:
  void Prepare() {
    c = user().connection();
    for (const char* name : kAtoms) atoms.push_back(user().Atom(name));
    own = xcb_generate_id(c);
    xcb_create_window(c, 0, own, user().root(), 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, 0, 0,
                      nullptr);
  }
  uint32_t AnyAtom() { return atoms[size_t(dice.Between(0, int(atoms.size()) - 1))]; }
  uint32_t AnyWord() {
    const uint32_t words[] = {
        0,          1,        AnyAtom(),   target, user().root(), uint32_t(dice.Next()),
        0xFFFFFFFF, 5u << 24, 5u << 24 | 1};
    return words[dice.Between(0, 8)];
  }
  // An event of a kind that the program looks at, the window named where that kind has it.
  void Forge() {
    uint8_t bytes[32];
    for (uint8_t& b : bytes) b = uint8_t(dice.Next() >> 16);
    constexpr uint8_t kTypes[] = {
        XCB_KEY_PRESS,       XCB_KEY_RELEASE,      XCB_BUTTON_PRESS,    XCB_BUTTON_RELEASE,
        XCB_MOTION_NOTIFY,   XCB_ENTER_NOTIFY,     XCB_LEAVE_NOTIFY,    XCB_FOCUS_IN,
        XCB_FOCUS_OUT,       XCB_EXPOSE,           XCB_MAP_NOTIFY,      XCB_UNMAP_NOTIFY,
        XCB_REPARENT_NOTIFY, XCB_CONFIGURE_NOTIFY, XCB_PROPERTY_NOTIFY, XCB_SELECTION_NOTIFY,
        XCB_CLIENT_MESSAGE,  XCB_CLIENT_MESSAGE,   XCB_CLIENT_MESSAGE};
    const int last = int(std::size(kTypes)) - 1;
    // Beyond the core's: those of the extensions in use.
    const uint8_t extra[] = {x11::x.xkb_event, uint8_t(x11::x.randr_event)};
    const int which = dice.Between(0, last + 2);
    bytes[0] = which <= last ? kTypes[which] : extra[which - last - 1];
    for (size_t at : {4u, 8u, 12u, 16u, 20u, 24u, 28u}) {
      const uint32_t word = AnyWord();
      if (!dice.OneIn(3)) memcpy(bytes + at, &word, 4);
    }
    // Most kinds name the window at 4 or at 12.
    if (!dice.OneIn(4)) memcpy(bytes + 4, &target, 4);
    if (dice.OneIn(2)) memcpy(bytes + 12, &target, 4);
    if (bytes[0] == XCB_CLIENT_MESSAGE) {
      const uint32_t type = AnyAtom();
      memcpy(bytes + 8, &type, 4);
      bytes[1] = dice.OneIn(5) ? 8 : 32;
    }
    xcb_send_event(c, 0, dice.OneIn(20) ? user().root() : target, 0,
                   reinterpret_cast<const char*>(bytes));
  }
  // The program offers or asks, and another one asks it for anything, or takes its place.
  void Select() {
    const bool offers = dice.OneIn(2);
    if (offers) OfferText(Selection::kClipboard, std::string(size_t(dice.Between(0, 600000)), 'x'));
    auto arrived = [](void* count, const std::string*) { ++*static_cast<int*>(count); };
    asked += AskText(Selection::kClipboard, 20, arrived, &answered) > 0;
    const xcb_window_t asker = dice.OneIn(3)   ? target
                               : dice.OneIn(2) ? x11::SelectionWindow()
                                               : own;
    xcb_convert_selection(c, asker, user().Atom("CLIPBOARD"), AnyAtom(), AnyAtom(), 0);
    if (dice.OneIn(3)) xcb_set_selection_owner(c, own, user().Atom("CLIPBOARD"), 0);
  }
  void Write() {
    uint8_t bytes[256];
    for (uint8_t& b : bytes) b = uint8_t(dice.Next() >> 16);
    const uint8_t formats[] = {8, 16, 32};
    const uint8_t format = formats[dice.Between(0, 2)];
    const uint32_t most = sizeof bytes / (format / 8);
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, dice.OneIn(4) ? user().root() : target, AnyAtom(),
                        AnyAtom(), format, uint32_t(dice.Between(0, int(most))), bytes);
  }
  support::Dice dice{support::Seed(71)};
  xcb_connection_t* c = nullptr;
  std::vector<xcb_atom_t> atoms;
  xcb_window_t target = 0, own = 0;
  int asked = 0, answered = 0;
};

// What another program says of the window's place counts for nothing, before and after a true word
// of the server's in the same batch.
TEST_F(Hostile, AForgedPlaceIsNotBelieved) {
  Start();
  WindowRef w = Ready();
  target = x11::NativeOf(w)->id;
  Prepare();
  auto forge = [&](int16_t left) {
    xcb_configure_notify_event_t e{};
    e.response_type = XCB_CONFIGURE_NOTIFY;
    e.event = e.window = target;
    e.x = left;
    e.y = -19898;
    e.width = 9000;
    e.height = 300;
    xcb_send_event(c, 0, target, 0, reinterpret_cast<const char*>(&e));
  };
  const Rect first = w->content;
  forge(-12334);
  user().Sync();
  Settle();
  EXPECT_EQ(w->content, first);
  for (int16_t left : {int16_t{150}, int16_t{170}}) {
    forge(-12334);
    const uint32_t place[] = {uint32_t(left), 200};
    xcb_configure_window(c, target, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, place);
    forge(left == 150 ? int16_t(-12335) : int16_t(first.left));
    user().Sync();
    EXPECT_TRUE(RunUntil([&] { return w->content.left == left; })) << w->content.left;
    Settle();
    EXPECT_EQ(w->content, (Rect{left, 224, left + 200, 224 + first.height()}));
  }
  HideWindow(w);
  ShowWindow(w);
  ASSERT_TRUE(RunUntil([&] { return user().Viewable(target); }));
  EXPECT_EQ(user().Where(target).x, 170);
}

TEST_F(Hostile, ForgedEventsAndPropertiesAreSurvived) {
  Start();
  WindowRef w = Ready();
  SetWindowSizeLimits(w, {10, 10, 0, 0, 0, 0});
  target = x11::NativeOf(w)->id;
  Prepare();
  size_t taken = 0;
  for (int i = 0; i < 20000; ++i) {
    if (dice.OneIn(10)) {
      Write();
    } else {
      Forge();
    }
    if (i % 100 != 99) continue;
    if (i % 500 == 499) Select();
    user().Sync();
    RunUntil([] { return true; });
    while (auto* e = xcb_poll_for_event(c)) free(e);  // answers
    taken += events.size();
    events.clear();
  }
  EXPECT_GT(taken, 100u);
  EXPECT_TRUE(RunUntil([&] { return answered == asked; })) << answered << " of " << asked;
  ASSERT_EQ(xcb_connection_has_error(c), 0);
  ASSERT_EQ(xcb_connection_has_error(x11::x.c), 0);
  EXPECT_LT(x11::NativeOf(w)->bytes, size_t{64} << 20);
  // The window takes what a user does. A layout may have come with the forged scale.
  EXPECT_TRUE(IsValidWindow(w));
  ASSERT_TRUE(RunUntil([&] {
    Settle();
    return true;
  }));
  SetWindowBounds(w, {100, 124, 300, 300});
  HideWindow(w);
  Settle();
  ShowWindow(w);
  ASSERT_TRUE(RunUntil([&] { return user().Viewable(target); }));
  const auto at = user().Where(target);
  user().Move(at.x + 20, at.y + at.height - 20);
  // A window manager that is busy may lose a click of a window that it has just been given.
  bool heard = false;
  for (int i = 0; i < 3 && !heard; ++i) {
    user().Click(1);
    heard = RunUntil([&] { return Count(kEventClassMouse, kEventMouseUp) > 0; });
  }
  EXPECT_TRUE(heard);
}

}  // namespace
}  // namespace x11_test
