#include "tests/support/x_player.h"

#include <ctime>

namespace support {

namespace {

// Buttons as the server counts them; 4 to 7 are its wheel.
constexpr int kServerButtons[] = {0, 1, 3, 2, 8, 9};
constexpr int kWheelUp = 4, kWheelDown = 5, kWheelLeft = 6, kWheelRight = 7;

int ServerButton(int button) {
  return button >= 1 && button <= 5 ? kServerButtons[button] : 0;
}

bool Press(XUser& user, int button, bool down) {
  if (ServerButton(button) == 0) return false;
  user.Button(ServerButton(button), down);
  return true;
}

// One click of the wheel a step, whatever its length.
bool Turn(XUser& user, const Step& s) {
  if (s.a != 0) user.Click(s.a > 0 ? kWheelRight : kWheelLeft);
  if (s.b != 0) user.Click(s.b > 0 ? kWheelDown : kWheelUp);
  return true;
}

void Pause(int ms) {
  const timespec pause{ms / 1000, long(ms % 1000) * 1000000};
  nanosleep(&pause, nullptr);
}

void Resize(XUser& user, xcb_window_t window, int width, int height) {
  const uint32_t size[2] = {uint32_t(width), uint32_t(height)};
  xcb_configure_window(user.connection(), window,
                       XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, size);
  user.Sync();
}

void Focus(XUser& user, xcb_window_t window) {
  xcb_set_input_focus(user.connection(), XCB_INPUT_FOCUS_POINTER_ROOT, window, XCB_CURRENT_TIME);
  user.Sync();
}

// A window of another program takes the focus. No window manager has a say in it.
void Unfocus(XUser& user) {
  xcb_connection_t* c = user.connection();
  const xcb_window_t other = xcb_generate_id(c);
  const uint32_t unmanaged = 1;
  xcb_create_window(c, 0, other, user.root(), -10, -10, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, 0,
                    XCB_CW_OVERRIDE_REDIRECT, &unmanaged);
  xcb_map_window(c, other);
  Focus(user, other);
}

bool Do(const Step& s, XUser& user, xcb_window_t window, int bar) {
  const XUser::Geometry place = user.Where(window);
  switch (s.verb) {
    case Step::kMove:
      user.Move(place.x + s.a, place.y + bar + s.b);
      return true;
    case Step::kDown:
      return Press(user, s.a, true);
    case Step::kUp:
      return Press(user, s.a, false);
    case Step::kClick:
      user.Move(place.x + s.a, place.y + bar + s.b);
      return Press(user, s.c, true) && Press(user, s.c, false);
    case Step::kScroll:
      return Turn(user, s);
    case Step::kKey:
      user.Type(s.symbol);
      return true;
    case Step::kHold:
      user.Key(s.symbol, true);
      return true;
    case Step::kRelease:
      user.Key(s.symbol, false);
      return true;
    case Step::kWait:
      Pause(s.a);
      return true;
    case Step::kResize:
      Resize(user, window, s.a, s.b + bar);
      return true;
    case Step::kClose:
      user.Ask(window, "_NET_CLOSE_WINDOW", {0, 0, 0, 0, 0});
      return true;
    case Step::kFocus:
      Focus(user, window);
      return true;
    case Step::kUnfocus:
      Unfocus(user);
      return true;
  }
  return false;
}

}  // namespace

bool PlayOnX(const Script& script, XUser& user, xcb_window_t window, int bar,
             const std::function<void()>& rest) {
  for (size_t i = 0; i < script.size(); ++i) {
    if (!Do(script[i], user, window, bar)) return false;
    if (i + 1 == script.size() || script[i + 1].line != script[i].line) rest();
  }
  return true;
}

}  // namespace support
